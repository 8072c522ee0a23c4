#pragma once

#include <string_view>

namespace qel {

/// Makes one folder. Raises 76 when the folder that it belongs in is missing, 75 when it cannot be made or a
/// file has its name; the description names the folder.
void MakeFolder(std::string_view path);

} // namespace qel
