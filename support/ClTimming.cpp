#include "support/ClTimming.h"

#include "platform/value/AutomationError.h"

#include <chrono>

namespace qel {

std::uint32_t SystemTicks() {
    using std::chrono::milliseconds;
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<milliseconds>(sinceStart).count());
}

void ClTimming::Start() {
    startTick_ = ticks_();
    finishTick_ = 0;
    elapsedTicks_ = 0;
}

void ClTimming::Finish() {
    finishTick_ = ticks_();
    if (finishTick_ < startTick_) {
        throw PlatformError(ErrorNumber::Overflow);
    }
    elapsedTicks_ = finishTick_ - startTick_;
}

double ClTimming::ElapsedTime() const { return elapsedTicks_ / 1000.0; }

} // namespace qel
