#pragma once

#include "engine/build/CsvReader.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace qel::engine {

/// What happens to a line that cannot be used: the build stops with its place and fault, or the line is
/// written aside as it stands, below the header of its file.
class BadLines {
public:
    /// The file for the lines is created for the first of them.
    explicit BadLines(std::optional<std::filesystem::path> skippedLines) : path_(std::move(skippedLines)) {}

    /// Raises EngineError (InvalidData): "FILE, line N, column NAME: fault" (without the column when there is
    /// none), or writes the current line aside and returns;
    /// CannotWrite when the file for the lines cannot be created.
    void Report(const CsvReader& reader, const std::string& column, const std::string& fault);
    /// Completes the file. Raises CannotWrite when not all of it could be written.
    void Finish();
    /// How many lines were written.
    std::uint64_t LineCount() const { return written_.size(); }

private:
    void CreateFile();

    std::optional<std::filesystem::path> path_;
    std::ofstream file_;
    std::string lastFile_;
    /// File and line of what was written: a table that is read twice has its lines written once.
    std::set<std::pair<std::string, std::uint64_t>> written_;
};

} // namespace qel::engine
