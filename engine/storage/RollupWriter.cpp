#include "engine/storage/RollupWriter.h"

#include "engine/storage/ByteBuffer.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace qel::engine {

namespace {

using format::SectionKind;

constexpr std::uint8_t narrowWidth = 4, wideWidth = 8;

std::uint8_t SumWidth(const std::vector<std::int64_t>& sums) {
    const bool isNarrow = std::all_of(sums.begin(), sums.end(), [](std::int64_t sum) {
        return sum >= std::numeric_limits<std::int32_t>::min() &&
               sum <= std::numeric_limits<std::int32_t>::max();
    });
    return isNarrow ? narrowWidth : wideWidth;
}

/// Open addressing over a power of two of slots, as for names.
std::vector<std::uint32_t> BuildLookup(const std::vector<Rollup>& records) {
    std::vector<std::uint32_t> slots(std::bit_ceil(records.size() * 2 + 1));
    const std::size_t mask = slots.size() - 1;
    for (std::uint32_t i = 0; i < records.size(); ++i) {
        std::size_t slot = records[i].key.Hash() & mask;
        while (slots[slot] != 0) {
            slot = (slot + 1) & mask;
        }
        slots[slot] = i + 1;
    }
    return slots;
}

class RollupSections {
public:
    RollupSections(std::uint32_t cube, CubeFileWriter& writer) : cube_(cube), writer_(writer) {}

    template <class T>
    void Write(SectionKind kind, std::span<const T> values, std::size_t second = 0) {
        writer_.Begin({static_cast<std::uint32_t>(kind), cube_, 0, static_cast<std::uint32_t>(second)});
        writer_.Append(std::as_bytes(values));
        writer_.End();
    }
    template <class T>
    void Write(SectionKind kind, const std::vector<T>& values, std::size_t second = 0) {
        Write(kind, std::span<const T>(values), second);
    }

private:
    std::uint32_t cube_;
    CubeFileWriter& writer_;
};

} // namespace

void WriteRollups(const RollupModel& rollups, const CubeModel& model, std::uint32_t cube,
                  CubeFileWriter& writer) {
    RollupSections sections(cube, writer);
    ByteWriter description;
    description.Put(rollups.blockBits);
    description.Put(rollups.timeColumn ? *rollups.timeColumn + 1 : std::uint32_t{0});
    description.Put(static_cast<std::uint32_t>(rollups.wordColumns.size()));
    for (const RollupTable::WordColumn& column : rollups.wordColumns) {
        description.Put(column.column);
        description.Put(column.shift);
        description.Put(column.bits);
    }
    description.Put(static_cast<std::uint32_t>(rollups.records.size()));
    description.Put(rollups.rows);
    description.Put(std::uint64_t{rollups.stripWords.size()});
    description.Put(rollups.stripEntries.back());
    const bool hasCounts =
        std::any_of(model.measures.begin(), model.measures.end(),
                    [](const Measure& measure) { return measure.aggregate == Aggregate::Count; });
    description.Put(static_cast<std::uint8_t>(hasCounts));
    for (std::size_t i = 0; i < model.measures.size(); ++i) {
        if (model.measures[i].aggregate == Aggregate::Count) {
            description.Put(std::uint8_t{0});
            continue;
        }
        const std::uint8_t width = SumWidth(rollups.sums[i]);
        description.Put(width);
        if (width == wideWidth) {
            sections.Write(SectionKind::StripSums, rollups.sums[i], i);
        } else {
            sections.Write(SectionKind::StripSums,
                           std::vector<std::int32_t>(rollups.sums[i].begin(), rollups.sums[i].end()), i);
        }
    }
    sections.Write(SectionKind::RollupDescription, description.Bytes());
    sections.Write(SectionKind::RollupGranules, rollups.granules);
    sections.Write(SectionKind::GroupPlaces, rollups.groupPlaces);
    sections.Write(SectionKind::GroupRanges, rollups.groupRanges);
    sections.Write(SectionKind::RollupRecords, rollups.records);
    sections.Write(SectionKind::RollupLookup, BuildLookup(rollups.records));
    sections.Write(SectionKind::StripWords, rollups.stripWords);
    sections.Write(SectionKind::StripPeriods, rollups.stripPeriods);
    sections.Write(SectionKind::StripEntries, rollups.stripEntries);
    if (hasCounts) {
        sections.Write(SectionKind::StripCounts, rollups.counts);
    }
}

} // namespace qel::engine
