#include "engine/eval/Functions.h"
#include "engine/mdx/Words.h"

#include <fmt/format.h>

#include <array>

// Functions of hierarchies, levels, members and sets, written after a dot.

namespace qel::engine {

using mdx::IsWord;
using mdx::NodeId;

class MethodBinder {
public:
    MethodBinder(Binder& binder, NodeId node)
        : binder_(binder), node_(node), name_(binder.At(node).text), target_(binder.At(node).firstChild),
          argument_(binder.At(target_).next) {}

    Bound Bind();

private:
    Bound AllOf(const Bound& target, bool withCalculated);
    Bound ChildrenOf(MemberPtr member);
    Bound SiblingsOf(MemberPtr member);
    Bound Levels(HierarchyId hierarchy);
    Bound Item(SetPtr set);
    Bound Shifted(MemberPtr member, int direction);
    /// A member that is found from another one by `find(space, member)`.
    template <class Find>
    Bound Relative(MemberPtr member, Find find);
    /// A text about a member.
    template <class Describe>
    Bound TextOf(Bound target, Describe describe);
    HierarchyId HierarchyOf(const Bound& target);
    NumberPtr Argument();

    Binder& binder_;
    NodeId node_;
    std::string_view name_;
    NodeId target_;
    NodeId argument_;
};

Bound MethodBinder::Bind() {
    const bool members = IsWord(name_, "members");
    const bool allMembers = IsWord(name_, "allmembers");
    if (members || allMembers) {
        const bool isPath = binder_.At(target_).kind == mdx::NodeKind::Path;
        return AllOf(isPath ? binder_.BindPath(target_, true) : binder_.Bind(target_), allMembers);
    }
    Bound target = binder_.Bind(target_);
    const auto member = [&] { return binder_.ToMember(std::move(target), target_); };
    if (IsWord(name_, "hierarchy") || IsWord(name_, "dimension")) {
        return HierarchyName{HierarchyOf(target)};
    }
    if (IsWord(name_, "currentmember")) {
        return binder_.ToMember(HierarchyName{HierarchyOf(target)}, target_);
    }
    if (IsWord(name_, "defaultmember")) {
        const HierarchyId hierarchy = HierarchyOf(target);
        return ConstantMember({hierarchy, binder_.Space().DefaultMember(hierarchy)});
    }
    if (IsWord(name_, "levels")) {
        return Levels(HierarchyOf(target));
    }
    if (IsWord(name_, "count")) {
        return MakeNumber(false, [set = binder_.ToSet(std::move(target), target_)](Evaluator& evaluator) {
            return CellValue::Exact(static_cast<std::int64_t>(set->Evaluate(evaluator).Count()), 0);
        });
    }
    if (IsWord(name_, "item")) {
        return Item(binder_.ToSet(std::move(target), target_));
    }
    if (IsWord(name_, "value")) {
        return binder_.ToNumber(std::move(target), target_);
    }
    if (IsWord(name_, "name")) {
        return TextOf(std::move(target),
                      [](const MemberSpace& space, MemberRef of) { return std::string(space.Name(of)); });
    }
    if (IsWord(name_, "caption") || IsWord(name_, "member_caption")) {
        return TextOf(std::move(target),
                      [](const MemberSpace& space, MemberRef of) { return std::string(space.Caption(of)); });
    }
    if (IsWord(name_, "member_key")) {
        return TextOf(std::move(target),
                      [](const MemberSpace& space, MemberRef of) { return std::string(space.Key(of)); });
    }
    if (IsWord(name_, "uniquename")) {
        return TextOf(std::move(target),
                      [](const MemberSpace& space, MemberRef of) { return space.UniqueName(of); });
    }
    if (IsWord(name_, "children")) {
        return ChildrenOf(member());
    }
    if (IsWord(name_, "siblings")) {
        return SiblingsOf(member());
    }
    if (IsWord(name_, "lag")) {
        return Shifted(member(), -1);
    }
    if (IsWord(name_, "lead")) {
        return Shifted(member(), 1);
    }
    if (IsWord(name_, "parent")) {
        return Relative(member(), [](const MemberSpace& space, MemberRef of) { return space.Parent(of); });
    }
    if (IsWord(name_, "prevmember")) {
        return Relative(member(),
                        [](const MemberSpace& space, MemberRef of) { return space.Shifted(of, -1); });
    }
    if (IsWord(name_, "nextmember")) {
        return Relative(member(),
                        [](const MemberSpace& space, MemberRef of) { return space.Shifted(of, 1); });
    }
    const bool ofSiblings = IsWord(name_, "firstsibling") || IsWord(name_, "lastsibling");
    const bool first = IsWord(name_, "firstchild") || IsWord(name_, "firstsibling");
    if (!ofSiblings && !first && !IsWord(name_, "lastchild")) {
        binder_.Fail(node_, fmt::format("the function {} cannot stand here", name_));
    }
    return Relative(member(), [ofSiblings, first](const MemberSpace& space, MemberRef of) {
        const MemberRange family = ofSiblings ? space.Siblings(of) : space.Children(of);
        return family.Count() == 0 ? noMember : first ? family.first : family.last - 1;
    });
}

Bound MethodBinder::AllOf(const Bound& target, bool withCalculated) {
    const auto* level = std::get_if<LevelName>(&target);
    const HierarchyId hierarchy = level != nullptr ? level->level.hierarchy : HierarchyOf(target);
    const MemberSpace& space = binder_.Space();
    const MemberRange range =
        level != nullptr ? space.LevelMembers(level->level) : space.AllMembers(hierarchy);
    const bool isTop = level == nullptr || level->level.level == 0;
    return MakeSet(
        true, {hierarchy},
        [hierarchy, range, calculated = withCalculated && isTop](Evaluator& evaluator, TupleSet& result) {
            result.Append(range);
            const auto& names = evaluator.Space().Calculated();
            for (std::size_t i = 0; calculated && i < names.size(); ++i) {
                const MemberId id = firstCalculated + static_cast<MemberId>(i);
                if (names[i].hierarchy == hierarchy) {
                    result.Append({&id, 1});
                }
            }
        });
}

Bound MethodBinder::ChildrenOf(MemberPtr member) {
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    return MakeSet(isConstant, {hierarchy},
                   [member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
                       const MemberRef parent{member->Hierarchy(), member->Evaluate(evaluator)};
                       if (parent.id != noMember) {
                           result.Append(evaluator.Space().Children(parent));
                       }
                   });
}

Bound MethodBinder::SiblingsOf(MemberPtr member) {
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    return MakeSet(isConstant, {hierarchy},
                   [member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
                       const MemberRef sibling{member->Hierarchy(), member->Evaluate(evaluator)};
                       if (sibling.id != noMember) {
                           result.Append(evaluator.Space().Siblings(sibling));
                       }
                   });
}

Bound MethodBinder::Levels(HierarchyId hierarchy) {
    const std::int64_t level = WholeNumber(Argument()->Evaluate(binder_.GetEvaluator()));
    const std::size_t count = binder_.Space().LevelCount(hierarchy);
    if (level < 0 || static_cast<std::size_t>(level) >= count) {
        binder_.Fail(argument_, fmt::format("{} has the levels 0 to {}",
                                            binder_.Space().HierarchyUniqueName(hierarchy), count - 1));
    }
    return LevelName{{hierarchy, static_cast<std::size_t>(level)}, noMember};
}

Bound MethodBinder::Item(SetPtr set) {
    const std::shared_ptr<const SetExpression> shared = std::move(set);
    const std::shared_ptr<const NumberExpression> index = Argument();
    TupleExpression tuple;
    for (std::size_t place = 0; place < shared->GetShape().size(); ++place) {
        tuple.push_back(
            MakeMember(shared->IsConstant() && index->IsConstant(), shared->GetShape()[place],
                       [shared, index, place](Evaluator& evaluator) {
                           const TupleSet tuples = shared->Evaluate(evaluator);
                           const std::int64_t item = WholeNumber(index->Evaluate(evaluator));
                           const bool exists = item >= 0 && static_cast<std::size_t>(item) < tuples.Count();
                           return exists ? tuples.At(static_cast<std::size_t>(item))[place] : noMember;
                       }));
    }
    if (tuple.size() == 1) {
        return std::move(tuple.front());
    }
    return tuple;
}

Bound MethodBinder::Shifted(MemberPtr member, int direction) {
    const HierarchyId hierarchy = member->Hierarchy();
    NumberPtr steps = Argument();
    const bool isConstant = member->IsConstant() && steps->IsConstant();
    return MakeMember(
        isConstant, hierarchy,
        [direction, member = std::move(member), steps = std::move(steps)](Evaluator& evaluator) {
            return evaluator.Space().Shifted({member->Hierarchy(), member->Evaluate(evaluator)},
                                             direction * WholeNumber(steps->Evaluate(evaluator)));
        });
}

template <class Find>
Bound MethodBinder::Relative(MemberPtr member, Find find) {
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    return MakeMember(isConstant, hierarchy, [find, member = std::move(member)](Evaluator& evaluator) {
        const MemberRef from{member->Hierarchy(), member->Evaluate(evaluator)};
        return from.id == noMember ? noMember : find(evaluator.Space(), from);
    });
}

template <class Describe>
Bound MethodBinder::TextOf(Bound target, Describe describe) {
    return MakeText([describe, member = binder_.ToMember(std::move(target), target_)](Evaluator& evaluator) {
        const MemberRef of{member->Hierarchy(), member->Evaluate(evaluator)};
        return of.id == noMember ? std::string() : describe(evaluator.Space(), of);
    });
}

HierarchyId MethodBinder::HierarchyOf(const Bound& target) {
    if (const auto* hierarchy = std::get_if<HierarchyName>(&target)) {
        return hierarchy->hierarchy;
    }
    if (const auto* level = std::get_if<LevelName>(&target)) {
        return level->level.hierarchy;
    }
    if (const auto* member = std::get_if<MemberPtr>(&target);
        member != nullptr && !IsWord(name_, "members")) {
        return (*member)->Hierarchy();
    }
    binder_.Fail(target_, fmt::format("expected a hierarchy or a level before .{}", name_));
}

NumberPtr MethodBinder::Argument() {
    if (argument_ == mdx::noNode) {
        return MakeNumber(true, [](Evaluator&) { return CellValue::Exact(1, 0); });
    }
    return binder_.BindNumber(argument_);
}

Bound BindMethod(Binder& binder, NodeId node) { return MethodBinder(binder, node).Bind(); }

} // namespace qel::engine
