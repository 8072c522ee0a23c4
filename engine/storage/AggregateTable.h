#pragma once

#include "engine/storage/CodeGroups.h"
#include "engine/storage/Projection.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

/// Selects the facts of an aggregate: one set of codes in up to two key columns. The lower column number
/// comes first; an unused column has the range {0, 0}. CodeGroups holds the sets that are not a single range.
struct AggregateKey {
    static constexpr std::uint16_t noColumn = 0xFFFF;

    std::uint16_t firstColumn = noColumn, secondColumn = noColumn;
    KeyRange first, second;

    bool operator==(const AggregateKey&) const = default;
    void Add(std::uint16_t column, KeyRange codes);
    /// The hash that the file's lookup table uses.
    std::uint64_t Hash() const;
};

/// An aggregate as it is stored: facts that are many, or scattered over the sort orders, gathered for
/// reading. It holds either the facts themselves (rows) or, when they share many packed keys, prefix sums
/// over time.
struct Aggregate {
    AggregateKey key;
    std::uint32_t keyCount = 0;        ///< packed keys; 0 for a row aggregate
    std::uint64_t start = 0;           ///< the first packed key or row
    std::uint64_t rows = 0;            ///< number of facts
    std::uint32_t coarserKeyCount = 0; ///< packed keys of the coarser aggregate, which follow its own
    std::uint32_t unused = 0;
};
static_assert(sizeof(Aggregate) == 48);

/// The aggregates of a cube. Besides the columns of its key, an aggregate keeps one time column and the
/// narrow columns that fit the packed key.
///
/// Row aggregates are sorted by the last column of the packed key. The others are sorted by packed key. A
/// packed key covers a block of 64 time buckets; for each bucket of the block that has facts it stores the
/// sums of all facts up to that bucket (prefix sums), so any span of time costs two reads. The coarser
/// aggregate repeats the same facts with the last column of the packed key set to 0, for queries that do not
/// restrict that column.
///
/// Opening a file checks only the sizes, to stay fast. Values read from here are safe to compare but must not
/// be used as an index unchecked.
class AggregateTable {
public:
    static constexpr std::uint32_t blockBuckets = 64;

    /// A key column inside the packed key.
    struct PackedKeyColumn {
        std::uint16_t column = 0;
        std::uint8_t shift = 0, bits = 0;

        /// The bits of the packed key that hold the code.
        std::uint32_t Mask() const {
            return static_cast<std::uint32_t>(((std::uint64_t{1} << bits) - 1) << shift);
        }
    };
    /// Where the prefix sums of consecutive packed keys lie.
    struct PrefixIndex {
        const std::uint32_t* keys = nullptr; ///< the low bits hold the block's number
        const std::uint64_t* bucketMasks =
            nullptr;                           ///< one bit per bucket of the block, set when it has facts
        const std::uint32_t* starts = nullptr; ///< each key's first prefix sum, and the end of the last
    };

    /// From the highest bits of the packed key to the lowest.
    std::span<const PackedKeyColumn> PackedKeyColumns() const { return packedKeyColumns_; }
    unsigned BlockBits() const { return blockBits_; }
    std::optional<std::size_t> TimeColumn() const { return timeColumn_; }
    /// The first time code of each bucket, followed by the number of codes.
    std::span<const std::uint32_t> TimeBuckets() const { return timeBuckets_; }

    const CodeGroups& Groups() const { return groups_; }
    std::uint64_t Count() const { return records_.Size() / sizeof(Aggregate); }
    /// Null when there is none. This and all below raise EngineError (DamagedFile).
    const Aggregate* Find(const AggregateKey& key) const;
    const Aggregate& At(std::uint64_t index) const;
    /// The facts of all row aggregates, with the packed columns of the packed key and of time.
    const Projection& Rows() const { return rows_; }
    PrefixIndex PrefixIndexOf(std::uint64_t first, std::uint64_t count) const;
    /// Signed prefix sums of a summed measure, SumWidth bytes each (4 or 8).
    const std::byte* Sums(std::size_t measure, std::uint64_t first, std::uint64_t count) const;
    std::uint8_t SumWidth(std::size_t measure) const { return sumWidths_[measure]; }
    /// Prefix counts of facts, for cubes with a count measure.
    const std::uint32_t* Counts(std::uint64_t first, std::uint64_t count) const;
    bool HasCounts() const { return counts_.Size() != 0; }

private:
    friend class AggregateLoader;

    std::vector<PackedKeyColumn> packedKeyColumns_;
    unsigned blockBits_ = 0;
    std::optional<std::size_t> timeColumn_;
    std::span<const std::uint32_t> timeBuckets_;
    CodeGroups groups_;
    MappedSection records_, lookup_, packedKeys_, bucketMasks_, prefixStarts_, counts_;
    std::vector<MappedSection> sums_; ///< by measure
    std::vector<std::uint8_t> sumWidths_;
    Projection rows_;
};

} // namespace qel::engine
