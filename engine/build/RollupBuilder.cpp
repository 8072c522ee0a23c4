#include "engine/build/RollupBuilder.h"

#include "engine/build/MemberSets.h"
#include "engine/build/RollupChoice.h"
#include "engine/build/RollupLayers.h"
#include "engine/build/RollupLayout.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <future>
#include <numeric>
#include <optional>
#include <span>
#include <utility>

namespace qel::engine {

namespace {

constexpr std::uint32_t blockGranules = 64;

/// The strip that a fact belongs to, and its granule.
struct StripPlace {
    std::uint32_t word = 0, granule = 0;

    bool operator==(const StripPlace&) const = default;
};

struct StripCount {
    std::uint64_t strips = 0, entries = 0;
};

/// What one rollup has become.
struct MadeRollup {
    Rollup record;
    RowNumbers rows; ///< of a rollup that is rows
    std::vector<std::uint32_t> words, firstEntries;
    std::vector<std::uint64_t> periods;
    std::vector<std::vector<std::int64_t>> sums; ///< by measure
    std::vector<std::uint32_t> counts;
};

/// Writes strips behind those of a rollup, entry by entry: by word and granule.
class StripWriter {
public:
    StripWriter(MadeRollup& made, std::span<const std::size_t> summed) : made_(made), summed_(summed) {}

    /// Goes on with the entry of that place, which is the last one or behind it: the last of the counts and
    /// of the sums is its own.
    void MoveTo(StripPlace place) {
        const bool isNewStrip = !last_ || last_->word != place.word;
        if (isNewStrip) {
            made_.words.push_back(place.word);
            made_.periods.push_back(0);
            made_.firstEntries.push_back(static_cast<std::uint32_t>(made_.counts.size()));
        }
        if (isNewStrip || last_->granule != place.granule) {
            made_.periods.back() |= std::uint64_t{1} << place.granule % blockGranules;
            made_.counts.push_back(isNewStrip ? 0 : made_.counts.back());
            for (const std::size_t i : summed_)
                made_.sums[i].push_back(isNewStrip ? 0 : made_.sums[i].back());
        }
        last_ = place;
    }

private:
    MadeRollup& made_;
    std::span<const std::size_t> summed_; ///< measures; the others count
    std::optional<StripPlace> last_;
};

/// One running sum of a rollup's strips.
struct StripEntry {
    StripPlace place;
    std::uint32_t number = 0;
    bool isFirst = false; ///< of its strip
};

/// By their places, of which `kept` is left of the words.
std::vector<StripEntry> SortedEntries(const MadeRollup& made, std::uint32_t kept) {
    std::vector<StripEntry> entries;
    entries.reserve(made.counts.size());
    for (std::size_t strip = 0; strip < made.words.size(); ++strip) {
        std::uint32_t number = made.firstEntries[strip];
        for (std::uint64_t left = made.periods[strip]; left != 0; left &= left - 1, ++number) {
            const auto granule = static_cast<std::uint32_t>(std::countr_zero(left)); // of the word's block
            entries.push_back(
                {{made.words[strip] & kept, granule}, number, number == made.firstEntries[strip]});
        }
    }
    std::sort(entries.begin(), entries.end(), [](const StripEntry& left, const StripEntry& right) {
        return std::pair(left.place.word, left.place.granule) <
               std::pair(right.place.word, right.place.granule);
    });
    return entries;
}

/// Makes the rollups from facts that are sorted by word and time; every step keeps that order.
class RollupMaker {
public:
    RollupMaker(const CubeModel& model, const FactColumns& facts, const RollupModel& layout);

    std::vector<MadeRollup> Make(const RollupLayer& layer) const;

private:
    void FindGranules(const std::vector<std::uint32_t>& times);
    void SortFacts();
    MadeRollup MakeOne(const ChosenRollup& chosen, std::span<const std::uint32_t> rows) const;
    RowNumbers ByLastWordColumn(std::span<const std::uint32_t> rows) const;
    StripCount CountStrips(std::span<const std::uint32_t> rows) const;
    void MakeStrips(std::span<const std::uint32_t> rows, StripCount count, MadeRollup& made) const;
    /// Adds the merged strips where they are far fewer.
    void MergeStrips(MadeRollup& made) const;
    void MakeOf(const std::vector<const ChosenRollup*>& chosen, std::span<const std::uint32_t> rows,
                std::vector<MadeRollup>& made) const;

    const CubeModel& model_;
    const FactColumns& facts_;
    const RollupModel& layout_;
    const CodeGroups groups_;
    std::vector<std::size_t> summed_; ///< measures; the others count
    std::vector<StripPlace> places_;  ///< by fact
    RowNumbers sorted_;
};

RollupMaker::RollupMaker(const CubeModel& model, const FactColumns& facts, const RollupModel& layout)
    : model_(model), facts_(facts), layout_(layout), groups_(layout.Groups()), places_(facts.rowCount) {
    for (std::size_t i = 0; i < facts.values.size(); ++i) {
        if (!facts.values[i].empty())
            summed_.push_back(i);
    }
    for (const RollupTable::WordColumn& word : layout.wordColumns) {
        const auto& codes = facts.keys[word.column];
        for (std::size_t row = 0; row < places_.size(); ++row)
            places_[row].word |= codes[row] << word.shift;
    }
    if (layout.timeColumn)
        FindGranules(facts.keys[*layout.timeColumn]);
    SortFacts();
}

void RollupMaker::FindGranules(const std::vector<std::uint32_t>& times) {
    std::vector<std::uint32_t> granuleOf; // by time code
    for (std::uint32_t granule = 0; granule + 1 < layout_.granules.size(); ++granule)
        granuleOf.insert(granuleOf.end(), layout_.granules[granule + 1] - layout_.granules[granule], granule);
    for (std::size_t row = 0; row < places_.size(); ++row) {
        places_[row].granule = granuleOf[times[row]];
        places_[row].word |= places_[row].granule / blockGranules;
    }
}

/// One counting sort for every column of the key, the least significant first.
void RollupMaker::SortFacts() {
    sorted_.resize(facts_.rowCount);
    std::iota(sorted_.begin(), sorted_.end(), 0U);
    RowNumbers next(sorted_.size());
    const auto sortBy = [&](std::size_t column) {
        const auto& codes = facts_.keys[column];
        std::vector<std::uint32_t> place(std::size_t{model_.keyColumns[column].codes} + 1);
        for (const std::uint32_t code : codes)
            ++place[std::size_t{code} + 1];
        std::partial_sum(place.begin(), place.end(), place.begin());
        for (const std::uint32_t row : sorted_)
            next[place[codes[row]]++] = row;
        sorted_.swap(next);
    };
    if (layout_.timeColumn)
        sortBy(*layout_.timeColumn);
    for (auto word = layout_.wordColumns.rbegin(); word != layout_.wordColumns.rend(); ++word)
        sortBy(word->column);
}

std::vector<MadeRollup> RollupMaker::Make(const RollupLayer& layer) const {
    std::vector<MadeRollup> made;
    if (!layer.column) {
        MakeOf(layer.rollups.front(), sorted_, made);
        return made;
    }
    std::vector<std::size_t> place;
    const RowNumbers rows = layer.Distribute(sorted_, facts_.keys[*layer.column], groups_, place);
    for (std::size_t i = 0; i < layer.sets.size(); ++i)
        MakeOf(layer.rollups[i], std::span(rows).subspan(place[i], place[i + 1] - place[i]), made);
    return made;
}

/// The rollups of one set of leading codes: of all its facts, and of those under sets of other columns.
void RollupMaker::MakeOf(const std::vector<const ChosenRollup*>& chosen, std::span<const std::uint32_t> rows,
                         std::vector<MadeRollup>& made) const {
    std::vector<ChosenRollup> inner;
    for (const ChosenRollup* rollup : chosen) {
        if (!rollup->second) {
            made.push_back(MakeOne(*rollup, rows));
            continue;
        }
        inner.push_back(*rollup);
        std::swap(inner.back().lead, inner.back().second);
        std::swap(inner.back().leadCodes, inner.back().secondCodes);
    }
    for (const RollupLayer& layer : MakeRollupLayers(inner, groups_)) {
        std::vector<std::size_t> place;
        const RowNumbers distributed = layer.Distribute(rows, facts_.keys[*layer.column], groups_, place);
        for (std::size_t i = 0; i < layer.sets.size(); ++i)
            made.push_back(MakeOne(*layer.rollups[i].front(),
                                   std::span(distributed).subspan(place[i], place[i + 1] - place[i])));
    }
}

MadeRollup RollupMaker::MakeOne(const ChosenRollup& chosen, std::span<const std::uint32_t> rows) const {
    constexpr std::size_t leastRowsOfStrips = 4096;
    constexpr std::uint64_t stripBytes =
        sizeof(std::uint32_t) + sizeof(std::uint64_t) + sizeof(std::uint32_t);
    MadeRollup made;
    made.record.key = chosen.Key();
    made.record.rows = rows.size();
    made.sums.resize(model_.measures.size());
    if (rows.size() >= leastRowsOfStrips) {
        const StripCount count = CountStrips(rows);
        if (count.strips * stripBytes + count.entries * StripEntryBytes(model_) <=
            rows.size() * RollupRowBytes(model_, layout_)) {
            MakeStrips(rows, count, made);
            MergeStrips(made);
            return made;
        }
    }
    made.rows = ByLastWordColumn(rows);
    return made;
}

RowNumbers RollupMaker::ByLastWordColumn(std::span<const std::uint32_t> rows) const {
    RowNumbers sorted(rows.begin(), rows.end());
    if (layout_.wordColumns.empty())
        return sorted;
    const std::uint16_t column = layout_.wordColumns.back().column;
    const auto& codes = facts_.keys[column];
    std::vector<std::size_t> place(std::size_t{model_.keyColumns[column].codes} + 1);
    for (const std::uint32_t row : rows)
        ++place[std::size_t{codes[row]} + 1];
    std::partial_sum(place.begin(), place.end(), place.begin());
    for (const std::uint32_t row : rows)
        sorted[place[codes[row]]++] = row;
    return sorted;
}

StripCount RollupMaker::CountStrips(std::span<const std::uint32_t> rows) const {
    StripCount count;
    StripPlace last;
    for (const std::uint32_t row : rows) {
        const StripPlace place = places_[row];
        count.strips += count.strips == 0 || place.word != last.word ? 1U : 0U;
        count.entries += count.entries == 0 || !(place == last) ? 1U : 0U;
        last = place;
    }
    return count;
}

void RollupMaker::MakeStrips(std::span<const std::uint32_t> rows, StripCount count, MadeRollup& made) const {
    made.record.strips = static_cast<std::uint32_t>(count.strips);
    made.words.reserve(count.strips);
    made.periods.reserve(count.strips);
    made.firstEntries.reserve(count.strips);
    made.counts.reserve(count.entries);
    for (const std::size_t i : summed_)
        made.sums[i].reserve(count.entries);
    StripWriter writer(made, summed_);
    for (const std::uint32_t row : rows) {
        writer.MoveTo(places_[row]);
        ++made.counts.back();
        for (const std::size_t i : summed_)
            made.sums[i].back() += facts_.values[i][row] / model_.measures[i].unit;
    }
}

void RollupMaker::MergeStrips(MadeRollup& made) const {
    constexpr std::size_t leastMergedInOne = 4;
    if (layout_.wordColumns.empty())
        return;
    const RollupTable::WordColumn& left = layout_.wordColumns.back();
    const auto kept = static_cast<std::uint32_t>(~(((std::uint64_t{1} << left.bits) - 1) << left.shift));
    std::vector<std::uint32_t> words = made.words;
    std::transform(words.begin(), words.end(), words.begin(), [&](auto word) { return word & kept; });
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    if (words.size() * leastMergedInOne > made.words.size())
        return;
    made.record.merged = static_cast<std::uint32_t>(words.size());
    StripWriter writer(made, summed_);
    for (const StripEntry& entry : SortedEntries(made, kept)) {
        writer.MoveTo(entry.place);
        const auto added = [&](const auto& running) {
            return running[entry.number] - (entry.isFirst ? 0 : running[entry.number - 1]);
        };
        made.counts.back() += added(made.counts);
        for (const std::size_t i : summed_)
            made.sums[i].back() += added(made.sums[i]);
    }
}

/// Room for all of them, so that no list is copied as it grows.
void Reserve(const std::vector<std::vector<MadeRollup>>& made, bool hasCounts, RollupModel& model) {
    std::size_t rollups = 0, strips = 0, entries = 0;
    for (const std::vector<MadeRollup>& ofLayer : made) {
        rollups += ofLayer.size();
        for (const MadeRollup& rollup : ofLayer) {
            strips += rollup.words.size();
            entries += rollup.counts.size();
        }
    }
    model.records.reserve(rollups);
    model.stripWords.reserve(strips);
    model.stripPeriods.reserve(strips);
    model.stripEntries.reserve(strips + 1);
    for (auto& sums : model.sums)
        sums.reserve(entries); // untouched memory of a measure that counts costs nothing
    model.counts.reserve(hasCounts ? entries : 0);
}

/// Puts a rollup behind those that are there.
void Append(MadeRollup& made, bool hasCounts, BuiltRollups& built) {
    RollupModel& model = built.model;
    if (made.record.strips == 0) {
        made.record.start = model.rows;
        model.rows += made.rows.size();
        built.rows.push_back(std::move(made.rows));
    } else {
        made.record.start = model.stripWords.size();
        const std::uint32_t firstEntry = model.stripEntries.back();
        model.stripEntries.pop_back();
        for (const std::uint32_t entry : made.firstEntries)
            model.stripEntries.push_back(firstEntry + entry);
        model.stripEntries.push_back(firstEntry + static_cast<std::uint32_t>(made.counts.size()));
        model.stripWords.insert(model.stripWords.end(), made.words.begin(), made.words.end());
        model.stripPeriods.insert(model.stripPeriods.end(), made.periods.begin(), made.periods.end());
        for (std::size_t i = 0; i < made.sums.size(); ++i)
            model.sums[i].insert(model.sums[i].end(), made.sums[i].begin(), made.sums[i].end());
        if (hasCounts)
            model.counts.insert(model.counts.end(), made.counts.begin(), made.counts.end());
    }
    model.records.push_back(made.record);
}

} // namespace

BuiltRollups BuildRollups(const CubeModel& model, const FactColumns& facts) {
    BuiltRollups built;
    built.model = LayOutRollups(model);
    FindGroups(model, built.model);
    const std::vector<ChosenRollup> chosen = ChooseRollups(model, facts, built.model);
    if (chosen.empty())
        return built;
    const std::vector<RollupLayer> layers = MakeRollupLayers(chosen, built.model.Groups());
    const RollupMaker maker(model, facts, built.model);
    std::vector<std::vector<MadeRollup>> made(layers.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < layers.size(); i = next++)
            made[i] = maker.Make(layers[i]);
    };
    std::future<void> other = std::async(std::launch::async, work);
    work();
    other.get();
    const bool hasCounts =
        std::any_of(model.measures.begin(), model.measures.end(),
                    [](const Measure& measure) { return measure.aggregate == Aggregate::Count; });
    Reserve(made, hasCounts, built.model);
    for (std::vector<MadeRollup>& ofLayer : made) {
        for (MadeRollup& rollup : ofLayer) {
            Append(rollup, hasCounts, built);
            rollup = {};
        }
    }
    return built;
}

} // namespace qel::engine
