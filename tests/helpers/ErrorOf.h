#pragma once

#include "platform/value/AutomationError.h"

#include <cstdint>

namespace qel::test {

/// The AutomationError that `work` raises; its number is 0 when there is none.
template <class Work>
AutomationError FailureOf(const Work& work) {
    try {
        work();
    } catch (const AutomationError& error) {
        return error;
    }
    return {0, "no error"};
}

template <class Work>
std::int32_t ErrorOf(const Work& work) {
    return FailureOf(work).Number();
}

} // namespace qel::test
