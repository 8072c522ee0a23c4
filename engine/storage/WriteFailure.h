#pragma once

#include "qel/engine/EngineError.h"

namespace qel::engine {

/// For AtomicFile: its failures as the engine's error.
[[noreturn]] inline void RaiseCannotWrite(const std::string& message) {
    throw EngineError(ErrorKind::CannotWrite, message);
}

} // namespace qel::engine
