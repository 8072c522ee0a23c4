#pragma once

#include "engine/eval/BlockFilter.h"
#include "engine/storage/Projection.h"

#include <algorithm>
#include <span>

namespace qel::engine {

/// Calls visit(rows, mask) for every block of the run until it returns false. Returns whether all blocks were
/// visited. The mask is null when every row of the block passes. Raises EngineError (DamagedFile).
template <class Visit>
bool VisitBlocks(const Projection& projection, RowRange run, std::span<const BlockFilter> filters,
                 const Visit& visit) {
    BlockMask mask;
    for (std::uint64_t first = run.first; first < run.last; first += blockRows) {
        const RowRange rows{first, std::min(run.last, first + blockRows)};
        if (!filters.empty()) {
            MarkPassing(filters, rows.Count(), mask, [&](const BlockFilter& filter) {
                return projection.PackedColumn(filter.PackedColumn(), rows);
            });
        }
        if (!visit(rows, filters.empty() ? nullptr : &mask)) {
            return false;
        }
    }
    return true;
}

} // namespace qel::engine
