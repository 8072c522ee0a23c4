#pragma once

#include <string>
#include <string_view>

namespace qel::office {

/// The caption as the office takes it, "~" before its access key: the first of the letters that it holds,
/// letter case aside. Without any it is the caption.
std::string WithAccessKey(std::string_view caption, std::string_view letters);

} // namespace qel::office
