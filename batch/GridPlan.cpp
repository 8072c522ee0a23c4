#include "batch/GridPlan.h"

#include "batch/ValueStatementParts.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace qel::batch {

namespace {

constexpr std::size_t mostColumns = 60;
constexpr std::size_t mostCells = 2500;
constexpr std::string_view summaryHierarchy = "[SuperSumery].[SumeryCode]";

/// A member of a statement that can be a grid's row: a piece of its slicer, or its summary group.
struct Slot {
    std::string member;
    std::optional<std::size_t> piece; ///< none for the summary group
};

/// "[Accounts]" of "[Accounts].[AccountCodes].[All].[4000]".
std::string DimensionOf(const std::string& member) { return member.substr(0, member.find(']') + 1); }

/// Pieces that name a calculated member stay where they are: it is the same for the whole grid.
bool NamesMember(const std::string& piece) { return piece.ends_with(']'); }

std::vector<Slot> SlotsOf(const ValueStatementParts& parts) {
    std::vector<Slot> slots;
    if (!parts.summaryGroup.empty()) {
        slots.push_back({std::string(summaryHierarchy) + parts.summaryGroup, std::nullopt});
    }
    for (std::size_t i = 0; i < parts.slicer.size(); ++i) {
        if (NamesMember(parts.slicer[i])) {
            slots.push_back({parts.slicer[i], i});
        }
    }
    return slots;
}

/// The slicer that remains when the slot's member is a row.
std::vector<std::string> SlicerWithout(const ValueStatementParts& parts, const Slot& slot) {
    std::vector<std::string> slicer = parts.slicer;
    if (slot.piece) {
        slicer.erase(slicer.begin() + static_cast<std::ptrdiff_t>(*slot.piece));
        if (!parts.summaryGroup.empty()) {
            slicer.push_back(std::string(summaryHierarchy) + parts.summaryGroup);
        }
    }
    return slicer;
}

/// Statements that differ in one slot's member and in what they sum.
struct Family {
    std::string cubeName, obsSel, measure;
    std::vector<std::string> slicer;
    std::vector<std::pair<std::size_t, std::string>> members; ///< statement and its row
};

std::string FamilyKey(const ValueStatementParts& parts, const std::string& dimension,
                      const std::vector<std::string>& slicer) {
    std::string key = parts.cubeName + '\n' + parts.obsSel + '\n' + parts.measure + '\n' + dimension;
    for (const auto& piece : slicer) {
        key += '\n' + piece;
    }
    return key;
}

/// The cells of one family, as grids without gaps: rows that are summed over the same spans stand together.
class FamilyGrids {
    /// The statement of every cell, by row and column.
    using Rows = std::map<std::string, std::map<PeriodsSummed, std::size_t>>;

public:
    FamilyGrids(const Family& family, const std::vector<std::optional<ValueStatementParts>>& parts)
        : family_(family) {
        Rows rows;
        std::vector<std::string> order;
        for (const auto& [statement, row] : family.members) {
            const bool isNew = rows.find(row) == rows.end();
            rows[row].emplace(PeriodsSummed{parts[statement]->periods, parts[statement]->last}, statement);
            if (isNew) {
                order.push_back(row);
            }
        }
        std::map<std::vector<PeriodsSummed>, std::vector<std::string>> rowsBySpans;
        for (const auto& row : order) {
            std::vector<PeriodsSummed> spans;
            for (const auto& cell : rows[row]) {
                spans.push_back(cell.first);
            }
            rowsBySpans[spans].push_back(row);
        }
        for (const auto& [spans, sameRows] : rowsBySpans) {
            Cut(spans, sameRows, rows);
        }
    }

    std::vector<ValueGrid> grids;

private:
    void Cut(const std::vector<PeriodsSummed>& spans, const std::vector<std::string>& names,
             const Rows& rows) {
        for (std::size_t column = 0; column < spans.size(); column += mostColumns) {
            const std::size_t columns = std::min(mostColumns, spans.size() - column);
            const std::size_t rowsAtOnce = std::max<std::size_t>(1, mostCells / columns);
            for (std::size_t first = 0; first < names.size(); first += rowsAtOnce) {
                const std::size_t last = std::min(first + rowsAtOnce, names.size());
                ValueGrid grid{family_.cubeName, family_.obsSel, family_.measure, family_.slicer, {}, {}, {}};
                const auto begin = spans.begin() + static_cast<std::ptrdiff_t>(column);
                grid.spans.assign(begin, begin + static_cast<std::ptrdiff_t>(columns));
                for (std::size_t i = first; i < last; ++i) {
                    grid.rows.push_back(names[i]);
                    auto& cells = grid.statements.emplace_back();
                    for (const auto& span : grid.spans) {
                        cells.push_back(rows.at(names[i]).at(span));
                    }
                }
                grids.push_back(std::move(grid));
            }
        }
    }

    const Family& family_;
};

std::vector<Family> FamiliesBySize(const std::vector<std::optional<ValueStatementParts>>& parts) {
    std::map<std::string, Family> byKey;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (!parts[i]) {
            continue;
        }
        for (const Slot& slot : SlotsOf(*parts[i])) {
            auto slicer = SlicerWithout(*parts[i], slot);
            auto& family = byKey[FamilyKey(*parts[i], DimensionOf(slot.member), slicer)];
            family.cubeName = parts[i]->cubeName;
            family.obsSel = parts[i]->obsSel;
            family.measure = parts[i]->measure;
            family.slicer = std::move(slicer);
            family.members.emplace_back(i, slot.member);
        }
    }
    std::vector<Family> families;
    families.reserve(byKey.size());
    for (auto& entry : byKey) {
        families.push_back(std::move(entry.second));
    }
    std::stable_sort(families.begin(), families.end(), [](const Family& left, const Family& right) {
        return left.members.size() > right.members.size();
    });
    return families;
}

} // namespace

std::string ComposeGridStatement(const ValueGrid& grid) {
    const std::string measure = fmt::format("[Measures].[{}]", grid.measure);
    std::string members = grid.obsSel;
    std::vector<std::string> columns;
    for (const auto& [periods, last] : grid.spans) {
        if (periods == "1") {
            columns.push_back(last);
            continue;
        }
        columns.push_back(fmt::format("[Date].[QelSpan{}]", columns.size() + 1));
        members += fmt::format(" MEMBER {} as '   SUM( LastPeriods({},{}),{})    '", columns.back(), periods,
                               last, measure);
    }
    return fmt::format(
        "{}{} SELECT {{{}}} ON COLUMNS, {{{}}} ON ROWS FROM {} WHERE ({},{}) CELL PROPERTIES VALUE",
        members.empty() ? "" : "WITH", members, fmt::join(columns, ","), fmt::join(grid.rows, ","),
        grid.cubeName, measure, fmt::join(grid.slicer, ","));
}

GridPlan PlanGrids(const std::vector<std::string>& statements) {
    std::vector<std::optional<ValueStatementParts>> parts;
    parts.reserve(statements.size());
    for (const auto& statement : statements) {
        parts.push_back(ReadValueStatement(statement));
    }
    GridPlan plan;
    std::vector<bool> isPlaced(statements.size(), false);
    for (Family& family : FamiliesBySize(parts)) {
        std::erase_if(family.members, [&](const auto& member) { return isPlaced[member.first]; });
        if (family.members.size() < 2) {
            continue;
        }
        for (auto& grid : FamilyGrids(family, parts).grids) {
            if (grid.rows.size() * grid.spans.size() < 2) {
                continue;
            }
            for (const auto& row : grid.statements) {
                for (const std::size_t statement : row) {
                    isPlaced[statement] = true;
                }
            }
            plan.grids.push_back(std::move(grid));
        }
    }
    for (std::size_t i = 0; i < statements.size(); ++i) {
        if (!isPlaced[i]) {
            plan.alone.push_back(i);
        }
    }
    return plan;
}

} // namespace qel::batch
