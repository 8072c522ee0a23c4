#pragma once

#include <cstdint>

namespace qel {

/// The system's millisecond tick count, which wraps around after 2^32 milliseconds (49.7 days).
std::uint32_t SystemTicks();

/// Measures elapsed time.
class ClTimming {
public:
    using TickSource = std::uint32_t (*)();

    explicit ClTimming(TickSource ticks = SystemTicks) : ticks_(ticks) {}

    void Start();
    /// Without Start, the elapsed time is the tick count itself. Raises 6 when the tick count has wrapped
    /// around.
    void Finish();
    /// Seconds between Start and Finish; 0 before Finish.
    double ElapsedTime() const;

private:
    TickSource ticks_;
    std::uint32_t startTick_ = 0;
    std::uint32_t finishTick_ = 0;
    std::uint32_t elapsedTicks_ = 0;
};

} // namespace qel
