#pragma once

#include "platform/value/AutomationError.h"

namespace qel {

/// The exception that is being handled: an AutomationError as it is, another one with the platform's number
/// for it. Raises nothing where memory lacks.
[[nodiscard]] AutomationError CurrentFailure() noexcept;

} // namespace qel
