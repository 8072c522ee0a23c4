#include "cube/KnownCells.h"

#include <utility>

namespace qel::ModSetCube {

namespace {

/// Smaller on 32-bit systems, where each thread must leave address space for the rest of the process.
constexpr std::size_t mostBytes = sizeof(void*) < 8 ? 8U << 20U : 64U << 20U;
constexpr std::size_t perEntry = 128; ///< overhead of the hash table

} // namespace

const PreparedCell* KnownCells::Find(std::string_view key) const {
    const auto found = cells_.find(key);
    return found == cells_.end() ? nullptr : found->second.get();
}

void KnownCells::Keep(std::string key, std::shared_ptr<const PreparedCell> cell) {
    const std::size_t bytes = key.size() + cell->Bytes() + perEntry;
    if (bytes_ + bytes > mostBytes) {
        Clear();
    }
    if (bytes <= mostBytes && cells_.emplace(std::move(key), std::move(cell)).second) {
        bytes_ += bytes;
    }
}

void KnownCells::Clear() {
    cells_.clear();
    bytes_ = 0;
}

} // namespace qel::ModSetCube
