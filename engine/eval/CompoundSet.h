#pragma once

#include "engine/eval/TupleSet.h"

#include <map>
#include <vector>

namespace qel::engine {

/// Facts whose codes are in all of these sets.
struct RegionBox {
    MemberId measure = noMember;              ///< none: the current one
    std::vector<std::vector<KeyRange>> codes; ///< by FactRegion::keyColumns
};

/// The facts under any of several tuples. No fact is in two boxes.
struct FactRegion {
    std::vector<std::size_t> keyColumns;
    std::vector<RegionBox> boxes;
    TupleSet calculated; ///< the tuples with calculated members, which are no facts
};

/// Several tuples as one place in a cube: a slicer of several tuples, or the set of Aggregate. A fact that
/// several of them share counts once.
class CompoundSet {
public:
    CompoundSet(const MemberSpace& space, TupleSet tuples);

    const Dimensionality& GetDimensionality() const { return tuples_.dimensionality; }
    std::size_t Count() const { return tuples_.Count(); }
    /// The member of the hierarchy at this place that all tuples have, or noMember.
    MemberId CommonMember(std::size_t place) const { return common_[place]; }
    /// The tuples as the hierarchies at these places leave them, when the others are set to something else.
    /// Raises TooLarge when they overlap in too many ways.
    const FactRegion& Region(const std::vector<bool>& places) const;

private:
    const MemberSpace& space_;
    TupleSet tuples_;
    std::vector<MemberId> common_; ///< by place
    mutable std::map<std::vector<bool>, FactRegion> regions_;
};

} // namespace qel::engine
