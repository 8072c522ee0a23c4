#include "engine/build/Calendar.h"

#include "engine/build/HierarchyModelSteps.h"
#include "qel/engine/Cube.h"

#include <fmt/format.h>

#include <string>

namespace qel::engine {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

int MonthNumber(const year_month_day& day) {
    return static_cast<int>(day.year()) * 12 + static_cast<int>(static_cast<unsigned>(day.month())) - 1;
}

} // namespace

Calendar::Calendar(bool byDays, sys_days first, sys_days last)
    : byDays_(byDays), firstDay_(first), firstMonth_(MonthNumber(year_month_day(first))), periodCount_(0) {
    periodCount_ = PeriodOf(last) + 1;
}

std::uint32_t Calendar::PeriodOf(sys_days day) const {
    if (byDays_) {
        return static_cast<std::uint32_t>((day - firstDay_).count());
    }
    return static_cast<std::uint32_t>(MonthNumber(year_month_day(day)) - firstMonth_);
}

year_month_day Calendar::DayOf(std::uint32_t period) const {
    if (byDays_) {
        return {firstDay_ + std::chrono::days(period)};
    }
    const int month = firstMonth_ + static_cast<int>(period);
    return {std::chrono::year(month / 12), std::chrono::month(static_cast<unsigned>(month % 12) + 1),
            std::chrono::day(1)};
}

void Calendar::AddLevel(Unit unit, std::uint32_t firstParent, const std::vector<std::string>& monthNames,
                        HierarchyModel& model) const {
    std::uint32_t parent = firstParent; // the member of the level above
    for (std::uint32_t period = 0, last = 0; period < periodCount_; period = last) {
        const year_month_day day = DayOf(period);
        const auto month = static_cast<unsigned>(day.month());
        const int year = static_cast<int>(day.year());
        const unsigned quarter = (month - 1) / 3 + 1;
        const auto isSame = [&](const year_month_day& other) {
            const auto otherMonth = static_cast<unsigned>(other.month());
            if (unit == Unit::Day) {
                return other == day;
            }
            if (unit == Unit::Month) {
                return other.year() == day.year() && otherMonth == month;
            }
            return other.year() == day.year() && (unit == Unit::Year || (otherMonth - 1) / 3 + 1 == quarter);
        };
        for (last = period + 1; last < periodCount_ && isSame(DayOf(last)); ++last) {
        }
        std::string name = std::to_string(year), key = fmt::format("{:04}", year);
        if (unit == Unit::Quarter) {
            name = fmt::format("Q{}", quarter);
            key += "-" + name;
        } else if (unit != Unit::Year) {
            name = std::to_string(month);
            key += fmt::format("-{:02}", month);
        }
        if (unit == Unit::Day) {
            name = std::to_string(static_cast<unsigned>(day.day()));
            key += fmt::format("-{:02}", static_cast<unsigned>(day.day()));
        }
        while (parent != noMember && model.ranges[model.rangeOffsets[parent]].last <= period) {
            ++parent;
        }
        model.names.Add(name);
        const bool hasCaption = unit == Unit::Month && !monthNames.empty();
        model.captions.Add(hasCaption ? fmt::format("{} {}", monthNames[month - 1], year) : name);
        model.keys.Add(key);
        model.parents.push_back(parent);
        AddRanges({{period, last}}, model);
        ++model.levels.back().memberCount;
    }
}

HierarchyModel Calendar::Model(const HierarchyDefinition& definition, const CalendarDefinition& calendar,
                               std::uint32_t keyColumn) const {
    HierarchyModel model;
    model.name = definition.name;
    model.caption = definition.caption;
    model.keyColumn = keyColumn;
    std::uint32_t firstParent = noMember;
    if (definition.all) {
        AddTopMember(*definition.all, periodCount_, model);
        firstParent = 0;
    }
    std::vector<Unit> units = {Unit::Year};
    if (calendar.hasQuarters) {
        units.push_back(Unit::Quarter);
    }
    units.push_back(Unit::Month);
    if (calendar.byDays) {
        units.push_back(Unit::Day);
    }
    for (std::size_t i = 0; i < units.size(); ++i) {
        const auto firstOfLevel = static_cast<std::uint32_t>(model.parents.size());
        model.levels.push_back({calendar.levels[i], false, 0});
        AddLevel(units[i], firstParent, calendar.monthNames, model);
        firstParent = firstOfLevel;
    }
    FillFirstChildren(model);
    model.defaultMember = FindDefaultMember(definition, model);
    return model;
}

} // namespace qel::engine
