#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qel::engine {

/// What a cube took from one of its fact files, to be held against the ledger's own totals.
struct SourceTotals {
    std::string file; ///< its name, without folders
    std::uint64_t linesRead = 0, linesUsed = 0, linesSkipped = 0;
    std::vector<std::int64_t> sums; ///< by measure, times 10^decimals; the lines used for a count
};

} // namespace qel::engine
