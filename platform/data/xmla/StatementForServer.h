#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Adapts the component's statements to servers that lack two features of the provider for cube files. The
// meaning stays; text in brackets or double quotes is never changed.

namespace qel {

/// Removes empty set elements: "{  , [a]" becomes "{  [a]".
std::string WithoutEmptyElements(std::string_view statement);

/// The unique name of the member that a path "[Dimension].[Hierarchy].[name]" refers to; nullopt keeps the
/// path.
using MemberLookup =
    std::function<std::optional<std::string>(const std::string& hierarchy, const std::string& name)>;

/// Some servers look up a name directly below a hierarchy in its first level only. Such paths, when they end
/// there, are replaced by the result of `find`.
std::string WithMembersOfLowerLevels(std::string_view statement, const MemberLookup& find);

} // namespace qel
