#pragma once

#include "engine/eval/BlockFilter.h"
#include "engine/eval/FactSum.h"
#include "engine/eval/PrefixSumReader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace qel::engine {

/// How to read the facts of one cell: from which rows and which prefix sums. Planned once, it serves any
/// number of reads on any thread for as long as the facts live. All functions below raise EngineError
/// (DamagedFile).
class FactAccessPlan {
public:
    FactAccessPlan(const FactTable& facts, std::size_t measure) : facts_(&facts), measure_(measure) {}

    /// Adds the rows of a run that pass the residual predicates.
    void AddRows(const Projection& projection, RowRange run, std::span<const Restriction> residuals);
    /// Adds the facts under all restrictions, from the projection that is cheapest to read.
    void AddScan(std::span<const Restriction> restrictions);
    /// Subtracts facts that the prefix sums contain but the query does not want.
    void SubtractScan(std::span<const Restriction> restrictions);
    bool Subtracts() const { return subtracts_; }
    /// Sets a plan for the same facts without subtraction, used when the difference is 0: only it can tell an
    /// empty cell from a zero.
    void SetExact(FactAccessPlan plan) { exact_ = std::make_shared<const FactAccessPlan>(std::move(plan)); }
    /// Adds the facts of the time buckets from `first` up to, but not including, `last`.
    void AddPrefixSums(const PrefixSumReader& prefixSums, std::uint32_t first, std::uint32_t last);

    /// Reads everything that was added.
    FactSum Sum() const;
    /// Begins to fetch what Sum reads first into the processor's caches.
    void Prefetch() const;
    /// Approximate heap memory in bytes.
    std::size_t OwnedBytes() const;

private:
    /// Runs of one projection and the filters on them, as ranges of runs_ and filters_.
    struct Rows {
        const Projection* projection;
        bool areSubtracted;
        std::uint32_t firstRun, lastRun, firstFilter, lastFilter;
    };
    struct PrefixSumRead {
        PrefixSumReader sums;
        std::uint32_t first, last; ///< buckets
    };

    void PlanRows(std::span<const Restriction> restrictions, bool areSubtracted);
    void AddRows(const Projection& projection, std::span<const RowRange> runs,
                 std::span<const Restriction> residuals, bool areSubtracted);
    FactSum SumRows(bool areSubtracted) const;
    std::span<const BlockFilter> FiltersOf(const Rows& rows) const;
    void Prefetch(const Projection& projection, RowRange rows, std::span<const BlockFilter> filters) const;
    FactSum Subtract(FactSum total) const;

    const FactTable* facts_;
    std::size_t measure_;
    bool subtracts_ = false;
    std::vector<Rows> rows_;
    std::vector<RowRange> runs_;
    std::vector<BlockFilter> filters_;
    std::vector<PrefixSumRead> prefixSums_;
    std::shared_ptr<const FactAccessPlan> exact_; ///< set when the plan subtracts from a sum
};

/// Plans how to read the facts under all restrictions (at most one per key column), using aggregates where
/// they help. For plans that are read often.
FactAccessPlan PlanAccess(const FactTable& facts, std::span<const Restriction> restrictions,
                          std::size_t measure);

/// Reads the facts under all restrictions once.
FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure);

} // namespace qel::engine
