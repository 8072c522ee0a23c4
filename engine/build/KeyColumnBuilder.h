#pragma once

#include "engine/build/Calendar.h"
#include "engine/build/Definition.h"
#include "engine/build/TextDictionary.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A key column of the facts: gives every distinct value a number while reading, and every number a code once
/// all values are known. Several dimensions may use one column.
class KeyColumnBuilder {
public:
    /// `name` stands for all of the fact columns.
    KeyColumnBuilder(std::string name, std::vector<std::string> columns,
                     std::optional<CalendarDefinition> calendar)
        : name_(std::move(name)), columns_(std::move(columns)), calendarDefinition_(std::move(calendar)) {}

    const std::string& Name() const { return name_; }
    const std::vector<std::string>& Columns() const { return columns_; }
    bool IsCalendar() const { return calendarDefinition_.has_value(); }

    /// Adds a value from a line of dimension table number `table`, counted over the tables that use this
    /// column.
    std::uint32_t AddKnownValue(std::string_view text, std::size_t table);
    /// Ends the dimension tables: from now on every value must occur in each of them. `tableNames` are their
    /// names by number.
    void CloseTables(std::vector<std::string> tableNames);

    /// The number of the field's value, or nothing when the field cannot be used (FaultOf says why). Adds new
    /// texts only when no dimension table restricts the values, and then always.
    std::optional<std::uint32_t> NumberOf(std::string_view field, DateFormat format);
    std::string FaultOf(std::string_view field, const TableDefinition& table) const;
    /// Whether NumberOf accepts the text, of a column without a calendar.
    bool Takes(std::string_view text) const;
    /// Whether NumberOf accepts any text.
    bool TakesAnyText() const { return !IsCalendar() && tableNames_.empty(); }

    /// A date as it stands in the facts, when every one fits its table's order of day and month and the other
    /// order as well, with another day.
    std::optional<std::string> DateOfEitherOrder() const;

    /// Assigns codes to dates. Raises EngineError (InvalidData) when the facts have no dates or their dates
    /// span too many years.
    /// `facts` are the facts of each number.
    void NumberDates(const std::vector<std::uint64_t>& facts, const std::string& place);
    /// Assigns codes to texts: first those in `ordered`, in that order, then all others.
    void NumberTexts(const std::vector<std::uint32_t>& ordered);
    /// The rank of every number in the order of its text.
    std::vector<std::uint32_t> Ranks() const;

    const TextDictionary& Texts() const { return texts_; }
    /// A value for messages, the parts of several columns as "A / B".
    std::string ShownText(std::uint32_t number) const;
    const Calendar& Periods() const { return *periods_; }
    const CalendarDefinition& CalendarRules() const { return *calendarDefinition_; }
    /// The code of every number.
    const std::vector<std::uint32_t>& Codes() const { return codes_; }
    std::uint32_t CodeCount() const { return codeCount_; }

private:
    std::optional<std::uint32_t> NumberOfDate(std::string_view field, DateFormat format);
    bool IsKnownToAll(std::uint32_t number) const;

    std::string name_;
    std::vector<std::string> columns_;
    std::optional<CalendarDefinition> calendarDefinition_;
    TextDictionary texts_; ///< for a calendar, the date format as a character followed by the text
    std::string datedText_;
    std::vector<std::optional<std::chrono::sys_days>> days_; ///< by number, for a calendar
    std::vector<std::string> tableNames_;
    std::vector<std::vector<bool>> isKnown_; ///< by table and number
    std::vector<bool> isUsable_;             ///< by number, filled by CloseTables
    std::optional<Calendar> periods_;
    std::vector<std::uint32_t> codes_;
    std::uint32_t codeCount_ = 0;
};

} // namespace qel::engine
