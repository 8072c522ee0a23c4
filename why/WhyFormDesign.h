#pragma once

#include "platform/dialog/DialogToolkit.h"

namespace qel {

/// The names of the controls that the form works with.
namespace WhyFormControl {
inline constexpr const char* Heading = "LabelValue";
inline constexpr const char* Arguments = "ListArguments";
inline constexpr const char* Explanation = "ListExplanation";
inline constexpr const char* Statement = "TxtStatement";
inline constexpr const char* Compare = "CmdCompare";
inline constexpr const char* Comparison = "ListComparison";
inline constexpr const char* FileDialog = "CmdDial";
inline constexpr const char* Lines = "CmdLines";
inline constexpr const char* EditFormula = "CmdEdit";
inline constexpr const char* Copy = "CmdCopy";
inline constexpr const char* Close = "CmdClose";
} // namespace WhyFormControl

const FormDesign& WhyFormDesign();

} // namespace qel
