#pragma once

#include <string_view>

namespace qel {

/// Creates one folder. Raises 76 when its parent is missing, 75 when it exists or cannot be created; the
/// description names the folder.
void MakeFolder(std::string_view path);

} // namespace qel
