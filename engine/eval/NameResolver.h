#pragma once

#include "engine/eval/MemberSpace.h"
#include "engine/mdx/Ast.h"

#include <optional>
#include <variant>
#include <vector>

namespace qel::engine {

struct HierarchyName {
    HierarchyId hierarchy = 0;
};

struct LevelName {
    LevelRef level;
    MemberId member = noMember; ///< a member that the same path can mean, such as [All] on the level [All]
};

/// What a path means.
using Resolved = std::variant<HierarchyName, LevelName, MemberRef>;

/// Looks up dotted names in a cube. A part after the dimension's name may be a hierarchy, a level or a
/// member; these readings are tried in this order, and the first under which every part has a meaning counts.
class NameResolver {
public:
    NameResolver(const MemberSpace& space, const mdx::Statement& statement)
        : space_(space), statement_(statement) {}

    /// Raises EngineError at the part that has no meaning: UnknownName, or UnknownMember when it stands where
    /// a member does. `wantsLevel` says that only a hierarchy or a level makes sense here.
    Resolved Resolve(const mdx::Node& path, bool wantsLevel);
    /// What a calculated member of this name stands below: a member, or no member of its hierarchy; its own
    /// name is the last part.
    MemberRef ParentOfNew(const mdx::Node& path);

private:
    std::optional<Resolved> ResolveAll();
    std::optional<Resolved> InMeasures();
    std::optional<Resolved> InHierarchy(HierarchyId hierarchy, std::size_t part);
    MemberId MemberPath(HierarchyId hierarchy, MemberRange among, std::size_t part);
    MemberId Descend(HierarchyId hierarchy, MemberId member, std::size_t part);
    /// The calculated member that the last part names, or noMember.
    MemberId CalculatedBelow(MemberRef parent, std::size_t part) const;
    /// The members among these that the part names, the best one first.
    void Find(HierarchyId hierarchy, MemberRange among, std::size_t part, std::vector<MemberId>& found) const;
    void TakeParts(const mdx::Node& path);
    bool IsNamed(std::size_t part, std::string_view name) const;
    [[noreturn]] void Fail(bool wantsLevel) const;

    const MemberSpace& space_;
    const mdx::Statement& statement_;
    std::vector<const mdx::Node*> parts_;
    std::size_t furthest_ = 0; ///< the part that the best reading could not place
};

} // namespace qel::engine
