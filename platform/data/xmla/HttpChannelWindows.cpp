#include "platform/data/DataAccessErrors.h"
#include "platform/data/xmla/ChannelRights.h"
#include "platform/data/xmla/HttpChannel.h"
#include "platform/data/xmla/ServerErrors.h"

#include <fmt/format.h>

namespace qel {

struct HttpChannel::Handle {};

HttpChannel::HttpChannel(const ServerAddress& address, const ServerOptions& options)
    : address_(address), limits_(options.limits), credentials_(RequireMaySend(address, options).credentials),
      isStopped_(options.isStopped) {
    throw ServerError(errorServerUnreachable,
                      fmt::format("{} cannot be reached: this program cannot reach servers from Windows yet.",
                                  address.url));
}

HttpChannel::~HttpChannel() = default;

HttpHead HttpChannel::Post(const std::string& /*body*/, const std::string& /*action*/,
                           const AnswerSink& /*take*/) {
    return {};
}

} // namespace qel
