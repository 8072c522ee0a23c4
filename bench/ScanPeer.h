#pragma once

#include "bench/CellRanges.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace qel::bench {

/// The same cells by a plain scan of all lines, held in memory (30 bytes a line). Slow, but it takes ledgers
/// that are too large for the databases.
class ScanPeer {
public:
    /// Generates the ledger of so many rows again; it shares nothing with the cube's files.
    ScanPeer(std::uint64_t rows, std::uint64_t seed);

    /// The number that the formula shows. Raises std::out_of_range for a column that the ledger lacks.
    double Run(const CellRanges& cell) const;

private:
    using Codes = std::vector<std::uint16_t>;
    /// The lines of a column whose codes are from `first` to `last`.
    struct Condition {
        const Codes* codes = nullptr;
        std::uint16_t first = 0, last = 0;
    };

    std::int64_t SumOf(const std::vector<Condition>& where, const std::vector<std::int32_t>& values,
                       std::size_t begin, std::size_t end) const;

    Codes days_;                        ///< since the first of all, in order
    std::map<std::string, Codes> keys_; ///< by column: numbers of the lines of its table
    std::vector<std::int32_t> cents_, thousandths_;
};

} // namespace qel::bench
