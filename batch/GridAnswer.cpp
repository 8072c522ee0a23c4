#include "batch/GridAnswer.h"

#include "text/CaseFold.h"

#include <algorithm>

namespace qel::batch {

namespace {

constexpr std::int32_t columnsAxis = 0;
constexpr std::int32_t rowsAxis = 1;

/// A calculated member has one name, a period all of its path.
constexpr std::string_view calculatedColumn = "[Date].[QelSpan";

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

GridFit FitOfAxis(const Cellset& answer, std::int32_t axis, const std::vector<GridRow>& asked) {
    const auto count = static_cast<std::size_t>(answer.PositionCount(axis));
    if (count != asked.size()) {
        return count < asked.size() ? GridFit::LacksRows : GridFit::Differs;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const auto position = static_cast<std::int32_t>(i);
        if (answer.MemberCount(axis, position) != 1 ||
            !IsMemberOf(asked[i], answer.MemberAt(axis, position, 0))) {
            return GridFit::Differs;
        }
    }
    return GridFit::Exact;
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

GridFit FitOf(const ValueGrid& grid, const Cellset& answer) {
    std::vector<GridRow> columns;
    for (const std::string& column : ColumnsOf(grid)) {
        columns.push_back(ColumnAsked(column));
    }
    if (answer.AxisCount() != 2 || FitOfAxis(answer, columnsAxis, columns) != GridFit::Exact) {
        return GridFit::Differs;
    }
    return FitOfAxis(answer, rowsAxis, grid.rows);
}

} // namespace qel::batch
