#include "platform/value/CurrentFailure.h"

#include <exception>
#include <new>

namespace qel {

namespace {

/// A text so short needs no memory.
AutomationError OutOfMemory() {
    constexpr std::int32_t number = 7;
    return {number, "Out of memory"};
}

AutomationError HandledFailure() {
    constexpr std::int32_t internalError = 51;
    try {
        throw;
    } catch (const AutomationError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return OutOfMemory();
    } catch (const std::exception& error) {
        return {internalError, error.what()};
    } catch (...) {
        return {internalError, "Internal error"};
    }
}

} // namespace

AutomationError CurrentFailure() noexcept {
    try {
        return HandledFailure();
    } catch (const std::exception&) { // while it was copied
        return OutOfMemory();
    }
}

} // namespace qel
