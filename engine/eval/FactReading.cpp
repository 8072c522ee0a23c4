#include "engine/eval/FactReading.h"

#include "engine/eval/RollupPlan.h"
#include "engine/eval/ScanPlan.h"
#include "engine/eval/VisitBlocks.h"

#include <utility>

namespace qel::engine {

namespace {

/// Adds up blocks of rows.
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

/// Wraps around: sums come from a file, and must not be undefined whatever they are.
FactSum Add(FactSum left, FactSum right) {
    const std::uint64_t sum = static_cast<std::uint64_t>(left.sum) + static_cast<std::uint64_t>(right.sum);
    return {static_cast<std::int64_t>(sum), left.rows + right.rows};
}

} // namespace

void FactReading::AddRows(const Projection& projection, RowRange run, std::span<const Restriction> tests) {
    if (run.Count() > 0) {
        rows_.push_back({&projection, {run}, MakeFilters(*facts_, tests)});
    }
}

FactReading::Rows FactReading::PlanRows(std::span<const Restriction> restrictions) const {
    if (facts_->RowCount() == 0 || AnyIsEmpty(restrictions)) {
        return {};
    }
    ScanPlan plan = PlanScan(*facts_, restrictions);
    return {plan.projection, std::move(plan.rows), MakeFilters(*facts_, plan.tests)};
}

void FactReading::AddScan(std::span<const Restriction> restrictions) {
    rows_.push_back(PlanRows(restrictions));
}

void FactReading::SubtractScan(std::span<const Restriction> restrictions) {
    subtracted_.push_back(PlanRows(restrictions));
}

void FactReading::AddStrips(const StripSum& strips, std::uint32_t first, std::uint32_t last) {
    strips_.push_back({strips, first, last});
}

FactSum FactReading::Sum() const {
    FactSum total = SumOf(rows_);
    for (const Strips& strips : strips_) {
        total = Add(total, strips.sum.Sum(strips.first, strips.last));
    }
    return Subtracts() ? Subtract(total) : total;
}

FactSum FactReading::SumOf(const std::vector<Rows>& rows) const {
    SumOfBlocks blocks(*facts_, measure_);
    for (const Rows& read : rows) {
        for (const RowRange run : read.runs) {
            VisitBlocks(*read.projection, run, read.filters, [&](RowRange block, const BlockMask* mask) {
                blocks.Add(*read.projection, block, mask);
                return true;
            });
        }
    }
    return blocks.Total();
}

FactSum FactReading::Subtract(FactSum total) const {
    const FactSum subtracted = SumOf(subtracted_);
    if (facts_->Measures()[measure_].aggregate == Aggregate::Count) {
        return {0, total.rows - subtracted.rows};
    }
    const std::uint64_t left =
        static_cast<std::uint64_t>(total.sum) - static_cast<std::uint64_t>(subtracted.sum);
    if (left != 0) {
        return {static_cast<std::int64_t>(left), 1};
    }
    return exact_->Sum(); // strips do not tell how many facts there are: here there may be none
}

std::size_t FactReading::OwnedBytes() const {
    std::size_t bytes = exact_ ? sizeof *exact_ + exact_->OwnedBytes() : 0;
    for (const Strips& strips : strips_) {
        bytes += sizeof strips + strips.sum.OwnedBytes();
    }
    for (const std::vector<Rows>* const list : {&rows_, &subtracted_}) {
        for (const Rows& rows : *list) {
            bytes += sizeof rows + rows.runs.capacity() * sizeof(RowRange);
            for (const BlockFilter& filter : rows.filters) {
                bytes += sizeof filter + filter.OwnedBytes();
            }
        }
    }
    return bytes;
}

FactReading PlanReading(const FactTable& facts, std::span<const Restriction> restrictions,
                        std::size_t measure) {
    FactReading reading(facts, measure);
    if (AnyIsEmpty(restrictions)) {
        return reading;
    }
    if (facts.Rollups() == nullptr ||
        !PlanRollups(facts, restrictions, measure, StripEnds::Nearest, reading)) {
        reading.AddScan(restrictions);
    }
    if (reading.Subtracts() && facts.Measures()[measure].aggregate == Aggregate::Sum) {
        FactReading exact(facts, measure);
        PlanRollups(facts, restrictions, measure, StripEnds::Within, exact);
        reading.SetExact(std::move(exact));
    }
    return reading;
}

FactSum SumFacts(const FactTable& facts, std::span<const Restriction> restrictions, std::size_t measure) {
    FactReading reading(facts, measure);
    if (AnyIsEmpty(restrictions)) {
        return {};
    }
    if (facts.Rollups() == nullptr ||
        !PlanRollups(facts, restrictions, measure, StripEnds::Within, reading)) {
        reading.AddScan(restrictions);
    }
    return reading.Sum();
}

} // namespace qel::engine
