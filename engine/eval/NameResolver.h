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
    MemberId member = noMember; ///< the member of the same path, if any, such as [All] on the level [All]
};

/// The meaning of a path.
using Resolved = std::variant<HierarchyName, LevelName, MemberRef>;

/// Resolves dotted names in a cube. The part after the dimension's name may be a hierarchy, a level or a
/// member. These are tried in this order, and the first interpretation that resolves every part wins.
class NameResolver {
public:
    /// `scope` says which calculated members the names can mean.
    NameResolver(const MemberSpace& space, const mdx::Statement& statement, Scope scope)
        : space_(space), statement_(statement), scope_(scope) {}

    /// Raises EngineError at the first part that cannot be resolved: UnknownMember where a member is
    /// expected, otherwise UnknownName. With `wantsLevel` only a hierarchy or a level is accepted.
    Resolved Resolve(const mdx::Node& path, bool wantsLevel);
    /// The parent of a calculated member being defined: a member, or only a hierarchy. The last part of the
    /// path is its own name.
    MemberRef ParentOfNew(const mdx::Node& path);

private:
    std::optional<Resolved> ResolveAll();
    std::optional<Resolved> WithoutDimension();
    bool StartsIn(HierarchyId hierarchy) const;
    std::optional<Resolved> InMeasures();
    std::optional<Resolved> InHierarchy(HierarchyId hierarchy, std::size_t part);
    MemberId MemberPath(HierarchyId hierarchy, MemberRange among, std::size_t part);
    MemberId Descend(HierarchyId hierarchy, MemberId member, std::size_t part);
    /// The calculated member that the last part names, or noMember.
    MemberId CalculatedBelow(MemberRef parent, std::size_t part) const;
    /// Appends the members in `among` that the part names, best match first.
    void Find(HierarchyId hierarchy, MemberRange among, std::size_t part, std::vector<MemberId>& found) const;
    void TakeParts(const mdx::Node& path);
    bool IsNamed(std::size_t part, std::string_view name) const;
    [[noreturn]] void Fail(bool wantsLevel) const;

    const MemberSpace& space_;
    const mdx::Statement& statement_;
    Scope scope_;
    std::vector<const mdx::Node*> parts_;
    std::size_t furthest_ = 0; ///< the first part that no interpretation resolves
};

} // namespace qel::engine
