#pragma once

#include "platform/data/xmla/ServerOptions.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace qel {

/// What the first lines of an answer say; texts may be empty.
struct HttpHead {
    long status = 0;
    std::string contentType;
    std::string location; ///< where a redirection leads to, as a whole address
};

/// Receives an answer's body piece by piece, with the answer's status.
using AnswerSink = std::function<void(long status, std::string_view piece)>;

/// One kept-alive connection to a server. Belongs to one thread at a time.
class HttpChannel {
public:
    HttpChannel(const ServerAddress& address, const ServerOptions& options);
    ~HttpChannel();
    HttpChannel(const HttpChannel&) = delete;
    HttpChannel& operator=(const HttpChannel&) = delete;

    /// Sends a SOAP request and passes the answer's body to `take` as it arrives. What `take` raises ends the
    /// request and is passed on. Raises AutomationError when no complete answer arrives in time. Statuses
    /// other than redirections are left to the caller.
    HttpHead Post(const std::string& body, const std::string& action, const AnswerSink& take);

private:
    struct Transfer;
    using Clock = std::chrono::steady_clock;

    /// The target of a redirection. Raises AutomationError when it has another scheme, host or port.
    std::string Redirection(const std::string& location) const;
    /// Passes the body of a redirection on, too. Raises once `end` has come.
    HttpHead PostOnce(const std::string& url, const std::string& body, const std::string& action,
                      const AnswerSink& take, Clock::time_point end);
    void RequireNotStopped(const std::string& url) const;
    [[noreturn]] void Fail(int code, const std::string& url) const;

    ServerAddress address_;
    ServerLimits limits_;
    Credentials credentials_;
    std::shared_ptr<const std::atomic<bool>> isStopped_;
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

} // namespace qel
