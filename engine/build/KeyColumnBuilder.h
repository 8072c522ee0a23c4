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

/// One column of the facts that dimensions group: gives every distinct text of the column a number while the
/// facts are read, and every number its code once all are known. Several dimensions may stand on one column.
class KeyColumnBuilder {
public:
    KeyColumnBuilder(std::string name, std::optional<CalendarDefinition> calendar)
        : name_(std::move(name)), calendarDefinition_(std::move(calendar)) {}

    const std::string& Name() const { return name_; }
    bool IsCalendar() const { return calendarDefinition_.has_value(); }

    /// A value from a line of the dimension table number `table` (counted over the tables on this column).
    std::uint32_t AddKnownValue(std::string_view text, std::size_t table);
    /// From now on a value must be known to each of the tables that were added, `tableNames` by number.
    void CloseTables(std::vector<std::string> tableNames);

    /// A number that stands for the field, or none when it cannot be used: FaultOf says why. New texts get a
    /// number only where the facts alone decide what values there are, and then always.
    std::optional<std::uint32_t> NumberOf(std::string_view field, DateFormat format);
    std::string FaultOf(std::string_view field, DateFormat format) const;
    /// Whether NumberOf takes any text.
    bool TakesAnyText() const { return !IsCalendar() && tableNames_.empty(); }

    /// Settles the codes of dates from the numbers that the facts have. Raises EngineError (InvalidData) when
    /// there are no dates or they span too many years.
    void NumberDates(const std::vector<std::uint32_t>& facts, const std::string& place);
    /// Settles the codes of texts: `ordered` first, in its order, then all others.
    void NumberTexts(const std::vector<std::uint32_t>& ordered);
    /// The numbers' places in the order of their texts.
    std::vector<std::uint32_t> Ranks() const;

    const TextDictionary& Texts() const { return texts_; }
    const Calendar& Periods() const { return *periods_; }
    const CalendarDefinition& CalendarRules() const { return *calendarDefinition_; }
    /// The code of every number.
    const std::vector<std::uint32_t>& Codes() const { return codes_; }
    std::uint32_t CodeCount() const { return codeCount_; }

private:
    std::optional<std::uint32_t> NumberOfDate(std::string_view field, DateFormat format);
    bool IsKnownToAll(std::uint32_t number) const;

    std::string name_;
    std::optional<CalendarDefinition> calendarDefinition_;
    TextDictionary texts_; ///< of a calendar: the date format's number as a character, then the date's text
    std::string datedText_;
    std::vector<std::optional<std::chrono::sys_days>> days_; ///< by number, of a calendar
    std::vector<std::string> tableNames_;
    std::vector<std::vector<bool>> isKnown_; ///< by table and number
    std::vector<bool> isUsable_;             ///< by number, once the tables are closed
    std::optional<Calendar> periods_;
    std::vector<std::uint32_t> codes_;
    std::uint32_t codeCount_ = 0;
};

} // namespace qel::engine
