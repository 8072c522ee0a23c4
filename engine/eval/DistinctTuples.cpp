#include "engine/eval/DistinctTuples.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

void DistinctTuples::Add(Tuple tuple) {
    if (index_.find(tuple) == index_.end()) {
        tuples_.Append(tuple);
        isRemoved_.push_back(false);
        index_.insert(static_cast<Slot>(isRemoved_.size() - 1));
    }
}

void DistinctTuples::Add(const TupleSet& set) {
    for (std::size_t i = 0; i < set.Count(); ++i) {
        Add(set.At(i));
    }
}

void DistinctTuples::Remove(const TupleSet& set) {
    for (std::size_t i = 0; i < set.Count(); ++i) {
        const auto found = index_.find(set.At(i));
        if (found != index_.end()) {
            Remove(*found);
        }
    }
    Compact();
}

void DistinctTuples::Keep(const TupleSet& set) {
    TupleIndex kept;
    for (std::size_t i = 0; i < set.Count(); ++i) {
        kept.Insert(set.At(i));
    }
    for (Slot slot = 0; slot < isRemoved_.size(); ++slot) {
        if (!isRemoved_[slot] && !kept.Contains(tuples_.At(slot))) {
            Remove(slot);
        }
    }
    Compact();
}

void DistinctTuples::AppendTo(TupleSet& result) const {
    for (Slot slot = 0; slot < isRemoved_.size(); ++slot) {
        if (!isRemoved_[slot]) {
            result.Append(tuples_.At(slot));
        }
    }
}

void DistinctTuples::Remove(Slot slot) {
    index_.erase(slot);
    isRemoved_[slot] = true;
    ++removed_;
}

/// Gives up the room of removed tuples when they are the most.
void DistinctTuples::Compact() {
    if (removed_ <= isRemoved_.size() / 2) {
        return;
    }
    TupleSet kept{tuples_.dimensionality, {}};
    AppendTo(kept);
    index_.clear();
    tuples_.ids = std::move(kept.ids);
    isRemoved_.assign(tuples_.Count(), false);
    removed_ = 0;
    for (Slot slot = 0; slot < isRemoved_.size(); ++slot) {
        index_.insert(slot);
    }
}

} // namespace qel::engine
