#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/windows/WindowsApi.h"

#include <cstddef>
#include <string_view>

namespace qel::windows {

/// The id of a control's window. The default and the cancel button have the ids that the system presses on
/// Enter and Esc.
WORD ControlId(const FormDesign& design, std::size_t index);

} // namespace qel::windows
