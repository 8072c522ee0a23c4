#pragma once

#include "engine/build/SpillStore.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace qel::engine {

/// What is known of a measure's amounts.
struct AmountRange {
    std::int64_t least = 0, most = 0;
    std::int64_t unit = 0;  ///< the largest number that divides every amount; 0 when all are 0
    std::uint64_t sum = 0;  ///< wraps around
    bool isSummable = true; ///< the sum of absolute values fits in 63 bits

    void Add(std::int64_t amount, bool isFirst);

private:
    std::int64_t rest_ = INT64_MAX; ///< of what the absolute values may sum up to
};

/// Facts in the order of their lines, column by column.
struct FactBlock {
    std::size_t rows = 0;
    std::vector<std::vector<std::uint32_t>> keys;  ///< value numbers by key column
    std::vector<std::vector<std::int64_t>> values; ///< by measure, scaled; empty for a count
};

/// Reads bytes from an offset on.
using ReadBytes = std::function<void(std::uint64_t offset, std::span<std::byte> bytes)>;

/// Reads a block that FactStore wrote into one with the right number of columns, and moves the offset behind
/// it. False when it is not well-formed.
bool ReadFactBlock(const ReadBytes& read, const std::vector<bool>& isSummed, std::uint64_t& offset,
                   FactBlock& block);

/// The facts of a cube as they are read: in blocks, each column in as few bytes as its numbers need.
class FactStore {
public:
    explicit FactStore(SpillStore& store) : stream_(store) {}

    /// `isSummed` tells for each measure whether it has amounts.
    void SetColumns(std::size_t keyColumns, const std::vector<bool>& isSummed);
    void Add(std::span<const std::uint32_t> numbers, std::span<const std::int64_t> amounts);
    /// Ends the adding.
    void Finish();

    std::uint64_t RowCount() const { return rowCount_; }
    /// The number of facts with each value number.
    const std::vector<std::uint64_t>& Counts(std::size_t keyColumn) const { return counts_[keyColumn]; }
    const AmountRange& Amounts(std::size_t measure) const { return amounts_[measure]; }
    /// The sum of each measure's amounts, or the number of facts for a count.
    std::vector<std::uint64_t> Sums() const;

    void ForEach(const std::function<void(const FactBlock&)>& visit) const;
    /// As ForEach, and gives back the memory on the way.
    void Consume(const std::function<void(const FactBlock&)>& visit);
    /// The blocks, to be written.
    const ByteStream& Blocks() const { return stream_; }

private:
    void StoreBlock();
    void Visit(const std::function<void(const FactBlock&)>& visit,
               const std::function<void(std::uint64_t)>& release) const;

    ByteStream stream_;
    std::uint64_t rowCount_ = 0;
    FactBlock block_; ///< being filled
    std::vector<bool> isSummed_;
    std::vector<std::vector<std::uint64_t>> counts_;
    std::vector<AmountRange> amounts_;
};

} // namespace qel::engine
