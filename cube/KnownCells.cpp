#include "cube/KnownCells.h"

#include <functional>
#include <utility>

namespace qel::ModSetCube {

namespace {

/// Smaller on 32-bit systems, where each thread must leave address space for the rest of the process.
constexpr std::size_t mostBytes = sizeof(void*) < 8 ? 8U << 20U : 64U << 20U;
constexpr std::size_t perEntry = 128; ///< overhead of the hash table

std::size_t HashOf(std::string_view key) { return std::hash<std::string_view>()(key); }

} // namespace

std::size_t KnownCells::Known::Bytes() const { return key.size() + cell->Bytes() + perEntry; }

std::size_t KnownCells::PlaceOf(std::string_view key) const {
    if (const Known* const last = At(last_)) {
        const Known* const next = At(last->next);
        if (next != nullptr && next->key == key) {
            return last->next;
        }
    }
    const auto found = places_.find(HashOf(key));
    return found != places_.end() && cells_[found->second].key == key ? found->second : cells_.size();
}

const PreparedCell* KnownCells::Find(std::string_view key) {
    const std::size_t place = PlaceOf(key);
    if (place == cells_.size()) {
        return nullptr;
    }
    Follow(place);
    if (const Known* const next = At(cells_[place].next)) {
        next->cell->Prefetch();
        if (const Known* const second = At(next->next)) {
            __builtin_prefetch(second->key.data());
            __builtin_prefetch(second->cell.get());
        }
    }
    return cells_[place].cell.get();
}

void KnownCells::Follow(std::size_t place) {
    if (last_ < cells_.size() && cells_[last_].next != place) {
        cells_[last_].next = place;
    }
    last_ = place;
}

void KnownCells::Keep(std::string key, std::shared_ptr<const PreparedCell> cell) {
    const std::size_t hash = HashOf(key);
    Known known{std::move(key), std::move(cell), cells_.size() + 1};
    const std::size_t bytes = known.Bytes();
    if (bytes_ + bytes > mostBytes) {
        Clear();
        known.next = 1;
    }
    if (bytes > mostBytes) {
        return;
    }
    const auto [entry, isNew] = places_.try_emplace(hash, cells_.size());
    if (isNew) {
        cells_.push_back(std::move(known));
    } else {
        Known& former = cells_[entry->second];
        bytes_ -= former.Bytes();
        known.next = former.next;
        former = std::move(known);
    }
    bytes_ += bytes;
    Follow(entry->second);
}

void KnownCells::Clear() {
    cells_.clear();
    places_.clear();
    last_ = 0;
    bytes_ = 0;
}

} // namespace qel::ModSetCube
