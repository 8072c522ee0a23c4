#pragma once

#include "engine/eval/Binder.h"

namespace qel::engine {

/// The cross join of two sets. For hierarchies of the same dimension it keeps only combinations whose members
/// share codes. Raises InvalidExpression when the sets share a hierarchy.
SetPtr MakeCrossJoin(Binder& binder, SetPtr left, SetPtr right, mdx::NodeId node);

enum class SetOperation { Union, Intersect, Except };
/// In the first set's order, without duplicates unless `all`.
SetPtr MakeSetOperation(Binder& binder, SetOperation operation, SetPtr left, SetPtr right, bool all,
                        mdx::NodeId node);

/// Sorts tuples in tree order: a member before its descendants, or after them with `post`.
void Hierarchize(const MemberSpace& space, TupleSet& set, bool post);

} // namespace qel::engine
