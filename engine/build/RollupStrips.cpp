#include "engine/build/RollupStrips.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace qel::engine {

namespace {

/// One running sum.
struct StripEntry {
    StripPlace place;
    std::uint32_t number = 0;
    bool isFirst = false; ///< of its strip
};

/// In the order of their places, of whose words `kept` is left.
std::vector<StripEntry> SortedEntries(const RollupStrips& strips, std::uint32_t kept) {
    std::vector<StripEntry> entries;
    entries.reserve(strips.counts.size());
    for (std::size_t strip = 0; strip < strips.words.size(); ++strip) {
        std::uint32_t number = strips.firstEntries[strip];
        for (std::uint64_t left = strips.periods[strip]; left != 0; left &= left - 1, ++number) {
            const auto granule = static_cast<std::uint32_t>(std::countr_zero(left)); // of the word's block
            entries.push_back(
                {{strips.words[strip] & kept, granule}, number, number == strips.firstEntries[strip]});
        }
    }
    std::sort(entries.begin(), entries.end(), [](const StripEntry& left, const StripEntry& right) {
        return std::pair(left.place.word, left.place.granule) <
               std::pair(right.place.word, right.place.granule);
    });
    return entries;
}

/// How many words differ in `kept`.
std::size_t CountWords(std::vector<std::uint32_t> words, std::uint32_t kept) {
    std::transform(words.begin(), words.end(), words.begin(), [&](auto word) { return word & kept; });
    std::sort(words.begin(), words.end());
    return static_cast<std::size_t>(std::unique(words.begin(), words.end()) - words.begin());
}

} // namespace

void StripWriter::MoveTo(StripPlace place) {
    const bool isNewStrip = !last_ || last_->word != place.word;
    if (isNewStrip) {
        strips_.words.push_back(place.word);
        strips_.periods.push_back(0);
        strips_.firstEntries.push_back(static_cast<std::uint32_t>(strips_.counts.size()));
    }
    if (isNewStrip || last_->granule != place.granule) {
        strips_.periods.back() |= std::uint64_t{1} << place.granule % RollupTable::blockGranules;
        strips_.counts.push_back(isNewStrip ? 0 : strips_.counts.back());
        for (const std::size_t i : summed_) {
            strips_.sums[i].push_back(isNewStrip ? 0 : strips_.sums[i].back());
        }
    }
    last_ = place;
}

std::uint32_t MergeStrips(const RollupTable::WordColumn& left, std::span<const std::size_t> summed,
                          RollupStrips& strips) {
    constexpr std::size_t leastMergedInOne = 4;
    const std::uint32_t kept = ~left.Mask();
    const std::size_t merged = CountWords(strips.words, kept);
    if (merged * leastMergedInOne > strips.words.size()) {
        return 0;
    }
    StripWriter writer(strips, summed);
    for (const StripEntry& entry : SortedEntries(strips, kept)) {
        writer.MoveTo(entry.place);
        const auto added = [&](const auto& running) {
            return running[entry.number] - (entry.isFirst ? 0 : running[entry.number - 1]);
        };
        strips.counts.back() += added(strips.counts);
        for (const std::size_t i : summed) {
            strips.sums[i].back() += added(strips.sums[i]);
        }
    }
    return static_cast<std::uint32_t>(merged);
}

} // namespace qel::engine
