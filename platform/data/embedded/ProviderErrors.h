#pragma once

#include "engine/EngineError.h"
#include "platform/data/DataAccessErrors.h"
#include "platform/value/AutomationError.h"

#include <cstdint>
#include <string>

// Turns failures of the embedded engine and misuse of its adapters into the errors that clients see.

namespace qel {

/// The source of the embedded engine's errors.
inline constexpr const char* embeddedProvider = "OrmFuncQel4 cube engine";

/// An error of the embedded engine.
[[nodiscard]] AutomationError ProviderError(std::int32_t number, std::string description);

/// The engine's error under the number of its kind.
[[nodiscard]] AutomationError ToAutomationError(const engine::EngineError& error);

/// Runs `work` and returns its result. Turns an EngineError into an AutomationError.
template <class Work>
auto TranslatingErrors(const Work& work) {
    try {
        return work();
    } catch (const engine::EngineError& error) {
        throw ToAutomationError(error);
    }
}

} // namespace qel
