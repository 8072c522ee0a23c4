#include "engine/build/RollupBuilder.h"

#include "engine/build/RollupChoice.h"
#include "engine/build/RollupLayout.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <future>
#include <numeric>
#include <span>

namespace qel::engine {

namespace {

using Rows = std::vector<std::uint32_t>;

/// Rollups of one leading column whose codes do not overlap: made in one pass.
struct Layer {
    std::optional<std::uint16_t> column;
    std::vector<KeyRange> ranges; ///< ascending
    /// For every range, what is to be made of its facts.
    std::vector<std::vector<const ChosenRollup*>> rollups;
};

/// What one rollup has become.
struct MadeRollup {
    Rollup record;
    Rows rows; ///< of a rollup that is rows
    std::vector<std::uint32_t> words, firstEntries;
    std::vector<std::uint64_t> periods;
    std::vector<std::vector<std::int64_t>> sums; ///< by measure
    std::vector<std::uint32_t> counts;
};

/// Splits ranges into as few lists as keep overlapping ones apart.
std::vector<Layer> MakeLayers(const std::vector<ChosenRollup>& chosen) {
    std::vector<const ChosenRollup*> order;
    order.reserve(chosen.size());
    for (const ChosenRollup& rollup : chosen)
        order.push_back(&rollup);
    std::stable_sort(order.begin(), order.end(), [](const ChosenRollup* left, const ChosenRollup* right) {
        if (left->lead != right->lead)
            return left->lead < right->lead;
        return left->leadCodes.first != right->leadCodes.first
                   ? left->leadCodes.first < right->leadCodes.first
                   : left->leadCodes.last > right->leadCodes.last;
    });
    std::vector<Layer> layers;
    for (const ChosenRollup* rollup : order) {
        const auto fits = [&](const Layer& layer) {
            return layer.column == rollup->lead && (layer.ranges.back() == rollup->leadCodes ||
                                                    layer.ranges.back().last <= rollup->leadCodes.first);
        };
        auto layer = std::find_if(layers.begin(), layers.end(), fits);
        if (layer == layers.end()) {
            layers.push_back({rollup->lead, {rollup->leadCodes}, {{}}});
            layer = layers.end() - 1;
        } else if (!(layer->ranges.back() == rollup->leadCodes)) {
            layer->ranges.push_back(rollup->leadCodes);
            layer->rollups.emplace_back();
        }
        layer->rollups.back().push_back(rollup);
    }
    return layers;
}

/// Makes the rollups from facts that are sorted by word and time; every step keeps that order.
class RollupMaker {
public:
    RollupMaker(const CubeModel& model, const FactColumns& facts, const RollupModel& layout);

    std::vector<MadeRollup> Make(const Layer& layer) const;

private:
    void SortFacts();
    MadeRollup MakeOne(const ChosenRollup& chosen, std::span<const std::uint32_t> rows) const;
    void MakeStrips(std::span<const std::uint32_t> rows, MadeRollup& made) const;
    void MakeOf(const std::vector<const ChosenRollup*>& chosen, std::span<const std::uint32_t> rows,
                std::vector<MadeRollup>& made) const;
    std::uint32_t TimeOf(std::uint32_t row) const {
        return layout_.timeColumn ? facts_.keys[*layout_.timeColumn][row] : 0;
    }

    const CubeModel& model_;
    const FactColumns& facts_;
    const RollupModel& layout_;
    std::vector<std::uint32_t> words_;     ///< by fact, without the block
    std::vector<std::uint32_t> granuleOf_; ///< by time code
    Rows sorted_;
};

RollupMaker::RollupMaker(const CubeModel& model, const FactColumns& facts, const RollupModel& layout)
    : model_(model), facts_(facts), layout_(layout), words_(facts.rowCount) {
    for (const RollupTable::WordColumn& word : layout.wordColumns) {
        const auto& codes = facts.keys[word.column];
        for (std::size_t row = 0; row < words_.size(); ++row)
            words_[row] |= codes[row] << word.shift;
    }
    for (std::uint32_t granule = 0; granule + 1 < layout.granules.size(); ++granule)
        granuleOf_.insert(granuleOf_.end(), layout.granules[granule + 1] - layout.granules[granule], granule);
    SortFacts();
}

/// One counting sort for every column of the key, the least significant first.
void RollupMaker::SortFacts() {
    sorted_.resize(facts_.rowCount);
    std::iota(sorted_.begin(), sorted_.end(), 0U);
    Rows next(sorted_.size());
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

/// Gives each of the rows to the range that its code lies in: the rows of range i start at place[i]. Ranges
/// do not overlap.
Rows Distribute(std::span<const std::uint32_t> rows, const std::vector<std::uint32_t>& codes,
                const std::vector<KeyRange>& ranges, std::uint32_t codeCount,
                std::vector<std::size_t>& place) {
    std::vector<std::uint32_t> rangeOf(codeCount, static_cast<std::uint32_t>(ranges.size()));
    for (std::uint32_t i = 0; i < ranges.size(); ++i)
        std::fill(rangeOf.begin() + ranges[i].first, rangeOf.begin() + ranges[i].last, i);
    place.assign(ranges.size() + 2, 0);
    for (const std::uint32_t row : rows)
        ++place[rangeOf[codes[row]] + std::size_t{1}];
    std::partial_sum(place.begin(), place.end(), place.begin());
    Rows distributed(rows.size());
    std::vector<std::size_t> next = place;
    for (const std::uint32_t row : rows)
        distributed[next[rangeOf[codes[row]]]++] = row;
    return distributed;
}

std::vector<MadeRollup> RollupMaker::Make(const Layer& layer) const {
    std::vector<MadeRollup> made;
    if (!layer.column) {
        MakeOf(layer.rollups.front(), sorted_, made);
        return made;
    }
    std::vector<std::size_t> place;
    const Rows rows = Distribute(sorted_, facts_.keys[*layer.column], layer.ranges,
                                 model_.keyColumns[*layer.column].codes, place);
    for (std::size_t i = 0; i < layer.ranges.size(); ++i)
        MakeOf(layer.rollups[i], std::span(rows).subspan(place[i], place[i + 1] - place[i]), made);
    return made;
}

/// The rollups of one range of leading codes: of all its facts, and of those under ranges of other columns.
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
    for (const Layer& layer : MakeLayers(inner)) {
        std::vector<std::size_t> place;
        const Rows distributed = Distribute(rows, facts_.keys[*layer.column], layer.ranges,
                                            model_.keyColumns[*layer.column].codes, place);
        for (std::size_t i = 0; i < layer.ranges.size(); ++i)
            made.push_back(MakeOne(*layer.rollups[i].front(),
                                   std::span(distributed).subspan(place[i], place[i + 1] - place[i])));
    }
}

MadeRollup RollupMaker::MakeOne(const ChosenRollup& chosen, std::span<const std::uint32_t> rows) const {
    constexpr std::size_t leastRowsOfStrips = 4096;
    MadeRollup made;
    made.record.key = chosen.Key();
    made.record.rows = rows.size();
    made.sums.resize(model_.measures.size());
    if (rows.size() >= leastRowsOfStrips) {
        MakeStrips(rows, made);
        constexpr std::uint64_t stripBytes =
            sizeof(std::uint32_t) + sizeof(std::uint64_t) + sizeof(std::uint32_t);
        const std::uint64_t bytes =
            made.words.size() * stripBytes + made.counts.size() * StripEntryBytes(model_);
        if (bytes <= rows.size() * RollupRowBytes(model_, layout_)) {
            made.record.strips = static_cast<std::uint32_t>(made.words.size());
            return made;
        }
        made.words.clear();
        made.periods.clear();
        made.firstEntries.clear();
        made.counts.clear();
        made.sums.assign(model_.measures.size(), {});
    }
    made.rows.assign(rows.begin(), rows.end());
    return made;
}

void RollupMaker::MakeStrips(std::span<const std::uint32_t> rows, MadeRollup& made) const {
    constexpr std::uint32_t blockGranules = 64;
    std::uint32_t lastGranule = 0;
    for (const std::uint32_t row : rows) {
        const std::uint32_t granule = granuleOf_[TimeOf(row)];
        const std::uint32_t word = words_[row] | granule / blockGranules;
        const bool isNewStrip = made.words.empty() || made.words.back() != word;
        if (isNewStrip) {
            made.words.push_back(word);
            made.periods.push_back(0);
            made.firstEntries.push_back(static_cast<std::uint32_t>(made.counts.size()));
        }
        if (isNewStrip || granule != lastGranule) {
            made.periods.back() |= std::uint64_t{1} << granule % blockGranules;
            made.counts.push_back(isNewStrip ? 0 : made.counts.back());
            for (auto& sums : made.sums)
                sums.push_back(isNewStrip ? 0 : sums.back());
        }
        lastGranule = granule;
        ++made.counts.back();
        for (std::size_t i = 0; i < made.sums.size(); ++i) {
            if (!facts_.values[i].empty())
                made.sums[i].back() += facts_.values[i][row] / model_.measures[i].unit;
        }
    }
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
    const std::vector<ChosenRollup> chosen = ChooseRollups(model, facts, built.model);
    if (chosen.empty())
        return built;
    const std::vector<Layer> layers = MakeLayers(chosen);
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
    for (std::vector<MadeRollup>& ofLayer : made) {
        for (MadeRollup& rollup : ofLayer)
            Append(rollup, hasCounts, built);
        ofLayer.clear();
    }
    return built;
}

} // namespace qel::engine
