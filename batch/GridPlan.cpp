#include "batch/GridPlan.h"

#include "cube/ValueStatement.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

namespace qel::batch {

namespace {

using ModSetCube::AppendMember;
using ModSetCube::ObsMembers;
using ModSetCube::PeriodSpan;
using ModSetCube::ValueQuery;

constexpr std::size_t mostColumns = 60;
constexpr std::size_t mostCells = 2500;

std::string TextOf(const QueryMember& member) {
    std::string text;
    AppendMember(text, member);
    return text;
}

/// "[Accounts]" of "[Accounts].[AccountCodes].[All]".
std::string_view DimensionOf(const QueryMember& member) {
    return member.path.substr(0, member.path.find(']') + 1);
}

GridRow RowOf(const QueryMember& member) { return {TextOf(member), {}, member.nameCount}; }

GridRow SummaryRowOf(const QueryMember& member) {
    return {TextOf(member), std::string(member.names.front()), 1};
}

/// What queries have in common that differ in one member of a dimension and in what they sum.
struct FamilyKey {
    std::string_view cubeName, measure, dimension;
    const ObsMembers* obsMembers; ///< found once for each name
    std::vector<std::string> slicer;

    auto operator<=>(const FamilyKey&) const = default;
};

struct Family {
    const ValueQuery* first; ///< any of them, for what they have in common
    std::vector<std::string> slicer;
    std::vector<std::pair<std::size_t, GridRow>> members; ///< query and its row
};

/// Puts a query into the family of each of its members that can be a row.
class Families {
public:
    void Add(std::size_t number, const ValueQuery& query) {
        const ModSetCube::SlicerMembers slicer(query);
        const auto summary = SummaryMember(query);
        std::vector<std::string> texts;
        for (const QueryMember& member : slicer) {
            texts.push_back(TextOf(member));
        }
        if (summary) {
            AddTo(number, query, DimensionOf(*summary), SummaryRowOf(*summary), texts);
            texts.push_back(TextOf(*summary)); // in all other families it is a piece of the slicer
        }
        std::size_t place = 0;
        for (const QueryMember& member : slicer) {
            // A calculated member stays where it is: it is the same for the whole grid.
            if (member.nameCount > 0) {
                auto others = texts;
                others.erase(others.begin() + static_cast<std::ptrdiff_t>(place));
                AddTo(number, query, DimensionOf(member), RowOf(member), std::move(others));
            }
            ++place;
        }
    }

    /// The largest first.
    std::vector<Family> TakeBySize() {
        std::vector<Family> families;
        families.reserve(byKey_.size());
        for (auto& entry : byKey_) {
            entry.second.slicer = entry.first.slicer;
            families.push_back(std::move(entry.second));
        }
        std::stable_sort(families.begin(), families.end(), [](const Family& left, const Family& right) {
            return left.members.size() > right.members.size();
        });
        return families;
    }

private:
    void AddTo(std::size_t number, const ValueQuery& query, std::string_view dimension, GridRow row,
               std::vector<std::string> slicer) {
        Family& family =
            byKey_[{query.cubeName, query.measure, dimension, query.obsMembers.get(), std::move(slicer)}];
        family.first = &query;
        family.members.emplace_back(number, std::move(row));
    }

    std::map<FamilyKey, Family> byKey_;
};

/// The cells of one family, as grids without gaps: rows that are summed over the same spans stand together.
class FamilyGrids {
    struct Row {
        GridRow row;
        std::map<PeriodSpan, std::size_t> cells; ///< the query of every column
    };

public:
    FamilyGrids(const Family& family, std::span<const ValueQuery> queries) : family_(family) {
        std::vector<Row> rows;
        std::map<std::string_view, std::size_t> places;
        for (const auto& [query, row] : family.members) {
            const auto [place, isNew] = places.emplace(row.member, rows.size());
            if (isNew) {
                rows.push_back({row, {}});
            }
            rows[place->second].cells.emplace(queries[query].span, query);
        }
        std::map<std::vector<PeriodSpan>, std::vector<const Row*>> rowsBySpans;
        for (const Row& row : rows) {
            std::vector<PeriodSpan> spans;
            for (const auto& cell : row.cells) {
                spans.push_back(cell.first);
            }
            rowsBySpans[spans].push_back(&row);
        }
        for (const auto& [spans, sameRows] : rowsBySpans) {
            Cut(spans, sameRows);
        }
    }

    std::vector<ValueGrid> grids;

private:
    void Cut(std::span<const PeriodSpan> spans, std::span<const Row* const> rows) {
        for (std::size_t column = 0; column < spans.size(); column += mostColumns) {
            const auto columns = spans.subspan(column, std::min(mostColumns, spans.size() - column));
            const std::size_t rowsAtOnce = std::max<std::size_t>(1, mostCells / columns.size());
            for (std::size_t row = 0; row < rows.size(); row += rowsAtOnce) {
                AddGrid(columns, rows.subspan(row, std::min(rowsAtOnce, rows.size() - row)));
            }
        }
    }

    void AddGrid(std::span<const PeriodSpan> spans, std::span<const Row* const> rows) {
        ValueGrid grid{.cubeName = family_.first->cubeName,
                       .measure = family_.first->measure,
                       .obsMembers = family_.first->obsMembers,
                       .slicer = family_.slicer,
                       .spans = {spans.begin(), spans.end()},
                       .rows = {},
                       .queries = {}};
        for (const Row* row : rows) {
            grid.rows.push_back(row->row);
            auto& cells = grid.queries.emplace_back();
            for (const PeriodSpan& span : spans) {
                cells.push_back(row->cells.at(span));
            }
        }
        grids.push_back(std::move(grid));
    }

    const Family& family_;
};

std::string RowsText(const ValueGrid& grid) {
    std::string text;
    for (const GridRow& row : grid.rows) {
        text.append(text.empty() ? "" : ",").append(row.member);
    }
    return text;
}

} // namespace

std::vector<std::string> ColumnsOf(const ValueGrid& grid) {
    std::vector<std::string> columns;
    for (const auto& [count, last] : grid.spans) {
        columns.push_back(count == 1 ? last : fmt::format("[Date].[QelSpan{}]", columns.size() + 1));
    }
    return columns;
}

std::string ComposeGridStatement(const ValueGrid& grid) {
    const std::string measure = fmt::format("[Measures].[{}]", grid.measure);
    const auto columns = ColumnsOf(grid);
    std::string members;
    if (grid.obsMembers) {
        ModSetCube::AppendObsSel(members, *grid.obsMembers);
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto& [count, last] = grid.spans[i];
        if (count != 1) {
            members += fmt::format(" MEMBER {} as '   SUM( LastPeriods({},{}),{})    '", columns[i], count,
                                   last, measure);
        }
    }
    return fmt::format(
        "{}{} SELECT {{{}}} ON COLUMNS, {{{}}} ON ROWS FROM {} WHERE ({},{}) CELL PROPERTIES VALUE",
        members.empty() ? "" : "WITH", members, fmt::join(columns, ","), RowsText(grid), grid.cubeName,
        measure, fmt::join(grid.slicer, ","));
}

GridPlan PlanGrids(std::span<const ValueQuery> queries) {
    Families families;
    for (std::size_t i = 0; i < queries.size(); ++i) {
        families.Add(i, queries[i]);
    }
    GridPlan plan;
    std::vector<bool> isPlaced(queries.size(), false);
    for (Family& family : families.TakeBySize()) {
        std::erase_if(family.members, [&](const auto& member) { return isPlaced[member.first]; });
        if (family.members.size() < 2) {
            continue;
        }
        for (auto& grid : FamilyGrids(family, queries).grids) {
            if (grid.rows.size() * grid.spans.size() < 2) {
                continue;
            }
            for (const auto& row : grid.queries) {
                for (const std::size_t query : row) {
                    isPlaced[query] = true;
                }
            }
            plan.grids.push_back(std::move(grid));
        }
    }
    for (std::size_t i = 0; i < queries.size(); ++i) {
        if (!isPlaced[i]) {
            plan.alone.push_back(i);
        }
    }
    return plan;
}

} // namespace qel::batch
