#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

// What statements of the component need that the provider for cube files understands and a server may not.
// Both changes leave the meaning as it is; text in brackets or double quotes is never touched.

namespace qel {

/// Servers without empty set elements: "{  , [a]" becomes "{  [a]".
std::string WithoutEmptyElements(std::string_view statement);

/// The unique name of the member that a path "[Dimension].[Hierarchy].[name]" means; none to leave the path.
using MemberLookup =
    std::function<std::optional<std::string>(const std::string& hierarchy, const std::string& name)>;

/// Servers that look for a name right below a hierarchy among the members of its first level alone: such
/// paths, with nothing behind them, are replaced by what `find` gives.
std::string WithMembersOfLowerLevels(std::string_view statement, const MemberLookup& find);

} // namespace qel
