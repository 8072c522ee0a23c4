#include "engine/build/AggregateStreams.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <span>

namespace qel::engine {

namespace {

using format::SectionKind;

constexpr std::uint8_t narrowWidth = 4, wideWidth = 8;

bool IsWide(std::int64_t sum) {
    return sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max();
}

template <class Number>
std::span<const std::byte> BytesOf(const std::vector<Number>& numbers) {
    return std::as_bytes(std::span(numbers));
}

/// Appends convert(number) for each number of the stream.
template <class Number, class Convert>
void AppendConverted(const ByteStream& stream, const Convert& convert, CubeFileWriter& writer) {
    RecordSource(stream).ForEach(sizeof(Number), [&](std::span<const std::byte> bytes) {
        std::vector<Number> numbers(bytes.size() / sizeof(Number));
        std::memcpy(numbers.data(), bytes.data(), bytes.size());
        std::vector<decltype(convert(Number{}))> converted(numbers.size());
        std::transform(numbers.begin(), numbers.end(), converted.begin(), convert);
        writer.Append(BytesOf(converted));
    });
}

void AppendAll(const ByteStream& stream, CubeFileWriter& writer) {
    RecordSource(stream).ForEach(wideWidth, [&](std::span<const std::byte> bytes) { writer.Append(bytes); });
}

/// Appends a field of every record.
void AppendField(const RecordLayout::Field& field, std::size_t size, std::span<const std::byte> records,
                 ByteStream& stream) {
    std::vector<std::byte> bytes(records.size() / size * field.width);
    std::byte* to = bytes.data();
    for (std::size_t at = field.offset; at < records.size(); at += size, to += field.width) {
        std::memcpy(to, &records[at], field.width);
    }
    stream.Append(bytes);
}

} // namespace

AggregateStreams::AggregateStreams(const CubeModel& model, const AggregateModel& aggregates,
                                   const RecordLayout& layout, SpillStore& store)
    : model_(model), layout_(layout), areWide_(model.measures.size()), packedKeys_(store),
      bucketMasks_(store), prefixStarts_(store), counts_(store) {
    for (std::size_t i = 0; i < model.measures.size(); ++i) {
        rowValues_.emplace_back(store);
        sums_.emplace_back(store);
    }
    const auto add = [&](std::size_t keyColumn) {
        rowColumns_.try_emplace(model.keyColumns[keyColumn].packedColumn, store);
    };
    for (const AggregateTable::PackedKeyColumn& part : aggregates.packedKeyColumns) {
        add(part.column);
    }
    if (aggregates.timeColumn) {
        add(*aggregates.timeColumn);
    }
}

void AggregateStreams::Add(Aggregate record, const PrefixSums& prefixSums) {
    record.start = keys_;
    records_.push_back(record);
    std::vector<std::uint32_t> starts = prefixSums.starts;
    std::transform(starts.begin(), starts.end(), starts.begin(),
                   [this](std::uint32_t start) { return start + sumCount_; });
    packedKeys_.Append(BytesOf(prefixSums.keys));
    bucketMasks_.Append(BytesOf(prefixSums.bucketMasks));
    prefixStarts_.Append(BytesOf(starts));
    counts_.Append(BytesOf(prefixSums.counts));
    for (std::size_t i = 0; i < sums_.size(); ++i) {
        sums_[i].Append(BytesOf(prefixSums.sums[i]));
        areWide_[i] =
            areWide_[i] || std::any_of(prefixSums.sums[i].begin(), prefixSums.sums[i].end(), IsWide);
    }
    keys_ += prefixSums.keys.size();
    sumCount_ += static_cast<std::uint32_t>(prefixSums.counts.size());
}

void AggregateStreams::Add(Aggregate record, const RecordSource& rows) {
    record.start = rows_;
    records_.push_back(record);
    rows_ += record.rows;
    rows.ForEach(layout_.size, [&](std::span<const std::byte> records) {
        for (auto& [packedColumn, stream] : rowColumns_) {
            AppendField(layout_.packedColumns[packedColumn], layout_.size, records, stream);
        }
        for (std::size_t i = 0; i < rowValues_.size(); ++i) {
            if (layout_.values[i].width != 0) {
                AppendField(layout_.values[i], layout_.size, records, rowValues_[i]);
            }
        }
    });
}

void AggregateStreams::Finish() {
    for (auto& [packedColumn, stream] : rowColumns_) {
        stream.Finish();
    }
    for (auto* streams : {&rowValues_, &sums_}) {
        for (ByteStream& stream : *streams) {
            stream.Finish();
        }
    }
    for (ByteStream* stream : {&packedKeys_, &bucketMasks_, &prefixStarts_, &counts_}) {
        stream->Finish();
    }
}

void AggregateStreams::AddTo(AggregateModel& aggregates) const {
    for (Aggregate record : records_) {
        record.start += record.keyCount == 0 ? aggregates.rows : aggregates.packedKeyCount;
        aggregates.records.push_back(record);
    }
    aggregates.rows += rows_;
    aggregates.packedKeyCount += keys_;
    aggregates.prefixSumCount += sumCount_;
    aggregates.sumWidths.resize(sums_.size());
    for (std::size_t i = 0; i < sums_.size(); ++i) {
        if (model_.measures[i].function != AggregateFunction::Count) {
            aggregates.sumWidths[i] =
                std::max(aggregates.sumWidths[i], areWide_[i] ? wideWidth : narrowWidth);
        }
    }
}

void AggregateStreams::Append(format::SectionKind kind, std::size_t second, std::uint32_t sumsBefore,
                              std::uint8_t width, CubeFileWriter& writer) const {
    switch (kind) {
    case SectionKind::AggregatePackedColumns:
        AppendAll(rowColumns_.at(second), writer);
        break;
    case SectionKind::AggregateValues:
        AppendAll(rowValues_[second], writer);
        break;
    case SectionKind::PackedKeys:
        AppendAll(packedKeys_, writer);
        break;
    case SectionKind::BucketMasks:
        AppendAll(bucketMasks_, writer);
        break;
    case SectionKind::PrefixStarts:
        AppendConverted<std::uint32_t>(
            prefixStarts_, [=](std::uint32_t start) { return start + sumsBefore; }, writer);
        break;
    case SectionKind::PrefixCounts:
        AppendAll(counts_, writer);
        break;
    default:
        if (width == wideWidth) {
            AppendAll(sums_[second], writer);
        } else {
            AppendConverted<std::int64_t>(
                sums_[second], [](std::int64_t sum) { return static_cast<std::int32_t>(sum); }, writer);
        }
    }
}

} // namespace qel::engine
