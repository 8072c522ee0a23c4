#include "engine/build/AggregateBuilder.h"

#include "engine/build/AggregateChoice.h"
#include "engine/build/AggregateLayers.h"
#include "engine/build/AggregateLayout.h"
#include "engine/build/MemberSets.h"
#include "engine/build/PrefixSums.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <numeric>
#include <span>

namespace qel::engine {

namespace {

struct PrefixSize {
    std::uint64_t keys = 0, sums = 0;
};

/// A computed aggregate.
struct MadeAggregate {
    Aggregate record;
    RowNumbers rows; ///< of a row aggregate
    PrefixSums prefixSums;
};

/// Computes aggregates from facts sorted by packed key and time. Every step keeps that order.
class AggregateMaker {
public:
    AggregateMaker(const CubeModel& model, const FactColumns& facts, const AggregateModel& layout);

    std::vector<MadeAggregate> Make(const AggregateLayer& layer) const;

private:
    void FindTimeBuckets(const std::vector<std::uint32_t>& times);
    void SortFacts();
    MadeAggregate MakeOne(const ChosenAggregate& chosen, std::span<const std::uint32_t> rows) const;
    RowNumbers ByLastKeyColumn(std::span<const std::uint32_t> rows) const;
    PrefixSize SizeOfPrefixSums(std::span<const std::uint32_t> rows) const;
    void MakePrefixSums(std::span<const std::uint32_t> rows, PrefixSize size, PrefixSums& prefixSums) const;
    void MakeOf(const std::vector<const ChosenAggregate*>& chosen, std::span<const std::uint32_t> rows,
                std::vector<MadeAggregate>& made) const;

    const CubeModel& model_;
    const FactColumns& facts_;
    const AggregateModel& layout_;
    const CodeGroups groups_;
    std::vector<std::size_t> summed_;  ///< the measures that are summed; the others are counts
    std::vector<AggregateCell> cells_; ///< by fact
    RowNumbers sorted_;
};

AggregateMaker::AggregateMaker(const CubeModel& model, const FactColumns& facts, const AggregateModel& layout)
    : model_(model), facts_(facts), layout_(layout), groups_(layout.Groups()), cells_(facts.rowCount) {
    for (std::size_t i = 0; i < facts.values.size(); ++i) {
        if (!facts.values[i].empty()) {
            summed_.push_back(i);
        }
    }
    for (const AggregateTable::PackedKeyColumn& part : layout.packedKeyColumns) {
        const auto& codes = facts.keys[part.column];
        for (std::size_t row = 0; row < cells_.size(); ++row) {
            cells_[row].key |= codes[row] << part.shift;
        }
    }
    if (layout.timeColumn) {
        FindTimeBuckets(facts.keys[*layout.timeColumn]);
    }
    SortFacts();
}

void AggregateMaker::FindTimeBuckets(const std::vector<std::uint32_t>& times) {
    std::vector<std::uint32_t> bucketOf; // by time code
    for (std::uint32_t bucket = 0; bucket + 1 < layout_.timeBuckets.size(); ++bucket) {
        bucketOf.insert(bucketOf.end(), layout_.timeBuckets[bucket + 1] - layout_.timeBuckets[bucket],
                        bucket);
    }
    for (std::size_t row = 0; row < cells_.size(); ++row) {
        cells_[row].bucket = bucketOf[times[row]];
        cells_[row].key |= cells_[row].bucket / AggregateTable::blockBuckets;
    }
}

/// A radix sort: one stable counting sort per key column, the least significant first.
void AggregateMaker::SortFacts() {
    sorted_.resize(facts_.rowCount);
    std::iota(sorted_.begin(), sorted_.end(), 0U);
    RowNumbers next(sorted_.size());
    const auto sortBy = [&](std::size_t column) {
        const auto& codes = facts_.keys[column];
        std::vector<std::uint32_t> starts(std::size_t{model_.keyColumns[column].codes} + 1);
        for (const std::uint32_t code : codes) {
            ++starts[std::size_t{code} + 1];
        }
        std::partial_sum(starts.begin(), starts.end(), starts.begin());
        for (const std::uint32_t row : sorted_) {
            next[starts[codes[row]]++] = row;
        }
        sorted_.swap(next);
    };
    if (layout_.timeColumn) {
        sortBy(*layout_.timeColumn);
    }
    for (auto part = layout_.packedKeyColumns.rbegin(); part != layout_.packedKeyColumns.rend(); ++part) {
        sortBy(part->column);
    }
}

std::vector<MadeAggregate> AggregateMaker::Make(const AggregateLayer& layer) const {
    std::vector<MadeAggregate> made;
    if (!layer.column) {
        MakeOf(layer.aggregates.front(), sorted_, made);
        return made;
    }
    std::vector<std::size_t> starts;
    const RowNumbers rows = layer.Distribute(sorted_, facts_.keys[*layer.column], groups_, starts);
    for (std::size_t i = 0; i < layer.sets.size(); ++i) {
        MakeOf(layer.aggregates[i], std::span(rows).subspan(starts[i], starts[i + 1] - starts[i]), made);
    }
    return made;
}

/// The aggregates under one set of leading codes: over all its facts, and over those under sets of a second
/// column.
void AggregateMaker::MakeOf(const std::vector<const ChosenAggregate*>& chosen,
                            std::span<const std::uint32_t> rows, std::vector<MadeAggregate>& made) const {
    std::vector<ChosenAggregate> inner;
    for (const ChosenAggregate* aggregate : chosen) {
        if (!aggregate->second) {
            made.push_back(MakeOne(*aggregate, rows));
            continue;
        }
        inner.push_back(*aggregate);
        std::swap(inner.back().lead, inner.back().second);
        std::swap(inner.back().leadCodes, inner.back().secondCodes);
    }
    for (const AggregateLayer& layer : MakeAggregateLayers(inner, groups_)) {
        std::vector<std::size_t> starts;
        const RowNumbers distributed = layer.Distribute(rows, facts_.keys[*layer.column], groups_, starts);
        for (std::size_t i = 0; i < layer.sets.size(); ++i) {
            made.push_back(MakeOne(*layer.aggregates[i].front(),
                                   std::span(distributed).subspan(starts[i], starts[i + 1] - starts[i])));
        }
    }
}

MadeAggregate AggregateMaker::MakeOne(const ChosenAggregate& chosen,
                                      std::span<const std::uint32_t> rows) const {
    constexpr std::size_t leastRowsOfPrefixSums = 4096;
    constexpr std::uint64_t keyBytes = sizeof(std::uint32_t) + sizeof(std::uint64_t) + sizeof(std::uint32_t);
    MadeAggregate made;
    made.record.key = chosen.Key();
    made.record.rows = rows.size();
    made.prefixSums.sums.resize(model_.measures.size());
    if (rows.size() >= leastRowsOfPrefixSums) {
        const PrefixSize size = SizeOfPrefixSums(rows);
        if (size.keys * keyBytes + size.sums * PrefixSumBytes(model_) <=
            rows.size() * AggregateRowBytes(model_, layout_)) {
            made.record.keyCount = static_cast<std::uint32_t>(size.keys);
            MakePrefixSums(rows, size, made.prefixSums);
            if (!layout_.packedKeyColumns.empty()) {
                made.record.coarserKeyCount =
                    AddCoarserAggregate(layout_.packedKeyColumns.back(), summed_, made.prefixSums);
            }
            return made;
        }
    }
    made.rows = ByLastKeyColumn(rows);
    return made;
}

RowNumbers AggregateMaker::ByLastKeyColumn(std::span<const std::uint32_t> rows) const {
    RowNumbers sorted(rows.begin(), rows.end());
    if (layout_.packedKeyColumns.empty()) {
        return sorted;
    }
    const std::uint16_t column = layout_.packedKeyColumns.back().column;
    const auto& codes = facts_.keys[column];
    std::vector<std::size_t> starts(std::size_t{model_.keyColumns[column].codes} + 1);
    for (const std::uint32_t row : rows) {
        ++starts[std::size_t{codes[row]} + 1];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const std::uint32_t row : rows) {
        sorted[starts[codes[row]]++] = row;
    }
    return sorted;
}

PrefixSize AggregateMaker::SizeOfPrefixSums(std::span<const std::uint32_t> rows) const {
    PrefixSize size;
    AggregateCell last;
    for (const std::uint32_t row : rows) {
        const AggregateCell cell = cells_[row];
        size.keys += size.keys == 0 || cell.key != last.key ? 1U : 0U;
        size.sums += size.sums == 0 || !(cell == last) ? 1U : 0U;
        last = cell;
    }
    return size;
}

void AggregateMaker::MakePrefixSums(std::span<const std::uint32_t> rows, PrefixSize size,
                                    PrefixSums& prefixSums) const {
    prefixSums.keys.reserve(size.keys);
    prefixSums.bucketMasks.reserve(size.keys);
    prefixSums.starts.reserve(size.keys);
    prefixSums.counts.reserve(size.sums);
    for (const std::size_t i : summed_) {
        prefixSums.sums[i].reserve(size.sums);
    }
    PrefixSumWriter writer(prefixSums, summed_);
    for (const std::uint32_t row : rows) {
        writer.MoveTo(cells_[row]);
        ++prefixSums.counts.back();
        for (const std::size_t i : summed_) {
            prefixSums.sums[i].back() += facts_.values[i][row] / model_.measures[i].unit;
        }
    }
}

/// Reserves the final sizes, so that no vector is copied while it grows.
void Reserve(const std::vector<std::vector<MadeAggregate>>& made, bool hasCounts, AggregateModel& model) {
    std::size_t aggregates = 0, keys = 0, sums = 0;
    for (const std::vector<MadeAggregate>& ofLayer : made) {
        aggregates += ofLayer.size();
        for (const MadeAggregate& aggregate : ofLayer) {
            keys += aggregate.prefixSums.keys.size();
            sums += aggregate.prefixSums.counts.size();
        }
    }
    model.records.reserve(aggregates);
    model.packedKeys.reserve(keys);
    model.bucketMasks.reserve(keys);
    model.prefixStarts.reserve(keys + 1);
    for (auto& ofMeasure : model.sums) {
        ofMeasure.reserve(sums); // for a count measure the memory is never touched
    }
    model.counts.reserve(hasCounts ? sums : 0);
}

/// Appends an aggregate to the model.
void Append(MadeAggregate& made, bool hasCounts, BuiltAggregates& built) {
    AggregateModel& model = built.model;
    if (made.record.keyCount == 0) {
        made.record.start = model.rows;
        model.rows += made.rows.size();
        built.rows.push_back(std::move(made.rows));
    } else {
        const PrefixSums& prefixSums = made.prefixSums;
        made.record.start = model.packedKeys.size();
        const std::uint32_t firstEntry = model.prefixStarts.back();
        model.prefixStarts.pop_back();
        for (const std::uint32_t entry : prefixSums.starts) {
            model.prefixStarts.push_back(firstEntry + entry);
        }
        model.prefixStarts.push_back(firstEntry + static_cast<std::uint32_t>(prefixSums.counts.size()));
        model.packedKeys.insert(model.packedKeys.end(), prefixSums.keys.begin(), prefixSums.keys.end());
        model.bucketMasks.insert(model.bucketMasks.end(), prefixSums.bucketMasks.begin(),
                                 prefixSums.bucketMasks.end());
        for (std::size_t i = 0; i < prefixSums.sums.size(); ++i) {
            model.sums[i].insert(model.sums[i].end(), prefixSums.sums[i].begin(), prefixSums.sums[i].end());
        }
        if (hasCounts) {
            model.counts.insert(model.counts.end(), prefixSums.counts.begin(), prefixSums.counts.end());
        }
    }
    model.records.push_back(made.record);
}

} // namespace

BuiltAggregates BuildAggregates(const CubeModel& model, const FactColumns& facts) {
    BuiltAggregates built;
    built.model = LayOutAggregates(model);
    FindGroups(model, built.model);
    const std::vector<ChosenAggregate> chosen = ChooseAggregates(model, facts, built.model);
    if (chosen.empty()) {
        return built;
    }
    const std::vector<AggregateLayer> layers = MakeAggregateLayers(chosen, built.model.Groups());
    const AggregateMaker maker(model, facts, built.model);
    std::vector<std::vector<MadeAggregate>> made(layers.size());
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
                    [](const Measure& measure) { return measure.function == AggregateFunction::Count; });
    Reserve(made, hasCounts, built.model);
    for (std::vector<MadeAggregate>& ofLayer : made) {
        for (MadeAggregate& aggregate : ofLayer) {
            Append(aggregate, hasCounts, built);
            aggregate = {};
        }
    }
    return built;
}

} // namespace qel::engine
