#pragma once

#include "engine/eval/MemberSpace.h"
#include "engine/mdx/SourceRange.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

namespace qel::engine {

struct HierarchyName {
    HierarchyId hierarchy = 0;
};

struct LevelName {
    LevelRef level;
    MemberId member = noMember; ///< the member of the same path, if any, such as [All] on the level [All]
};

/// The meaning of a path.
using Resolved = std::variant<HierarchyName, LevelName, MemberRef>;

/// One part of a dotted name.
struct NamePart {
    std::string_view text;
    bool isKey = false; ///< "&[text]"
    mdx::SourceRange range = {};
};

/// Finds what dotted names mean in a cube. The part after the dimension's name may be a hierarchy, a level or
/// a member. These are tried in this order, and the first interpretation that resolves every part wins.
class NameSearch {
public:
    /// `scope` says which calculated members the names can mean.
    NameSearch(const MemberSpace& space, Scope scope) : space_(space), scope_(scope) {}

    /// What the parts, at least one, mean; nothing when no interpretation resolves them all.
    std::optional<Resolved> Find(std::span<const NamePart> parts);
    /// After a search that failed: the first part that no interpretation resolves.
    std::size_t Furthest() const { return furthest_; }

private:
    std::optional<Resolved> WithoutDimension();
    bool StartsIn(HierarchyId hierarchy);
    std::optional<Resolved> InMeasures();
    std::optional<Resolved> InHierarchy(HierarchyId hierarchy, std::size_t part);
    MemberId MemberPath(HierarchyId hierarchy, MemberRange among, std::size_t part);
    MemberId Descend(HierarchyId hierarchy, MemberId member, std::size_t part);
    /// The calculated member that the last part names, or noMember.
    MemberId CalculatedBelow(MemberRef parent, std::size_t part) const;
    /// Appends the members in `among` that the part names, best match first, to found_.
    void FindMembers(HierarchyId hierarchy, MemberRange among, std::size_t part);
    bool IsNamed(std::size_t part, std::string_view name) const;

    const MemberSpace& space_;
    Scope scope_;
    std::span<const NamePart> parts_;
    std::size_t furthest_ = 0;
    std::vector<MemberId> found_; ///< what the searches under way found, the innermost last
};

} // namespace qel::engine
