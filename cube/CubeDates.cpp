#include "cube/CubeDates.h"

#include "cube/CubeConnection.h"
#include "platform/value/AutomationError.h"
#include "text/Text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace qel::ModSetCube {

namespace {

constexpr std::int32_t fewestObsLevels = 3;
constexpr std::int32_t yearLevel = 1;
constexpr std::int32_t mostLevelsOfMonths = 4; ///< All, year, quarter, month

/// The number that a Date member is named by.
int NumberNamed(const std::string& name) {
    const std::string_view digits = Trimmed(name);
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        throw PlatformError(ErrorNumber::TypeMismatch);
    }
    return number;
}

int YearNamed(const std::string& name) {
    constexpr int lastYearOf2000s = 29;
    const int year = NumberNamed(name);
    if (year > 99) {
        return year;
    }
    return year <= lastYearOf2000s ? year + 2000 : year + 1900;
}

/// The period's first day; the zero date when one of the names is missing.
AutomationDate FirstDay(const std::string& year, const std::string& month, const std::string& day = "1") {
    if (year.empty() || month.empty() || day.empty()) {
        return {};
    }
    return DateFromDay({YearNamed(year), NumberNamed(month), NumberNamed(day)});
}

/// The name of the member's ancestor `steps` levels up; empty above the top.
std::string AncestorName(const Member& member, std::int32_t steps) {
    std::unique_ptr<Member> ancestor = member.Parent();
    for (std::int32_t i = 1; i < steps && ancestor; ++i) {
        ancestor = ancestor->Parent();
    }
    return ancestor ? ancestor->Name() : std::string();
}

/// The Date hierarchy's periods: its days when it goes below the months, otherwise its months.
class Periods {
public:
    explicit Periods(const Hierarchy& hierarchy)
        : finestLevel_(hierarchy.LevelCount() - 1), hasDays_(hierarchy.LevelCount() > mostLevelsOfMonths),
          years_(hierarchy.LevelAt(yearLevel)), periods_(hierarchy.LevelAt(finestLevel_)) {}

    DateTable Load() const {
        DateTable table;
        const std::int32_t count = periods_->MemberCount();
        table.CubeDates.reserve(static_cast<std::size_t>(count));
        table.CubeDateNames.reserve(static_cast<std::size_t>(count));
        for (std::int32_t i = 0; i < count; ++i) {
            const auto member = periods_->MemberAt(i);
            const AutomationDate date = DateOf(*member);
            if (table.earlier.empty() && i > 0 && date < table.CubeDates.back()) {
                table.earlier = member->UniqueName();
            }
            table.CubeDates.push_back(date);
            table.CubeDateNames.push_back(member->UniqueName());
        }
        table.CubeMinDate = DateAtEnd(0, 0);
        table.CubeMaxDate = DateAtEnd(years_->MemberCount() - 1, count - 1);
        return table;
    }

    std::vector<std::string> Faults() const {
        std::int32_t unread = 0;
        std::string firstUnread, firstDisorder;
        std::optional<AutomationDate> before;
        for (std::int32_t i = 0; i < periods_->MemberCount(); ++i) {
            const auto member = periods_->MemberAt(i);
            try {
                const AutomationDate date = DateOf(*member);
                if (before && date <= *before && firstDisorder.empty()) {
                    firstDisorder = member->UniqueName();
                }
                before = date;
            } catch (const AutomationError&) {
                firstUnread = unread++ == 0 ? member->UniqueName() : firstUnread;
            }
        }
        std::vector<std::string> faults;
        if (unread > 0) {
            faults.push_back(std::to_string(unread) + " of the " + std::to_string(periods_->MemberCount()) +
                             " members of [" + periods_->Name() + "] cannot be read as " +
                             (hasDays_ ? "days" : "months") + ", first " + firstUnread +
                             "; years, months and days are named by number");
        }
        if (!firstDisorder.empty()) {
            faults.push_back(firstDisorder + " is not later than the member before it");
        }
        return faults;
    }

    /// Months are 1 to 12, and no parent has more than twelve.
    bool HasDaysForMonths() const {
        constexpr int mostMonths = 12;
        std::string parent;
        std::int32_t siblings = 0;
        for (std::int32_t i = 0; !hasDays_ && i < periods_->MemberCount(); ++i) {
            const auto member = periods_->MemberAt(i);
            const auto above = member->Parent();
            const std::string name = above ? above->UniqueName() : std::string();
            siblings = name == parent ? siblings + 1 : 1;
            parent = name;
            int number = 0;
            const std::string text = member->Name();
            std::from_chars(text.data(), text.data() + text.size(), number);
            if (siblings > mostMonths || number > mostMonths) {
                return true;
            }
        }
        return false;
    }

private:
    AutomationDate DateOf(const Member& member) const {
        const std::string year = AncestorName(member, finestLevel_ - yearLevel);
        return hasDays_ ? FirstDay(year, AncestorName(member, 1), member.Name())
                        : FirstDay(year, member.Name());
    }

    /// The first or the last date of the cube. Months take it from the names at that end of their two levels.
    AutomationDate DateAtEnd(std::int32_t year, std::int32_t period) const {
        const auto member = periods_->MemberAt(period);
        return hasDays_ ? DateOf(*member) : FirstDay(years_->MemberAt(year)->Name(), member->Name());
    }

    std::int32_t finestLevel_;
    bool hasDays_;
    std::unique_ptr<Level> years_, periods_;
};

} // namespace

std::int32_t LoadCubeDates(ThreadState& thread) {
    const auto catalog = OpenCatalog(thread);
    const auto cube = catalog->CubeAt(0);
    if (cube->DimensionNamed("actx")->HierarchyAt(0)->LevelCount() < fewestObsLevels) {
        return outdatedLayout;
    }
    const auto hierarchy = cube->DimensionNamed("Date")->HierarchyAt(0);
    thread.dates = Periods(*hierarchy).Load();
    return currentLayout;
}

bool HasDaysForMonths(const Hierarchy& date) { return Periods(date).HasDaysForMonths(); }

std::vector<std::string> FindDateFaults(const Hierarchy& date) { return Periods(date).Faults(); }

} // namespace qel::ModSetCube
