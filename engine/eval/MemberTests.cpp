#include "engine/eval/FunctionLookup.h"

#include <array>

// Conditions on members.

namespace qel::engine {

namespace {

Bound IsLeaf(Call& call) {
    return MakeCondition([member = call.Member(0)](Evaluator& evaluator) {
        const MemberRef of{member->Hierarchy(), member->Evaluate(evaluator)};
        return of.id != noMember && evaluator.Space().Children(of).Count() == 0;
    });
}

/// A condition on two members of one hierarchy; `flag` lets it hold for a member and itself.
template <class Holds>
Bound OfTwo(Call& call, std::string_view flag, const Holds& holds) {
    MemberPtr first = call.Member(0);
    MemberPtr second = call.Member(1);
    if (first->Hierarchy() != second->Hierarchy()) {
        call.binder.Fail(call.arguments[1], "the two members are of different hierarchies");
    }
    const bool withSelf = call.HasFlag(2, flag);
    return MakeCondition(
        [withSelf, holds, first = std::move(first), second = std::move(second)](Evaluator& evaluator) {
            const MemberRef one{first->Hierarchy(), first->Evaluate(evaluator)};
            const MemberRef other{second->Hierarchy(), second->Evaluate(evaluator)};
            if (one.id == noMember || other.id == noMember) {
                return false;
            }
            return one.id == other.id ? withSelf : holds(evaluator.Space(), one, other);
        });
}

Bound IsAncestor(Call& call) {
    return OfTwo(call, "includemember", [](const MemberSpace& space, MemberRef above, MemberRef below) {
        return space.AncestorAt(below, space.LevelOf(above)) == above.id;
    });
}

Bound IsSibling(Call& call) {
    return OfTwo(call, "includemember", [](const MemberSpace& space, MemberRef one, MemberRef other) {
        return space.Parent(one) == space.Parent(other);
    });
}

constexpr std::array<Function, 3> memberTests{
    {{"IsLeaf", 1, 1, IsLeaf}, {"IsAncestor", 2, 3, IsAncestor}, {"IsSibling", 2, 3, IsSibling}}};

} // namespace

std::span<const Function> MemberTests() { return memberTests; }

} // namespace qel::engine
