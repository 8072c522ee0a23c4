#pragma once

#include "engine/build/RecordReader.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace qel::engine {

/// Handles unusable lines: stops the build with the line's location and fault, or copies the line to the file
/// of skipped lines, below its file's header line, with its number and fault in two columns before its own.
class BadLines {
public:
    /// The file is created when the first line is skipped.
    explicit BadLines(std::optional<std::filesystem::path> skippedLines) : path_(std::move(skippedLines)) {}

    /// Raises EngineError (InvalidData) "TABLE, line N, column NAME: fault" (without the column when `column`
    /// is empty), or copies the current line to the file of skipped lines. Raises CannotWrite when that file
    /// cannot be created.
    void Report(const RecordReader& reader, const std::string& column, const std::string& fault);
    /// Completes the file. Raises EngineError (CannotWrite) when not all of it could be written.
    void Finish();
    /// The number of lines copied.
    std::uint64_t LineCount() const { return written_.size(); }

private:
    void CreateFile();

    std::optional<std::filesystem::path> path_;
    std::ofstream file_;
    std::string lastFile_;
    /// File and line number of each copied line: a table that is read twice has its lines copied once.
    std::set<std::pair<std::string, std::uint64_t>> written_;
};

} // namespace qel::engine
