#include "platform/database/sqlite/SqliteRows.h"

#include "platform/value/Conversion.h"
#include "text/CaseFold.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <cmath>

namespace qel {

namespace {

constexpr int secondsADay = 24 * 60 * 60;

std::string TextOfDate(AutomationDate date) {
    const CalendarDay day = DayFromDate(date);
    std::string text = fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
    const double timeOfDay = std::abs(date.days - WithoutTime(date).days);
    const auto seconds = std::min(std::lround(timeOfDay * secondsADay), secondsADay - 1L);
    if (seconds > 0) {
        text += fmt::format(" {:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
    }
    return text;
}

void BindValue(sqlite3_stmt* statement, int place, const Variant& value) {
    if (value.Is<Null>() || value.Is<Empty>()) {
        sqlite3_bind_null(statement, place);
        return;
    }
    const std::string text =
        value.Is<AutomationDate>() ? TextOfDate(value.As<AutomationDate>()) : ToText(value, {});
    sqlite3_bind_text64(statement, place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

bool IsDateColumn(sqlite3_stmt* statement, int column) {
    const char* type = sqlite3_column_decltype(statement, column);
    return type != nullptr && EqualIgnoringCase(type, "DATE");
}

std::string TextIn(sqlite3_stmt* statement, int column) {
    const auto* bytes = sqlite3_column_text(statement, column);
    return {reinterpret_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

} // namespace

std::vector<TableRow> SqliteRows::ReadRows(const std::string& table) {
    const auto statement = file_.Prepare("SELECT * FROM " + QuotedName(table) + " ORDER BY rowid");
    std::vector<TableRow> rows;
    while (file_.Step(statement.get())) {
        rows.push_back(CurrentRow(statement.get()));
    }
    return rows;
}

TableRow SqliteRows::CurrentRow(sqlite3_stmt* statement) const {
    TableRow row;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        if (sqlite3_column_type(statement, column) == SQLITE_NULL) {
            row.emplace_back(Null{});
        } else if (IsDateColumn(statement, column)) {
            row.emplace_back(DateOf(TextIn(statement, column), sqlite3_column_name(statement, column)));
        } else {
            row.emplace_back(TextIn(statement, column));
        }
    }
    return row;
}

AutomationDate SqliteRows::DateOf(const std::string& text, const char* column) const {
    try {
        return ParseDate(text, {.dateOrder = DateOrder::YearMonthDay, .dateSeparator = '-'});
    } catch (const AutomationError& error) {
        throw DatabaseError(error.Number(), file_.Path(),
                            fmt::format("holds '{}' in column {}, which is not a date", text, column));
    }
}

void SqliteRows::ReplaceRows(const std::string& table, const std::vector<TableRow>& rows) {
    file_.Run("BEGIN IMMEDIATE");
    try {
        file_.Run("DELETE FROM " + QuotedName(table));
        for (const TableRow& row : rows) {
            AddRow(table, row);
        }
        file_.Run("COMMIT");
    } catch (...) {
        file_.RollBack();
        throw;
    }
}

void SqliteRows::AddRow(const std::string& table, const TableRow& row) {
    std::string places;
    for (std::size_t i = 0; i < row.size(); ++i) {
        places += i == 0 ? "?" : ", ?";
    }
    const auto statement = file_.Prepare("INSERT INTO " + QuotedName(table) + " VALUES (" + places + ")");
    for (std::size_t i = 0; i < row.size(); ++i) {
        BindValue(statement.get(), static_cast<int>(i) + 1, row[i]);
    }
    file_.Step(statement.get());
}

} // namespace qel
