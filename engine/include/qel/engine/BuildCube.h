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
    /// Replaced atomically when the build succeeds, otherwise untouched.
    std::filesystem::path output;
    /// When set, unusable lines are copied to this file instead of stopping the build. The file is created
    /// (or replaced) only when there is such a line.
    std::optional<std::filesystem::path> skippedLines = {};
    /// Called with the name of the step and the share done, 0 to 1. May be empty. An exception that it throws
    /// stops the build and reaches the caller.
    std::function<void(const std::string& step, double share)> progress = {};
};

struct BuildTotals {
    /// Of the fact tables, once per cube that reads them, without header lines.
    std::uint64_t linesRead = 0, linesKept = 0, linesSkipped = 0;
    std::uint64_t dimensionLinesSkipped = 0;
    /// Over all tables; a line that several cubes or dimensions read counts once.
    std::uint64_t distinctLinesSkipped = 0;
    std::uint64_t bytesWritten = 0;
};

/// Builds a cube file. Raises EngineError: InvalidDefinition naming the key, InvalidData naming file, line,
/// column and what was expected, FileNotFound, CannotWrite (also when an output file is also an input).
BuildTotals BuildCube(const BuildOptions& options);

} // namespace qel::engine
