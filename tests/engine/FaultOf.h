#pragma once

#include "qel/engine/EngineError.h"

#include <optional>
#include <string>

namespace qel::engine {

struct Fault {
    std::optional<ErrorKind> kind; ///< nothing when nothing was raised
    std::string text = "no fault";
};

/// The EngineError that `work` raises.
template <class Work>
Fault FaultOf(const Work& work) {
    try {
        work();
    } catch (const EngineError& error) {
        return {error.Kind(), error.what()};
    }
    return {};
}

} // namespace qel::engine
