#include "engine/storage/CubeLoader.h"

#include "engine/storage/AggregateLoader.h"
#include "engine/storage/MemberColumns.h"
#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

namespace qel::engine {

namespace {

using format::SectionKind;

bool IsWidth(std::uint8_t width, std::uint8_t widest) {
    return std::has_single_bit(width) && width <= widest;
}

} // namespace

Cube CubeLoader::Load() {
    Cube cube;
    FactTable facts;
    ByteReader in(image_.Array<std::byte>(Id(SectionKind::CubeDescription)));
    cube.name_ = in.GetText();
    cube.caption_ = in.GetText();
    cube.defaultMeasure_ = in.Get<std::uint32_t>();
    facts.rowCount_ = in.Get<std::uint64_t>();
    if (facts.rowCount_ > format::mostFacts) {
        Fail("it has more facts than there can be");
    }
    ReadFactColumns(in, facts);
    ReadSortOrders(in, facts);
    ReadDimensions(in, facts, cube);
    if (in.Failed() || !in.AtEnd()) {
        Fail("its description has the wrong length");
    }
    if (cube.defaultMeasure_ >= facts.measures_.size()) {
        Fail("its default measure does not exist");
    }
    for (Hierarchy& hierarchy : cube.hierarchies_) {
        LoadMembers(hierarchy);
    }
    for (const Hierarchy& hierarchy : cube.hierarchies_) {
        CheckRanges(hierarchy, hierarchy.keyColumn_ ? facts.keyColumns_[*hierarchy.keyColumn_].codes : 0);
    }
    std::vector<std::uint32_t> keysIn(facts.PackedColumnCount());
    for (const KeyColumn& column : facts.keyColumns_) {
        ++keysIn[column.packedColumn];
    }
    for (std::size_t i = 0; i < facts.projections_.size(); ++i) {
        LoadProjection(facts, i, keysIn, facts.projections_[i]);
    }
    cube.calculations_ = LoadCalculations();
    cube.pages_ = &image_.Verifier();
    facts.aggregates_ = AggregateLoader(image_, cubeNumber_).Load(facts);
    facts.details_ = LoadDetails(facts);
    cube.measures_.assign(facts.measures_.begin(), facts.measures_.end());
    cube.facts_ = std::make_shared<const FactTable>(std::move(facts));
    return cube;
}

std::vector<SourceTotals> CubeLoader::LoadSources(const Cube& cube) {
    if (!image_.HasSection(Id(SectionKind::FactSources))) {
        return {};
    }
    ByteReader in(image_.Array<std::byte>(Id(SectionKind::FactSources)));
    std::vector<SourceTotals> sources(in.GetCount(28 + 8 * cube.Measures().size()));
    std::uint64_t facts = 0;
    for (SourceTotals& source : sources) {
        source.file = in.GetText();
        source.linesRead = in.Get<std::uint64_t>();
        source.linesUsed = in.Get<std::uint64_t>();
        source.linesSkipped = in.Get<std::uint64_t>();
        for (std::size_t i = 0; i < cube.Measures().size(); ++i) {
            source.sums.push_back(in.Get<std::int64_t>());
        }
        facts += source.linesUsed;
    }
    if (in.Failed() || !in.AtEnd() || facts != cube.FactCount()) {
        Fail("the totals of its fact files are not well-formed");
    }
    return sources;
}

Calculations CubeLoader::LoadCalculations() const {
    Calculations calculations;
    if (!image_.HasSection(Id(SectionKind::Calculations))) {
        return calculations;
    }
    const auto fail = [this] { Fail("its calculated members are not well-formed"); };
    ByteReader in(image_.Array<std::byte>(Id(SectionKind::Calculations)));
    const auto count = [&](std::size_t smallest) {
        const std::uint32_t found = in.GetCount(smallest);
        if (found > Calculations::most) {
            fail();
        }
        return found;
    };
    const auto text = [&] {
        std::string found = in.GetText();
        if (found.size() > Calculations::longestText || !IsValidUtf8(found)) {
            fail();
        }
        return found;
    };
    calculations.members.resize(count(16));
    for (CalculatedMember& member : calculations.members) {
        member.name = text();
        member.formula = text();
        member.format = text();
        member.solveOrder = in.Get<std::int32_t>();
    }
    calculations.sets.resize(count(8));
    for (StoredSet& set : calculations.sets) {
        set.name = text();
        set.formula = text();
    }
    if (in.Failed() || !in.AtEnd()) {
        fail();
    }
    return calculations;
}

std::optional<DetailTable> CubeLoader::LoadDetails(const FactTable& facts) const {
    if (!image_.HasSection(Id(SectionKind::DetailDescription))) {
        return std::nullopt;
    }
    DetailTable table;
    table.factCount_ = facts.rowCount_;
    ByteReader in(image_.Array<std::byte>(Id(SectionKind::DetailDescription)));
    table.files_.resize(in.GetCount(4));
    for (std::string& file : table.files_) {
        file = in.GetText();
    }
    table.factWidth_ = in.Get<std::uint8_t>();
    const std::uint32_t columns = in.GetCount(14);
    for (std::uint32_t number = 0; number < columns; ++number) {
        table.columns_.push_back(LoadDetail(in, number, facts.rowCount_));
    }
    table.runs_ = image_.Section(Id(SectionKind::DetailRuns));
    for (std::size_t order = 0; order < facts.projections_.size(); ++order) {
        table.facts_.push_back(image_.Section(Id(SectionKind::DetailFacts, order)));
        if (table.facts_.back().Size() != facts.rowCount_ * table.factWidth_) {
            Fail("the facts of the details have the wrong length");
        }
    }
    if (in.Failed() || !in.AtEnd() || table.factWidth_ < 1 || table.factWidth_ > 4 ||
        table.runs_.Size() % sizeof(DetailRun) != 0) {
        Fail("its details are not well-formed");
    }
    return table;
}

DetailColumn CubeLoader::LoadDetail(ByteReader& in, std::size_t number, std::uint64_t facts) const {
    DetailColumn column;
    column.name = in.GetText();
    column.caption = in.GetText();
    column.texts = in.Get<std::uint32_t>();
    column.codeWidth = in.Get<std::uint8_t>();
    column.offsetWidth = in.Get<std::uint8_t>();
    column.offsets = image_.Section(Id(SectionKind::DetailOffsets, 0, number));
    column.bytes = image_.Section(Id(SectionKind::DetailTexts, 0, number));
    if (column.codeWidth != 0) {
        column.codes = image_.Section(Id(SectionKind::DetailCodes, 0, number));
    }
    const bool hasCodes = IsWidth(column.codeWidth, 4) && column.codes.Size() == facts * column.codeWidth;
    if (!IsValidUtf8(column.name) || !IsValidUtf8(column.caption) ||
        !(column.codeWidth == 0 ? column.texts == facts : hasCodes) ||
        (column.offsetWidth != 4 && column.offsetWidth != 8) ||
        column.offsets.Size() != (std::uint64_t{column.texts} + 1) * column.offsetWidth) {
        Fail(fmt::format("the detail {} is not well-formed", number + 1));
    }
    return column;
}

void CubeLoader::ReadFactColumns(ByteReader& in, FactTable& facts) const {
    facts.keyColumns_.resize(in.GetCount(12));
    std::vector<std::uint32_t> taken; // bits used so far, by packed column
    for (KeyColumn& column : facts.keyColumns_) {
        column.name = in.GetText();
        column.codes = in.Get<std::uint32_t>();
        column.width = in.Get<std::uint8_t>();
        column.packedColumn = in.Get<std::uint16_t>();
        column.shift = in.Get<std::uint8_t>();
        CheckLayout(column, facts, taken);
    }
    // A packed column that no key column uses has width 0.
    if (std::find(facts.packedWidths_.begin(), facts.packedWidths_.end(), 0) != facts.packedWidths_.end()) {
        Fail("a packed column belongs to no key column");
    }
    facts.measures_.resize(in.GetCount(19));
    for (MeasureColumn& measure : facts.measures_) {
        measure.name = in.GetText();
        measure.caption = in.GetText();
        const auto aggregate = in.Get<std::uint8_t>();
        measure.decimals = in.Get<std::uint8_t>();
        measure.width = in.Get<std::uint8_t>();
        measure.unit = in.Get<std::int64_t>();
        const bool isSum = aggregate == static_cast<std::uint8_t>(AggregateFunction::Sum);
        const bool isCount = aggregate == static_cast<std::uint8_t>(AggregateFunction::Count);
        measure.function = isCount ? AggregateFunction::Count : AggregateFunction::Sum;
        constexpr std::uint8_t mostDecimals = 18;
        if ((!isSum && !isCount) || measure.decimals > mostDecimals || measure.unit < 1 ||
            (isSum ? !IsWidth(measure.width, 8) : measure.width != 0)) {
            Fail(fmt::format("measure {} is not well-formed", measure.name));
        }
    }
}

/// Reserves the column's bits in its packed column.
void CubeLoader::CheckLayout(const KeyColumn& column, FactTable& facts,
                             std::vector<std::uint32_t>& taken) const {
    if (column.packedColumn >= facts.keyColumns_.size()) {
        Fail(fmt::format("key column {} lies in a packed column that does not exist", column.name));
    }
    if (column.packedColumn >= taken.size()) {
        taken.resize(std::size_t{column.packedColumn} + 1);
        facts.packedWidths_.resize(taken.size());
    }
    std::uint8_t& width = facts.packedWidths_[column.packedColumn];
    if (!IsWidth(column.width, 4) || (width != 0 && width != column.width) ||
        column.shift >= 8 * column.width || column.shift + column.Bits() > 8U * column.width) {
        Fail(fmt::format("key column {} has a wrong width", column.name));
    }
    width = column.width;
    if ((taken[column.packedColumn] & column.Mask()) != 0) {
        Fail(fmt::format("key column {} lies over another", column.name));
    }
    taken[column.packedColumn] |= column.Mask();
}

void CubeLoader::ReadSortOrders(ByteReader& in, FactTable& facts) const {
    facts.projections_.resize(in.GetCount(4));
    if (facts.projections_.empty()) {
        Fail("it has no facts in any order");
    }
    for (Projection& projection : facts.projections_) {
        projection.sortOrder_.resize(in.GetCount(2));
        for (std::uint16_t& column : projection.sortOrder_) {
            column = in.Get<std::uint16_t>();
            if (column >= facts.keyColumns_.size()) {
                Fail("a sort order names a key column that does not exist");
            }
        }
        if (projection.sortOrder_.empty()) {
            Fail("a sort order is empty");
        }
    }
}

void CubeLoader::ReadDimensions(ByteReader& in, const FactTable& facts, Cube& cube) const {
    cube.dimensions_.resize(in.GetCount(13));
    for (std::size_t i = 0; i < cube.dimensions_.size(); ++i) {
        Dimension& dimension = cube.dimensions_[i];
        dimension.name = in.GetText();
        dimension.caption = in.GetText();
        dimension.isTime = in.Get<std::uint8_t>() != 0;
        const std::uint32_t count = in.GetCount(20);
        if (count == 0) {
            Fail(fmt::format("dimension {} has no hierarchy", dimension.name));
        }
        for (std::uint32_t n = 0; n < count; ++n) {
            Hierarchy hierarchy = ReadHierarchy(in, facts, dimension.name);
            hierarchy.dimensionIndex_ = i;
            hierarchy.index_ = cube.hierarchies_.size();
            dimension.hierarchies.push_back(hierarchy.index_);
            cube.hierarchies_.push_back(std::move(hierarchy));
        }
    }
}

Hierarchy CubeLoader::ReadHierarchy(ByteReader& in, const FactTable& facts,
                                    const std::string& dimensionName) const {
    Hierarchy hierarchy;
    hierarchy.name_ = in.GetText();
    hierarchy.caption_ = in.GetText();
    image_.TakeImplied(dimensionName.size());
    hierarchy.uniqueName_ = BracketedName(dimensionName);
    if (hierarchy.name_ != dimensionName) {
        hierarchy.uniqueName_.append(".").append(BracketedName(hierarchy.name_));
    }
    const auto keyColumn = in.Get<std::uint32_t>();
    if (keyColumn > facts.keyColumns_.size()) {
        Fail(fmt::format("hierarchy {} stands on a key column that does not exist", hierarchy.uniqueName_));
    }
    if (keyColumn != 0) {
        hierarchy.keyColumn_ = keyColumn - 1;
    }
    hierarchy.defaultMember_ = in.Get<MemberId>();
    ReadLevels(in, hierarchy);
    return hierarchy;
}

void CubeLoader::ReadLevels(ByteReader& in, Hierarchy& hierarchy) const {
    hierarchy.levels_.resize(in.GetCount(9));
    std::uint64_t members = 0;
    std::uint32_t depth = 0;
    for (Level& level : hierarchy.levels_) {
        level.name = in.GetText();
        level.isAll = in.Get<std::uint8_t>() != 0;
        level.depth = depth++;
        level.members.first = static_cast<MemberId>(members);
        members += in.Get<std::uint32_t>();
        level.members.last = static_cast<MemberId>(members);
        if (members >= noMember || (level.isAll && (level.depth != 0 || members != 1))) {
            Fail(fmt::format("level {} of {} is not well-formed", level.name, hierarchy.uniqueName_));
        }
    }
    if (hierarchy.defaultMember_ >= members) {
        Fail(fmt::format("the default member of {} does not exist", hierarchy.uniqueName_));
    }
}

void CubeLoader::LoadMembers(Hierarchy& hierarchy) const {
    const std::size_t index = hierarchy.index_;
    const auto numbers = [&](SectionKind kind) { return image_.Array<std::uint32_t>(Id(kind, index)); };
    const auto texts = [&](SectionKind kind) {
        const auto bytes = image_.Array<char>(Id(kind, index));
        return std::string_view(bytes.data(), bytes.size());
    };
    MemberColumns columns;
    columns.names = texts(SectionKind::MemberNames);
    columns.nameOffsets = numbers(SectionKind::MemberNameOffsets);
    columns.captions = texts(SectionKind::MemberCaptions);
    columns.captionOffsets = numbers(SectionKind::MemberCaptionOffsets);
    columns.keys = texts(SectionKind::MemberKeys);
    columns.keyOffsets = numbers(SectionKind::MemberKeyOffsets);
    columns.parents = numbers(SectionKind::MemberParents);
    columns.firstChild = numbers(SectionKind::MemberFirstChildren);
    columns.rangeOffsets = numbers(SectionKind::MemberRangeOffsets);
    columns.ranges = image_.Array<KeyRange>(Id(SectionKind::MemberRanges, index));
    columns.nameSlots = numbers(SectionKind::MemberNameSlots);
    columns.keySlots = numbers(SectionKind::MemberKeySlots);
    columns.flags = image_.Array<std::uint8_t>(Id(SectionKind::MemberFlags, index));

    const std::size_t count = hierarchy.levels_.back().members.last;
    CheckTexts(columns.nameOffsets, columns.names, count);
    CheckTexts(columns.captionOffsets, columns.captions, count);
    CheckTexts(columns.keyOffsets, columns.keys, count);
    CheckSlots(columns.nameSlots, count);
    CheckSlots(columns.keySlots, count);
    if (columns.parents.size() != count || columns.flags.size() != count) {
        Fail(fmt::format("the member columns of {} differ in length", hierarchy.uniqueName_));
    }
    hierarchy.parents_ = columns.parents;
    hierarchy.columns_ = std::make_shared<const MemberColumns>(columns);
    CheckTree(hierarchy);
}

void CubeLoader::CheckTexts(std::span<const std::uint32_t> offsets, std::string_view texts,
                            std::size_t count) const {
    if (offsets.size() != count + 1 || offsets.front() != 0 || offsets.back() != texts.size() ||
        !std::is_sorted(offsets.begin(), offsets.end())) {
        Fail("the places of the members' texts are not in order");
    }
}

void CubeLoader::CheckSlots(std::span<const std::uint32_t> slots, std::size_t count) const {
    // A lookup stops at a free slot, so there must be one.
    const bool isInRange =
        std::all_of(slots.begin(), slots.end(), [count](auto slot) { return slot <= count; });
    if (!std::has_single_bit(slots.size()) || !isInRange ||
        std::find(slots.begin(), slots.end(), 0U) == slots.end()) {
        Fail("a lookup table of members is not well-formed");
    }
}

void CubeLoader::CheckTree(const Hierarchy& hierarchy) const {
    const MemberColumns& columns = *hierarchy.columns_;
    const std::size_t count = columns.parents.size();
    const auto fail = [&] { Fail(fmt::format("the tree of {} is not consistent", hierarchy.uniqueName_)); };
    if (columns.firstChild.size() != count + 1 || columns.firstChild.back() != count ||
        !std::is_sorted(columns.firstChild.begin(), columns.firstChild.end())) {
        fail();
    }
    // The children of a level's members are exactly the next level.
    for (const Level& level : hierarchy.levels_) {
        if (columns.firstChild[level.members.first] != level.members.last) {
            fail();
        }
    }
    const MemberId topLevelEnd = hierarchy.levels_.front().members.last;
    for (MemberId member = 0; member < topLevelEnd; ++member) {
        if (columns.parents[member] != noMember) {
            fail();
        }
    }
    for (MemberId parent = 0; parent < count; ++parent) {
        for (MemberId child = columns.firstChild[parent]; child < columns.firstChild[parent + 1]; ++child) {
            if (columns.parents[child] != parent) {
                fail();
            }
        }
    }
}

void CubeLoader::CheckRanges(const Hierarchy& hierarchy, std::uint32_t codes) const {
    const auto offsets = hierarchy.columns_->rangeOffsets;
    const auto ranges = hierarchy.columns_->ranges;
    const auto fail = [&] { Fail(fmt::format("the keys of {} are out of range", hierarchy.uniqueName_)); };
    if (offsets.size() != std::size_t{hierarchy.MemberCount()} + 1 || offsets.front() != 0 ||
        offsets.back() != ranges.size() || !std::is_sorted(offsets.begin(), offsets.end())) {
        fail();
    }
    for (MemberId member = 0; member < hierarchy.MemberCount(); ++member) {
        std::uint64_t lowest = 0;
        for (const KeyRange& range : hierarchy.Ranges(member)) {
            if (range.first < lowest || range.first >= range.last || range.last > codes) {
                fail();
            }
            lowest = std::uint64_t{range.last} + 1; // adjacent ranges would have been one
        }
    }
}

void CubeLoader::LoadProjection(const FactTable& facts, std::size_t index,
                                std::span<const std::uint32_t> keysIn, Projection& projection) const {
    projection.rowCount_ = facts.rowCount_;
    projection.leadRows_ = image_.Array<std::uint64_t>(Id(SectionKind::LeadRows, index));
    const auto lead = projection.leadRows_;
    if (lead.size() != std::size_t{facts.keyColumns_[projection.sortOrder_.front()].codes} + 1 ||
        lead.front() != 0 || lead.back() != facts.rowCount_ || !std::is_sorted(lead.begin(), lead.end())) {
        Fail("the row numbers of a sort order are not consistent");
    }
    const auto column = [&](SectionKind kind, std::size_t number, std::uint8_t width) {
        MappedSection section = image_.Section(Id(kind, index, number));
        if (section.Size() % width != 0 || section.Size() / width != facts.rowCount_) {
            Fail("a column of facts has the wrong length");
        }
        return section;
    };
    const std::size_t leadColumn = facts.keyColumns_[projection.sortOrder_.front()].packedColumn;
    projection.packedWidths_ = facts.packedWidths_;
    for (std::size_t packedColumn = 0; packedColumn < facts.PackedColumnCount(); ++packedColumn) {
        // HoldsLeadAlone, without a search of all key columns for every order.
        const bool isStored = keysIn[packedColumn] > 1 || packedColumn != leadColumn;
        projection.hasPackedColumn_.push_back(isStored);
        projection.packedColumns_.push_back(
            isStored ? column(SectionKind::PackedColumns, packedColumn, facts.packedWidths_[packedColumn])
                     : MappedSection());
    }
    for (std::size_t i = 0; i < facts.measures_.size(); ++i) {
        const std::uint8_t width = facts.measures_[i].width;
        projection.valueWidths_.push_back(width);
        image_.TakeImplied(width == 0 ? sizeof(MappedSection) : 0);
        projection.values_.push_back(width == 0 ? MappedSection()
                                                : column(SectionKind::FactValues, i, width));
    }
}

format::SectionId CubeLoader::Id(SectionKind kind, std::size_t first, std::size_t second) const {
    return {static_cast<std::uint32_t>(kind), cubeNumber_, static_cast<std::uint32_t>(first),
            static_cast<std::uint32_t>(second)};
}

void CubeLoader::Fail(const std::string& fault) const {
    image_.Fail(fmt::format("cube {}: {}", cubeNumber_ + 1, fault));
}

} // namespace qel::engine
