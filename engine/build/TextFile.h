#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace qel::engine {

/// Opens a regular file for reading in binary mode. Raises EngineError (FileNotFound) naming the file and the
/// reason.
std::ifstream OpenTextFile(const std::filesystem::path& path);

/// The bytes of a whole file; errors as above.
std::string ReadTextFile(const std::filesystem::path& path);

} // namespace qel::engine
