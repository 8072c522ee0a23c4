#include "batch/GridAnswer.h"

#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::batch {

namespace {

constexpr std::int32_t columnsAxis = 0;
constexpr std::int32_t rowsAxis = 1;

/// A calculated member has one name, a period all of its path.
constexpr std::string_view calculatedColumn = "[Date].[QelSpan";

[[noreturn]] void Refuse(const std::string& difference) {
    constexpr std::int32_t wrongAnswer = static_cast<std::int32_t>(0x80040E83);
    throw AutomationError(wrongAnswer, "The server did not answer what it was asked: " + difference);
}

/// The names and keys of a path: "Date", "2024", "1]" of "[Date].&[2024].[1]]]".
std::vector<std::string> NamesOf(std::string_view path) {
    std::vector<std::string> names;
    bool inBrackets = false;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (!inBrackets && path[i] == '[') {
            inBrackets = true;
            names.emplace_back();
        } else if (inBrackets && path[i] == ']' && i + 1 < path.size() && path[i + 1] == ']') {
            names.back() += path[i++];
        } else if (inBrackets && path[i] == ']') {
            inBrackets = false;
        } else if (inBrackets) {
            names.back() += path[i];
        }
    }
    return names;
}

/// Servers name a hierarchy "[Accounts].[AccountCodes]" or "[Accounts.AccountCodes]".
bool IsOfDimension(std::string_view dimension, std::string_view firstName) {
    const auto name = firstName.substr(0, dimension.size());
    return EqualIgnoringCase(name, dimension) &&
           (firstName.size() == dimension.size() || firstName[dimension.size()] == '.');
}

void RequireAxis(const Cellset& answer, std::int32_t axis, const std::vector<GridRow>& asked) {
    const char* const what = axis == rowsAxis ? "row" : "column";
    const auto count = static_cast<std::size_t>(answer.PositionCount(axis));
    if (count != asked.size()) {
        Refuse(fmt::format("it sent {} {}s for {}.", count, what, asked.size()));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const auto position = static_cast<std::int32_t>(i);
        if (answer.MemberCount(axis, position) != 1) {
            Refuse(fmt::format("{} {} has several members.", what, i + 1));
        }
        const CellsetMember member = answer.MemberAt(axis, position, 0);
        if (!IsMemberOf(asked[i], member)) {
            Refuse(
                fmt::format("{} {} is {} in place of {}.", what, i + 1, member.uniqueName, asked[i].member));
        }
    }
}

GridRow ColumnAsked(const std::string& column) {
    const bool isCalculated = column.starts_with(calculatedColumn);
    return {column, {}, isCalculated ? 1 : NamesOf(column).size() - 1};
}

} // namespace

bool IsMemberOf(const GridRow& asked, const CellsetMember& answered) {
    const auto names = NamesOf(asked.member), given = NamesOf(answered.uniqueName);
    if (names.size() <= asked.nameCount || given.size() <= asked.nameCount ||
        !IsOfDimension(names.front(), given.front())) {
        return false;
    }
    if (!asked.level.empty() && !EqualIgnoringCase(asked.level, answered.levelName)) {
        return false;
    }
    const auto own = static_cast<std::ptrdiff_t>(asked.nameCount);
    return std::equal(names.end() - own, names.end(), given.end() - own, EqualIgnoringCase);
}

void RequireAnswerTo(const ValueGrid& grid, const Cellset& answer) {
    if (answer.AxisCount() != 2) {
        Refuse(fmt::format("it sent {} axes for 2.", answer.AxisCount()));
    }
    std::vector<GridRow> columns;
    for (const std::string& column : ColumnsOf(grid)) {
        columns.push_back(ColumnAsked(column));
    }
    RequireAxis(answer, columnsAxis, columns);
    RequireAxis(answer, rowsAxis, grid.rows);
}

} // namespace qel::batch
