#pragma once

#include "engine/eval/Binder.h"

namespace qel::engine {

/// A set in a chain of sets, and its place in the statement.
struct SetPart {
    SetPtr set;
    mdx::NodeId node;
};

/// The cross join of the sets. For hierarchies of the same dimension it keeps only combinations whose members
/// share codes. Raises InvalidExpression when two sets share a hierarchy.
SetPtr MakeCrossJoin(Binder& binder, std::vector<SetPart> parts);

enum class SetOperation { Union, Intersect, Except };
/// A set and the operation that joins it to the result so far; the first operand's is Union.
struct SetOperand {
    SetOperation operation;
    SetPtr set;
    mdx::NodeId node;
};
/// Applies the operations from left to right, in the order of first occurrence, without duplicates unless
/// `all`, which is only for unions or for two sets.
SetPtr MakeSetOperation(Binder& binder, std::vector<SetOperand> operands, bool all);

/// Appends all stored members, each before its descendants.
void AppendTree(const MemberSpace& space, HierarchyId hierarchy, TupleSet& result);

/// Sorts tuples in tree order: a member before its descendants, or after them with `post`.
void Hierarchize(const MemberSpace& space, TupleSet& set, bool post);

} // namespace qel::engine
