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

/// How the facts of one cell are read: from which rows and which strips of aggregates. It is found once and
/// serves any number of reads, on any thread, for as long as the facts live. All below raise EngineError
/// (DamagedFile).
class FactAccessPlan {
public:
    FactAccessPlan(const FactTable& facts, std::size_t measure) : facts_(&facts), measure_(measure) {}

    /// The rows of a run that pass all residuals.
    void AddRows(const Projection& projection, RowRange run, std::span<const Restriction> residuals);
    /// The facts under all restrictions, from the projection that leaves the fewest rows to be read.
    void AddScan(std::span<const Restriction> restrictions);
    /// Takes away facts, which the strips hold besides those that are asked for.
    void SubtractScan(std::span<const Restriction> restrictions);
    bool Subtracts() const { return subtracts_; }
    /// Another way to the same facts that takes nothing away; for when nothing is left of a sum.
    void SetExact(FactAccessPlan plan) { exact_ = std::make_shared<const FactAccessPlan>(std::move(plan)); }
    /// The strips' facts of the buckets of time from `first` up to, without, `last`.
    void AddPrefixSums(const PrefixSumReader& prefixSums, std::uint32_t first, std::uint32_t last);

    /// Reads all that was added.
    FactSum Sum() const;
    /// About how much memory this owns.
    std::size_t OwnedBytes() const;

private:
    /// Rows of one projection that pass some filters, by their places in the lists below.
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
    void Prefetch(const Projection& projection, RowRange rows, std::span<const BlockFilter> filters) const;
    FactSum Subtract(FactSum total) const;

    const FactTable* facts_;
    std::size_t measure_;
    bool subtracts_ = false;
    std::vector<Rows> rows_;
    std::vector<RowRange> runs_;
    std::vector<BlockFilter> filters_;
    std::vector<PrefixSumRead> prefixSums_;
    std::shared_ptr<const FactAccessPlan> exact_; ///< when a sum has something taken away
};

/// How to read the facts under all restrictions, of which there is at most one a key column: from aggregates
/// where these hold them. For reading them often.
FactAccessPlan PlanAccess(const FactTable& facts, std::span<const Restriction> restrictions,
                          std::size_t measure);

/// The facts under all restrictions, read once: how many, and the sum of the measure.
FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure);

} // namespace qel::engine
