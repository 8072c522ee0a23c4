#include "platform/data/xmla/HttpChannel.h"

#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

namespace qel {

namespace {

bool IsRedirection(long status) { return status == 301 || status == 302 || status == 307 || status == 308; }

} // namespace

HttpHead HttpChannel::Post(const std::string& body, const std::string& action, const AnswerSink& take) {
    constexpr int mostRedirections = 5;
    const auto end = Clock::now() + limits_.request; // all redirections together have the time of one request
    std::size_t bytesLeft = limits_.answerBytes;
    const AnswerSink takeBounded = [&](long status, std::string_view piece) {
        if (IsRedirection(status)) {
            return;
        }
        if (piece.size() > bytesLeft) {
            throw AnswerTooLarge();
        }
        bytesLeft -= piece.size();
        take(status, piece);
    };
    std::string url = address_.url;
    for (int i = 0; i <= mostRedirections; ++i) {
        RequireNotStopped(url);
        HttpHead head = PostOnce(url, body, action, takeBounded, end);
        if (!IsRedirection(head.status)) {
            return head;
        }
        url = Redirection(head.location);
    }
    throw ServerError(errorServerAnswer, fmt::format("{} redirects in a circle.", address_.url));
}

std::string HttpChannel::Redirection(const std::string& location) const {
    if (location.empty()) {
        throw ServerError(errorServerAnswer, fmt::format("{} redirects to nowhere.", address_.url));
    }
    const ServerAddress target = ParseServerAddress(location);
    if (target.origin != address_.origin) {
        throw ServerError(
            errorServerAnswer,
            fmt::format("{} redirects to {}, which is not followed: {}. Use that address if it is the "
                        "right one.",
                        address_.url, target.url,
                        target.host != address_.host ? "it is another host"
                                                     : "it has another scheme or port"));
    }
    return target.url;
}

void HttpChannel::RequireNotStopped(const std::string& url) const {
    if (isStopped_ && *isStopped_) {
        throw ServerError(errorServerUnreachable, fmt::format("The request to {} was cancelled.", url));
    }
}

} // namespace qel
