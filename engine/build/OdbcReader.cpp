#include "engine/build/OdbcReader.h"

#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace qel::engine {

namespace {

// What drivers tell of the size of a column's texts is often wrong.
constexpr std::size_t longestText = 8192;         ///< bytes
constexpr std::size_t capacity = longestText + 1; ///< in ODBC's characters
constexpr std::size_t mostBytes = 4U << 20U;      ///< of a block of rows

std::string CsvLine(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields) {
        line += fmt::format("{}\"{}\"", line.empty() ? "" : ",", ReplaceAll(field, "\"", "\"\""));
    }
    return line;
}

} // namespace

OdbcReader::OdbcReader(const std::string& tableName, const OdbcSource& source, WaitTick tick)
    : RecordReader(tableName), connection_(tableName, source, std::move(tick)) {
    const Utf8Locale locale;
    connection_.Execute(source.query);
    DescribeColumns();
    BindColumns();
    if (!SQL_SUCCEEDED(::SQLRowCount(connection_.Statement(), &rowCount_))) {
        rowCount_ = -1;
    }
}

void OdbcReader::DescribeColumns() {
    SQLSMALLINT count = 0;
    connection_.Check(::SQLNumResultCols(connection_.Statement(), &count), "the columns are unknown");
    if (count == 0) {
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}: the query gives no rows; it must be a SELECT", Name()));
    }
    for (SQLSMALLINT column = 1; column <= count; ++column) {
        std::array<SQLTCHAR, 256> name = {};
        SQLSMALLINT length = 0;
        connection_.Check(::SQLDescribeCol(connection_.Statement(), static_cast<SQLUSMALLINT>(column),
                                           name.data(), static_cast<SQLSMALLINT>(name.size()), &length,
                                           nullptr, nullptr, nullptr, nullptr),
                          fmt::format("column {} has no name", column));
        header_.push_back(FromOdbc(name.data()));
    }
}

void OdbcReader::BindColumns() {
    columns_.resize(header_.size());
    std::size_t rows = std::max<std::size_t>(mostBytes / (columns_.size() * capacity * sizeof(SQLTCHAR)), 1);
    SQLHSTMT statement = connection_.Statement();
    if (!SQL_SUCCEEDED(::SQLSetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, AsPointer(rows), 0))) {
        rows = 1; // the driver reads them one by one
    }
    states_.resize(rows);
    connection_.Check(::SQLSetStmtAttr(statement, SQL_ATTR_ROW_STATUS_PTR, states_.data(), 0), "the rows");
    connection_.Check(::SQLSetStmtAttr(statement, SQL_ATTR_ROWS_FETCHED_PTR, &rowsInBlock_, 0), "the rows");
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        Column& column = columns_[i];
        column.texts.resize(capacity * rows);
        column.lengths.resize(rows);
        column.isFloating = HasFloatingNumbers(static_cast<SQLUSMALLINT>(i + 1));
        connection_.Check(::SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 1), SQL_C_TCHAR,
                                       column.texts.data(), static_cast<SQLLEN>(capacity * sizeof(SQLTCHAR)),
                                       column.lengths.data()),
                          fmt::format("column \"{}\" cannot be read", header_[i]));
    }
}

bool OdbcReader::HasFloatingNumbers(SQLUSMALLINT column) const {
    SQLLEN type = 0;
    std::array<SQLTCHAR, 64> name = {};
    SQLSMALLINT bytes = 0;
    SQLHSTMT statement = connection_.Statement();
    ::SQLColAttribute(statement, column, SQL_DESC_CONCISE_TYPE, nullptr, 0, nullptr, &type);
    ::SQLColAttribute(statement, column, SQL_DESC_TYPE_NAME, name.data(),
                      static_cast<SQLSMALLINT>(sizeof(name)), &bytes, nullptr);
    std::string typeName;
    std::transform(name.begin(), std::find(name.begin(), name.end(), 0), std::back_inserter(typeName),
                   [](auto c) { return static_cast<char>(c); });
    // SQLite's driver calls a column of decimals one of texts; its values are floating-point ones.
    const bool isDecimalText =
        (type == SQL_CHAR || type == SQL_VARCHAR) && FoldCase(typeName).starts_with("dec");
    return type == SQL_REAL || type == SQL_FLOAT || type == SQL_DOUBLE || isDecimalText;
}

bool OdbcReader::FetchBlock() {
    rowsInBlock_ = 0;
    nextInBlock_ = 0;
    if (!connection_.Fetch(number_)) {
        return false;
    }
    if (rowsInBlock_ == 0) {
        throw EngineError(ErrorKind::InvalidData,
                          fmt::format("{}: the driver does not tell how many rows it gives", Name()));
    }
    return true;
}

bool OdbcReader::Next() {
    if (nextInBlock_ == rowsInBlock_ && !FetchBlock()) {
        return false;
    }
    ++number_;
    TakeRow(nextInBlock_++);
    return true;
}

void OdbcReader::TakeRow(std::size_t row) {
    fields_.Clear();
    fault_.clear();
    if (states_[row] == SQL_ROW_ERROR || states_[row] == SQL_ROW_NOROW) {
        fault_ = "the database could not read it";
        return;
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (!TakeText(i, row)) {
            return;
        }
        fields_.Add(value_);
    }
}

bool OdbcReader::TakeText(std::size_t column, std::size_t row) {
    const Column& from = columns_[column];
    const SQLLEN bytes = from.lengths[row];
    value_.clear();
    if (bytes == SQL_NULL_DATA) {
        return true;
    }
    const bool isWhole = bytes >= 0 && bytes <= static_cast<SQLLEN>(longestText * sizeof(SQLTCHAR));
    if (isWhole) {
        value_ = FromOdbc(
            {from.texts.data() + row * capacity, static_cast<std::size_t>(bytes) / sizeof(SQLTCHAR)});
    }
    if (!isWhole || value_.size() > longestText) {
        fault_ = fmt::format("column {}: a text of more than {} bytes", header_[column], longestText);
        return false;
    }
    if (!IsValidUtf8(value_)) {
        fault_ = fmt::format("column {}: the driver gives a text that is not UTF-8", header_[column]);
    } else if (value_.find('\0') != std::string::npos) {
        fault_ = fmt::format("column {}: a character with code 0", header_[column]);
    }
    return fault_.empty();
}

double OdbcReader::Share() const {
    return rowCount_ <= 0 ? 0 : std::min(static_cast<double>(number_) / static_cast<double>(rowCount_), 1.0);
}

std::string OdbcReader::Raw() const {
    std::vector<std::string> fields;
    for (std::size_t i = 0; i < FieldCount(); ++i) {
        fields.emplace_back(Field(i));
    }
    return CsvLine(fields);
}

std::string OdbcReader::HeaderText() const { return CsvLine(header_); }

} // namespace qel::engine
