#include "engine/eval/ScanPlan.h"

#include "engine/storage/CodeColumn.h"

#include <algorithm>
#include <numeric>

namespace qel::engine {

namespace {

/// Cost of a binary search for codes of the second key within one leading code, in rows tested.
constexpr double searchCost = 250;

std::uint64_t LeadRows(const Projection& projection, const Restriction& lead) {
    std::uint64_t rows = 0;
    for (const KeyRange range : lead.codes) {
        rows += projection.RowsOfLeadingKey(range).Count();
    }
    return rows;
}

/// The selectivity of the restriction: exact when it is on the leading key of some projection, otherwise
/// estimated by the share of codes.
double ShareOf(const FactTable& facts, const Restriction& restriction) {
    for (const Projection& projection : facts.Projections()) {
        if (projection.SortOrder()[0] == restriction.keyColumn) {
            return static_cast<double>(LeadRows(projection, restriction)) /
                   static_cast<double>(std::max<std::uint64_t>(1, projection.RowCount()));
        }
    }
    return static_cast<double>(CountCodes(restriction.codes)) /
           static_cast<double>(std::max(1U, facts.KeyColumns()[restriction.keyColumn].codes));
}

struct Choice {
    const Projection* projection = nullptr;
    const Restriction* lead = nullptr;   ///< null: all leading codes
    const Restriction* second = nullptr; ///< null: no search
    double cost = 0;
};

/// The cheaper of two ways to read one projection: all rows of the leading codes, or a search for the second
/// key's codes within each leading code.
Choice BestChoice(const FactTable& facts, const Projection& projection,
                  std::span<const Restriction> restrictions) {
    const std::span<const std::uint16_t> order = projection.SortOrder();
    Choice choice;
    choice.projection = &projection;
    choice.lead = FindRestriction(restrictions, order[0]);
    const std::uint64_t rows = choice.lead ? LeadRows(projection, *choice.lead) : projection.RowCount();
    choice.cost = static_cast<double>(rows);
    const Restriction* second = order.size() > 1 ? FindRestriction(restrictions, order[1]) : nullptr;
    if (second == nullptr) {
        return choice;
    }
    const std::uint64_t leadCodes =
        choice.lead ? CountCodes(choice.lead->codes) : facts.KeyColumns()[order[0]].codes;
    const double searches = static_cast<double>(leadCodes) * static_cast<double>(second->codes.size());
    const double cost = searches * searchCost + static_cast<double>(rows) * ShareOf(facts, *second);
    if (cost < choice.cost) {
        choice.second = second;
        choice.cost = cost;
    }
    return choice;
}

void AppendRows(RowRange rows, std::vector<RowRange>& result) {
    if (rows.Count() == 0) {
        return;
    }
    if (!result.empty() && result.back().last == rows.first) {
        result.back().last = rows.last;
    } else {
        result.push_back(rows);
    }
}

/// Searches the rows of one leading code, which are sorted by the second key.
void SearchSecond(const FactTable& facts, const Projection& projection, RowRange rows,
                  const Restriction& second, std::vector<RowRange>& result) {
    if (rows.Count() == 0) {
        return;
    }
    const KeyColumn& column = facts.KeyColumns()[second.keyColumn];
    const CodeColumn codes(projection.PackedColumn(column.packedColumn, rows), column);
    std::size_t position = 0;
    for (const KeyRange range : second.codes) {
        const std::size_t first = codes.LowerBound(position, rows.Count(), range.first);
        position = codes.LowerBound(first, rows.Count(), range.last);
        AppendRows({rows.first + first, rows.first + position}, result);
    }
}

} // namespace

std::uint64_t ScanPlan::RowCount() const {
    return std::accumulate(rows.begin(), rows.end(), std::uint64_t{0},
                           [](std::uint64_t sum, RowRange run) { return sum + run.Count(); });
}

ScanPlan PlanScan(const FactTable& facts, std::span<const Restriction> restrictions) {
    const std::span<const Projection> projections = facts.Projections();
    Choice best = BestChoice(facts, projections.front(), restrictions);
    for (const Projection& projection : projections.subspan(1)) {
        const Choice choice = BestChoice(facts, projection, restrictions);
        if (choice.cost < best.cost) {
            best = choice;
        }
    }
    ScanPlan plan;
    plan.projection = best.projection;
    for (const Restriction& restriction : restrictions) {
        if (&restriction != best.lead && &restriction != best.second) {
            plan.residuals.push_back(restriction);
        }
    }
    const KeyRange allCodes{0, facts.KeyColumns()[best.projection->SortOrder()[0]].codes};
    for (const KeyRange range : best.lead ? best.lead->codes : CodeRanges(&allCodes, 1)) {
        if (best.second == nullptr) {
            AppendRows(best.projection->RowsOfLeadingKey(range), plan.rows);
            continue;
        }
        for (std::uint32_t code = range.first; code < range.last; ++code) {
            SearchSecond(facts, *best.projection, best.projection->RowsOfLeadingKey({code, code + 1}),
                         *best.second, plan.rows);
        }
    }
    return plan;
}

} // namespace qel::engine
