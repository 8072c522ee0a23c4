#include "engine/eval/FunctionLookup.h"
#include "engine/mdx/ReservedWords.h"

#include <fmt/format.h>

#include <functional>

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
    /// A function by the name after the dot, and how to bind it to the expression before the dot.
    struct Method {
        std::string_view name;
        Bound (*bind)(MethodBinder& binder, Bound target);
    };
    static const Method methods[];

    Bound AllOf(const Bound& target, bool withCalculated);
    Bound Levels(HierarchyId hierarchy);
    Bound Item(SetPtr set);
    Bound Shifted(MemberPtr member, int direction);
    /// A set of relatives of a member, given by find(space, member).
    template <auto find>
    static Bound Family(MethodBinder& binder, Bound target);
    /// A single relative of a member, given by find(space, member).
    template <auto find>
    static Bound Relative(MethodBinder& binder, Bound target);
    /// A text property of a member.
    template <auto describe>
    static Bound TextOf(MethodBinder& binder, Bound target);
    HierarchyId HierarchyOf(const Bound& target);
    MemberPtr MemberOf(Bound target) { return binder_.ToMember(std::move(target), target_); }
    NumberPtr Argument();

    Binder& binder_;
    NodeId node_;
    std::string_view name_;
    NodeId target_;
    NodeId argument_;
};

namespace {

MemberId FirstOf(MemberRange family) { return family.Count() == 0 ? noMember : family.first; }
MemberId LastOf(MemberRange family) { return family.Count() == 0 ? noMember : family.last - 1; }

MemberId Previous(const MemberSpace& space, MemberRef of) { return space.Shifted(of, -1); }
MemberId Next(const MemberSpace& space, MemberRef of) { return space.Shifted(of, 1); }
MemberId FirstChild(const MemberSpace& space, MemberRef of) { return FirstOf(space.Children(of)); }
MemberId LastChild(const MemberSpace& space, MemberRef of) { return LastOf(space.Children(of)); }
MemberId FirstSibling(const MemberSpace& space, MemberRef of) { return FirstOf(space.Siblings(of)); }
MemberId LastSibling(const MemberSpace& space, MemberRef of) { return LastOf(space.Siblings(of)); }

} // namespace

const MethodBinder::Method MethodBinder::methods[] = {
    {"hierarchy",
     [](MethodBinder& b, Bound target) -> Bound { return HierarchyName{b.HierarchyOf(target)}; }},
    {"dimension",
     [](MethodBinder& b, Bound target) -> Bound { return HierarchyName{b.HierarchyOf(target)}; }},
    {"currentmember",
     [](MethodBinder& b, Bound target) -> Bound { return b.MemberOf(HierarchyName{b.HierarchyOf(target)}); }},
    {"defaultmember",
     [](MethodBinder& b, Bound target) -> Bound {
         const HierarchyId hierarchy = b.HierarchyOf(target);
         return ConstantMember({hierarchy, b.binder_.Space().DefaultMember(hierarchy)});
     }},
    {"levels", [](MethodBinder& b, Bound target) { return b.Levels(b.HierarchyOf(target)); }},
    {"count",
     [](MethodBinder& b, Bound target) -> Bound {
         auto set = b.binder_.ToSet(std::move(target), b.target_);
         return MakeNumber(false, [set = std::move(set)](Evaluator& evaluator) {
             return CellValue::Exact(static_cast<std::int64_t>(set->Evaluate(evaluator).Count()), 0);
         });
     }},
    {"item",
     [](MethodBinder& b, Bound target) { return b.Item(b.binder_.ToSet(std::move(target), b.target_)); }},
    {"value",
     [](MethodBinder& b, Bound target) -> Bound { return b.binder_.ToNumber(std::move(target), b.target_); }},
    {"name", TextOf<&MemberSpace::Name>},
    {"caption", TextOf<&MemberSpace::Caption>},
    {"member_caption", TextOf<&MemberSpace::Caption>},
    {"member_key", TextOf<&MemberSpace::Key>},
    {"uniquename", TextOf<&MemberSpace::UniqueName>},
    {"children", Family<&MemberSpace::Children>},
    {"siblings", Family<&MemberSpace::Siblings>},
    {"lag", [](MethodBinder& b, Bound target) { return b.Shifted(b.MemberOf(std::move(target)), -1); }},
    {"lead", [](MethodBinder& b, Bound target) { return b.Shifted(b.MemberOf(std::move(target)), 1); }},
    {"parent", Relative<&MemberSpace::Parent>},
    {"prevmember", Relative<Previous>},
    {"nextmember", Relative<Next>},
    {"firstchild", Relative<FirstChild>},
    {"lastchild", Relative<LastChild>},
    {"firstsibling", Relative<FirstSibling>},
    {"lastsibling", Relative<LastSibling>},
};

Bound MethodBinder::Bind() {
    const bool withCalculated = IsWord(name_, "allmembers");
    if (withCalculated || IsWord(name_, "members")) {
        const bool isPath = binder_.At(target_).kind == mdx::NodeKind::Path;
        return AllOf(isPath ? binder_.BindPath(target_, true) : binder_.Bind(target_), withCalculated);
    }
    Bound target = binder_.Bind(target_);
    for (const Method& method : methods) {
        if (IsWord(name_, method.name)) {
            return method.bind(*this, std::move(target));
        }
    }
    binder_.Fail(node_, fmt::format("the function {} cannot stand here", name_));
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

template <auto find>
Bound MethodBinder::Family(MethodBinder& binder, Bound target) {
    MemberPtr member = binder.MemberOf(std::move(target));
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    return MakeSet(isConstant, {hierarchy},
                   [member = std::move(member)](Evaluator& evaluator, TupleSet& result) {
                       const MemberRef of{member->Hierarchy(), member->Evaluate(evaluator)};
                       if (of.id != noMember) {
                           result.Append(std::invoke(find, evaluator.Space(), of));
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
    for (std::size_t place = 0; place < shared->GetDimensionality().size(); ++place) {
        tuple.push_back(
            MakeMember(shared->IsConstant() && index->IsConstant(), shared->GetDimensionality()[place],
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

template <auto find>
Bound MethodBinder::Relative(MethodBinder& binder, Bound target) {
    MemberPtr member = binder.MemberOf(std::move(target));
    const HierarchyId hierarchy = member->Hierarchy();
    const bool isConstant = member->IsConstant();
    return MakeMember(isConstant, hierarchy, [member = std::move(member)](Evaluator& evaluator) {
        const MemberRef from{member->Hierarchy(), member->Evaluate(evaluator)};
        return from.id == noMember ? noMember : std::invoke(find, evaluator.Space(), from);
    });
}

template <auto describe>
Bound MethodBinder::TextOf(MethodBinder& binder, Bound target) {
    return MakeText([member = binder.MemberOf(std::move(target))](Evaluator& evaluator) {
        const MemberRef of{member->Hierarchy(), member->Evaluate(evaluator)};
        return of.id == noMember ? std::string() : std::string(std::invoke(describe, evaluator.Space(), of));
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
