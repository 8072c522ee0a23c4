#include "cube/KnownCells.h"

#include <functional>
#include <utility>

namespace qel::ModSetCube {

namespace {

/// Smaller on 32-bit systems, where each thread must leave address space for the rest of the process.
constexpr std::size_t mostBytes = sizeof(void*) < 8 ? 8U << 20U : 64U << 20U;
constexpr std::size_t perEntry = 128; ///< overhead of the hash table

} // namespace

const PreparedCell* KnownCells::Find(std::string_view key) const {
    const auto found = cells_.find(std::hash<std::string_view>()(key));
    if (found == cells_.end()) {
        return nullptr;
    }
    const auto& [known, cell] = found->second;
    __builtin_prefetch(cell.get()); // on its way while the keys are compared
    return known == key ? cell.get() : nullptr;
}

void KnownCells::Keep(std::string key, std::shared_ptr<const PreparedCell> cell) {
    const std::size_t bytes = key.size() + cell->Bytes() + perEntry;
    if (bytes_ + bytes > mostBytes) {
        Clear();
    }
    if (bytes <= mostBytes) {
        const std::size_t hash = std::hash<std::string_view>()(key);
        cells_.insert_or_assign(hash, Known{std::move(key), std::move(cell)});
        bytes_ += bytes;
    }
}

void KnownCells::Clear() {
    cells_.clear();
    bytes_ = 0;
}

} // namespace qel::ModSetCube
