#pragma once

#include "engine/build/Definition.h"
#include "engine/storage/CubeModel.h"

#include <chrono>
#include <cstdint>

namespace qel::engine {

/// The periods of a date column: consecutive months or days, numbered from 0.
class Calendar {
public:
    Calendar(bool byDays, std::chrono::sys_days first, std::chrono::sys_days last);

    std::uint32_t PeriodCount() const { return periodCount_; }
    /// The number of the day's period. The day must lie between the first and the last.
    std::uint32_t PeriodOf(std::chrono::sys_days day) const;

    /// The hierarchy of years, quarters, months and days. Members are named 2024, Q1, 3 and 31 and have the
    /// keys 2024, 2024-Q1, 2024-03 and 2024-03-31; with names of months, 3 has the caption "March 2024".
    /// Raises EngineError (InvalidDefinition) when the default member does not exist.
    HierarchyModel Model(const HierarchyDefinition& definition, const CalendarDefinition& calendar,
                         std::uint32_t keyColumn) const;

private:
    enum class Unit : std::uint8_t { Year, Quarter, Month, Day };

    void AddLevel(Unit unit, std::uint32_t firstParent, const std::vector<std::string>& monthNames,
                  HierarchyModel& model) const;
    /// The first day of a period.
    std::chrono::year_month_day DayOf(std::uint32_t period) const;

    bool byDays_;
    std::chrono::sys_days firstDay_;
    int firstMonth_; ///< months since year 0
    std::uint32_t periodCount_;
};

} // namespace qel::engine
