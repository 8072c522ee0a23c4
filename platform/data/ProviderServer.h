#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel {

/// The server that an OLE DB provider would connect to for a connection text of the component:
/// "http://olap.example:8080" for an address, "msolap://reports" for the name of a machine, nullopt for a
/// file. A file begins with "\\", "/" or a drive, or ends in ".cub"; everything else is a server, whatever
/// files there are.
///
/// The provider reads the text by rules of its own. A text that it could read differently raises
/// AutomationError: one with other properties than the component writes, with one of them twice or in quotes,
/// an address whose host is not plain, and a name that no machine has.
std::optional<std::string> ServerOfProvider(std::string_view connectionText);

} // namespace qel
