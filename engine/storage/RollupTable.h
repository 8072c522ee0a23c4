#pragma once

#include "engine/storage/CodeGroups.h"
#include "engine/storage/Projection.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace qel::engine {

/// What a rollup is of: the facts under one set of codes in up to two key columns. The lower column number
/// comes first; a column that is left out has the range {0, 0}. See CodeGroups for sets that are no range.
struct RollupKey {
    static constexpr std::uint16_t noColumn = 0xFFFF;

    std::uint16_t firstColumn = noColumn, secondColumn = noColumn;
    KeyRange first, second;

    bool operator==(const RollupKey&) const = default;
    void Add(std::uint16_t column, KeyRange codes);
    /// As the file's lookup table is hashed.
    std::uint64_t Hash() const;
};

/// A rollup as it is stored: facts that lie in many places, or are many, gathered for reading. It holds
/// either the rows themselves or, where these have much in common, strips of running sums.
struct Rollup {
    RollupKey key;
    std::uint32_t strips = 0; ///< 0: the rollup is rows
    std::uint64_t start = 0;  ///< its first strip or row
    std::uint64_t rows = 0;   ///< how many facts it sums
    std::uint32_t merged = 0; ///< how many merged strips follow its strips
    std::uint32_t unused = 0;
};
static_assert(sizeof(Rollup) == 48);

/// The rollups of a cube. Their key columns apart, facts have a word of narrow columns and a time. Rows of a
/// rollup ascend by the word's last column. Strips ascend by word; a strip has one word and up to 64
/// neighbouring granules of time (a block), a bit for each that has facts and, for each such granule, the
/// sums of all up to it. Merged strips are the same facts again, all codes of the word's last column together
/// under words in which it is 0: for questions that leave it out. Opening checks no more than sizes, so that
/// it stays quick: what is read here is safe to read, not safe to index with.
class RollupTable {
public:
    static constexpr std::uint32_t blockGranules = 64;

    /// A narrow column and its place in the word.
    struct WordColumn {
        std::uint16_t column = 0;
        std::uint8_t shift = 0, bits = 0;

        /// The bits of the word that hold the code.
        std::uint32_t Mask() const {
            return static_cast<std::uint32_t>(((std::uint64_t{1} << bits) - 1) << shift);
        }
    };
    struct Strips {
        const std::uint32_t* words = nullptr;   ///< the block's number is in the low bits
        const std::uint64_t* periods = nullptr; ///< a bit for each granule of the block that has facts
        const std::uint32_t* entries =
            nullptr; ///< the number of each strip's first running sum, and one more
    };

    /// From the word's highest bits to its lowest.
    std::span<const WordColumn> WordColumns() const { return wordColumns_; }
    unsigned BlockBits() const { return blockBits_; }
    std::optional<std::size_t> TimeColumn() const { return timeColumn_; }
    /// The time codes that granules begin with, and the number of codes.
    std::span<const std::uint32_t> Granules() const { return granules_; }

    const CodeGroups& Groups() const { return groups_; }
    std::uint64_t Count() const { return records_.Size() / sizeof(Rollup); }
    /// Null when there is none. Raises EngineError (DamagedFile), as all below do.
    const Rollup* Find(const RollupKey& key) const;
    const Rollup& At(std::uint64_t index) const;
    /// The facts of all rollups that hold rows, in the slots of the word's columns and the time.
    const Projection& Rows() const { return rows_; }
    Strips StripsOf(std::uint64_t first, std::uint64_t count) const;
    /// Running sums of a measure that is summed, signed, each of SumWidth bytes: 4 or 8.
    const std::byte* Sums(std::size_t measure, std::uint64_t first, std::uint64_t count) const;
    std::uint8_t SumWidth(std::size_t measure) const { return sumWidths_[measure]; }
    /// Running counts of facts; for a cube that has a measure that counts.
    const std::uint32_t* Counts(std::uint64_t first, std::uint64_t count) const;
    bool HasCounts() const { return counts_.Size() != 0; }

private:
    friend class RollupLoader;

    std::vector<WordColumn> wordColumns_;
    unsigned blockBits_ = 0;
    std::optional<std::size_t> timeColumn_;
    std::span<const std::uint32_t> granules_;
    CodeGroups groups_;
    MappedSection records_, lookup_, stripWords_, stripPeriods_, stripEntries_, counts_;
    std::vector<MappedSection> sums_; ///< by measure
    std::vector<std::uint8_t> sumWidths_;
    Projection rows_;
};

} // namespace qel::engine
