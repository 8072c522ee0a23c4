#include "engine/storage/CubeFileWriter.h"

#include "engine/storage/ByteBuffer.h"
#include "engine/storage/NameIndex.h"
#include "engine/storage/WriteFailure.h"

#include <xxhash.h>

#include <algorithm>
#include <stdexcept>
#include <unordered_set>

namespace qel::engine {

namespace {

using format::SectionKind;

constexpr format::SectionId Id(SectionKind kind, std::uint32_t cube, std::size_t first = 0,
                               std::size_t second = 0) {
    return {static_cast<std::uint32_t>(kind), cube, static_cast<std::uint32_t>(first),
            static_cast<std::uint32_t>(second)};
}

template <class T>
std::span<const std::byte> AsBytes(const std::vector<T>& values) {
    return std::as_bytes(std::span(values));
}

std::span<const std::byte> AsBytes(const std::string& text) { return std::as_bytes(std::span(text)); }

void DescribeFacts(const CubeModel& cube, ByteWriter& out) {
    out.Put(static_cast<std::uint32_t>(cube.keyColumns.size()));
    for (const KeyColumn& column : cube.keyColumns) {
        out.PutText(column.name);
        out.Put(column.codes);
        out.Put(column.width);
        out.Put(column.packedColumn);
        out.Put(column.shift);
    }
    out.Put(static_cast<std::uint32_t>(cube.measures.size()));
    for (const MeasureColumn& measure : cube.measures) {
        out.PutText(measure.name);
        out.PutText(measure.caption);
        out.Put(static_cast<std::uint8_t>(measure.function));
        out.Put(measure.decimals);
        out.Put(measure.width);
        out.Put(measure.unit);
    }
    out.Put(static_cast<std::uint32_t>(cube.projections.size()));
    for (const ProjectionModel& projection : cube.projections) {
        out.Put(static_cast<std::uint32_t>(projection.sortOrder.size()));
        for (const std::uint16_t column : projection.sortOrder) {
            out.Put(column);
        }
    }
}

void DescribeHierarchy(const HierarchyModel& hierarchy, ByteWriter& out) {
    out.PutText(hierarchy.name);
    out.PutText(hierarchy.caption);
    out.Put(hierarchy.keyColumn ? *hierarchy.keyColumn + 1 : std::uint32_t{0});
    out.Put(hierarchy.defaultMember);
    out.Put(static_cast<std::uint32_t>(hierarchy.levels.size()));
    for (const LevelModel& level : hierarchy.levels) {
        out.PutText(level.name);
        out.Put(static_cast<std::uint8_t>(level.isAll));
        out.Put(level.memberCount);
    }
}

ByteWriter Describe(const CubeModel& cube) {
    ByteWriter out;
    out.PutText(cube.name);
    out.PutText(cube.caption);
    out.Put(cube.defaultMeasure);
    out.Put(cube.rowCount);
    DescribeFacts(cube, out);
    out.Put(static_cast<std::uint32_t>(cube.dimensions.size()));
    for (const DimensionModel& dimension : cube.dimensions) {
        out.PutText(dimension.name);
        out.PutText(dimension.caption);
        out.Put(static_cast<std::uint8_t>(dimension.isTime));
        out.Put(static_cast<std::uint32_t>(dimension.hierarchies.size()));
        for (const HierarchyModel& hierarchy : dimension.hierarchies) {
            DescribeHierarchy(hierarchy, out);
        }
    }
    return out;
}

ByteWriter DescribeSources(const CubeModel& cube) {
    ByteWriter out;
    out.Put(static_cast<std::uint32_t>(cube.sources.size()));
    for (const SourceTotals& source : cube.sources) {
        out.PutText(source.file);
        out.Put(source.linesRead);
        out.Put(source.linesUsed);
        out.Put(source.linesSkipped);
        for (const std::int64_t sum : source.sums) {
            out.Put(sum);
        }
    }
    return out;
}

ByteWriter DescribeCalculations(const Calculations& calculations) {
    ByteWriter out;
    out.Put(static_cast<std::uint32_t>(calculations.members.size()));
    for (const CalculatedMember& member : calculations.members) {
        out.PutText(member.name);
        out.PutText(member.formula);
        out.PutText(member.format);
        out.Put(member.solveOrder);
    }
    out.Put(static_cast<std::uint32_t>(calculations.sets.size()));
    for (const StoredSet& set : calculations.sets) {
        out.PutText(set.name);
        out.PutText(set.formula);
    }
    return out;
}

/// Flags the members whose name a sibling also has. Siblings are consecutive.
std::vector<std::uint8_t> SharedNameFlags(const HierarchyModel& hierarchy) {
    const auto count = static_cast<std::uint32_t>(hierarchy.parents.size());
    std::vector<std::uint8_t> flags(count);
    std::vector<std::string> folded(count);
    for (std::uint32_t member = 0; member < count; ++member) {
        AppendFolded(hierarchy.names.At(member), folded[member]);
    }
    for (std::uint32_t first = 0, last = 0; first < count; first = last) {
        std::unordered_set<std::string_view> seen, shared;
        for (last = first; last < count && hierarchy.parents[last] == hierarchy.parents[first]; ++last) {
            if (!seen.insert(folded[last]).second) {
                shared.insert(folded[last]);
            }
        }
        for (std::uint32_t member = first; !shared.empty() && member < last; ++member) {
            flags[member] = shared.count(folded[member]) != 0 ? format::nameIsShared : std::uint8_t{0};
        }
    }
    return flags;
}

ByteWriter DescribeDetails(const CubeModel& cube) {
    ByteWriter out;
    out.Put(static_cast<std::uint32_t>(cube.sources.size()));
    for (const SourceTotals& source : cube.sources) {
        out.PutText(source.file);
    }
    out.Put(BytesFor(cube.rowCount));
    out.Put(static_cast<std::uint32_t>(cube.details.columns.size()));
    for (const DetailModel& column : cube.details.columns) {
        out.PutText(column.name);
        out.PutText(column.caption);
        out.Put(column.texts);
        out.Put(column.codeWidth);
        out.Put(column.offsetWidth);
    }
    return out;
}

} // namespace

CubeFileWriter::CubeFileWriter(const std::filesystem::path& path) : file_(path, RaiseCannotWrite) {
    page_.reserve(format::pageSize);
    page_.resize(sizeof(format::Header)); // a placeholder: the header is written last
}

std::uint32_t CubeFileWriter::AddCube(const CubeModel& cube) {
    const std::uint32_t number = cubes_++;
    Section(Id(SectionKind::CubeDescription, number), Describe(cube).Bytes());
    std::uint32_t index = 0;
    for (const DimensionModel& dimension : cube.dimensions) {
        for (const HierarchyModel& hierarchy : dimension.hierarchies) {
            AddHierarchy(number, index++, hierarchy);
        }
    }
    for (std::size_t i = 0; i < cube.projections.size(); ++i) {
        Section(Id(SectionKind::LeadRows, number, i), AsBytes(cube.projections[i].leadRows));
    }
    if (!cube.sources.empty()) {
        Section(Id(SectionKind::FactSources, number), DescribeSources(cube).Bytes());
    }
    if (!cube.calculations.Empty()) {
        Section(Id(SectionKind::Calculations, number), DescribeCalculations(cube.calculations).Bytes());
    }
    if (cube.keepsDetails) {
        Section(Id(SectionKind::DetailDescription, number), DescribeDetails(cube).Bytes());
        Section(Id(SectionKind::DetailRuns, number), AsBytes(cube.details.runs));
    }
    return number;
}

void CubeFileWriter::AddHierarchy(std::uint32_t cube, std::uint32_t index, const HierarchyModel& hierarchy) {
    const auto add = [&](SectionKind kind, const auto& values) {
        Section(Id(kind, cube, index), AsBytes(values));
    };
    add(SectionKind::MemberNames, hierarchy.names.bytes);
    add(SectionKind::MemberNameOffsets, hierarchy.names.offsets);
    add(SectionKind::MemberCaptions, hierarchy.captions.bytes);
    add(SectionKind::MemberCaptionOffsets, hierarchy.captions.offsets);
    add(SectionKind::MemberKeys, hierarchy.keys.bytes);
    add(SectionKind::MemberKeyOffsets, hierarchy.keys.offsets);
    add(SectionKind::MemberParents, hierarchy.parents);
    add(SectionKind::MemberFirstChildren, hierarchy.firstChild);
    add(SectionKind::MemberRangeOffsets, hierarchy.rangeOffsets);
    add(SectionKind::MemberRanges, hierarchy.ranges);
    const auto count = static_cast<std::uint32_t>(hierarchy.parents.size());
    add(SectionKind::MemberNameSlots,
        BuildNameIndex(count, [&](std::uint32_t member) { return hierarchy.names.At(member); }));
    add(SectionKind::MemberKeySlots,
        BuildNameIndex(count, [&](std::uint32_t member) { return hierarchy.keys.At(member); }));
    add(SectionKind::MemberFlags, SharedNameFlags(hierarchy));
}

void CubeFileWriter::BeginPackedColumn(std::uint32_t cube, std::size_t projection, std::size_t packedColumn) {
    Begin(Id(SectionKind::PackedColumns, cube, projection, packedColumn));
}

void CubeFileWriter::BeginValues(std::uint32_t cube, std::size_t projection, std::size_t measure) {
    Begin(Id(SectionKind::FactValues, cube, projection, measure));
}

void CubeFileWriter::Begin(const format::SectionId& id) {
    Pad();
    directory_.push_back({id, Position(), 0});
}

void CubeFileWriter::Append(std::span<const std::byte> bytes) { Emit(bytes); }

void CubeFileWriter::End() { directory_.back().size = Position() - directory_.back().offset; }

void CubeFileWriter::Section(const format::SectionId& id, std::span<const std::byte> bytes) {
    Begin(id);
    Append(bytes);
    End();
}

void CubeFileWriter::Pad() {
    const std::uint64_t excess = Position() % format::sectionAlignment;
    if (excess != 0) {
        Emit(std::vector<std::byte>(format::sectionAlignment - excess));
    }
}

void CubeFileWriter::Emit(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const std::size_t part = std::min<std::size_t>(bytes.size(), format::pageSize - page_.size());
        page_.insert(page_.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(part));
        bytes = bytes.subspan(part);
        if (page_.size() == format::pageSize) {
            FinishPage();
        }
    }
}

void CubeFileWriter::FinishPage() {
    const std::uint64_t number = flushed_ / format::pageSize;
    checksums_.resize(static_cast<std::size_t>(number) + 1);
    StorePage(number, page_);
    flushed_ += page_.size();
    page_.clear();
}

void CubeFileWriter::StorePage(std::uint64_t number, std::span<const std::byte> bytes) {
    // The checksum of page 0 leaves out the header, which is written last.
    const std::size_t skip = number == 0 ? sizeof(format::Header) : 0;
    checksums_[static_cast<std::size_t>(number)] = XXH3_64bits(bytes.data() + skip, bytes.size() - skip);
    file_.WriteAt(number * format::pageSize, bytes);
}

void CubeFileWriter::StorePart(std::uint64_t position, std::span<const std::byte> bytes) {
    if (bytes.empty()) {
        return;
    }
    const std::lock_guard lock(mutex_);
    SharedPage& page = sharedPages_[position / format::pageSize];
    page.bytes.resize(format::pageSize);
    std::copy(bytes.begin(), bytes.end(),
              page.bytes.begin() + static_cast<std::ptrdiff_t>(position % format::pageSize));
    page.filled += bytes.size();
    if (page.filled == format::pageSize) {
        StorePage(position / format::pageSize, page.bytes);
        sharedPages_.erase(position / format::pageSize);
    }
}

void ParallelSection::Append(std::span<const std::byte> bytes) {
    if (bytes.size() > end_ - position_) {
        throw std::logic_error("a section of the cube file is too small");
    }
    while (!bytes.empty()) {
        const std::uint64_t pageEnd = (position_ / format::pageSize + 1) * format::pageSize;
        const auto room = static_cast<std::size_t>(std::min(pageEnd, end_) - position_);
        const std::size_t part = std::min(bytes.size(), room);
        page_.insert(page_.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(part));
        bytes = bytes.subspan(part);
        position_ += part;
        if (part != room) {
            return;
        }
        if (page_.size() == format::pageSize) {
            writer_->StorePage(position_ / format::pageSize - 1, page_);
        } else {
            writer_->StorePart(position_ - page_.size(), page_);
        }
        page_.clear();
    }
}

std::vector<ParallelSection> CubeFileWriter::BeginTogether(std::span<const SizedSection> sections) {
    std::vector<ParallelSection> together;
    std::uint64_t position = Position();
    const auto makeRoom = [&] {
        checksums_.resize(static_cast<std::size_t>(position / format::pageSize) + 1);
    };
    makeRoom();
    StorePart(flushed_, page_);
    const std::vector<std::byte> zeros(format::sectionAlignment);
    for (const SizedSection& section : sections) {
        const std::uint64_t padding =
            (format::sectionAlignment - position % format::sectionAlignment) % format::sectionAlignment;
        if (padding != 0) {
            StorePart(position, std::span(zeros).first(static_cast<std::size_t>(padding)));
        }
        position += padding;
        directory_.push_back({section.id, position, section.size});
        together.emplace_back(*this, position, section.size);
        position += section.size;
        makeRoom();
    }
    endTogether_ = position;
    return together;
}

void CubeFileWriter::EndTogether() {
    const auto rest = static_cast<std::size_t>(endTogether_ % format::pageSize);
    flushed_ = endTogether_ - rest;
    SharedPage& last = sharedPages_[flushed_ / format::pageSize];
    if (last.filled != rest || sharedPages_.size() != 1) {
        throw std::logic_error("a section of the cube file is incomplete");
    }
    last.bytes.resize(rest);
    page_.assign(last.bytes.begin(), last.bytes.end());
    sharedPages_.clear();
    checksums_.resize(static_cast<std::size_t>(flushed_ / format::pageSize));
}

const std::filesystem::path& CubeFileWriter::Complete() {
    if (fileSize_ != 0) {
        return file_.TemporaryPath();
    }
    Pad();
    if (!page_.empty()) {
        FinishPage();
    }
    std::sort(directory_.begin(), directory_.end(),
              [](const auto& left, const auto& right) { return left.id < right.id; });
    const auto checksums = AsBytes(checksums_);
    const auto directory = AsBytes(directory_);
    std::vector<std::byte> tail(checksums.begin(), checksums.end());
    tail.insert(tail.end(), directory.begin(), directory.end());
    file_.WriteAt(flushed_, tail);

    format::Header header = {};
    header.signature = format::signature;
    header.version = format::version;
    header.pageSize = static_cast<std::uint32_t>(format::pageSize);
    header.fileSize = flushed_ + tail.size();
    header.checksumTableOffset = flushed_;
    header.directoryOffset = flushed_ + checksums.size();
    header.directoryEntries = static_cast<std::uint32_t>(directory_.size());
    header.tailChecksum = XXH3_64bits(tail.data(), tail.size());
    header.headerChecksum = XXH3_64bits(&header, format::headerChecksumOffset);
    file_.WriteAt(0, std::as_bytes(std::span(&header, 1)));
    file_.Finish();
    fileSize_ = header.fileSize;
    return file_.TemporaryPath();
}

std::uint64_t CubeFileWriter::Commit() {
    Complete();
    file_.Commit();
    return fileSize_;
}

} // namespace qel::engine
