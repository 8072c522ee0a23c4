#pragma once

#include "qel/engine/Cube.h"

#include <cstdint>
#include <string>

namespace qel::engine {

class FileImage;

/// Returns the first fault in the names and members of the file's cube of that number, or an empty text.
/// Looks for faults that do not endanger a reader but give wrong answers: texts that are not UTF-8, a member
/// that its name or key does not find, a parent that lacks codes of its children.
std::string FindMemberFault(const Cube& cube, const FileImage& image, std::uint32_t cubeNumber);

} // namespace qel::engine
