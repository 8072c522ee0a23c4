#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// The names that the section of a server may have in "servers.ini", the one that is written first. `origin`
/// is scheme, host and, unless it is the scheme's own, port: "http://olap.example:8080".
std::vector<std::string> ServerSections(std::string_view origin);

} // namespace qel
