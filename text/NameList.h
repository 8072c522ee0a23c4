#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// "a, b, c" for a message; of very many names the first ones, and how many more there are. Each stands
/// between `quote`s.
std::string NameList(const std::vector<std::string>& names, std::string_view quote = {});

} // namespace qel
