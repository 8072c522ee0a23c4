#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <variant>

// Functions that navigate a hierarchy from a member: its relatives, and the periods before it.

namespace qel::engine {

namespace {

/// The first hierarchy of the time dimension; raises InvalidExpression when there is none.
HierarchyId TimeHierarchy(const Call& call) {
    for (const Dimension& dimension : call.binder.Space().GetCube().Dimensions()) {
        if (dimension.isTime) {
            return static_cast<HierarchyId>(dimension.hierarchies.front());
        }
    }
    call.binder.Fail(call.node, "the cube has no time dimension, so a member must be given");
}

/// The argument's member, or the current period when the argument is missing.
MemberPtr PeriodArgument(Call& call, std::size_t argument) {
    if (call.Count() > argument) {
        return call.Member(argument);
    }
    const HierarchyId time = TimeHierarchy(call);
    return MakeMember(false, time, [time, range = call.binder.At(call.node).range](Evaluator& evaluator) {
        return evaluator.Current(time, range);
    });
}

/// The members between `first` and `last`, in either order, clipped to the level.
MemberRange ClippedToLevel(const MemberSpace& space, MemberRef member, std::int64_t first,
                           std::int64_t last) {
    const MemberRange level = space.LevelMembers({member.hierarchy, space.LevelOf(member)});
    const auto clip = [&](std::int64_t id) {
        return static_cast<MemberId>(std::clamp<std::int64_t>(id, level.first, level.last));
    };
    return {clip(first), std::max(clip(first), clip(last))};
}

Bound LastPeriods(Call& call) {
    NumberPtr count = call.Number(0);
    MemberPtr member = PeriodArgument(call, 1);
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = count->IsConstant() && member->IsConstant();
    return MakeSet(
        isConstant, {hierarchy},
        [count = std::move(count), member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
            const MemberRef last{member->Hierarchy(), member->Evaluate(evaluator)};
            if (last.id == noMember || IsCalculated(last.id)) {
                return;
            }
            const std::int64_t periods = WholeNumber(count->Evaluate(evaluator));
            const std::int64_t id = last.id;
            const std::int64_t first = periods > 0 ? id - periods + 1 : id;
            const std::int64_t end = periods > 0 ? id + 1 : id - periods;
            result.Append(ClippedToLevel(evaluator.Space(), last, first, end));
        });
}

/// The members of the last one's level, from the first one under the same ancestor up to it.
SetPtr ToDate(LevelRef level, MemberPtr member) {
    const bool isConstant = member->IsConstant();
    return MakeSet(
        isConstant, {level.hierarchy},
        [level, member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
            const MemberSpace& space = evaluator.Space();
            const MemberRef last{level.hierarchy, member->Evaluate(evaluator)};
            const MemberId ancestor = space.AncestorAt(last, level.level);
            if (ancestor == noMember || IsCalculated(last.id)) {
                return;
            }
            const MemberRange all = space.DescendantsAt({level.hierarchy, ancestor}, space.LevelOf(last));
            result.Append(MemberRange{all.first, last.id + 1});
        });
}

Bound PeriodsToDate(Call& call) {
    const LevelRef level = call.binder.BindLevel(call.arguments[0]);
    const mdx::SourceRange range = call.binder.At(call.node).range;
    MemberPtr member = call.Count() > 1
                           ? call.Member(1)
                           : MakeMember(false, level.hierarchy, [level, range](Evaluator& evaluator) {
                                 return evaluator.Current(level.hierarchy, range);
                             });
    if (member->Hierarchy() != level.hierarchy) {
        call.binder.Fail(call.arguments[1], "the member and the level are of different hierarchies");
    }
    return ToDate(level, std::move(member));
}

/// Years are the level directly below All.
Bound YearToDate(Call& call) {
    MemberPtr member = PeriodArgument(call, 0);
    const HierarchyId hierarchy = member->Hierarchy();
    const MemberSpace& space = call.binder.Space();
    const bool hasAll = !space.IsMeasures(hierarchy) && space.Stored(hierarchy).HasAll();
    return ToDate({hierarchy, hasAll ? std::size_t{1} : std::size_t{0}}, std::move(member));
}

Bound ParallelPeriod(Call& call) {
    const LevelRef level = call.binder.BindLevel(call.arguments[0]);
    NumberPtr lag = call.Number(1);
    MemberPtr member = call.Member(2);
    if (member->Hierarchy() != level.hierarchy) {
        call.binder.Fail(call.arguments[2], "the member and the level are of different hierarchies");
    }
    const bool isConstant = lag->IsConstant() && member->IsConstant();
    return MakeMember(
        isConstant, level.hierarchy,
        [level, lag = std::move(lag), member = std::move(member)](Evaluator& evaluator) {
            const MemberSpace& space = evaluator.Space();
            const MemberRef here{level.hierarchy, member->Evaluate(evaluator)};
            const MemberId ancestor = space.AncestorAt(here, level.level);
            const MemberId other =
                space.Shifted({level.hierarchy, ancestor}, -WholeNumber(lag->Evaluate(evaluator)));
            if (other == noMember || IsCalculated(here.id)) {
                return noMember;
            }
            const std::size_t depth = space.LevelOf(here);
            const MemberId start = space.DescendantsAt({level.hierarchy, ancestor}, depth).first;
            const MemberRange there = space.DescendantsAt({level.hierarchy, other}, depth);
            const MemberId place = here.id - start;
            return place < there.Count() ? there.first + place : noMember;
        });
}

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
    return call.binder.ToLevel(bound, node);
}

/// Raises InvalidExpression when the call's level, its second argument, is of another hierarchy.
void CheckHierarchy(const Call& call, LevelRef level, HierarchyId hierarchy) {
    if (level.hierarchy != hierarchy) {
        call.binder.Fail(call.arguments[1], "the member and the level are of different hierarchies");
    }
}

Bound Ancestor(Call& call) {
    MemberPtr member = call.Member(0);
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
                       if (top.id == noMember || IsCalculated(top.id)) {
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

constexpr std::array<Function, 7> functions{{{"LastPeriods", 1, 2, LastPeriods},
                                             {"PeriodsToDate", 1, 2, PeriodsToDate},
                                             {"YTD", 0, 1, YearToDate},
                                             {"ParallelPeriod", 3, 3, ParallelPeriod},
                                             {"Ancestor", 2, 2, Ancestor},
                                             {"Ascendants", 1, 1, Ascendants},
                                             {"Descendants", 1, 3, Descendants}}};

} // namespace

std::span<const Function> FamilyFunctions() { return functions; }

} // namespace qel::engine
