#pragma once

#include "engine/storage/CodeGroups.h"
#include "engine/storage/Projection.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

/// What an aggregate is of: the facts under one set of codes in up to two key columns. The lower column
/// number comes first; a column that is left out has the range {0, 0}. See CodeGroups for sets that are no
/// range.
struct AggregateKey {
    static constexpr std::uint16_t noColumn = 0xFFFF;

    std::uint16_t firstColumn = noColumn, secondColumn = noColumn;
    KeyRange first, second;

    bool operator==(const AggregateKey&) const = default;
    void Add(std::uint16_t column, KeyRange codes);
    /// As the file's lookup table is hashed.
    std::uint64_t Hash() const;
};

/// An aggregate as it is stored: facts that lie in many places, or are many, gathered for reading. It holds
/// either the rows themselves or, where these have much in common, strips of running sums.
struct Aggregate {
    AggregateKey key;
    std::uint32_t keyCount = 0;        ///< 0: the aggregate is rows
    std::uint64_t start = 0;           ///< its first strip or row
    std::uint64_t rows = 0;            ///< how many facts it sums
    std::uint32_t coarserKeyCount = 0; ///< how many merged strips follow its strips
    std::uint32_t unused = 0;
};
static_assert(sizeof(Aggregate) == 48);

/// The aggregates of a cube. Their key columns apart, facts have a word of narrow columns and a time. Rows of
/// a aggregate ascend by the word's last column. Strips ascend by word; a strip has one word and up to 64
/// neighbouring buckets of time (a block), a bit for each that has facts and, for each such bucket, the
/// sums of all up to it. Merged strips are the same facts again, all codes of the word's last column together
/// under words in which it is 0: for questions that leave it out. Opening checks no more than sizes, so that
/// it stays quick: what is read here is safe to read, not safe to index with.
class AggregateTable {
public:
    static constexpr std::uint32_t blockBuckets = 64;

    /// A narrow column and its place in the word.
    struct PackedKeyColumn {
        std::uint16_t column = 0;
        std::uint8_t shift = 0, bits = 0;

        /// The bits of the word that hold the code.
        std::uint32_t Mask() const {
            return static_cast<std::uint32_t>(((std::uint64_t{1} << bits) - 1) << shift);
        }
    };
    struct PrefixIndex {
        const std::uint32_t* keys = nullptr;        ///< the block's number is in the low bits
        const std::uint64_t* bucketMasks = nullptr; ///< a bit for each bucket of the block that has facts
        const std::uint32_t* starts = nullptr; ///< the number of each strip's first running sum, and one more
    };

    /// From the word's highest bits to its lowest.
    std::span<const PackedKeyColumn> PackedKeyColumns() const { return packedKeyColumns_; }
    unsigned BlockBits() const { return blockBits_; }
    std::optional<std::size_t> TimeColumn() const { return timeColumn_; }
    /// The time codes that buckets begin with, and the number of codes.
    std::span<const std::uint32_t> TimeBuckets() const { return timeBuckets_; }

    const CodeGroups& Groups() const { return groups_; }
    std::uint64_t Count() const { return records_.Size() / sizeof(Aggregate); }
    /// Null when there is none. Raises EngineError (DamagedFile), as all below do.
    const Aggregate* Find(const AggregateKey& key) const;
    const Aggregate& At(std::uint64_t index) const;
    /// The facts of all aggregates that hold rows, in the packed columns of the word's columns and the time.
    const Projection& Rows() const { return rows_; }
    PrefixIndex PrefixIndexOf(std::uint64_t first, std::uint64_t count) const;
    /// Running sums of a measure that is summed, signed, each of SumWidth bytes: 4 or 8.
    const std::byte* Sums(std::size_t measure, std::uint64_t first, std::uint64_t count) const;
    std::uint8_t SumWidth(std::size_t measure) const { return sumWidths_[measure]; }
    /// Running counts of facts; for a cube that has a measure that counts.
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
