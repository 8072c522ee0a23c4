#pragma once

#include "engine/build/SpillStore.h"
#include "engine/storage/CubeModel.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace qel::engine {

/// An aggregate worth storing: the facts under sets of codes of at most two key columns.
struct ChosenAggregate {
    std::optional<std::uint16_t> lead;   ///< leads a sort order
    std::optional<std::uint16_t> second; ///< the next column of that sort order
    KeyRange leadCodes, secondCodes;     ///< as in AggregateKey
    std::uint64_t rows = 0;

    AggregateKey Key() const;
};

/// The number of facts with each code, by key column.
using CodeCounts = std::vector<std::vector<std::uint64_t>>;

/// How many facts have a code of the leading and one of the second column of a sort order.
struct PairCounts {
    struct Pair {
        std::uint32_t second = 0, facts = 0;
    };

    explicit PairCounts(SpillStore& store) : pairs(store) {}

    ByteStream pairs;                    ///< in the sort order
    std::vector<std::uint64_t> starts{}; ///< number of the first pair of each leading code, and the count
};

/// The sort orders of which ChooseAggregates takes the pairs. The model must have its projections.
std::vector<std::size_t> CountedPairs(const CubeModel& model, const AggregateModel& aggregates);

/// Estimates, for members and pairs of members, how long reading their facts from the best sort order takes,
/// and chooses the most expensive ones within a size budget. The model must have its projections, the
/// aggregates their groups, and `pairs` those of CountedPairs by sort order.
std::vector<ChosenAggregate> ChooseAggregates(const CubeModel& model, const CodeCounts& codes,
                                              const std::map<std::size_t, PairCounts>& pairs,
                                              const AggregateModel& aggregates);

/// Bytes per fact of a row aggregate.
std::uint64_t AggregateRowBytes(const CubeModel& model, const AggregateModel& aggregates);
/// Bytes of one prefix sum of every measure.
std::uint64_t PrefixSumBytes(const CubeModel& model);

} // namespace qel::engine
