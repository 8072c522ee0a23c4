#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qel::engine {

/// Something in the data that makes figures wrong without stopping the build.
struct BuildWarning {
    std::string kind; ///< as "accept" in the definition calls it
    std::string cube, dimension;
    std::string text; ///< a whole message
};

struct BuildOptions {
    /// JSON, see docs/cube-definition.md; data files are relative to its folder.
    std::filesystem::path definition;
    /// Replaced atomically when the build succeeds, otherwise untouched.
    std::filesystem::path output;
    /// When set, unusable lines are copied to this file instead of stopping the build. The file is created
    /// (or replaced) only when there is such a line.
    std::optional<std::filesystem::path> skippedLines = {};
    /// A cube file of the same definition, from which the build takes the facts of the lines that fact files
    /// begin with; it may be the output, and need not exist. The new file then keeps its facts, too, for the
    /// next build. Its bytes are the same whether lines were read or taken.
    std::optional<std::filesystem::path> previous = {};
    /// Called with the name of the step and the share done, 0 to 1. May be empty. An exception that it throws
    /// stops the build and reaches the caller.
    std::function<void(const std::string& step, double share)> progress = {};
    /// Replaces an output that is write-protected, too.
    bool force = false;
    /// Warnings are errors: the output stays as it was.
    bool strict = false;
    /// For the facts and aggregates, in bytes. What is more goes to a temporary file beside the output.
    std::uint64_t memory = std::uint64_t{1} << 30U;
    /// Called with the complete file before it replaces the output. What it returns joins the build's own
    /// warnings. An exception that it throws stops the build and reaches the caller. May be empty.
    std::function<std::vector<BuildWarning>(const std::filesystem::path& complete)> review = {};
};

struct BuildTotals {
    /// Of the fact tables, once per cube that reads them, without header lines.
    std::uint64_t linesRead = 0, linesKept = 0, linesSkipped = 0;
    std::uint64_t linesTaken = 0; ///< of those read: from the previous file
    std::string obstacle;         ///< why a build with a previous file read every line, at least of one cube
    std::uint64_t dimensionLinesSkipped = 0;
    /// Over all tables; a line that several cubes or dimensions read counts once.
    std::uint64_t distinctLinesSkipped = 0;
    std::uint64_t bytesWritten = 0;
    std::vector<BuildWarning> warnings; ///< without those that the definition accepts
};

/// Builds a cube file. Raises EngineError: InvalidDefinition naming the key, InvalidData naming file, line,
/// column and what was expected, FileNotFound, CannotWrite (also when an output file is also an input). A
/// strict build raises InvalidData with all warnings.
BuildTotals BuildCube(const BuildOptions& options);

} // namespace qel::engine
