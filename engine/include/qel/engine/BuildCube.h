#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace qel::engine {

struct BuildOptions {
    /// JSON, see docs/cube-definition.md; data files are relative to its folder.
    std::filesystem::path definition;
    /// Replaced in one step when the build has succeeded, untouched otherwise.
    std::filesystem::path output;
    /// When set, lines that cannot be used are written here (as they stand) instead of stopping the build.
    /// The file is made, or replaced, when there is such a line, and left alone otherwise.
    std::optional<std::filesystem::path> skippedLines = {};
    /// Called with the step's name and its share done, 0 to 1. May be empty. An exception that it throws
    /// stops the build and reaches the caller.
    std::function<void(const std::string& step, double share)> progress = {};
};

struct BuildTotals {
    /// Of the fact tables, once per cube that reads them; header lines are not counted.
    std::uint64_t linesRead = 0, linesKept = 0, linesSkipped = 0;
    std::uint64_t dimensionLinesSkipped = 0;
    /// The lines in BuildOptions::skippedLines: of all tables, each line once.
    std::uint64_t distinctLinesSkipped = 0;
    std::uint64_t bytesWritten = 0;
};

/// Builds a cube file. Raises EngineError: InvalidDefinition naming the key, InvalidData naming file, line,
/// column and what was expected, FileNotFound, CannotWrite (also when what would be written is read).
BuildTotals BuildCube(const BuildOptions& options);

} // namespace qel::engine
