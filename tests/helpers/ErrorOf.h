#pragma once

#include "platform/value/AutomationError.h"

#include <cstdint>

namespace qel::test {

/// The number of the AutomationError that `work` raises, or 0.
template <class Work>
std::int32_t ErrorOf(const Work& work) {
    try {
        work();
    } catch (const AutomationError& error) {
        return error.Number();
    }
    return 0;
}

} // namespace qel::test
