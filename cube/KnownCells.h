#pragma once

#include "platform/data/CellQuery.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qel::ModSetCube {

/// Cells of the open cube that calls have read, prepared for being read again: a sheet that is recalculated
/// asks for the same ones, usually in the same order. Values are not kept.
class KnownCells {
public:
    /// The cell of a call by its key, see WriteCallKey, or null. Prefetches the cell that followed it last
    /// time.
    const PreparedCell* Find(std::string_view key);
    /// For a cell that was read.
    void Keep(std::string key, std::shared_ptr<const PreparedCell> cell);
    void Clear();

private:
    struct Known {
        std::string key;
        std::shared_ptr<const PreparedCell> cell;
        std::size_t next; ///< the place of the cell that followed it last time

        std::size_t Bytes() const;
    };

    /// The place of the key's cell, or the number of cells.
    std::size_t PlaceOf(std::string_view key) const;
    void Follow(std::size_t place);
    const Known* At(std::size_t place) const { return place < cells_.size() ? &cells_[place] : nullptr; }

    std::vector<Known> cells_;                            ///< in the order in which they were first read
    std::unordered_map<std::size_t, std::size_t> places_; ///< by the hash of the key; of two with one hash,
                                                          ///< the last
    std::size_t last_ = 0; ///< the place of the cell that was found or kept last
    std::size_t bytes_ = 0;
};

} // namespace qel::ModSetCube
