#include "engine/build/RollupBuilder.h"

#include "engine/build/MemberSets.h"
#include "engine/build/RollupChoice.h"
#include "engine/build/RollupLayers.h"
#include "engine/build/RollupLayout.h"
#include "engine/build/RollupStrips.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <numeric>
#include <span>

namespace qel::engine {

namespace {

struct StripCount {
    std::uint64_t strips = 0, entries = 0;
};

/// What one rollup has become.
struct MadeRollup {
    Rollup record;
    RowNumbers rows; ///< of a rollup that is rows
    RollupStrips strips;
};

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
    void MakeStrips(std::span<const std::uint32_t> rows, StripCount count, RollupStrips& strips) const;
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
        if (!facts.values[i].empty()) {
            summed_.push_back(i);
        }
    }
    for (const RollupTable::WordColumn& word : layout.wordColumns) {
        const auto& codes = facts.keys[word.column];
        for (std::size_t row = 0; row < places_.size(); ++row) {
            places_[row].word |= codes[row] << word.shift;
        }
    }
    if (layout.timeColumn) {
        FindGranules(facts.keys[*layout.timeColumn]);
    }
    SortFacts();
}

void RollupMaker::FindGranules(const std::vector<std::uint32_t>& times) {
    std::vector<std::uint32_t> granuleOf; // by time code
    for (std::uint32_t granule = 0; granule + 1 < layout_.granules.size(); ++granule) {
        granuleOf.insert(granuleOf.end(), layout_.granules[granule + 1] - layout_.granules[granule], granule);
    }
    for (std::size_t row = 0; row < places_.size(); ++row) {
        places_[row].granule = granuleOf[times[row]];
        places_[row].word |= places_[row].granule / RollupTable::blockGranules;
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
        for (const std::uint32_t code : codes) {
            ++place[std::size_t{code} + 1];
        }
        std::partial_sum(place.begin(), place.end(), place.begin());
        for (const std::uint32_t row : sorted_) {
            next[place[codes[row]]++] = row;
        }
        sorted_.swap(next);
    };
    if (layout_.timeColumn) {
        sortBy(*layout_.timeColumn);
    }
    for (auto word = layout_.wordColumns.rbegin(); word != layout_.wordColumns.rend(); ++word) {
        sortBy(word->column);
    }
}

std::vector<MadeRollup> RollupMaker::Make(const RollupLayer& layer) const {
    std::vector<MadeRollup> made;
    if (!layer.column) {
        MakeOf(layer.rollups.front(), sorted_, made);
        return made;
    }
    std::vector<std::size_t> place;
    const RowNumbers rows = layer.Distribute(sorted_, facts_.keys[*layer.column], groups_, place);
    for (std::size_t i = 0; i < layer.sets.size(); ++i) {
        MakeOf(layer.rollups[i], std::span(rows).subspan(place[i], place[i + 1] - place[i]), made);
    }
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
        for (std::size_t i = 0; i < layer.sets.size(); ++i) {
            made.push_back(MakeOne(*layer.rollups[i].front(),
                                   std::span(distributed).subspan(place[i], place[i + 1] - place[i])));
        }
    }
}

MadeRollup RollupMaker::MakeOne(const ChosenRollup& chosen, std::span<const std::uint32_t> rows) const {
    constexpr std::size_t leastRowsOfStrips = 4096;
    constexpr std::uint64_t stripBytes =
        sizeof(std::uint32_t) + sizeof(std::uint64_t) + sizeof(std::uint32_t);
    MadeRollup made;
    made.record.key = chosen.Key();
    made.record.rows = rows.size();
    made.strips.sums.resize(model_.measures.size());
    if (rows.size() >= leastRowsOfStrips) {
        const StripCount count = CountStrips(rows);
        if (count.strips * stripBytes + count.entries * StripEntryBytes(model_) <=
            rows.size() * RollupRowBytes(model_, layout_)) {
            made.record.strips = static_cast<std::uint32_t>(count.strips);
            MakeStrips(rows, count, made.strips);
            if (!layout_.wordColumns.empty()) {
                made.record.merged = MergeStrips(layout_.wordColumns.back(), summed_, made.strips);
            }
            return made;
        }
    }
    made.rows = ByLastWordColumn(rows);
    return made;
}

RowNumbers RollupMaker::ByLastWordColumn(std::span<const std::uint32_t> rows) const {
    RowNumbers sorted(rows.begin(), rows.end());
    if (layout_.wordColumns.empty()) {
        return sorted;
    }
    const std::uint16_t column = layout_.wordColumns.back().column;
    const auto& codes = facts_.keys[column];
    std::vector<std::size_t> place(std::size_t{model_.keyColumns[column].codes} + 1);
    for (const std::uint32_t row : rows) {
        ++place[std::size_t{codes[row]} + 1];
    }
    std::partial_sum(place.begin(), place.end(), place.begin());
    for (const std::uint32_t row : rows) {
        sorted[place[codes[row]]++] = row;
    }
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

void RollupMaker::MakeStrips(std::span<const std::uint32_t> rows, StripCount count,
                             RollupStrips& strips) const {
    strips.words.reserve(count.strips);
    strips.periods.reserve(count.strips);
    strips.firstEntries.reserve(count.strips);
    strips.counts.reserve(count.entries);
    for (const std::size_t i : summed_) {
        strips.sums[i].reserve(count.entries);
    }
    StripWriter writer(strips, summed_);
    for (const std::uint32_t row : rows) {
        writer.MoveTo(places_[row]);
        ++strips.counts.back();
        for (const std::size_t i : summed_) {
            strips.sums[i].back() += facts_.values[i][row] / model_.measures[i].unit;
        }
    }
}

/// Room for all of them, so that no list is copied as it grows.
void Reserve(const std::vector<std::vector<MadeRollup>>& made, bool hasCounts, RollupModel& model) {
    std::size_t rollups = 0, strips = 0, entries = 0;
    for (const std::vector<MadeRollup>& ofLayer : made) {
        rollups += ofLayer.size();
        for (const MadeRollup& rollup : ofLayer) {
            strips += rollup.strips.words.size();
            entries += rollup.strips.counts.size();
        }
    }
    model.records.reserve(rollups);
    model.stripWords.reserve(strips);
    model.stripPeriods.reserve(strips);
    model.stripEntries.reserve(strips + 1);
    for (auto& sums : model.sums) {
        sums.reserve(entries); // untouched memory of a measure that counts costs nothing
    }
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
        const RollupStrips& strips = made.strips;
        made.record.start = model.stripWords.size();
        const std::uint32_t firstEntry = model.stripEntries.back();
        model.stripEntries.pop_back();
        for (const std::uint32_t entry : strips.firstEntries) {
            model.stripEntries.push_back(firstEntry + entry);
        }
        model.stripEntries.push_back(firstEntry + static_cast<std::uint32_t>(strips.counts.size()));
        model.stripWords.insert(model.stripWords.end(), strips.words.begin(), strips.words.end());
        model.stripPeriods.insert(model.stripPeriods.end(), strips.periods.begin(), strips.periods.end());
        for (std::size_t i = 0; i < strips.sums.size(); ++i) {
            model.sums[i].insert(model.sums[i].end(), strips.sums[i].begin(), strips.sums[i].end());
        }
        if (hasCounts) {
            model.counts.insert(model.counts.end(), strips.counts.begin(), strips.counts.end());
        }
    }
    model.records.push_back(made.record);
}

} // namespace

BuiltRollups BuildRollups(const CubeModel& model, const FactColumns& facts) {
    BuiltRollups built;
    built.model = LayOutRollups(model);
    FindGroups(model, built.model);
    const std::vector<ChosenRollup> chosen = ChooseRollups(model, facts, built.model);
    if (chosen.empty()) {
        return built;
    }
    const std::vector<RollupLayer> layers = MakeRollupLayers(chosen, built.model.Groups());
    const RollupMaker maker(model, facts, built.model);
    std::vector<std::vector<MadeRollup>> made(layers.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < layers.size(); i = next++) {
            made[i] = maker.Make(layers[i]);
        }
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
