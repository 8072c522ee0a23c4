#include "engine/eval/StripSum.h"

#include "engine/EngineError.h"
#include "engine/eval/Vectorised.h"

#include <algorithm>
#include <bit>

namespace qel::engine {

namespace {

constexpr std::uint32_t blockGranules = RollupTable::blockGranules;

/// Strips, the time that is wanted of them, and their running sums.
struct StripRun {
    RollupTable::Strips strips;
    std::uint64_t count = 0;
    std::span<const BlockFilter> filters; ///< of words
    std::uint32_t blockMask = 0;
    std::uint32_t first = 0, last = 0; ///< granules
    std::uint64_t entries = 0;         ///< of all strips
    const std::byte* sums = nullptr;   ///< none: the run is counted alone
    const std::uint32_t* counts = nullptr;
};

struct StripTotal {
    std::uint64_t sum = 0, rows = 0;
    bool isDamaged = false;
};

/// The bits below `granules`, at most all 64.
inline std::uint64_t Below(std::uint32_t granules) {
    return granules >= blockGranules ? ~std::uint64_t{0} : (std::uint64_t{1} << granules) - 1;
}

template <class Running>
inline __attribute__((always_inline)) void AddStrip(const StripRun& run, std::uint64_t strip,
                                                    StripTotal& total) {
    const std::uint64_t base = std::uint64_t{run.strips.words[strip] & run.blockMask} * blockGranules;
    if (base >= run.last || base + blockGranules <= run.first) {
        return;
    }
    const std::uint64_t periods = run.strips.periods[strip];
    const auto before = run.first > base ? static_cast<std::uint32_t>(run.first - base) : 0U;
    const auto skipped = static_cast<unsigned>(std::popcount(periods & Below(before)));
    const auto end =
        static_cast<unsigned>(std::popcount(periods & Below(static_cast<std::uint32_t>(run.last - base))));
    if (end == skipped) {
        return;
    }
    const std::uint64_t start = run.strips.entries[strip] - run.strips.entries[0]; // wraps when damaged
    if (start > run.entries || run.entries - start < end) {
        total.isDamaged = true;
        return;
    }
    // Read whether it counts or not: a branch here is guessed wrong too often.
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
inline __attribute__((always_inline)) StripTotal SumRun(const StripRun& run) {
    StripTotal total;
    BlockMask mask;
    if (run.filters.empty()) {
        mask.fill(1);
    }
    for (std::uint64_t first = 0; first < run.count; first += blockRows) {
        const std::uint64_t count = std::min<std::uint64_t>(blockRows, run.count - first);
        if (!run.filters.empty()) {
            MarkPassing(run.filters, count, mask, [&](const BlockFilter&) {
                return reinterpret_cast<const std::byte*>(run.strips.words + first);
            });
        }
        VisitMarked(mask.data(), count, [&](std::size_t i) { AddStrip<Running>(run, first + i, total); });
    }
    return total;
}

QEL_VECTORISED
StripTotal SumNarrow(const StripRun& run) { return SumRun<std::int32_t>(run); }

QEL_VECTORISED
StripTotal SumWide(const StripRun& run) { return SumRun<std::int64_t>(run); }

} // namespace

StripSum::StripSum(const FactTable& facts, const Rollup& rollup, std::span<const Restriction> tests,
                   std::size_t measure)
    : facts_(&facts), rollups_(facts.Rollups()), measure_(measure), stripCount_(rollup.strips) {
    const auto words = rollups_->WordColumns();
    const bool areMerged =
        rollup.merged > 0 && !words.empty() && FindRestriction(tests, words.back().column) == nullptr;
    if (areMerged) {
        stripCount_ = rollup.merged;
    }
    strips_ = rollups_->StripsOf(rollup.start + (areMerged ? rollup.strips : 0), stripCount_);
    for (const RollupTable::WordColumn& word : words) {
        if (const Restriction* const test = FindRestriction(tests, word.column)) {
            AddTest(word, *test);
        }
    }
}

void StripSum::AddTest(const RollupTable::WordColumn& word, const Restriction& test) {
    const bool isHighest = word.column == rollups_->WordColumns().front().column;
    if (isHighest) {
        Narrow(word.shift, {test.codes.front().first, test.codes.back().last});
    }
    if (!isHighest || test.codes.size() > 1) {
        const KeyColumn asInWord{.name = {},
                                 .codes = facts_->KeyColumns()[word.column].codes,
                                 .width = sizeof(std::uint32_t),
                                 .slot = 0,
                                 .shift = word.shift};
        AddFilter(BlockFilter(test, asInWord), filters_);
    }
}

void StripSum::Narrow(std::uint8_t shift, KeyRange codes) {
    const auto* const words = strips_.words;
    const auto place = [&](std::uint32_t code) {
        return std::lower_bound(words, words + stripCount_, std::uint64_t{code} << shift) - words;
    };
    const auto first = place(codes.first);
    const auto last = std::max(first, place(codes.last));
    strips_.words += first;
    strips_.periods += first;
    strips_.entries += first;
    stripCount_ = static_cast<std::uint64_t>(last - first);
}

FactSum StripSum::Sum(std::uint32_t first, std::uint32_t last) const {
    if (stripCount_ == 0) {
        return {};
    }
    const std::uint32_t firstEntry = strips_.entries[0];
    const std::uint32_t lastEntry = strips_.entries[stripCount_];
    if (lastEntry < firstEntry) {
        throw EngineError(ErrorKind::DamagedFile, "cube file: the strips of a rollup are not in order");
    }
    StripRun run{strips_, stripCount_, filters_};
    run.blockMask = static_cast<std::uint32_t>((std::uint64_t{1} << rollups_->BlockBits()) - 1);
    run.first = first;
    run.last = last;
    run.entries = lastEntry - firstEntry;
    const bool isCount = facts_->Measures()[measure_].aggregate == Aggregate::Count;
    if (isCount) {
        run.counts = rollups_->Counts(firstEntry, run.entries);
    } else {
        run.sums = rollups_->Sums(measure_, firstEntry, run.entries);
    }
    const bool isNarrow = isCount || rollups_->SumWidth(measure_) == sizeof(std::int32_t);
    const StripTotal total = isNarrow ? SumNarrow(run) : SumWide(run);
    if (total.isDamaged) {
        throw EngineError(ErrorKind::DamagedFile, "cube file: the strips of a rollup lie outside its sums");
    }
    return {static_cast<std::int64_t>(total.sum), total.rows};
}

} // namespace qel::engine
