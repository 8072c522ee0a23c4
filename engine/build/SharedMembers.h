#pragma once

#include "engine/build/MemberTree.h"

#include <cstdint>
#include <string>
#include <vector>

// What makes the sums of a hierarchy's members overlap, or a name of a member ambiguous. To be asked after
// MemberTree::Finish.

namespace qel::engine {

/// The values that lie under several members of one level, and so count in each of them.
struct SharedValues {
    std::vector<std::uint32_t> values; ///< ascending
    std::string parents;               ///< of the first value: "\"North\" and \"South\""
};
SharedValues FindSharedValues(const MemberTree& tree);

/// The names of one level that members under several parents have, or that differ in letter case only.
struct SharedNames {
    std::size_t count = 0;
    std::string first; ///< "\"Main\" under \"North\" and \"South\"", "\"acme\" and \"ACME\""
};
SharedNames FindSharedNames(const MemberTree& tree, std::uint32_t level);

} // namespace qel::engine
