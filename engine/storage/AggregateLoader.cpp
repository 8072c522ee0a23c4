#include "engine/storage/AggregateLoader.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace qel::engine {

using format::SectionKind;

std::optional<AggregateTable> AggregateLoader::Load(const FactTable& facts) const {
    if (!image_.HasSection(Id(SectionKind::AggregateDescription))) {
        return std::nullopt;
    }
    AggregateTable table;
    ByteReader in(image_.Array<std::byte>(Id(SectionKind::AggregateDescription)));
    ReadPackedKey(in, facts, table);
    ReadTimeBuckets(facts, table);
    ReadGroups(table);
    const auto aggregates = in.Get<std::uint32_t>();
    LoadRows(in, facts, table);
    LoadPrefixSums(in, facts, table);
    if (in.Failed() || !in.AtEnd()) {
        Fail("the description of the aggregates has the wrong length");
    }
    table.records_ = Section(SectionKind::AggregateRecords, 0, sizeof(Aggregate), aggregates);
    table.lookup_ = image_.Section(Id(SectionKind::AggregateLookup));
    if (table.lookup_.Size() % sizeof(std::uint32_t) != 0 ||
        !std::has_single_bit(table.lookup_.Size() / sizeof(std::uint32_t))) {
        Fail("the lookup table of the aggregates is not well-formed");
    }
    return table;
}

void AggregateLoader::ReadPackedKey(ByteReader& in, const FactTable& facts, AggregateTable& table) const {
    constexpr unsigned keyBits = 32;
    table.blockBits_ = in.Get<std::uint8_t>();
    const auto time = in.Get<std::uint32_t>();
    if (time > facts.KeyColumns().size() || table.blockBits_ > keyBits) {
        Fail("the aggregates' time is not well-formed");
    }
    if (time != 0) {
        table.timeColumn_ = time - 1;
    }
    table.packedKeyColumns_.resize(in.GetCount(4));
    unsigned end = keyBits; // each column lies below the one before it
    for (AggregateTable::PackedKeyColumn& column : table.packedKeyColumns_) {
        column.column = in.Get<std::uint16_t>();
        column.shift = in.Get<std::uint8_t>();
        column.bits = in.Get<std::uint8_t>();
        if (column.column >= facts.KeyColumns().size() || column.column == table.timeColumn_ ||
            column.bits != facts.KeyColumns()[column.column].Bits() || column.shift < table.blockBits_ ||
            column.shift >= keyBits || column.shift + unsigned{column.bits} > end) {
            Fail("the aggregates' packed key is not well-formed");
        }
        end = column.shift;
    }
}

void AggregateLoader::ReadTimeBuckets(const FactTable& facts, AggregateTable& table) const {
    table.timeBuckets_ = image_.Array<std::uint32_t>(Id(SectionKind::AggregateTimeBuckets));
    const auto buckets = table.timeBuckets_;
    const std::uint32_t codes = table.timeColumn_ ? facts.KeyColumns()[*table.timeColumn_].codes : 1;
    const bool ascend =
        std::adjacent_find(buckets.begin(), buckets.end(), std::greater_equal<>()) == buckets.end();
    if (buckets.size() < 2 || buckets.front() != 0 || buckets.back() != codes || !ascend ||
        buckets.size() - 1 > (std::uint64_t{64} << table.blockBits_)) {
        Fail("the aggregates' time buckets are not well-formed");
    }
}

void AggregateLoader::ReadGroups(AggregateTable& table) const {
    if (!image_.HasSection(Id(SectionKind::GroupStarts))) {
        return;
    }
    const auto starts = image_.Array<std::uint32_t>(Id(SectionKind::GroupStarts));
    const auto ranges = image_.Array<KeyRange>(Id(SectionKind::GroupRanges));
    if (starts.empty() || starts.front() != 0 || starts.back() != ranges.size() ||
        !std::is_sorted(starts.begin(), starts.end())) {
        Fail("the groups of codes are not well-formed");
    }
    table.groups_ = CodeGroups(starts, ranges);
}

void AggregateLoader::LoadRows(ByteReader& in, const FactTable& facts, AggregateTable& table) const {
    Projection& rows = table.rows_;
    rows.rowCount_ = in.Get<std::uint64_t>();
    rows.hasPackedColumn_.assign(facts.PackedColumnCount(), false);
    for (const AggregateTable::PackedKeyColumn& column : table.packedKeyColumns_) {
        rows.hasPackedColumn_[facts.KeyColumns()[column.column].packedColumn] = true;
    }
    if (table.timeColumn_) {
        rows.hasPackedColumn_[facts.KeyColumns()[*table.timeColumn_].packedColumn] = true;
    }
    for (std::size_t packedColumn = 0; packedColumn < facts.PackedColumnCount(); ++packedColumn) {
        rows.packedWidths_.push_back(facts.PackedWidth(packedColumn));
        rows.packedColumns_.push_back(rows.hasPackedColumn_[packedColumn]
                                          ? Section(SectionKind::AggregatePackedColumns, packedColumn,
                                                    facts.PackedWidth(packedColumn), rows.rowCount_)
                                          : MappedSection());
    }
    for (std::size_t i = 0; i < facts.Measures().size(); ++i) {
        const std::uint8_t width = facts.Measures()[i].width;
        rows.valueWidths_.push_back(width);
        rows.values_.push_back(width == 0 ? MappedSection()
                                          : Section(SectionKind::AggregateValues, i, width, rows.rowCount_));
    }
}

void AggregateLoader::LoadPrefixSums(ByteReader& in, const FactTable& facts, AggregateTable& table) const {
    const auto strips = in.Get<std::uint64_t>();
    const auto entries = in.Get<std::uint32_t>();
    const bool hasCounts = in.Get<std::uint8_t>() != 0;
    constexpr std::uint64_t mostKeys = 0xFFFFFFFFU;
    if (strips > mostKeys) {
        Fail("there are too many packed keys");
    }
    table.packedKeys_ = Section(SectionKind::PackedKeys, 0, sizeof(std::uint32_t), strips);
    table.bucketMasks_ = Section(SectionKind::BucketMasks, 0, sizeof(std::uint64_t), strips);
    table.prefixStarts_ = Section(SectionKind::PrefixStarts, 0, sizeof(std::uint32_t), strips + 1);
    for (std::size_t i = 0; i < facts.Measures().size(); ++i) {
        const auto width = in.Get<std::uint8_t>();
        const bool isCount = facts.Measures()[i].function == AggregateFunction::Count;
        if (isCount ? (width != 0 || !hasCounts) : (width != 4 && width != 8)) {
            Fail("the aggregates' sums have a wrong width");
        }
        table.sumWidths_.push_back(width);
        table.sums_.push_back(isCount ? MappedSection()
                                      : Section(SectionKind::PrefixSums, i, width, entries));
    }
    if (hasCounts) {
        table.counts_ = Section(SectionKind::PrefixCounts, 0, sizeof(std::uint32_t), entries);
    }
}

MappedSection AggregateLoader::Section(SectionKind kind, std::size_t second, std::uint64_t width,
                                       std::uint64_t count) const {
    const MappedSection section = image_.Section(Id(kind, second));
    if (section.Size() % width != 0 || section.Size() / width != count) {
        Fail("a section of the aggregates has the wrong length");
    }
    return section;
}

format::SectionId AggregateLoader::Id(SectionKind kind, std::size_t second) const {
    return {static_cast<std::uint32_t>(kind), cubeNumber_, 0, static_cast<std::uint32_t>(second)};
}

void AggregateLoader::Fail(const std::string& fault) const {
    image_.Fail(fmt::format("cube {}: {}", cubeNumber_ + 1, fault));
}

} // namespace qel::engine
