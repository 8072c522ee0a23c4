#pragma once

#include <string_view>

namespace qel {

/// True when the whole name matches: "*" stands for any characters, "?" for exactly one, "*.*" for any name.
/// Letter case counts.
bool MatchesWildcard(std::string_view name, std::string_view pattern);

} // namespace qel
