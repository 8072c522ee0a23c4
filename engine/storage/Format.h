#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <tuple>

// The fixed parts of a cube file; docs/cub-format.md describes them.

namespace qel::engine::format {

static_assert(std::endian::native == std::endian::little,
              "cube files are little-endian and mapped without conversion");

/// Starts with a non-ASCII byte and ends with a line feed, so that a file damaged by a text-mode transfer is
/// not taken for a cube.
inline constexpr std::array<char, 8> signature = {'\x89', 'Q', 'E', 'L', 'C', 'U', 'B', '\n'};
inline constexpr std::uint32_t version = 3;
inline constexpr std::uint64_t pageSize = 65536;
inline constexpr std::uint64_t sectionAlignment = 64;
inline constexpr std::uint64_t mostFacts = 0xFFFFFFFFU; ///< in one cube
/// In all aggregates of a cube, per fact of the cube; bounds the time that checking them takes.
inline constexpr std::uint64_t mostAggregatedFacts = 1000;
/// In searches for the facts of all aggregates of a cube, per fact; a build uses at most half of them.
inline constexpr std::uint64_t mostSearchSteps = 10'000;
inline constexpr std::uint32_t mostCubes = 10'000;
/// Memory that opening may take for what the file does not store: names made of others, and columns that
/// other columns imply. Ten thousand ordinary cubes take a tenth of it.
inline constexpr std::uint64_t mostImpliedBytes = std::uint64_t{64} << 20U;

struct Header {
    std::array<char, 8> signature;
    std::uint32_t version;
    std::uint32_t pageSize;
    std::uint64_t fileSize;
    std::uint64_t checksumTableOffset; ///< the end of the sections
    std::uint64_t directoryOffset;
    std::uint32_t directoryEntries;
    std::uint32_t reserved;
    std::uint64_t tailChecksum;   ///< XXH3-64 of the checksum table and the directory
    std::uint64_t headerChecksum; ///< XXH3-64 of the 56 bytes before it
};
static_assert(sizeof(Header) == 64);
inline constexpr std::size_t headerChecksumOffset = offsetof(Header, headerChecksum);

/// What a section holds. `first` and `second` of its directory entry say which one.
enum class SectionKind : std::uint32_t {
    CubeDescription = 1, ///< names, levels, key columns, measures, sort orders
    // One per hierarchy (first: hierarchy).
    MemberNames = 16,
    MemberNameOffsets = 17,
    MemberCaptions = 18,
    MemberCaptionOffsets = 19,
    MemberKeys = 20,
    MemberKeyOffsets = 21,
    MemberParents = 22,
    MemberFirstChildren = 23,
    MemberRangeOffsets = 24,
    MemberRanges = 25,
    MemberNameSlots = 26,
    MemberKeySlots = 27,
    MemberFlags = 28,
    // One per sort order.
    LeadRows = 48,      ///< first: sort order
    PackedColumns = 49, ///< first: sort order, second: packed column
    FactValues = 50,    ///< first: sort order, second: measure
    // Aggregates are optional: the facts give the same answers.
    AggregateDescription = 0x80000001U,
    AggregateTimeBuckets = 0x80000002U,
    AggregateRecords = 0x80000003U,
    AggregateLookup = 0x80000004U,
    AggregatePackedColumns = 0x80000005U, ///< second: packed column
    AggregateValues = 0x80000006U,        ///< second: measure
    PackedKeys = 0x80000007U,
    BucketMasks = 0x80000008U,
    PrefixStarts = 0x80000009U,
    PrefixSums = 0x8000000AU, ///< second: measure
    PrefixCounts = 0x8000000BU,
    GroupStarts = 0x8000000CU,
    GroupRanges = 0x8000000DU,
    FactSources = 0x8000000EU,  ///< what came from each fact file
    Calculations = 0x8000000FU, ///< calculated members and named sets
    // Details are optional: only lines show them.
    DetailDescription = 0x80000010U,
    DetailRuns = 0x80000011U,
    DetailFacts = 0x80000012U,   ///< first: sort order
    DetailCodes = 0x80000013U,   ///< second: detail
    DetailOffsets = 0x80000014U, ///< second: detail
    DetailTexts = 0x80000015U,   ///< second: detail
    // For a build that goes on from this one.
    KeptDescription = 0x80000016U,
    KeptFacts = 0x80000017U,
};

/// Readers skip unknown kinds from here on. An unknown kind below means a newer file format.
inline constexpr std::uint32_t firstOptionalKind = 0x80000000U;

struct SectionId {
    std::uint32_t kind = 0, cube = 0, first = 0, second = 0;

    bool operator==(const SectionId&) const = default;
    bool operator<(const SectionId& other) const {
        return std::tie(kind, cube, first, second) <
               std::tie(other.kind, other.cube, other.first, other.second);
    }
};

/// Entries ascend by section id.
struct DirectoryEntry {
    SectionId id;
    std::uint64_t offset;
    std::uint64_t size;
};
static_assert(sizeof(DirectoryEntry) == 32);

/// A member's flags.
inline constexpr std::uint8_t nameIsShared = 1; ///< a sibling has the same name

} // namespace qel::engine::format
