#include "engine/eval/StripSum.h"

#include "engine/EngineError.h"
#include "engine/eval/Vectorised.h"

#include <algorithm>
#include <bit>

namespace qel::engine {

namespace {

constexpr std::uint32_t blockGranules = 64;

/// Strips, what of them is wanted, and their running sums.
struct StripRun {
    RollupTable::Strips strips;
    std::uint64_t count = 0;
    std::uint32_t bits = 0, value = 0;
    std::span<const WordTest> tests;
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

inline bool Passes(const StripRun& run, std::uint32_t word) {
    if ((word & run.bits) != run.value) {
        return false;
    }
    for (const WordTest& test : run.tests) {
        const std::uint32_t code = (word & test.bits) >> test.shift;
        const bool isIn = std::any_of(test.codes.begin(), test.codes.end(), [&](KeyRange range) {
            return code >= range.first && code < range.last;
        });
        if (!isIn) {
            return false;
        }
    }
    return true;
}

/// The bits below `granules`, at most all 64.
inline std::uint64_t Below(std::uint32_t granules) {
    return granules >= blockGranules ? ~std::uint64_t{0} : (std::uint64_t{1} << granules) - 1;
}

template <class Running>
inline __attribute__((always_inline)) StripTotal SumRun(const StripRun& run) {
    StripTotal total;
    const auto* const sums = reinterpret_cast<const Running*>(run.sums);
    const std::uint32_t firstEntry = run.strips.entries[0];
    for (std::uint64_t i = 0; i < run.count; ++i) {
        const std::uint32_t word = run.strips.words[i];
        if (!Passes(run, word)) {
            continue;
        }
        const std::uint64_t base = std::uint64_t{word & run.blockMask} * blockGranules;
        if (base >= run.last || base + blockGranules <= run.first) {
            continue;
        }
        const std::uint64_t periods = run.strips.periods[i];
        const auto before = run.first > base ? static_cast<std::uint32_t>(run.first - base) : 0U;
        const auto skipped = static_cast<unsigned>(std::popcount(periods & Below(before)));
        const auto end = static_cast<unsigned>(
            std::popcount(periods & Below(static_cast<std::uint32_t>(run.last - base))));
        if (end == skipped) {
            continue;
        }
        const std::uint64_t start = run.strips.entries[i] - firstEntry; // wraps around when it is damaged
        if (start > run.entries || run.entries - start < end) {
            total.isDamaged = true;
            return total;
        }
        if (run.counts != nullptr) {
            total.rows += run.counts[start + end - 1] - (skipped == 0 ? 0 : run.counts[start + skipped - 1]);
            continue;
        }
        ++total.rows;
        const std::int64_t until = sums[start + end - 1];
        const std::int64_t earlier = skipped == 0 ? 0 : sums[start + skipped - 1];
        total.sum += static_cast<std::uint64_t>(until) - static_cast<std::uint64_t>(earlier);
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
    : facts_(&facts), rollups_(facts.Rollups()), measure_(measure),
      strips_(rollups_->StripsOf(rollup.start, rollup.strips)), stripCount_(rollup.strips) {
    for (const RollupTable::WordColumn& word : rollups_->WordColumns()) {
        for (const Restriction& test : tests) {
            if (test.keyColumn == word.column) {
                AddTest(word, test.codes);
            }
        }
    }
}

void StripSum::AddTest(const RollupTable::WordColumn& word, CodeRanges codes) {
    const bool isLead = word.column == rollups_->WordColumns().front().column;
    if (isLead) {
        Narrow(word.shift, {codes.front().first, codes.back().last});
    }
    const auto bits = static_cast<std::uint32_t>(((std::uint64_t{1} << word.bits) - 1) << word.shift);
    if (codes.size() == 1 && codes[0].Count() == 1) {
        bits_ |= bits;
        value_ |= codes[0].first << word.shift;
    } else if (!isLead || codes.size() > 1) {
        tests_.push_back({bits, word.shift, codes});
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
    StripRun run{strips_, stripCount_, bits_, value_, tests_};
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
