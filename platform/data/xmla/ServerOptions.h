#pragma once

#include "platform/data/xmla/ServerAddress.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace qel {

/// How long the adapter waits and how much it takes.
struct ServerLimits {
    std::chrono::milliseconds connect{10'000};
    std::chrono::milliseconds request{120'000};        ///< from the first byte sent to the last one received
    std::size_t answerBytes = std::size_t{256} << 20U; ///< after unpacking
    std::size_t textBytes = std::size_t{1} << 20U;     ///< of one element
    std::size_t depth = 64;
};

struct ServerOptions {
    ServerLimits limits;
    /// The credentials kept for a host; empty ones when there are none. Asked when the address has none; when
    /// this has none either, the user's netrc file is looked up.
    std::function<Credentials(const std::string& host)> credentials;
    /// Once true, requests end at once as over a lost connection. May be none.
    std::shared_ptr<const std::atomic<bool>> isStopped;
};

} // namespace qel
