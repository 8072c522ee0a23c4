#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ChannelRights.h"
#include "platform/data/xmla/HttpChannel.h"
#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <curl/curl.h>
#include <exception>

namespace qel {

namespace {

struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

void StartLibraryOnce() {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (started != CURLE_OK) {
        throw ServerError(errorServerUnreachable, "The HTTP library cannot be started.");
    }
}

/// libcurl calls this while it waits, too. A result other than 0 ends the transfer.
int EndWhenStopped(void* isStopped, curl_off_t /*expected*/, curl_off_t /*received*/, curl_off_t /*toSend*/,
                   curl_off_t /*sent*/) {
    return static_cast<const std::atomic<bool>*>(isStopped)->load() ? 1 : 0;
}

} // namespace

struct HttpChannel::Handle {
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy{nullptr, &curl_easy_cleanup};
    std::array<char, CURL_ERROR_SIZE> message{};
};

/// The answer to one request while it arrives.
struct HttpChannel::Transfer {
    CURL* easy = nullptr;
    const AnswerSink* take = nullptr;
    std::exception_ptr failure = {};

    /// libcurl's write callback. Returning another count than the given one ends the transfer.
    static std::size_t Receive(char* data, std::size_t size, std::size_t count, void* self) {
        auto& transfer = *static_cast<Transfer*>(self);
        const std::size_t bytes = size * count;
        try {
            transfer.Take({data, bytes});
            return bytes;
        } catch (...) {
            transfer.failure = std::current_exception();
            return bytes == 0 ? 1 : 0;
        }
    }

    void Take(std::string_view bytes) {
        long status = 0;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
        (*take)(status, bytes);
    }
};

HttpChannel::HttpChannel(const ServerAddress& address, const ServerOptions& options)
    : address_(address), limits_(options.limits), isStopped_(options.isStopped),
      handle_(std::make_unique<Handle>()) {
    const ChannelRights rights = RequireMaySend(address, options);
    credentials_ = rights.credentials;
    StartLibraryOnce();
    handle_->easy.reset(curl_easy_init());
    CURL* easy = handle_->easy.get();
    if (!easy) {
        throw ServerError(errorServerUnreachable, "The HTTP library has no memory.");
    }
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, handle_->message.data());
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect.count()));
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, ""); // every encoding that libcurl can decode
    curl_easy_setopt(easy, CURLOPT_USERAGENT, "OrmFuncQel4");
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Transfer::Receive);
    if (isStopped_) {
        curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, &EndWhenStopped);
        curl_easy_setopt(easy, CURLOPT_XFERINFODATA, isStopped_.get());
    }
    if (address.isLoopback) {
        curl_easy_setopt(easy, CURLOPT_NOPROXY, "*"); // a proxy would take the password off this machine
    }
    if (credentials_.user.empty()) {
        curl_easy_setopt(easy, CURLOPT_NETRC,
                         static_cast<long>(rights.isPasswordSafe ? CURL_NETRC_OPTIONAL : CURL_NETRC_IGNORED));
    } else {
        curl_easy_setopt(easy, CURLOPT_USERNAME, credentials_.user.c_str());
        curl_easy_setopt(easy, CURLOPT_PASSWORD, credentials_.password.c_str());
    }
}

HttpChannel::~HttpChannel() = default;

HttpHead HttpChannel::PostOnce(const std::string& url, const std::string& body, const std::string& action,
                               const AnswerSink& take, Clock::time_point end) {
    CURL* easy = handle_->easy.get();
    std::unique_ptr<curl_slist, FreeList> headers;
    // An empty "Expect" header: do not wait for "100 Continue" before sending a large statement.
    for (const auto& header : {std::string("Content-Type: text/xml; charset=utf-8"),
                               fmt::format("SOAPAction: \"{}\"", action), std::string("Expect:")}) {
        headers.reset(curl_slist_append(headers.release(), header.c_str()));
    }
    Transfer transfer{.easy = easy, .take = &take};
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS,
                     static_cast<long>(std::max<std::int64_t>(left.count(), 1))); // 0 would mean without end
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, body.c_str());
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
    const CURLcode code = curl_easy_perform(easy);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, nullptr);
    if (transfer.failure) {
        std::rethrow_exception(transfer.failure);
    }
    if (code != CURLE_OK) {
        Fail(code, url);
    }
    HttpHead head;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &head.status);
    const char* type = nullptr;
    curl_easy_getinfo(easy, CURLINFO_CONTENT_TYPE, &type);
    head.contentType = type ? type : "";
    const char* location = nullptr;
    curl_easy_getinfo(easy, CURLINFO_REDIRECT_URL, &location);
    head.location = location ? location : "";
    return head;
}

void HttpChannel::Fail(int code, const std::string& url) const {
    const char* general = curl_easy_strerror(static_cast<CURLcode>(code));
    const std::string_view own = handle_->message.data();
    const std::string reason(own.empty() ? general : own);
    switch (code) {
    case CURLE_ABORTED_BY_CALLBACK:
        throw ServerError(errorServerUnreachable, fmt::format("The request to {} was cancelled.", url));
    case CURLE_OPERATION_TIMEDOUT:
        throw ServerError(errorServerTimeout, fmt::format("{} did not answer in time: {}.", url, reason));
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
        throw ServerError(errorServerUnreachable,
                          fmt::format("No trusted connection to {} could be made: {}.", url, reason));
    case CURLE_PARTIAL_FILE:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL: // "HTTP/0.9": the server does not speak HTTP
        throw ServerError(errorServerAnswer,
                          fmt::format("{} sent an answer that cannot be read: {}.", url, reason));
    default:
        throw ServerError(errorServerUnreachable, fmt::format("{} cannot be reached: {}.", url, reason));
    }
}

} // namespace qel
