#pragma once

#include "engine/eval/TupleSet.h"

#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace qel::engine {

/// Tuples without duplicates, in the order in which they came. Adding and removing a tuple takes constant
/// time, so that long chains of unions and differences stay linear.
class DistinctTuples {
public:
    explicit DistinctTuples(Dimensionality dimensionality)
        : tuples_{std::move(dimensionality), {}}, index_(0, Hash{&tuples_}, Equal{&tuples_}) {}
    ~DistinctTuples() = default;
    DistinctTuples(const DistinctTuples&) = delete;
    DistinctTuples& operator=(const DistinctTuples&) = delete;

    /// These raise TooLarge as TupleSet does.
    void Add(std::span<const MemberId> tuple);
    void Add(const TupleSet& set);
    void Remove(const TupleSet& set);
    /// Removes what is not in the set.
    void Keep(const TupleSet& set);
    void AppendTo(TupleSet& result) const;

private:
    using Tuple = std::span<const MemberId>;
    using Slot = std::uint32_t; ///< the number of a tuple in `tuples_`

    /// Looks tuples up by their members without a copy of them.
    struct Hash {
        using is_transparent = void;
        const TupleSet* tuples;
        std::size_t operator()(Tuple tuple) const {
            return std::hash<std::string_view>()(
                {reinterpret_cast<const char*>(tuple.data()), tuple.size_bytes()});
        }
        std::size_t operator()(Slot slot) const { return (*this)(tuples->At(slot)); }
    };
    struct Equal {
        using is_transparent = void;
        const TupleSet* tuples;
        Tuple Of(Slot slot) const { return tuples->At(slot); }
        static Tuple Of(Tuple tuple) { return tuple; }
        template <class Left, class Right>
        bool operator()(Left left, Right right) const {
            const Tuple a = Of(left);
            const Tuple b = Of(right);
            return std::equal(a.begin(), a.end(), b.begin(), b.end());
        }
    };

    void Remove(Slot slot);
    void Compact();

    TupleSet tuples_; ///< also those that were removed
    std::vector<bool> isRemoved_;
    std::size_t removed_ = 0;
    std::unordered_set<Slot, Hash, Equal> index_; ///< those that were not
};

} // namespace qel::engine
