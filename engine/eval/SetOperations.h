#pragma once

#include "engine/eval/Binder.h"

namespace qel::engine {

/// Every tuple of one set with every tuple of the other; of hierarchies of one dimension only the
/// combinations whose members share codes. Raises InvalidExpression when the sets share a hierarchy.
SetPtr MakeCrossJoin(Binder& binder, SetPtr left, SetPtr right, mdx::NodeId node);

enum class SetOperation { Union, Intersect, Except };
/// Without duplicates unless `all`; in the first set's order.
SetPtr MakeSetOperation(Binder& binder, SetOperation operation, SetPtr left, SetPtr right, bool all,
                        mdx::NodeId node);

/// Orders tuples as a tree is written: a member before its descendants (after them with `post`).
void Hierarchize(const MemberSpace& space, TupleSet& set, bool post);

} // namespace qel::engine
