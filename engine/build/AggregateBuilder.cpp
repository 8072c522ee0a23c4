#include "engine/build/AggregateBuilder.h"

#include "engine/build/AggregateLayers.h"
#include "engine/build/AggregateStreams.h"
#include "engine/build/Distribution.h"
#include "engine/build/PrefixSums.h"
#include "engine/build/TwoThreads.h"
#include "engine/storage/AggregateWriter.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

namespace qel::engine {

namespace {

AggregateCell CellOf(const std::byte* record) {
    AggregateCell cell;
    std::memcpy(&cell, record, sizeof cell);
    return cell;
}

/// Calls visit(record) for each.
template <class Visit>
void ForEachRecord(const RecordSource& source, std::size_t size, const Visit& visit) {
    source.ForEach(size, [&](std::span<const std::byte> records) {
        for (std::size_t at = 0; at < records.size(); at += size) {
            visit(&records[at]);
        }
    });
}

/// Computes the aggregates of one layer. Every step keeps the order of the facts.
class LayerMaker {
public:
    LayerMaker(const CubeModel& model, const AggregateModel& layout, const AggregateFacts& facts,
               SpillStore& store, AggregateStreams& made)
        : model_(model), layout_(layout), facts_(facts.Layout()), groups_(layout.Groups()), store_(store),
          mostBytes_(store.Memory() / 24), made_(made) {
        for (std::size_t i = 0; i < model.measures.size(); ++i) {
            if (model.measures[i].width != 0) {
                summed_.push_back(i);
            }
        }
    }

    void Make(const AggregateLayer& layer, const RecordSource& facts);

private:
    struct PrefixSize {
        std::uint64_t keys = 0, sums = 0;
    };

    Distribution Distribute(const AggregateLayer& layer, const RecordSource& source) const;
    void MakeOf(const std::vector<const ChosenAggregate*>& chosen, const RecordSource& source);
    void MakeOne(const ChosenAggregate& chosen, const RecordSource& source);
    void AddByLastKeyColumn(const Aggregate& record, const RecordSource& source);
    PrefixSize SizeOfPrefixSums(const RecordSource& source) const;
    void MakePrefixSums(const RecordSource& source, PrefixSize size, PrefixSums& prefixSums) const;

    const CubeModel& model_;
    const AggregateModel& layout_;
    const RecordLayout& facts_;
    const CodeGroups groups_;
    SpillStore& store_;
    std::uint64_t mostBytes_; ///< of a set that is held in memory
    AggregateStreams& made_;
    std::vector<std::size_t> summed_; ///< the measures that are summed; the others are counts
};

void LayerMaker::Make(const AggregateLayer& layer, const RecordSource& facts) {
    if (!layer.column) {
        MakeOf(layer.aggregates.front(), facts);
        return;
    }
    const Distribution sets = Distribute(layer, facts);
    for (std::size_t i = 0; i < layer.sets.size(); ++i) {
        MakeOf(layer.aggregates[i], sets.Group(i));
    }
}

Distribution LayerMaker::Distribute(const AggregateLayer& layer, const RecordSource& source) const {
    const std::vector<std::uint32_t> setOf = layer.SetOfCode(groups_);
    const RecordLayout::KeyField& key = facts_.keys[*layer.column];
    return {source, facts_.size, layer.sets.size(), mostBytes_, store_, [&](const std::byte* record) {
                return setOf[std::min<std::size_t>(key.Code(record), setOf.size() - 1)];
            }};
}

/// The aggregates under one set of leading codes: over all its facts, and over those under sets of a second
/// column.
void LayerMaker::MakeOf(const std::vector<const ChosenAggregate*>& chosen, const RecordSource& source) {
    std::vector<std::byte> held;
    if (!source.IsInMemory() && source.Bytes() <= mostBytes_) {
        held.resize(static_cast<std::size_t>(source.Bytes()));
        RecordSource::Reader(source).Next(held);
    }
    const RecordSource facts = held.empty() ? source : RecordSource(std::span<const std::byte>(held));
    std::vector<ChosenAggregate> inner;
    for (const ChosenAggregate* aggregate : chosen) {
        if (!aggregate->second) {
            MakeOne(*aggregate, facts);
            continue;
        }
        inner.push_back(*aggregate);
        std::swap(inner.back().lead, inner.back().second);
        std::swap(inner.back().leadCodes, inner.back().secondCodes);
    }
    for (const AggregateLayer& layer : MakeAggregateLayers(inner, groups_)) {
        const Distribution sets = Distribute(layer, facts);
        for (std::size_t i = 0; i < layer.sets.size(); ++i) {
            MakeOne(*layer.aggregates[i].front(), sets.Group(i));
        }
    }
}

void LayerMaker::MakeOne(const ChosenAggregate& chosen, const RecordSource& source) {
    constexpr std::size_t leastRowsOfPrefixSums = 4096;
    constexpr std::uint64_t keyBytes = sizeof(std::uint32_t) + sizeof(std::uint64_t) + sizeof(std::uint32_t);
    Aggregate record;
    record.key = chosen.Key();
    record.rows = source.Bytes() / facts_.size;
    if (record.rows >= leastRowsOfPrefixSums) {
        const PrefixSize size = SizeOfPrefixSums(source);
        if (size.keys * keyBytes + size.sums * PrefixSumBytes(model_) <=
            record.rows * AggregateRowBytes(model_, layout_)) {
            PrefixSums prefixSums;
            prefixSums.sums.resize(model_.measures.size());
            record.keyCount = static_cast<std::uint32_t>(size.keys);
            MakePrefixSums(source, size, prefixSums);
            if (!layout_.packedKeyColumns.empty()) {
                record.coarserKeyCount =
                    AddCoarserAggregate(layout_.packedKeyColumns.back(), summed_, prefixSums);
            }
            made_.Add(record, prefixSums);
            return;
        }
    }
    AddByLastKeyColumn(record, source);
}

void LayerMaker::AddByLastKeyColumn(const Aggregate& record, const RecordSource& source) {
    if (layout_.packedKeyColumns.empty()) {
        made_.Add(record, source);
        return;
    }
    const std::uint16_t column = layout_.packedKeyColumns.back().column;
    const RecordLayout::KeyField& key = facts_.keys[column];
    const Distribution byCode(source, facts_.size, model_.keyColumns[column].codes, mostBytes_, store_,
                              [&](const std::byte* each) { return key.Code(each); });
    made_.Add(record, byCode.All());
}

LayerMaker::PrefixSize LayerMaker::SizeOfPrefixSums(const RecordSource& source) const {
    PrefixSize size;
    AggregateCell last;
    ForEachRecord(source, facts_.size, [&](const std::byte* record) {
        const AggregateCell cell = CellOf(record);
        size.keys += size.keys == 0 || cell.key != last.key ? 1U : 0U;
        size.sums += size.sums == 0 || !(cell == last) ? 1U : 0U;
        last = cell;
    });
    return size;
}

void LayerMaker::MakePrefixSums(const RecordSource& source, PrefixSize size, PrefixSums& prefixSums) const {
    prefixSums.keys.reserve(size.keys);
    prefixSums.bucketMasks.reserve(size.keys);
    prefixSums.starts.reserve(size.keys);
    prefixSums.counts.reserve(size.sums);
    for (const std::size_t i : summed_) {
        prefixSums.sums[i].reserve(size.sums);
    }
    PrefixSumWriter writer(prefixSums, summed_);
    ForEachRecord(source, facts_.size, [&](const std::byte* record) {
        writer.MoveTo(CellOf(record));
        ++prefixSums.counts.back();
        for (const std::size_t i : summed_) {
            prefixSums.sums[i].back() += facts_.values[i].LoadSigned(record);
        }
    });
}

} // namespace

AggregateFacts::AggregateFacts(const AggregateModel& aggregates, const RecordLayout& layout,
                               SpillStore& store)
    : aggregates_(aggregates), from_(layout), layout_(layout.MovedBy(sizeof(AggregateCell))),
      bucketOf_(aggregates.timeColumn ? 0 : 1), stream_(store) {
    for (const AggregateTable::PackedKeyColumn& part : aggregates.packedKeyColumns) {
        sortOrder_.push_back(part.column);
    }
    if (aggregates.timeColumn) {
        sortOrder_.push_back(static_cast<std::uint16_t>(*aggregates.timeColumn));
        for (std::uint32_t bucket = 0; bucket + 1 < aggregates.timeBuckets.size(); ++bucket) {
            bucketOf_.insert(bucketOf_.end(),
                             aggregates.timeBuckets[bucket + 1] - aggregates.timeBuckets[bucket], bucket);
        }
    }
}

void AggregateFacts::Append(std::span<const std::byte> records) {
    std::vector<std::byte> moved(records.size() / from_.size * layout_.size);
    std::byte* to = moved.data();
    for (std::size_t at = 0; at < records.size(); at += from_.size, to += layout_.size) {
        const std::byte* const record = &records[at];
        AggregateCell cell;
        for (const AggregateTable::PackedKeyColumn& part : aggregates_.packedKeyColumns) {
            cell.key |= from_.keys[part.column].Code(record) << part.shift;
        }
        cell.bucket =
            bucketOf_[aggregates_.timeColumn ? from_.keys[*aggregates_.timeColumn].Code(record) : 0];
        cell.key |= cell.bucket / AggregateTable::blockBuckets;
        std::memcpy(to, &cell, sizeof cell);
        std::memcpy(to + sizeof cell, record, from_.size);
    }
    stream_.Append(moved);
}

void WriteAggregatesOf(const std::vector<ChosenAggregate>& chosen, const CubeModel& model,
                       AggregateModel& aggregates, const AggregateFacts& facts, std::uint32_t cube,
                       SpillStore& store, CubeFileWriter& writer,
                       const std::function<void(double)>& progress) {
    using format::SectionKind;
    const std::vector<AggregateLayer> layers = MakeAggregateLayers(chosen, aggregates.Groups());
    std::vector<AggregateStreams> made;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        made.emplace_back(model, aggregates, facts.Layout(), store);
    }
    RunOnTwoThreads(
        layers.size(),
        [&](std::size_t i) {
            LayerMaker(model, aggregates, facts, store, made[i]).Make(layers[i], facts.All());
            made[i].Finish();
        },
        progress);
    for (const AggregateStreams& layer : made) {
        layer.AddTo(aggregates);
    }
    const auto append = [&](SectionKind kind, std::size_t second) {
        std::uint32_t sumsBefore = 0;
        const bool isSum = kind == SectionKind::PrefixSums;
        for (const AggregateStreams& layer : made) {
            layer.Append(kind, second, sumsBefore, isSum ? aggregates.sumWidths[second] : std::uint8_t{0},
                         writer);
            sumsBefore += layer.SumCount();
        }
        if (kind == SectionKind::PrefixStarts) {
            writer.Append(std::as_bytes(std::span(&sumsBefore, 1)));
        }
    };
    WriteAggregates(aggregates, model, cube, writer, append);
    const auto section = [&](SectionKind kind, std::size_t second) {
        writer.Begin({static_cast<std::uint32_t>(kind), cube, 0, static_cast<std::uint32_t>(second)});
        append(kind, second);
        writer.End();
    };
    std::set<std::size_t> packedColumns;
    for (const std::uint16_t column : facts.SortOrder()) {
        packedColumns.insert(model.keyColumns[column].packedColumn);
    }
    for (const std::size_t packedColumn : packedColumns) {
        section(SectionKind::AggregatePackedColumns, packedColumn);
    }
    for (std::size_t i = 0; i < model.measures.size(); ++i) {
        if (model.measures[i].width != 0) {
            section(SectionKind::AggregateValues, i);
        }
    }
}

} // namespace qel::engine
