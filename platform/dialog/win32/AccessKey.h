#pragma once

#include <string>
#include <string_view>

namespace qel::windows {

/// The caption as the system's controls take it: "&" before its access key, other ampersands doubled. The key
/// is the first of `letters` that the caption holds, in either case; none when it holds none.
std::string WithAccessKey(std::string_view caption, std::string_view letters);

} // namespace qel::windows
