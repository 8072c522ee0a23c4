#include "engine/eval/PrefixSumReader.h"

#include "engine/eval/ColumnLoops.h"
#include "engine/eval/Vectorised.h"
#include "qel/engine/EngineError.h"

#include <algorithm>
#include <bit>

namespace qel::engine {

namespace {

constexpr std::uint32_t blockBuckets = AggregateTable::blockBuckets;

/// The packed keys to sum, the time buckets wanted, and the prefix sums.
struct PrefixRun {
    AggregateTable::PrefixIndex index;
    std::uint64_t count = 0;
    std::span<const BlockFilter> filters; ///< on packed keys
    std::uint32_t blockMask = 0;
    std::uint32_t first = 0, last = 0; ///< time buckets
    std::uint64_t entries = 0;         ///< number of prefix sums
    const std::byte* sums = nullptr;   ///< null when only counting
    const std::uint32_t* counts = nullptr;
};

struct PrefixTotal {
    std::uint64_t sum = 0, rows = 0;
    bool isDamaged = false;
};

/// A mask of the lowest `buckets` bits, at most 64.
inline std::uint64_t Below(std::uint32_t buckets) {
    return buckets >= blockBuckets ? ~std::uint64_t{0} : (std::uint64_t{1} << buckets) - 1;
}

template <class Running>
QEL_INLINE void AddKey(const PrefixRun& run, std::uint64_t key, PrefixTotal& total) {
    const std::uint64_t base = std::uint64_t{run.index.keys[key] & run.blockMask} * blockBuckets;
    if (base >= run.last || base + blockBuckets <= run.first) {
        return;
    }
    const std::uint64_t mask = run.index.bucketMasks[key];
    const auto before = run.first > base ? static_cast<std::uint32_t>(run.first - base) : 0U;
    const auto skipped = static_cast<unsigned>(std::popcount(mask & Below(before)));
    const auto end =
        static_cast<unsigned>(std::popcount(mask & Below(static_cast<std::uint32_t>(run.last - base))));
    if (end == skipped) {
        return;
    }
    const std::uint64_t start = run.index.starts[key] - run.index.starts[0]; // may wrap in a damaged file
    if (start > run.entries || run.entries - start < end) {
        total.isDamaged = true;
        return;
    }
    // Read even when unused: a branch here would be mispredicted too often.
    const std::uint64_t hasEarlier = skipped == 0 ? 0 : 1, earlier = start + skipped - hasEarlier;
    if (run.counts != nullptr) {
        total.rows += run.counts[start + end - 1] - hasEarlier * run.counts[earlier];
        return;
    }
    ++total.rows;
    const auto* const sums = reinterpret_cast<const Running*>(run.sums);
    const auto sumAt = [&](std::uint64_t at) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(sums[at]));
    };
    total.sum += sumAt(start + end - 1) - hasEarlier * sumAt(earlier);
}

template <class Running>
QEL_INLINE PrefixTotal SumRun(const PrefixRun& run) {
    PrefixTotal total;
    BlockMask mask;
    if (run.filters.empty()) {
        mask.fill(1);
    }
    for (std::uint64_t first = 0; first < run.count; first += blockRows) {
        const std::uint64_t count = std::min<std::uint64_t>(blockRows, run.count - first);
        if (!run.filters.empty()) {
            MarkPassing(run.filters, count, mask, [&](const BlockFilter&) {
                return reinterpret_cast<const std::byte*>(run.index.keys + first);
            });
        }
        VisitMarked(mask.data(), count, [&](std::size_t i) { AddKey<Running>(run, first + i, total); });
    }
    return total;
}

template <class Running>
PrefixTotal SumVectorised(const PrefixRun& run) {
    return RunVectorised([&]() __attribute__((always_inline)) { return SumRun<Running>(run); });
}

} // namespace

PrefixSumReader::PrefixSumReader(const FactTable& facts, const Aggregate& aggregate,
                                 std::span<const Restriction> residuals, std::size_t measure)
    : facts_(&facts), aggregates_(facts.Aggregates()), measure_(measure), keyCount_(aggregate.keyCount) {
    const auto parts = aggregates_->PackedKeyColumns();
    const bool isCoarser = aggregate.coarserKeyCount > 0 && !parts.empty() &&
                           FindRestriction(residuals, parts.back().column) == nullptr;
    if (isCoarser) {
        keyCount_ = aggregate.coarserKeyCount;
    }
    index_ = aggregates_->PrefixIndexOf(aggregate.start + (isCoarser ? aggregate.keyCount : 0), keyCount_);
    for (const AggregateTable::PackedKeyColumn& part : parts) {
        if (const Restriction* const residual = FindRestriction(residuals, part.column)) {
            AddResidual(part, *residual);
        }
    }
}

void PrefixSumReader::AddResidual(const AggregateTable::PackedKeyColumn& part, const Restriction& residual) {
    const bool isHighest = part.column == aggregates_->PackedKeyColumns().front().column;
    if (isHighest) {
        NarrowKeys(part.shift, {residual.codes.front().first, residual.codes.back().last});
    }
    if (!isHighest || residual.codes.size() > 1) {
        const KeyColumn asInKey{.name = {},
                                .codes = facts_->KeyColumns()[part.column].codes,
                                .width = sizeof(std::uint32_t),
                                .packedColumn = 0,
                                .shift = part.shift};
        AddFilter(BlockFilter(residual, asInKey), filters_);
    }
}

void PrefixSumReader::NarrowKeys(std::uint8_t shift, KeyRange codes) {
    const auto* const keys = index_.keys;
    const auto place = [&](std::uint32_t code) {
        return std::lower_bound(keys, keys + keyCount_, std::uint64_t{code} << shift) - keys;
    };
    const auto first = place(codes.first);
    const auto last = std::max(first, place(codes.last));
    index_.keys += first;
    index_.bucketMasks += first;
    index_.starts += first;
    keyCount_ = static_cast<std::uint64_t>(last - first);
}

void PrefixSumReader::Prefetch() const {
    const std::uint64_t count = std::min<std::uint64_t>(keyCount_, blockRows);
    PrefetchBytes(index_.keys, count * sizeof *index_.keys);
    PrefetchBytes(index_.starts, count * sizeof *index_.starts);
    PrefetchBytes(index_.bucketMasks, count * sizeof *index_.bucketMasks);
}

FactSum PrefixSumReader::Sum(std::uint32_t first, std::uint32_t last) const {
    if (keyCount_ == 0) {
        return {};
    }
    const std::uint32_t firstEntry = index_.starts[0];
    const std::uint32_t lastEntry = index_.starts[keyCount_];
    if (lastEntry < firstEntry) {
        throw EngineError(ErrorKind::DamagedFile,
                          "cube file: the prefix sums of an aggregate are not in order");
    }
    PrefixRun run{index_, keyCount_, filters_};
    run.blockMask = static_cast<std::uint32_t>((std::uint64_t{1} << aggregates_->BlockBits()) - 1);
    run.first = first;
    run.last = last;
    run.entries = lastEntry - firstEntry;
    const bool isCount = facts_->Measures()[measure_].function == AggregateFunction::Count;
    if (isCount) {
        run.counts = aggregates_->Counts(firstEntry, run.entries);
    } else {
        run.sums = aggregates_->Sums(measure_, firstEntry, run.entries);
    }
    const bool isNarrow = isCount || aggregates_->SumWidth(measure_) == sizeof(std::int32_t);
    const PrefixTotal total = isNarrow ? SumVectorised<std::int32_t>(run) : SumVectorised<std::int64_t>(run);
    if (total.isDamaged) {
        throw EngineError(ErrorKind::DamagedFile,
                          "cube file: the packed keys of an aggregate point outside its prefix sums");
    }
    return {static_cast<std::int64_t>(total.sum), total.rows};
}

} // namespace qel::engine
