#include "engine/storage/RollupLoader.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>

namespace qel::engine {

using format::SectionKind;

std::optional<RollupTable> RollupLoader::Load(const FactTable& facts) const {
    if (!image_.HasSection(Id(SectionKind::RollupDescription))) {
        return std::nullopt;
    }
    RollupTable table;
    ByteReader in(image_.Array<std::byte>(Id(SectionKind::RollupDescription)));
    ReadWord(in, facts, table);
    ReadGranules(facts, table);
    ReadGroups(table);
    const auto rollups = in.Get<std::uint32_t>();
    LoadRows(in, facts, table);
    LoadStrips(in, facts, table);
    if (in.Failed() || !in.AtEnd()) {
        Fail("the description of the rollups has the wrong length");
    }
    table.records_ = Section(SectionKind::RollupRecords, 0, sizeof(Rollup), rollups);
    table.lookup_ = image_.Section(Id(SectionKind::RollupLookup));
    if (table.lookup_.Size() % sizeof(std::uint32_t) != 0 ||
        !std::has_single_bit(table.lookup_.Size() / sizeof(std::uint32_t))) {
        Fail("the lookup table of the rollups is not well-formed");
    }
    return table;
}

void RollupLoader::ReadWord(ByteReader& in, const FactTable& facts, RollupTable& table) const {
    constexpr unsigned wordBits = 32;
    table.blockBits_ = in.Get<std::uint8_t>();
    const auto time = in.Get<std::uint32_t>();
    if (time > facts.KeyColumns().size() || table.blockBits_ > wordBits) {
        Fail("the rollups' time is not well-formed");
    }
    if (time != 0) {
        table.timeColumn_ = time - 1;
    }
    table.wordColumns_.resize(in.GetCount(4));
    unsigned end = wordBits; // columns lie one below the other
    for (RollupTable::WordColumn& column : table.wordColumns_) {
        column.column = in.Get<std::uint16_t>();
        column.shift = in.Get<std::uint8_t>();
        column.bits = in.Get<std::uint8_t>();
        if (column.column >= facts.KeyColumns().size() || column.column == table.timeColumn_ ||
            column.bits != facts.KeyColumns()[column.column].Bits() || column.shift < table.blockBits_ ||
            column.shift >= wordBits || column.shift + unsigned{column.bits} > end) {
            Fail("the rollups' word is not well-formed");
        }
        end = column.shift;
    }
}

void RollupLoader::ReadGranules(const FactTable& facts, RollupTable& table) const {
    table.granules_ = image_.Array<std::uint32_t>(Id(SectionKind::RollupGranules));
    const auto granules = table.granules_;
    const std::uint32_t codes = table.timeColumn_ ? facts.KeyColumns()[*table.timeColumn_].codes : 1;
    const bool ascend =
        std::adjacent_find(granules.begin(), granules.end(), std::greater_equal<>()) == granules.end();
    if (granules.size() < 2 || granules.front() != 0 || granules.back() != codes || !ascend ||
        granules.size() - 1 > (std::uint64_t{64} << table.blockBits_)) {
        Fail("the rollups' periods are not well-formed");
    }
}

void RollupLoader::ReadGroups(RollupTable& table) const {
    if (!image_.HasSection(Id(SectionKind::GroupPlaces))) {
        return;
    }
    const auto places = image_.Array<std::uint32_t>(Id(SectionKind::GroupPlaces));
    const auto ranges = image_.Array<KeyRange>(Id(SectionKind::GroupRanges));
    if (places.empty() || places.front() != 0 || places.back() != ranges.size() ||
        !std::is_sorted(places.begin(), places.end())) {
        Fail("the groups of codes are not well-formed");
    }
    table.groups_ = CodeGroups(places, ranges);
}

void RollupLoader::LoadRows(ByteReader& in, const FactTable& facts, RollupTable& table) const {
    Projection& rows = table.rows_;
    rows.rowCount_ = in.Get<std::uint64_t>();
    rows.hasSlot_.assign(facts.SlotCount(), false);
    for (const RollupTable::WordColumn& column : table.wordColumns_) {
        rows.hasSlot_[facts.KeyColumns()[column.column].slot] = true;
    }
    if (table.timeColumn_) {
        rows.hasSlot_[facts.KeyColumns()[*table.timeColumn_].slot] = true;
    }
    for (std::size_t slot = 0; slot < facts.SlotCount(); ++slot) {
        rows.slotWidths_.push_back(facts.SlotWidth(slot));
        rows.slots_.push_back(rows.hasSlot_[slot] ? Section(SectionKind::RollupSlots, slot,
                                                            facts.SlotWidth(slot), rows.rowCount_)
                                                  : MappedSection());
    }
    for (std::size_t i = 0; i < facts.Measures().size(); ++i) {
        const std::uint8_t width = facts.Measures()[i].width;
        rows.valueWidths_.push_back(width);
        rows.values_.push_back(width == 0 ? MappedSection()
                                          : Section(SectionKind::RollupValues, i, width, rows.rowCount_));
    }
}

void RollupLoader::LoadStrips(ByteReader& in, const FactTable& facts, RollupTable& table) const {
    const auto strips = in.Get<std::uint64_t>();
    const auto entries = in.Get<std::uint32_t>();
    const bool hasCounts = in.Get<std::uint8_t>() != 0;
    constexpr std::uint64_t mostStrips = 0xFFFFFFFFU;
    if (strips > mostStrips) {
        Fail("there are too many strips");
    }
    table.stripWords_ = Section(SectionKind::StripWords, 0, sizeof(std::uint32_t), strips);
    table.stripPeriods_ = Section(SectionKind::StripPeriods, 0, sizeof(std::uint64_t), strips);
    table.stripEntries_ = Section(SectionKind::StripEntries, 0, sizeof(std::uint32_t), strips + 1);
    for (std::size_t i = 0; i < facts.Measures().size(); ++i) {
        const auto width = in.Get<std::uint8_t>();
        const bool isCount = facts.Measures()[i].aggregate == Aggregate::Count;
        if (isCount ? (width != 0 || !hasCounts) : (width != 4 && width != 8)) {
            Fail("the rollups' sums have a wrong width");
        }
        table.sumWidths_.push_back(width);
        table.sums_.push_back(isCount ? MappedSection() : Section(SectionKind::StripSums, i, width, entries));
    }
    if (hasCounts) {
        table.counts_ = Section(SectionKind::StripCounts, 0, sizeof(std::uint32_t), entries);
    }
}

MappedSection RollupLoader::Section(SectionKind kind, std::size_t second, std::uint64_t width,
                                    std::uint64_t count) const {
    const MappedSection section = image_.Section(Id(kind, second));
    if (section.Size() % width != 0 || section.Size() / width != count) {
        Fail("a section of the rollups has the wrong length");
    }
    return section;
}

format::SectionId RollupLoader::Id(SectionKind kind, std::size_t second) const {
    return {static_cast<std::uint32_t>(kind), cubeNumber_, 0, static_cast<std::uint32_t>(second)};
}

void RollupLoader::Fail(const std::string& fault) const {
    image_.Fail(fmt::format("cube {}: {}", cubeNumber_ + 1, fault));
}

} // namespace qel::engine
