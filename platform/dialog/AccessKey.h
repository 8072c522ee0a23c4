#pragma once

#include <string>
#include <string_view>

namespace qel {

/// The caption with `mark` before its access key: the first of `letters` that the caption holds, letter case
/// aside, or none. Other marks in the caption are doubled.
[[nodiscard]] std::string WithAccessKey(std::string_view caption, std::string_view letters,
                                        std::string_view mark);

} // namespace qel
