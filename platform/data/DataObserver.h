#pragma once

#include <chrono>
#include <string>

namespace qel {

/// Told what providers are asked, in the order in which it happens.
class DataObserver {
public:
    virtual ~DataObserver() = default;
    /// After an opening, a failed one too.
    virtual void OnOpening(const std::string& connectionText, std::chrono::nanoseconds time) = 0;
    /// Before a statement is sent.
    virtual void OnStatement(const std::string& statement) = 0;
};

} // namespace qel
