#include "engine/eval/FactAccessPlan.h"

#include "engine/eval/AggregatePlan.h"
#include "engine/eval/ColumnLoops.h"
#include "engine/eval/ScanPlan.h"
#include "engine/eval/VisitBlocks.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

namespace {

/// Sums blocks of rows.
class SumOfBlocks {
public:
    SumOfBlocks(const FactTable& facts, std::size_t measure)
        : measure_(measure), width_(facts.Measures()[measure].width) {}

    void Add(const Projection& projection, RowRange rows, const BlockMask* mask) {
        const std::uint64_t passed = mask == nullptr ? rows.Count() : CountRows(*mask, rows.Count());
        rows_ += passed;
        if (passed > 0 && width_ != 0) {
            sum_ += SumValues(projection.Values(measure_, rows), width_, rows.Count(), mask, passed);
        }
    }
    FactSum Total() const { return {static_cast<std::int64_t>(sum_), rows_}; }

private:
    std::size_t measure_;
    std::uint8_t width_; ///< 0 for a count
    std::uint64_t sum_ = 0, rows_ = 0;
};

/// Wraps around on overflow, because a damaged file may hold any sums.
FactSum Add(FactSum left, FactSum right) {
    const std::uint64_t sum = static_cast<std::uint64_t>(left.sum) + static_cast<std::uint64_t>(right.sum);
    return {static_cast<std::int64_t>(sum), left.rows + right.rows};
}

} // namespace

void FactAccessPlan::AddRows(const Projection& projection, RowRange run,
                             std::span<const Restriction> residuals) {
    if (run.Count() > 0) {
        AddRows(projection, {&run, 1}, residuals, false);
    }
}

void FactAccessPlan::AddRows(const Projection& projection, std::span<const RowRange> runs,
                             std::span<const Restriction> residuals, bool areSubtracted) {
    const auto firstRun = static_cast<std::uint32_t>(runs_.size());
    const auto firstFilter = static_cast<std::uint32_t>(filters_.size());
    runs_.insert(runs_.end(), runs.begin(), runs.end());
    for (BlockFilter& filter : MakeFilters(*facts_, residuals)) {
        filters_.push_back(std::move(filter));
    }
    rows_.push_back({&projection, areSubtracted, firstRun, static_cast<std::uint32_t>(runs_.size()),
                     firstFilter, static_cast<std::uint32_t>(filters_.size())});
}

void FactAccessPlan::PlanRows(std::span<const Restriction> restrictions, bool areSubtracted) {
    if (facts_->RowCount() != 0 && !AnyIsEmpty(restrictions)) {
        const ScanPlan plan = PlanScan(*facts_, restrictions);
        AddRows(*plan.projection, plan.rows, plan.residuals, areSubtracted);
    }
}

void FactAccessPlan::AddScan(std::span<const Restriction> restrictions) { PlanRows(restrictions, false); }

void FactAccessPlan::SubtractScan(std::span<const Restriction> restrictions) {
    PlanRows(restrictions, true);
    subtracts_ = true;
}

void FactAccessPlan::AddPrefixSums(const PrefixSumReader& prefixSums, std::uint32_t first,
                                   std::uint32_t last) {
    prefixSums_.push_back({prefixSums, first, last});
}

FactSum FactAccessPlan::Sum() const {
    FactSum total = SumRows(false);
    for (const PrefixSumRead& read : prefixSums_) {
        total = Add(total, read.sums.Sum(read.first, read.last));
    }
    return Subtracts() ? Subtract(total) : total;
}

void FactAccessPlan::Prefetch() const {
    for (const Rows& read : rows_) {
        if (read.firstRun < read.lastRun) {
            Prefetch(*read.projection, runs_[read.firstRun], FiltersOf(read));
        }
    }
    for (const PrefixSumRead& read : prefixSums_) {
        read.sums.Prefetch();
    }
}

std::span<const BlockFilter> FactAccessPlan::FiltersOf(const Rows& rows) const {
    return std::span(filters_).subspan(rows.firstFilter, rows.lastFilter - rows.firstFilter);
}

/// Prefetches the first block of the rows in all columns at once. The columns are far apart, and the hardware
/// prefetcher stops at page boundaries.
void FactAccessPlan::Prefetch(const Projection& projection, RowRange rows,
                              std::span<const BlockFilter> filters) const {
    const RowRange start{rows.first, std::min(rows.last, rows.first + blockRows)};
    for (const BlockFilter& filter : filters) {
        PrefetchBytes(projection.PackedColumn(filter.PackedColumn(), start),
                      start.Count() * facts_->PackedWidth(filter.PackedColumn()));
    }
    if (const std::uint64_t width = facts_->Measures()[measure_].width; width != 0) {
        PrefetchBytes(projection.Values(measure_, start), start.Count() * width);
    }
}

FactSum FactAccessPlan::SumRows(bool areSubtracted) const {
    SumOfBlocks blocks(*facts_, measure_);
    for (const Rows& read : rows_) {
        if (read.areSubtracted != areSubtracted) {
            continue;
        }
        const auto filters = FiltersOf(read);
        for (std::uint32_t i = read.firstRun; i < read.lastRun; ++i) {
            Prefetch(*read.projection, runs_[i], filters);
            VisitBlocks(*read.projection, runs_[i], filters, [&](RowRange block, const BlockMask* mask) {
                Prefetch(*read.projection, {block.last, runs_[i].last}, filters);
                blocks.Add(*read.projection, block, mask);
                return true;
            });
        }
    }
    return blocks.Total();
}

FactSum FactAccessPlan::Subtract(FactSum total) const {
    const FactSum subtracted = SumRows(true);
    if (facts_->Measures()[measure_].function == AggregateFunction::Count) {
        return {0, total.rows - subtracted.rows};
    }
    const std::uint64_t left =
        static_cast<std::uint64_t>(total.sum) - static_cast<std::uint64_t>(subtracted.sum);
    if (left != 0) {
        return {static_cast<std::int64_t>(left), 1};
    }
    return exact_->Sum(); // prefix sums do not count facts, so there may be none
}

std::size_t FactAccessPlan::OwnedBytes() const {
    std::size_t bytes = exact_ ? sizeof *exact_ + exact_->OwnedBytes() : 0;
    for (const PrefixSumRead& read : prefixSums_) {
        bytes += sizeof read + read.sums.OwnedBytes();
    }
    bytes += BytesOf(filters_) + rows_.capacity() * sizeof(Rows) + runs_.capacity() * sizeof(RowRange);
    return bytes;
}

FactAccessPlan PlanAccess(const FactTable& facts, std::span<const Restriction> restrictions,
                          std::size_t measure) {
    FactAccessPlan plan(facts, measure);
    if (AnyIsEmpty(restrictions)) {
        return plan;
    }
    if (facts.Aggregates() == nullptr ||
        !PlanAggregates(facts, restrictions, measure, BucketRounding::Nearest, plan)) {
        plan.AddScan(restrictions);
    }
    if (plan.Subtracts() && facts.Measures()[measure].function == AggregateFunction::Sum) {
        FactAccessPlan exact(facts, measure);
        PlanAggregates(facts, restrictions, measure, BucketRounding::Within, exact);
        plan.SetExact(std::move(exact));
    }
    return plan;
}

FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure) {
    FactAccessPlan plan(facts, measure);
    if (AnyIsEmpty(restrictions)) {
        return {};
    }
    if (facts.Aggregates() == nullptr ||
        !PlanAggregates(facts, restrictions, measure, BucketRounding::Within, plan)) {
        plan.AddScan(restrictions);
    }
    return plan.Sum();
}

} // namespace qel::engine
