#include "engine/export/FlatStar.h"

#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <string_view>
#include <utility>

namespace qel::engine {

namespace {

/// The level of months, which its members' keys tell: 2024-03.
std::optional<std::size_t> MonthLevel(const Hierarchy& hierarchy) {
    for (std::size_t level = 0; level < hierarchy.Levels().size(); ++level) {
        const MemberRange members = hierarchy.Levels()[level].members;
        const std::string_view key = members.first < members.last ? hierarchy.MemberKey(members.first) : "";
        if (!hierarchy.Levels()[level].isAll && key.size() == 7 && key[5] != 'Q') {
            return level;
        }
    }
    return std::nullopt;
}

void FindMonths(FlatStar& flat) {
    const Cube& cube = *flat.star->cube;
    for (const auto& dimension : cube.Dimensions()) {
        for (const std::size_t index : dimension.hierarchies) {
            const Hierarchy& hierarchy = cube.Hierarchies()[index];
            const auto months = dimension.isTime ? MonthLevel(hierarchy) : std::nullopt;
            if (months && hierarchy.KeyColumn() && HasOneRowPerCode(flat.star->hierarchies[index])) {
                flat.calendar = index;
                flat.months = *months;
                return;
            }
        }
    }
    throw EngineError(ErrorKind::InvalidExpression,
                      fmt::format("The cube '{}' has no calendar with months, by which its facts could be "
                                  "spread over shards.",
                                  cube.Name()));
}

/// Every choice of how far to follow each hierarchy that multiplies the facts, from none to the deepest.
std::vector<FlatView> ListViews(const StarSchema& star) {
    constexpr std::size_t most = 32;
    std::vector<FlatView> views{FlatView{}};
    for (const auto& tables : star.hierarchies) {
        std::vector<FlatView> longer;
        for (const FlatView& view : views) {
            const bool isSingle = HasOneRowPerCode(tables);
            for (std::size_t count = isSingle ? 1 : 0; count <= tables.size(); ++count) {
                if (count == 0 || !tables[count - 1].levels.empty()) { // a table of codes shows no level
                    longer.push_back(view);
                    longer.back().tables.push_back(count);
                }
            }
        }
        views = std::move(longer);
        if (views.size() > most) {
            throw EngineError(
                ErrorKind::InvalidExpression,
                fmt::format("The cube '{}' has too many hierarchies whose codes have several members on a "
                            "level to be spread over shards.",
                            star.cube->Name()));
        }
    }
    std::stable_sort(views.begin(), views.end(), [](const FlatView& left, const FlatView& right) {
        return std::reduce(left.tables.begin(), left.tables.end()) <
               std::reduce(right.tables.begin(), right.tables.end());
    });
    for (std::size_t i = 0; i < views.size(); ++i) {
        views[i].name = fmt::format("{}__flat{}", star.factTable, i);
    }
    return views;
}

/// A view for each key column whose codes have one member per level.
std::vector<FlatView> ListSums(const StarSchema& star) {
    std::vector<FlatView> views;
    for (std::size_t key = 0; key < star.keyColumns.size(); ++key) {
        FlatView view{.name = fmt::format("{}__sums{}", star.factTable, key), .tables = {}, .summedBy = key};
        bool hasLevels = false;
        for (const auto& hierarchy : star.cube->Hierarchies()) {
            const bool isOfKey = hierarchy.KeyColumn().value_or(key) == key; // the others restrict nothing
            view.tables.push_back(isOfKey && HasOneRowPerCode(star.hierarchies[hierarchy.Index()]) ? 1 : 0);
            hasLevels = hasLevels || (hierarchy.KeyColumn() && view.tables.back() > 0);
        }
        if (hasLevels) {
            views.push_back(std::move(view));
        }
    }
    return views;
}

} // namespace

FlatStar SpreadStar(const StarSchema& star, std::size_t shards) {
    FlatStar flat;
    flat.star = &star;
    flat.shards = shards;
    FindMonths(flat);
    flat.views = ListSums(star);
    for (FlatView& view : ListViews(star)) {
        flat.views.push_back(std::move(view));
    }
    return flat;
}

std::vector<MemberId> MonthsOfShard(const FlatStar& flat, std::size_t shard) {
    // In turn, so that every shard works for a statement over a year.
    const MemberRange members = flat.star->cube->Hierarchies()[flat.calendar].Levels()[flat.months].members;
    std::vector<MemberId> months;
    for (std::size_t member = members.first + shard; member < members.last; member += flat.shards) {
        months.push_back(static_cast<MemberId>(member));
    }
    return months;
}

FactSpread SpreadOfFacts(const FlatStar& flat) {
    const Hierarchy& calendar = flat.star->cube->Hierarchies()[flat.calendar];
    const StarTable& table = flat.star->hierarchies[flat.calendar].front();
    const auto months = std::find(table.levels.begin(), table.levels.end(), flat.months);
    const auto place = static_cast<std::size_t>(months - table.levels.begin());
    const MemberId first = calendar.Levels()[flat.months].members.first;
    FactSpread spread{.keyColumn = *calendar.KeyColumn(), .parts = {}};
    for (const StarRow& row : table.rows) {
        if (row.owner >= 0) { // others have no facts
            const auto code = static_cast<std::size_t>(row.owner);
            spread.parts.resize(std::max(spread.parts.size(), code + 1));
            spread.parts[code] = (row.members[place] - first) % flat.shards;
        }
    }
    return spread;
}

} // namespace qel::engine
