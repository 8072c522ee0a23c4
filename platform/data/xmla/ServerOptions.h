#pragma once

#include "platform/data/xmla/ServerAddress.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace qel {

/// Time and size limits of requests.
struct ServerLimits {
    std::chrono::milliseconds connect{10'000};
    std::chrono::milliseconds request{120'000};        ///< from the first byte sent to the last one received
    std::size_t answerBytes = std::size_t{256} << 20U; ///< after unpacking
    std::size_t textBytes = std::size_t{1} << 20U;     ///< of one element
    std::size_t depth = 64;
};

struct ServerOptions {
    ServerLimits limits;
    /// The stored credentials of a host, or empty ones. Used when the address has none; when both are empty,
    /// the user's netrc file is read.
    std::function<Credentials(const std::string& host)> credentials;
    /// Optional. Once true, pending requests fail as if the connection were lost.
    std::shared_ptr<const std::atomic<bool>> isStopped;
};

} // namespace qel
