#pragma once

#include <string_view>

namespace qel {

/// True when the whole name matches: "*" is any characters, "?" exactly one, "*.*" any name. Case-sensitive.
[[nodiscard]] bool MatchesWildcard(std::string_view name, std::string_view pattern);

} // namespace qel
