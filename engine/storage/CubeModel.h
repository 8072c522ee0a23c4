#pragma once

#include "engine/storage/DetailTable.h"
#include "engine/storage/FactTable.h"
#include "qel/engine/Calculations.h"
#include "qel/engine/SourceTotals.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The metadata of a cube as the build passes it to the writer; facts follow column by column.

namespace qel::engine {

/// Concatenated texts, as they are stored.
struct TextColumn {
    std::vector<std::uint32_t> offsets{0}; ///< one more than there are texts
    std::string bytes;

    std::size_t Count() const { return offsets.size() - 1; }
    std::string_view At(std::size_t index) const {
        return std::string_view(bytes).substr(offsets[index], offsets[index + 1] - offsets[index]);
    }
    void Add(std::string_view text) {
        bytes += text;
        offsets.push_back(static_cast<std::uint32_t>(bytes.size()));
    }
};

struct LevelModel {
    std::string name;
    bool isAll = false;
    std::uint32_t memberCount = 0;
};

/// Members in the order of their numbers, see MemberId.
struct HierarchyModel {
    std::string name, caption;
    std::optional<std::uint32_t> keyColumn;
    std::uint32_t defaultMember = 0;
    std::vector<LevelModel> levels;
    TextColumn names, captions, keys;
    std::vector<std::uint32_t> parents, firstChild;
    std::vector<std::uint32_t> rangeOffsets{0};
    std::vector<KeyRange> ranges;
};

struct DimensionModel {
    std::string name, caption;
    bool isTime = false;
    std::vector<HierarchyModel> hierarchies;
};

struct ProjectionModel {
    std::vector<std::uint16_t> sortOrder;
    std::vector<std::uint64_t> leadRows; ///< one more than the leading key has codes
};

/// The aggregates of a cube, without their long columns.
struct AggregateModel {
    std::vector<AggregateTable::PackedKeyColumn> packedKeyColumns; ///< from the highest bits down
    std::uint8_t blockBits = 0;
    std::optional<std::uint32_t> timeColumn;
    std::vector<std::uint32_t> timeBuckets;
    std::vector<std::uint32_t> groupStarts{0}; ///< see CodeGroups
    std::vector<KeyRange> groupRanges;
    std::vector<Aggregate> records;
    std::uint64_t rows = 0; ///< of all row aggregates
    std::uint64_t packedKeyCount = 0;
    std::uint32_t prefixSumCount = 0;
    std::vector<std::uint8_t> sumWidths; ///< by measure: 4, 8, or 0 for a count

    CodeGroups Groups() const { return {groupStarts, groupRanges}; }
};

/// A column of texts of the ledger, as the description of the details has it.
struct DetailModel {
    std::string name, caption;
    std::uint32_t texts = 0;
    std::uint8_t codeWidth = 0, offsetWidth = 4; ///< see DetailColumn
};

/// What is kept of the ledger's lines besides keys and amounts; the texts follow with the facts.
struct DetailsModel {
    std::vector<DetailModel> columns;
    std::vector<DetailRun> runs;
};

struct CubeModel {
    std::string name, caption;
    std::vector<DimensionModel> dimensions;
    std::vector<KeyColumn> keyColumns;
    std::vector<MeasureColumn> measures;
    std::uint32_t defaultMeasure = 0;
    std::uint64_t rowCount = 0;
    std::vector<ProjectionModel> projections;
    std::vector<SourceTotals> sources;
    Calculations calculations;
    bool keepsDetails = false;
    DetailsModel details;
};

} // namespace qel::engine
