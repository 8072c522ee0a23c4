#pragma once

#include "engine/build/BadLines.h"
#include "engine/build/CsvReader.h"
#include "engine/build/DecodedFile.h"
#include "engine/build/Definition.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// Receives the name of a build step and the share done.
using BuildProgress = std::function<void(const std::string& step, double share)>;

/// Stands between the fields of a value of several columns; no field contains it.
inline constexpr char keyPartEnd = '\0';

/// Reads the lines of one table of a definition.
class TableReader {
public:
    /// Raises EngineError: FileNotFound, InvalidData.
    TableReader(const TableDefinition& table, BadLines& badLines, const BuildProgress& progress);

    const TableDefinition& Table() const { return table_; }
    const CsvReader& Csv() const { return csv_; }
    /// The index of the column that the definition calls `name`. Raises EngineError (InvalidData) naming the
    /// file and its columns.
    std::size_t Column(const std::string& name) const;
    std::vector<std::size_t> Columns(const std::vector<std::string>& names) const;
    /// Reads the next well-formed line and reports malformed ones. False at the end.
    bool Next();
    std::string_view Field(std::size_t column) const { return csv_.Field(column); }
    /// The value of several columns: their fields with keyPartEnd between them; empty when all are. Valid
    /// until the next call.
    std::string_view Key(std::span<const std::size_t> columns) {
        return columns.size() == 1 ? Field(columns.front()) : JoinedKey(columns);
    }
    /// Reports the current line as unusable.
    void ReportBad(std::span<const std::size_t> columns, const std::string& fault);

    std::uint64_t LinesRead() const { return linesRead_; }
    std::uint64_t LinesSkipped() const { return linesSkipped_; }

private:
    std::string_view JoinedKey(std::span<const std::size_t> columns);
    void ShowProgress();

    const TableDefinition& table_;
    BadLines& badLines_;
    const BuildProgress& progress_;
    std::string step_;
    std::string key_;
    std::uint64_t fileSize_;
    DecodedFile file_;
    CsvReader csv_;
    std::uint64_t linesRead_ = 0, linesSkipped_ = 0;
};

} // namespace qel::engine
