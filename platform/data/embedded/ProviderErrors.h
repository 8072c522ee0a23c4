#pragma once

#include "platform/data/DataAccessErrors.h"
#include "platform/value/AutomationError.h"
#include "qel/engine/EngineError.h"

#include <cstdint>
#include <string>

// Turns failures of the embedded engine and misuse of its adapters into the errors that clients see.

namespace qel {

/// The source of the embedded engine's errors.
inline constexpr const char* embeddedProvider = "OrmFuncQel4 cube engine";

/// An error of the embedded engine.
[[nodiscard]] AutomationError ProviderError(std::int32_t number, std::string description);
[[nodiscard]] AutomationError ProviderError(engine::ErrorKind kind, std::string description);

/// The number that clients see for an engine's error; docs/errors.md lists them.
[[nodiscard]] std::int32_t ErrorNumberOf(engine::ErrorKind kind);

/// The error's text and its kind's number, in the name of the embedded engine.
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
