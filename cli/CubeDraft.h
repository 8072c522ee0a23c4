#pragma once

#include "cli/DraftSources.h"

namespace qel {

/// The definition of a cube for formulas over the files, with comments. Files are named as seen from
/// `folder`.
std::string DraftDefinition(const DraftSources& sources, const std::filesystem::path& folder);

/// Which lines of a table the build will not take, with the number of the first one and the reason.
std::vector<std::string> UnusableLines(const DraftTable& table);

/// A formula that the cube of the draft answers: the amount of one account over all dates.
std::string DraftFormula(const DraftSources& sources, const std::string& cubeFile);

} // namespace qel
