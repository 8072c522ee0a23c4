#pragma once

#include "engine/export/StarRows.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qel::engine {

/// A view of the facts with the members of all their levels beside them, so that a sum by levels needs no
/// join. A hierarchy whose codes have several members on a level multiplies the facts; a view holds it to one
/// depth, and counts right for statements that use its deepest level.
struct FlatView {
    std::string name;
    std::vector<std::size_t> tables; ///< by hierarchy: how many of its tables are joined
    /// The one key column by which every shard sums its facts ahead. The coordinator adds what the shards sum
    /// only for statements that group by month; others would fetch facts, and here they fetch a row per code.
    std::optional<std::size_t> summedBy;
};

/// A star spread over shards, each with some months' facts and all members.
struct FlatStar {
    const StarSchema* star = nullptr;
    std::size_t shards = 1;
    std::size_t calendar = 0; ///< the hierarchy by whose months the facts are spread
    std::size_t months = 0;   ///< its level
    /// Of two views that serve a statement, the first counts right and is the smaller one.
    std::vector<FlatView> views;
};

inline constexpr const char* factCountColumn = "fact__count";

/// The column of a level in the views. Two underscores are in no name of StarSchema.
std::string FlatColumn(std::size_t hierarchy, std::size_t level);

/// Raises EngineError (InvalidExpression) for a cube without months, or with too many ways to join.
FlatStar SpreadStar(const StarSchema& star, std::size_t shards);

/// The months' members of a shard, counted from 0.
std::vector<MemberId> MonthsOfShard(const FlatStar& flat, std::size_t shard);
/// Which facts go to which shard.
FactSpread SpreadOfFacts(const FlatStar& flat);

/// The statements that make the views on a shard, over its tables.
std::string ComposeShardViews(const FlatStar& flat);
/// The statements that make the coordinator's tables and views over those of the shards.
std::string ComposeForeignTables(const FlatStar& flat);

} // namespace qel::engine
