#include "engine/eval/FunctionLookup.h"
#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

// Functions of periods: before a member, up to it, and beside it in another period.

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

MemberPtr CurrentMember(const Call& call, HierarchyId hierarchy) {
    return MakeMember(false, hierarchy, [hierarchy, range = call.Range()](Evaluator& evaluator) {
        return evaluator.Current(hierarchy, range);
    });
}

/// The argument's member, or the current period when the argument is missing.
MemberPtr PeriodArgument(Call& call, std::size_t argument) {
    return call.Has(argument) ? call.Member(argument) : CurrentMember(call, TimeHierarchy(call));
}

/// The argument's level, if it is given.
std::optional<LevelRef> LevelArgument(Call& call, std::size_t argument) {
    return call.Has(argument) ? std::optional(call.binder.BindLevel(call.arguments[argument])) : std::nullopt;
}

/// The argument's member; when it is missing, the level's current member, or else the current period.
MemberPtr MemberOfLevel(Call& call, std::size_t argument, const std::optional<LevelRef>& level) {
    if (!call.Has(argument)) {
        return CurrentMember(call, level ? level->hierarchy : TimeHierarchy(call));
    }
    MemberPtr member = call.Member(argument);
    if (level && member->Hierarchy() != level->hierarchy) {
        call.binder.Fail(call.arguments[argument], "the member and the level are of different hierarchies");
    }
    return member;
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

/// The members of the last one's level, from the first one under the same ancestor up to it. Without a level
/// the ancestor is the parent.
SetPtr ToDate(std::optional<LevelRef> level, MemberPtr member) {
    const bool isConstant = member->IsConstant();
    const HierarchyId hierarchy = member->Hierarchy();
    return MakeSet(
        isConstant, {hierarchy}, [level, member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
            const MemberSpace& space = evaluator.Space();
            const MemberRef last{member->Hierarchy(), member->Evaluate(evaluator)};
            if (last.id == noMember || IsCalculated(last.id)) {
                return;
            }
            const MemberId ancestor = level ? space.AncestorAt(last, level->level) : space.Parent(last);
            if (ancestor == noMember) {
                return;
            }
            const MemberRange all = space.DescendantsAt({last.hierarchy, ancestor}, space.LevelOf(last));
            result.Append(MemberRange{all.first, last.id + 1});
        });
}

Bound PeriodsToDate(Call& call) {
    const std::optional<LevelRef> level = LevelArgument(call, 0);
    MemberPtr member = MemberOfLevel(call, 1, level);
    return ToDate(level, std::move(member));
}

/// Years are the level directly below All.
Bound YearToDate(Call& call) {
    MemberPtr member = PeriodArgument(call, 0);
    const HierarchyId hierarchy = member->Hierarchy();
    const MemberSpace& space = call.binder.Space();
    const bool hasAll = !space.IsMeasures(hierarchy) && space.Stored(hierarchy).HasAll();
    return ToDate(LevelRef{hierarchy, hasAll ? std::size_t{1} : std::size_t{0}}, std::move(member));
}

/// QTD, MTD and WTD: the level has the period's name.
Bound ToDateOf(Call& call, std::string_view period) {
    MemberPtr member = PeriodArgument(call, 0);
    const HierarchyId hierarchy = member->Hierarchy();
    const MemberSpace& space = call.binder.Space();
    for (std::size_t level = 0; level < space.LevelCount(hierarchy); ++level) {
        if (EqualIgnoringCase(space.LevelName({hierarchy, level}), period)) {
            return ToDate(LevelRef{hierarchy, level}, std::move(member));
        }
    }
    call.binder.Fail(call.node, fmt::format("{} has no level {}; PeriodsToDate takes any level",
                                            space.HierarchyUniqueName(hierarchy), BracketedName(period)));
}

Bound QuarterToDate(Call& call) { return ToDateOf(call, "Quarter"); }
Bound MonthToDate(Call& call) { return ToDateOf(call, "Month"); }
Bound WeekToDate(Call& call) { return ToDateOf(call, "Week"); }

/// The member below `other` at the place that `here` has below `ancestor`, level by level: the 29th of the
/// third month, whatever the length of the months before it.
MemberId AtSamePlace(const MemberSpace& space, MemberRef here, MemberId ancestor, MemberId other) {
    if (ancestor == noMember || other == noMember || IsCalculated(here.id) || IsCalculated(other)) {
        return noMember;
    }
    std::vector<MemberId> places; // from the deepest level up
    while (here.id != ancestor) {
        const MemberId parent = space.Parent(here);
        places.push_back(here.id - space.Children({here.hierarchy, parent}).first);
        here.id = parent;
    }
    for (; !places.empty(); places.pop_back()) {
        const MemberRange children = space.Children({here.hierarchy, other});
        if (places.back() >= children.Count()) {
            return noMember;
        }
        other = children.first + places.back();
    }
    return other;
}

Bound ParallelPeriod(Call& call) {
    const std::optional<LevelRef> level = LevelArgument(call, 0);
    NumberPtr lag =
        call.Has(1) ? call.Number(1) : MakeNumber(true, [](Evaluator&) { return CellValue::Exact(1, 0); });
    MemberPtr member = MemberOfLevel(call, 2, level);
    const bool isConstant = lag->IsConstant() && member->IsConstant();
    const HierarchyId hierarchy = member->Hierarchy();
    return MakeMember(isConstant, hierarchy,
                      [level, lag = std::move(lag), member = std::move(member)](Evaluator& evaluator) {
                          const MemberSpace& space = evaluator.Space();
                          const MemberRef here{member->Hierarchy(), member->Evaluate(evaluator)};
                          if (here.id == noMember) {
                              return noMember;
                          }
                          const MemberId ancestor =
                              level ? space.AncestorAt(here, level->level) : space.Parent(here);
                          const MemberId other = space.Shifted({here.hierarchy, ancestor},
                                                               -WholeNumber(lag->Evaluate(evaluator)));
                          return AtSamePlace(space, here, ancestor, other);
                      });
}

Bound Cousin(Call& call) {
    MemberPtr member = call.Member(0);
    MemberPtr ancestor = call.Member(1);
    const HierarchyId hierarchy = member->Hierarchy();
    if (ancestor->Hierarchy() != hierarchy) {
        call.binder.Fail(call.arguments[1], "the two members are of different hierarchies");
    }
    const bool isConstant = member->IsConstant() && ancestor->IsConstant();
    return MakeMember(isConstant, hierarchy,
                      [member = std::move(member), ancestor = std::move(ancestor)](Evaluator& evaluator) {
                          const MemberSpace& space = evaluator.Space();
                          const MemberRef here{member->Hierarchy(), member->Evaluate(evaluator)};
                          const MemberRef other{here.hierarchy, ancestor->Evaluate(evaluator)};
                          if (here.id == noMember || other.id == noMember) {
                              return noMember;
                          }
                          return AtSamePlace(space, here, space.AncestorAt(here, space.LevelOf(other)),
                                             other.id);
                      });
}

/// The first or the last descendant of the member on the level, by default on the next one.
Bound EdgePeriod(Call& call, bool isLast) {
    const std::optional<LevelRef> level = LevelArgument(call, 0);
    MemberPtr member = MemberOfLevel(call, 1, level);
    const bool isConstant = member->IsConstant();
    const HierarchyId hierarchy = member->Hierarchy();
    return MakeMember(
        isConstant, hierarchy, [level, isLast, member = std::move(member)](Evaluator& evaluator) {
            const MemberSpace& space = evaluator.Space();
            const MemberRef top{member->Hierarchy(), member->Evaluate(evaluator)};
            if (top.id == noMember || IsCalculated(top.id)) {
                return noMember;
            }
            const MemberRange found = space.DescendantsAt(top, level ? level->level : space.LevelOf(top) + 1);
            return found.Count() == 0 ? noMember : isLast ? found.last - 1 : found.first;
        });
}

Bound OpeningPeriod(Call& call) { return EdgePeriod(call, false); }
Bound ClosingPeriod(Call& call) { return EdgePeriod(call, true); }

constexpr std::array<Function, 10> periodFunctions{{{"LastPeriods", 1, 2, LastPeriods},
                                                    {"PeriodsToDate", 0, 2, PeriodsToDate},
                                                    {"YTD", 0, 1, YearToDate},
                                                    {"QTD", 0, 1, QuarterToDate},
                                                    {"MTD", 0, 1, MonthToDate},
                                                    {"WTD", 0, 1, WeekToDate},
                                                    {"ParallelPeriod", 0, 3, ParallelPeriod},
                                                    {"Cousin", 2, 2, Cousin},
                                                    {"OpeningPeriod", 0, 2, OpeningPeriod},
                                                    {"ClosingPeriod", 0, 2, ClosingPeriod}}};

} // namespace

std::span<const Function> PeriodFunctions() { return periodFunctions; }

} // namespace qel::engine
