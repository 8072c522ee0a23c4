#pragma once

#include "platform/value/AutomationError.h"

#include <fmt/format.h>

#include <string>

namespace qel {

/// The failure with its number and its source, as all commands print it.
inline std::string FailureText(const AutomationError& error) {
    return fmt::format("{} (error {}, {})", error.Description(), error.Number(), error.Source());
}

} // namespace qel
