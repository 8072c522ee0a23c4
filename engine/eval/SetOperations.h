#pragma once

#include "engine/eval/Binder.h"

namespace qel::engine {

/// A set of a chain of sets, and where it stands in the statement.
struct SetPart {
    SetPtr set;
    mdx::NodeId node;
};

/// Every tuple of one set with every tuple of the others; of hierarchies of one dimension only the
/// combinations whose members share codes. Raises InvalidExpression when two sets share a hierarchy.
SetPtr MakeCrossJoin(Binder& binder, std::vector<SetPart> parts);

enum class SetOperation { Union, Intersect, Except };
/// A set, and how it is joined to what stands before it; the first is Union.
struct SetOperand {
    SetOperation operation;
    SetPtr set;
    mdx::NodeId node;
};
/// From left to right, without duplicates unless `all`, which only unions or two sets may have; in the order
/// in which tuples come first.
SetPtr MakeSetOperation(Binder& binder, std::vector<SetOperand> operands, bool all);

/// Appends all members that are stored, each before its descendants.
void AppendTree(const MemberSpace& space, HierarchyId hierarchy, TupleSet& result);

/// Orders tuples as a tree is written: a member before its descendants (after them with `post`).
void Hierarchize(const MemberSpace& space, TupleSet& set, bool post);

} // namespace qel::engine
