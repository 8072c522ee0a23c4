#include "engine/build/TableReader.h"

#include "engine/build/CsvReader.h"
#include "engine/build/HeaderLine.h"
#include "engine/build/OdbcReader.h"
#include "engine/build/ReadAhead.h"
#include "engine/build/TotalLine.h"
#include "qel/engine/EngineError.h"
#include "text/Suggestion.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace qel::engine {

TableReader::TableReader(const TableDefinition& table, BadLines& badLines, const BuildProgress& progress)
    : table_(table), badLines_(badLines), progress_(progress), step_("Reading " + table.ShortName()) {
    if (table.odbc) {
        records_ = std::make_unique<OdbcReader>(table.ShortName(), *table.odbc,
                                                [this] { Report(records_ ? records_->Share() : 0); });
        return;
    }
    file_.emplace(table.file, table.format.encoding);
    auto csv = std::make_unique<CsvReader>(file_->Stream(), PathToUtf8(table.file), table.format.delimiter,
                                           file_->Size(), table.format.skipLines);
    csv_ = csv.get();
    records_ = std::make_unique<ReadAhead>(std::move(csv));
}

void TableReader::ContinueAt(std::uint64_t offset, std::uint64_t nextLine, std::uint64_t lines) {
    file_->SeekTo(offset);
    csv_->ContinueAt(offset, nextLine);
    linesRead_ = lines;
}

std::size_t TableReader::Column(const std::string& name) const {
    const auto renamed = std::find_if(table_.columns.begin(), table_.columns.end(),
                                      [&name](const auto& column) { return column.first == name; });
    const std::string& inFile = renamed == table_.columns.end() ? name : renamed->second;
    const auto& header = records_->Header();
    const auto found = std::find(header.begin(), header.end(), inFile);
    if (found == header.end()) {
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}: there is no column \"{}\"; the columns are \"{}\"{}",
                                      records_->Name(), inFile, fmt::join(header, "\", \""),
                                      ColumnRemedy(inFile)));
    }
    if (std::count(header.begin(), header.end(), inFile) > 1) {
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}: two columns are named \"{}\"", records_->Name(), inFile));
    }
    return static_cast<std::size_t>(found - header.begin());
}

std::vector<std::string> TableReader::ColumnNames() const {
    std::vector<std::string> names;
    const auto& header = records_->Header();
    for (const std::string& inFile : header) {
        if (inFile.empty() || std::count(header.begin(), header.end(), inFile) > 1) {
            continue;
        }
        const auto renamed = std::find_if(table_.columns.begin(), table_.columns.end(),
                                          [&](const auto& column) { return column.second == inFile; });
        names.push_back(renamed == table_.columns.end() ? inFile : renamed->first);
    }
    return names;
}

std::string TableReader::ColumnRemedy(const std::string& missing) const {
    if (table_.odbc) {
        return Suggestion(missing, records_->Header());
    }
    if (const std::uint64_t above = LinesAboveHeader(table_); above != table_.format.skipLines) {
        return fmt::format("; these seem to stand in line {}: set \"skipLines\": {} in the table \"{}\"",
                           above + 1, above, table_.name);
    }
    return records_->Header().size() == 1 ? "; if these are several, set \"delimiter\""
                                          : Suggestion(missing, records_->Header());
}

std::vector<std::size_t> TableReader::Columns(const std::vector<std::string>& names) const {
    std::vector<std::size_t> columns;
    columns.reserve(names.size());
    for (const std::string& name : names) {
        columns.push_back(Column(name));
    }
    return columns;
}

std::string_view TableReader::JoinedKey(std::span<const std::size_t> columns) {
    key_.clear();
    bool isEmpty = true;
    for (const std::size_t column : columns) {
        isEmpty = isEmpty && Field(column).empty();
        key_.append(Field(column)).push_back(keyPartEnd);
    }
    key_.pop_back();
    return isEmpty ? std::string_view() : key_;
}

bool TableReader::Next() {
    while (records_->Next()) {
        ++linesRead_;
        ShowProgress();
        if (records_->Fault().empty()) {
            return true;
        }
        ++linesSkipped_;
        badLines_.Report(*records_, "", records_->Fault() + TotalRemedy());
    }
    Report(1);
    return false;
}

void TableReader::ReportBad(std::span<const std::size_t> columns, const std::string& fault) {
    ++linesSkipped_;
    std::string names;
    for (const std::size_t column : columns) {
        names += (names.empty() ? "" : "+") + records_->Header()[column];
    }
    badLines_.Report(*records_, names, fault + TotalRemedy());
}

std::string TableReader::TotalRemedy() const {
    return IsProbableTotal(*records_)
               ? "; the line looks like a total, which no cube needs: delete it, or build with "
                 "--skip-bad-lines"
               : "";
}

void TableReader::Report(double share) const {
    if (progress_) {
        progress_(step_, share);
    }
}

void TableReader::ShowProgress() const {
    constexpr std::uint64_t linesPerReport = 8192;
    if (linesRead_ % linesPerReport == 1) {
        Report(records_->Share());
    }
}

} // namespace qel::engine
