#pragma once

#include "engine/EngineError.h"
#include "platform/AutomationError.h"

#include <cstdint>
#include <string>

// How a failure of the embedded engine, or a wrong use of its adapters, becomes the error that a client of
// the data-access objects sees.

namespace qel {

/// ADO's own numbers for wrong uses of its objects.
inline constexpr std::int32_t errorItemNotFound = 3265;
inline constexpr std::int32_t errorObjectClosed = 3704;
inline constexpr std::int32_t errorObjectOpen = 3705;
inline constexpr std::int32_t errorInvalidConnection = 3709;
/// A connection text that cannot be read (DB_E_BADINITSTRING).
inline constexpr std::int32_t errorBadConnectionText = static_cast<std::int32_t>(0x80040E73);
/// A data source or provider that this build has no reader for.
inline constexpr std::int32_t errorNotSupported = static_cast<std::int32_t>(0x80040E6F);

/// An error in the name of the embedded engine.
AutomationError ProviderError(std::int32_t number, std::string description);

/// The same number (the kind's) and text, in the name of the embedded engine.
AutomationError ToAutomationError(const engine::EngineError& error);

/// Runs `work` and returns its result; an EngineError leaves as an AutomationError.
template <class Work>
auto TranslatingErrors(const Work& work) {
    try {
        return work();
    } catch (const engine::EngineError& error) {
        throw ToAutomationError(error);
    }
}

} // namespace qel
