#pragma once

#include "engine/eval/NameSearch.h"
#include "engine/mdx/Ast.h"

#include <vector>

namespace qel::engine {

/// Resolves the dotted names of a statement, see NameSearch.
class NameResolver {
public:
    /// `scope` says which calculated members the names can mean.
    NameResolver(const MemberSpace& space, const mdx::Statement& statement, Scope scope)
        : space_(space), statement_(statement), search_(space, scope) {}

    /// Raises EngineError at the first part that cannot be resolved: UnknownMember where a member is
    /// expected, otherwise UnknownName. With `wantsLevel` only a hierarchy or a level is accepted.
    Resolved Resolve(const mdx::Node& path, bool wantsLevel);
    /// The parent of a calculated member being defined: a member, or only a hierarchy. The last part of the
    /// path is its own name.
    MemberRef ParentOfNew(const mdx::Node& path);

private:
    void TakeParts(const mdx::Node& path);
    [[noreturn]] void Fail(bool wantsLevel) const;

    const MemberSpace& space_;
    const mdx::Statement& statement_;
    NameSearch search_;
    std::vector<NamePart> parts_;
};

} // namespace qel::engine
