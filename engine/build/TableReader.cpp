#include "engine/build/TableReader.h"

#include "qel/engine/EngineError.h"
#include "text/Suggestion.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace qel::engine {

TableReader::TableReader(const TableDefinition& table, BadLines& badLines, const BuildProgress& progress)
    : table_(table), badLines_(badLines), progress_(progress),
      step_("Reading " + PathToUtf8(table.file.filename())), file_(table.file, table.format.encoding),
      csv_(file_.Stream(), PathToUtf8(table.file), table.format.delimiter) {
    std::error_code error;
    fileSize_ = std::max<std::uint64_t>(1, std::filesystem::file_size(table.file, error));
}

std::size_t TableReader::Column(const std::string& name) const {
    const auto renamed = std::find_if(table_.columns.begin(), table_.columns.end(),
                                      [&name](const auto& column) { return column.first == name; });
    const std::string& inFile = renamed == table_.columns.end() ? name : renamed->second;
    const auto& header = csv_.Header();
    const auto found = std::find(header.begin(), header.end(), inFile);
    if (found == header.end()) {
        const std::string remedy =
            header.size() == 1 ? "; if these are several, set \"delimiter\"" : Suggestion(inFile, header);
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}: there is no column \"{}\"; the columns are \"{}\"{}",
                                      csv_.FileName(), inFile, fmt::join(header, "\", \""), remedy));
    }
    if (std::count(header.begin(), header.end(), inFile) > 1) {
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}: two columns are named \"{}\"", csv_.FileName(), inFile));
    }
    return static_cast<std::size_t>(found - header.begin());
}

std::vector<std::size_t> TableReader::Columns(const std::vector<std::string>& names) const {
    std::vector<std::size_t> columns;
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
    while (csv_.Next()) {
        ++linesRead_;
        ShowProgress();
        if (csv_.Fault().empty()) {
            return true;
        }
        ++linesSkipped_;
        badLines_.Report(csv_, "", csv_.Fault());
    }
    if (progress_) {
        progress_(step_, 1);
    }
    return false;
}

void TableReader::ReportBad(std::span<const std::size_t> columns, const std::string& fault) {
    ++linesSkipped_;
    std::string names;
    for (const std::size_t column : columns) {
        names += (names.empty() ? "" : "+") + csv_.Header()[column];
    }
    badLines_.Report(csv_, names, fault);
}

void TableReader::ShowProgress() {
    constexpr std::uint64_t linesPerReport = 8192;
    if (progress_ && linesRead_ % linesPerReport == 1) {
        const double share = static_cast<double>(csv_.Position()) / static_cast<double>(fileSize_);
        progress_(step_, std::min(share, 1.0)); // UTF-8 may be longer than what the file holds
    }
}

} // namespace qel::engine
