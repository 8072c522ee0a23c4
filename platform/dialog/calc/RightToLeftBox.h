#pragma once

#include "platform/dialog/calc/OfficeWindows.h"

#include <string>

namespace qel::office {

/// Shows a message, whose lines end in LF, that reads from right to left. The office's own boxes are for the
/// direction of its user interface: they put the parts of a Hebrew line with numbers or Latin letters in the
/// wrong order. True for Yes of a question and OK of a warning.
[[nodiscard]] bool ShowRightToLeft(const OfficeWindows& windows, bool isQuestion, const std::string& title,
                                   const std::string& text);

} // namespace qel::office
