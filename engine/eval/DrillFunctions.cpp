#include "engine/eval/FunctionLookup.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>

// Functions that expand and collapse members of a set: insert a member's children after it, or remove its
// descendants away.

namespace qel::engine {

namespace {

/// The tuples of a set in which the members of one hierarchy are expanded and collapsed.
class DrilledSet {
public:
    DrilledSet(const MemberSpace& space, TupleSet tuples, std::size_t place)
        : space_(space), tuples_(std::move(tuples)), place_(place) {}

    const TupleSet& Tuples() const { return tuples_; }
    MemberRef MemberAt(std::size_t tuple) const {
        return {tuples_.dimensionality[place_], tuples_.At(tuple)[place_]};
    }
    std::size_t LevelAt(std::size_t tuple) const { return space_.LevelOf(MemberAt(tuple)); }

    /// Whether the tuple's member is open: its descendants come next.
    bool IsOpen(std::size_t tuple) const { return tuple + 1 < tuples_.Count() && IsBelow(tuple + 1, tuple); }
    /// The first tuple behind the descendants that follow the tuple.
    std::size_t BehindDescendants(std::size_t tuple) const {
        std::size_t next = tuple + 1;
        while (next < tuples_.Count() && IsBelow(next, tuple)) {
            ++next;
        }
        return next;
    }
    /// Appends the tuple with its member's children in turn; visit(child) after each.
    template <class Visit>
    void AppendChildren(std::span<const MemberId> tuple, TupleSet& result, const Visit& visit) const {
        std::vector<MemberId> child(tuple.begin(), tuple.end());
        const MemberRange children = space_.Children({tuples_.dimensionality[place_], tuple[place_]});
        for (MemberId id = children.first; id < children.last; ++id) {
            child[place_] = id;
            result.Append(std::span<const MemberId>(child));
            visit(std::span<const MemberId>(child));
        }
    }
    std::size_t Place() const { return place_; }

private:
    bool IsBelow(std::size_t lower, std::size_t upper) const {
        for (std::size_t i = 0; i < tuples_.dimensionality.size(); ++i) {
            if (i != place_ && tuples_.At(lower)[i] != tuples_.At(upper)[i]) {
                return false;
            }
        }
        const MemberRef below = MemberAt(lower);
        const MemberRef above = MemberAt(upper);
        return below.id != above.id && space_.AncestorAt(below, space_.LevelOf(above)) == above.id;
    }

    const MemberSpace& space_;
    TupleSet tuples_;
    std::size_t place_;
};

/// The place of the hierarchy in the set's tuples; raises InvalidExpression when there is none.
std::size_t PlaceOf(const Call& call, HierarchyId hierarchy, const SetExpression& set, std::size_t argument) {
    const Dimensionality& all = set.GetDimensionality();
    const auto found = std::find(all.begin(), all.end(), hierarchy);
    if (found == all.end() && !all.empty()) {
        call.binder.Fail(call.arguments[argument],
                         fmt::format("the first set has no members of {}",
                                     call.binder.Space().HierarchyUniqueName(hierarchy)));
    }
    return static_cast<std::size_t>(found - all.begin());
}

/// The hierarchy and the level of DrilldownLevel and DrillupLevel.
struct DrillTarget {
    std::size_t place = 0;
    std::optional<std::size_t> level; ///< nothing: the lowest one in the set

    std::size_t LevelIn(const DrilledSet& set) const {
        std::size_t lowest = 0;
        for (std::size_t i = 0; i < set.Tuples().Count(); ++i) {
            lowest = std::max(lowest, set.LevelAt(i));
        }
        return level.value_or(lowest);
    }
};

DrillTarget TargetOf(Call& call, const SetExpression& set) {
    DrillTarget target;
    if (call.Has(1)) {
        const LevelRef level = call.binder.BindLevel(call.arguments[1]);
        target = {PlaceOf(call, level.hierarchy, set, 1), level.level};
    } else if (call.Has(2)) {
        const NumberPtr index = call.Number(2);
        const std::int64_t place =
            index->IsConstant() ? WholeNumber(index->Evaluate(call.binder.GetEvaluator())) : -1;
        if (place < 0 || static_cast<std::size_t>(place) >= set.GetDimensionality().size()) {
            call.binder.Fail(call.arguments[2], "expected the number of a hierarchy of the set, from 0");
        }
        target.place = static_cast<std::size_t>(place);
    }
    return target;
}

/// A set made by append(drilled set, level, result).
template <class Append>
Bound ByLevel(Call& call, const Append& append) {
    SetPtr set = call.Set(0);
    const DrillTarget target = TargetOf(call, *set);
    Dimensionality dimensionality = set->GetDimensionality();
    const bool isConstant = set->IsConstant();
    return MakeSet(isConstant, std::move(dimensionality),
                   [append, target, set = std::move(set)](Evaluator& evaluator, TupleSet& result) {
                       const DrilledSet drilled(evaluator.Space(), set->Evaluate(evaluator), target.place);
                       append(drilled, target, result);
                   });
}

Bound DrilldownLevel(Call& call) {
    return ByLevel(call, [](const DrilledSet& set, const DrillTarget& target, TupleSet& result) {
        const std::size_t level = target.LevelIn(set);
        for (std::size_t i = 0; i < set.Tuples().Count(); ++i) {
            result.Append(set.Tuples().At(i));
            if (set.LevelAt(i) == level && !set.IsOpen(i)) {
                set.AppendChildren(set.Tuples().At(i), result, [](std::span<const MemberId>) {});
            }
        }
    });
}

/// Without a level: the one above the lowest in the set.
Bound DrillupLevel(Call& call) {
    return ByLevel(call, [](const DrilledSet& set, const DrillTarget& target, TupleSet& result) {
        const std::size_t lowest = target.LevelIn(set);
        const std::size_t level = target.level || lowest == 0 ? lowest : lowest - 1;
        for (std::size_t i = 0; i < set.Tuples().Count(); ++i) {
            if (set.LevelAt(i) <= level) {
                result.Append(set.Tuples().At(i));
            }
        }
    });
}

using Chosen = std::unordered_set<MemberId>;

/// Appends the member's children; those that are chosen too are opened in turn when `recursive`.
void Open(const DrilledSet& set, std::span<const MemberId> tuple, const Chosen& chosen, bool recursive,
          TupleSet& result) {
    set.AppendChildren(tuple, result, [&](std::span<const MemberId> child) {
        if (recursive && chosen.count(child[set.Place()]) > 0) {
            Open(set, child, chosen, recursive, result); // as deep as the hierarchy has levels
        }
    });
}

enum class Drill { Down, Up, Toggle };

void DrillMembers(const DrilledSet& set, const Chosen& chosen, Drill drill, bool recursive,
                  TupleSet& result) {
    for (std::size_t i = 0; i < set.Tuples().Count();) {
        result.Append(set.Tuples().At(i));
        const bool isChosen = chosen.count(set.MemberAt(i).id) > 0;
        const bool isOpen = set.IsOpen(i);
        if (isChosen && !isOpen && drill != Drill::Up) {
            Open(set, set.Tuples().At(i), chosen, recursive, result);
        }
        i = isChosen && isOpen && drill != Drill::Down ? set.BehindDescendants(i) : i + 1;
    }
}

Bound ByMembers(Call& call, Drill drill) {
    SetPtr set = call.Set(0);
    SetPtr members = call.Set(1);
    if (members->GetDimensionality().size() > 1) {
        call.binder.Fail(call.arguments[1], "expected a set of members, found one of tuples");
    }
    const bool recursive = call.HasFlag(2, "recursive");
    const std::size_t place =
        members->GetDimensionality().empty() ? 0 : PlaceOf(call, members->GetDimensionality()[0], *set, 1);
    Dimensionality dimensionality = set->GetDimensionality();
    const bool isConstant = set->IsConstant() && members->IsConstant();
    return MakeSet(isConstant, std::move(dimensionality),
                   [drill, recursive, place, set = std::move(set),
                    members = std::move(members)](Evaluator& evaluator, TupleSet& result) {
                       const DrilledSet drilled(evaluator.Space(), set->Evaluate(evaluator), place);
                       const TupleSet ids = members->Evaluate(evaluator);
                       DrillMembers(drilled, Chosen(ids.ids.begin(), ids.ids.end()), drill, recursive,
                                    result);
                   });
}

Bound DrilldownMember(Call& call) { return ByMembers(call, Drill::Down); }
Bound DrillupMember(Call& call) { return ByMembers(call, Drill::Up); }
Bound ToggleDrillState(Call& call) { return ByMembers(call, Drill::Toggle); }

constexpr std::array<Function, 5> drillFunctions{{{"DrilldownLevel", 1, 3, DrilldownLevel},
                                                  {"DrillupLevel", 1, 2, DrillupLevel},
                                                  {"DrilldownMember", 2, 3, DrilldownMember},
                                                  {"DrillupMember", 2, 2, DrillupMember},
                                                  {"ToggleDrillState", 2, 3, ToggleDrillState}}};

} // namespace

std::span<const Function> DrillFunctions() { return drillFunctions; }

} // namespace qel::engine
