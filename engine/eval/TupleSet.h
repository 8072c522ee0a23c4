#pragma once

#include "engine/eval/MemberSpace.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace qel::engine {

/// The hierarchies that the members of a tuple come from, in order.
using Dimensionality = std::vector<HierarchyId>;

/// Larger sets and grids raise TooLarge before memory runs out.
inline constexpr std::size_t setLimit = 10'000'000;

/// An ordered list of tuples of the same dimensionality. Every member exists.
struct TupleSet {
    Dimensionality dimensionality;
    std::vector<MemberId> ids; ///< tuple after tuple

    std::size_t Count() const { return dimensionality.empty() ? 0 : ids.size() / dimensionality.size(); }
    std::span<const MemberId> At(std::size_t tuple) const {
        return {ids.data() + tuple * dimensionality.size(), dimensionality.size()};
    }
    /// Raises TooLarge when the set exceeds setLimit.
    void Append(std::span<const MemberId> tuple);
    void Append(MemberRange members);
    void Append(const TupleSet& set) { Append(std::span<const MemberId>(set.ids)); }
};

/// A hash index over the tuples of a set. Refers to the set's memory, which must not change.
class TupleIndex {
public:
    /// False when the tuple was already there.
    bool Insert(std::span<const MemberId> tuple) { return tuples_.insert(AsText(tuple)).second; }
    bool Contains(std::span<const MemberId> tuple) const { return tuples_.count(AsText(tuple)) > 0; }

private:
    static std::string_view AsText(std::span<const MemberId> tuple) {
        return {reinterpret_cast<const char*>(tuple.data()), tuple.size_bytes()};
    }

    std::unordered_set<std::string_view> tuples_;
};

} // namespace qel::engine
