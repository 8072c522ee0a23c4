#pragma once

#include "engine/build/BadLines.h"
#include "engine/build/CsvReader.h"
#include "engine/build/DecodedFile.h"
#include "engine/build/Definition.h"
#include "engine/build/RecordReader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

/// Receives the name of a build step and the share done.
using BuildProgress = std::function<void(const std::string& step, double share)>;

/// Stands between the fields of a value of several columns; no field contains it.
inline constexpr char keyPartEnd = '\0';

/// In place of a column's index where the definition names none.
inline constexpr std::size_t noColumn = static_cast<std::size_t>(-1);

/// Reads the records of one table of a definition.
class TableReader {
public:
    /// Raises EngineError: FileNotFound, InvalidData.
    TableReader(const TableDefinition& table, BadLines& badLines, const BuildProgress& progress);

    const TableDefinition& Table() const { return table_; }
    const RecordReader& Records() const { return *records_; }
    /// The index of the column that the definition calls `name`. Raises EngineError (InvalidData) naming the
    /// table and its columns.
    std::size_t Column(const std::string& name) const;
    /// All columns, as the definition calls them; without those that have no name, or one that is not unique.
    std::vector<std::string> ColumnNames() const;
    std::vector<std::size_t> Columns(const std::vector<std::string>& names) const;
    /// Reads the next well-formed record and reports malformed ones. False at the end.
    bool Next();
    std::string_view Field(std::size_t column) const { return records_->Field(column); }
    /// The value of several columns: their fields with keyPartEnd between them; empty when all are. Valid
    /// until the next call.
    std::string_view Key(std::span<const std::size_t> columns) {
        return columns.size() == 1 ? Field(columns.front()) : JoinedKey(columns);
    }
    /// Leaves out the lines of a file before `offset`, which were read by a build before: `lines` that could
    /// be used, up to before line number `nextLine`.
    void ContinueAt(std::uint64_t offset, std::uint64_t nextLine, std::uint64_t lines);
    /// Reports the current record as unusable.
    void ReportBad(std::span<const std::size_t> columns, const std::string& fault);

    std::uint64_t LinesRead() const { return linesRead_; }
    std::uint64_t LinesSkipped() const { return linesSkipped_; }

private:
    std::string_view JoinedKey(std::span<const std::size_t> columns);
    /// "; what helps" for a column that the table lacks, and for a line that looks like a total.
    std::string ColumnRemedy(const std::string& missing) const;
    std::string TotalRemedy() const;
    void ShowProgress() const;
    void Report(double share) const;

    const TableDefinition& table_;
    BadLines& badLines_;
    const BuildProgress& progress_;
    std::string step_;
    std::string key_;
    std::optional<DecodedFile> file_; ///< of a table that is a file
    std::unique_ptr<RecordReader> records_;
    CsvReader* csv_ = nullptr; ///< the records of a file
    std::uint64_t linesRead_ = 0, linesSkipped_ = 0;
};

} // namespace qel::engine
