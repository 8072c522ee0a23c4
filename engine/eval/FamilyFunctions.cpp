#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <variant>

// Functions that navigate a hierarchy from a member to its relatives.

namespace qel::engine {

namespace {

/// An argument that is a level, or a number of levels. It is bound once: calls inside one another would
/// double the work at every step.
std::variant<LevelRef, NumberPtr> LevelOrDistance(Call& call, std::size_t argument) {
    const mdx::NodeId node = call.arguments[argument];
    const bool isNull = mdx::IsWord(call.binder.Word(node), "null");
    if (isNull || call.binder.At(node).kind == mdx::NodeKind::Path) {
        return isNull ? std::variant<LevelRef, NumberPtr>(call.Number(argument))
                      : call.binder.BindLevel(node);
    }
    Bound bound = call.binder.Bind(node);
    if (auto* number = std::get_if<NumberPtr>(&bound)) {
        return std::move(*number);
    }
    if (std::holds_alternative<AnyValue>(bound)) {
        return call.binder.ToNumber(std::move(bound), node);
    }
    return call.binder.ToLevel(bound, node);
}

/// Raises InvalidExpression when the call's level, its second argument, is of another hierarchy.
void CheckHierarchy(const Call& call, LevelRef level, HierarchyId hierarchy) {
    if (level.hierarchy != hierarchy) {
        call.binder.Fail(call.arguments[1], "the member and the level are of different hierarchies");
    }
}

MemberPtr AncestorOf(Call& call, MemberPtr member) {
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    std::variant<LevelRef, NumberPtr> target = LevelOrDistance(call, 1);
    if (auto* number = std::get_if<NumberPtr>(&target)) {
        NumberPtr distance = std::move(*number);
        const bool bothConstant = isConstant && distance->IsConstant();
        return MakeMember(bothConstant, hierarchy,
                          [member = std::move(member), distance = std::move(distance)](Evaluator& evaluator) {
                              MemberRef ancestor{member->Hierarchy(), member->Evaluate(evaluator)};
                              std::int64_t steps = WholeNumber(distance->Evaluate(evaluator));
                              for (; steps > 0 && ancestor.id != noMember; --steps) {
                                  ancestor.id = evaluator.Space().Parent(ancestor);
                              }
                              return ancestor.id;
                          });
    }
    const LevelRef level = std::get<LevelRef>(target);
    CheckHierarchy(call, level, hierarchy);
    return MakeMember(isConstant, hierarchy, [level, member = std::move(member)](Evaluator& evaluator) {
        return evaluator.Space().AncestorAt({member->Hierarchy(), member->Evaluate(evaluator)}, level.level);
    });
}

Bound Ancestor(Call& call) {
    MemberPtr member = call.Member(0);
    return AncestorOf(call, std::move(member));
}

/// The set of that one ancestor.
Bound Ancestors(Call& call) {
    TupleExpression tuple;
    tuple.push_back(AncestorOf(call, call.Member(0)));
    return SetOfTuple(std::move(tuple));
}

Bound Ascendants(Call& call) {
    MemberPtr member = call.Member(0);
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    return MakeSet(isConstant, {hierarchy},
                   [member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
                       MemberRef step{member->Hierarchy(), member->Evaluate(evaluator)};
                       for (; step.id != noMember; step.id = evaluator.Space().Parent(step)) {
                           result.Append({&step.id, 1});
                       }
                   });
}

/// Which levels Descendants returns, relative to the level it is given; `leaves` also takes leaves above it.
struct Reach {
    bool before = false, self = false, after = false, leaves = false;
};

Reach ReachOf(Call& call) {
    constexpr std::array<std::string_view, 8> flags{"self",
                                                    "after",
                                                    "before",
                                                    "self_and_after",
                                                    "self_and_before",
                                                    "before_and_after",
                                                    "self_before_after",
                                                    "leaves"};
    constexpr std::array<Reach, 8> reaches{{{false, true, false, false},
                                            {false, false, true, false},
                                            {true, false, false, false},
                                            {false, true, true, false},
                                            {true, true, false, false},
                                            {true, false, true, false},
                                            {true, true, true, false},
                                            {false, false, false, true}}};
    return call.Count() > 2 ? reaches[call.Flag(2, flags)] : reaches[0];
}

void AppendDescendants(const MemberSpace& space, MemberRef member, std::int64_t level, Reach reach,
                       TupleSet& result) {
    const auto top = static_cast<std::int64_t>(space.LevelOf(member));
    const auto levels = static_cast<std::int64_t>(space.LevelCount(member.hierarchy));
    TupleSet found{{member.hierarchy}, {}};
    for (std::int64_t at = top; at < levels; ++at) {
        const MemberRange range = space.DescendantsAt(member, static_cast<std::size_t>(at));
        const bool taken = at < level ? reach.before : at == level ? reach.self : reach.after;
        if (taken) {
            found.Append(range);
        }
        for (MemberId id = range.first; reach.leaves && at <= level && id < range.last; ++id) {
            if (space.Children({member.hierarchy, id}).Count() == 0) {
                found.Append({&id, 1});
            }
        }
    }
    Hierarchize(space, found, false);
    result.Append(found);
}

Bound Descendants(Call& call) {
    MemberPtr member = call.Member(0);
    const HierarchyId hierarchy = member->Hierarchy();
    const Reach reach = call.Count() == 1 ? Reach{true, true, true, false} : ReachOf(call);
    bool isConstant = member->IsConstant();
    NumberPtr distance;
    std::optional<std::int64_t> level;
    if (call.Count() > 1 && call.binder.At(call.arguments[1]).kind != mdx::NodeKind::Missing) {
        std::variant<LevelRef, NumberPtr> target = LevelOrDistance(call, 1);
        if (auto* number = std::get_if<NumberPtr>(&target)) {
            distance = std::move(*number);
            isConstant = isConstant && distance->IsConstant();
        } else {
            const LevelRef named = std::get<LevelRef>(target);
            CheckHierarchy(call, named, hierarchy);
            level = static_cast<std::int64_t>(named.level);
        }
    }
    return MakeSet(isConstant, {hierarchy},
                   [reach, level, member = std::move(member),
                    distance = std::move(distance)](Evaluator& evaluator, TupleSet& result) {
                       const MemberRef top{member->Hierarchy(), member->Evaluate(evaluator)};
                       if (top.id == noMember) {
                           return;
                       }
                       const auto own = static_cast<std::int64_t>(evaluator.Space().LevelOf(top));
                       const auto levels =
                           static_cast<std::int64_t>(evaluator.Space().LevelCount(top.hierarchy));
                       const std::int64_t target = distance ? own + WholeNumber(distance->Evaluate(evaluator))
                                                            : level.value_or(reach.leaves ? levels : own);
                       AppendDescendants(evaluator.Space(), top, target, reach, result);
                   });
}

constexpr std::array<Function, 4> familyFunctions{{{"Ancestor", 2, 2, Ancestor},
                                                   {"Ancestors", 2, 2, Ancestors},
                                                   {"Ascendants", 1, 1, Ascendants},
                                                   {"Descendants", 1, 3, Descendants}}};

} // namespace

std::span<const Function> FamilyFunctions() { return familyFunctions; }

} // namespace qel::engine
