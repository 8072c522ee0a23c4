#pragma once

#include "platform/data/CellQuery.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qel::ModSetCube {

/// Cells of the open cube that calls have read, prepared for being read again: a sheet that is recalculated
/// asks for the same ones. Values are not kept.
class KnownCells {
public:
    /// The cell of a call by its key, see WriteCallKey, or null.
    const PreparedCell* Find(std::string_view key) const;
    void Keep(std::string key, std::shared_ptr<const PreparedCell> cell);
    void Clear();

private:
    struct Known {
        std::string key;
        std::shared_ptr<const PreparedCell> cell;
    };

    std::unordered_map<std::size_t, Known> cells_; ///< by the hash of the key; of two with one hash, the last
    std::size_t bytes_ = 0;
};

} // namespace qel::ModSetCube
