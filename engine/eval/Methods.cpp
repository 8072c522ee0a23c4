#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
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
    Bound Item(Bound target);
    Bound ItemOfTuple(TupleExpression tuple);
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

/// Appends the hierarchy's calculated members, of one level or of all; false when there is none.
bool AppendCalculated(const MemberSpace& space, HierarchyId hierarchy, std::optional<std::size_t> level,
                      TupleSet& result) {
    bool found = false;
    for (std::size_t i = 0; i < space.Calculated().size(); ++i) {
        const CalculatedName& name = space.Calculated()[i];
        const MemberId id = firstCalculated + static_cast<MemberId>(i);
        if (name.hierarchy == hierarchy && name.level == level.value_or(name.level)) {
            result.Append({&id, 1});
            found = true;
        }
    }
    return found;
}

/// The tuple at a place of a set.
class ItemSource final : public TupleSource {
public:
    ItemSource(SetPtr set, NumberPtr index) : set_(std::move(set)), index_(std::move(index)) {}

    std::size_t Size() const override { return set_->GetDimensionality().size(); }
    bool Append(Evaluator& evaluator, std::vector<MemberId>& ids) const override {
        const TupleSet tuples = set_->Evaluate(evaluator);
        const std::int64_t item = WholeNumber(index_->Evaluate(evaluator));
        if (item < 0 || static_cast<std::size_t>(item) >= tuples.Count()) {
            return false;
        }
        const std::span<const MemberId> tuple = tuples.At(static_cast<std::size_t>(item));
        ids.insert(ids.end(), tuple.begin(), tuple.end());
        return true;
    }

private:
    SetPtr set_;
    NumberPtr index_;
};

class ItemMember final : public MemberExpression {
public:
    ItemMember(bool isConstant, HierarchyId hierarchy, std::shared_ptr<const ItemSource> source,
               std::size_t place)
        : MemberExpression(isConstant, hierarchy), source_(std::move(source)), place_(place) {}

    MemberId Evaluate(Evaluator& evaluator) const override {
        std::vector<MemberId> ids;
        return source_->Append(evaluator, ids) ? ids[place_] : noMember;
    }
    const TupleSource* Source() const override { return source_.get(); }

private:
    std::shared_ptr<const ItemSource> source_;
    std::size_t place_;
};

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
    {"item", [](MethodBinder& b, Bound target) { return b.Item(std::move(target)); }},
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
    if (level != nullptr) {
        return MakeSet(true, {hierarchy},
                       [at = level->level, withCalculated](Evaluator& evaluator, TupleSet& result) {
                           result.Append(evaluator.Space().LevelMembers(at));
                           if (withCalculated) {
                               AppendCalculated(evaluator.Space(), at.hierarchy, at.level, result);
                           }
                       });
    }
    return MakeSet(true, {hierarchy}, [hierarchy, withCalculated](Evaluator& evaluator, TupleSet& result) {
        TupleSet members{{hierarchy}, {}};
        AppendTree(evaluator.Space(), hierarchy, members);
        if (withCalculated && AppendCalculated(evaluator.Space(), hierarchy, std::nullopt, members)) {
            Hierarchize(evaluator.Space(), members, false);
        }
        result.Append(members);
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
    const NumberPtr number = Argument();
    if (!number->IsConstant()) { // its cells have no formulas before all of them are bound
        binder_.Fail(argument_, "expected the number of a level, found one that depends on cells");
    }
    const std::int64_t level = WholeNumber(number->Evaluate(binder_.GetEvaluator()));
    const std::size_t count = binder_.Space().LevelCount(hierarchy);
    if (level < 0 || static_cast<std::size_t>(level) >= count) {
        binder_.Fail(argument_, fmt::format("{} has the levels 0 to {}",
                                            binder_.Space().HierarchyUniqueName(hierarchy), count - 1));
    }
    return LevelName{{hierarchy, static_cast<std::size_t>(level)}, noMember};
}

/// The member at a place of a tuple: of which hierarchy it is must be known before anything is evaluated.
Bound MethodBinder::ItemOfTuple(TupleExpression tuple) {
    const NumberPtr index = Argument();
    if (!index->IsConstant()) {
        binder_.Fail(argument_, "expected the number of a tuple's member, found one that depends on cells");
    }
    const std::int64_t item = WholeNumber(index->Evaluate(binder_.GetEvaluator()));
    if (item < 0 || static_cast<std::size_t>(item) >= tuple.size()) {
        binder_.Fail(argument_, fmt::format("the tuple has the members 0 to {}", tuple.size() - 1));
    }
    return std::move(tuple[static_cast<std::size_t>(item)]);
}

Bound MethodBinder::Item(Bound target) {
    if (auto* members = std::get_if<TupleExpression>(&target)) {
        return ItemOfTuple(std::move(*members));
    }
    SetPtr set = binder_.ToSet(std::move(target), target_);
    const bool isConstant = set->IsConstant();
    const Dimensionality dimensionality = set->GetDimensionality();
    NumberPtr index = Argument();
    const bool bothConstant = isConstant && index->IsConstant();
    const auto source = std::make_shared<const ItemSource>(std::move(set), std::move(index));
    TupleExpression tuple;
    for (std::size_t place = 0; place < dimensionality.size(); ++place) {
        tuple.push_back(std::make_unique<ItemMember>(bothConstant, dimensionality[place], source, place));
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
