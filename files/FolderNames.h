#pragma once

#include <filesystem>
#include <vector>

namespace qel {

/// The names of what a folder holds, without "." and ".."; none where it cannot be read. The directory
/// iterators of GCC 12's library end the process where memory lacks; this raises.
std::vector<std::filesystem::path> NamesInFolder(const std::filesystem::path& folder);

} // namespace qel
