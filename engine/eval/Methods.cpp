#include "engine/eval/FunctionLookup.h"
#include "engine/eval/SetOperations.h"
#include "engine/mdx/ReservedWords.h"
#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

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
    Bound LevelByName(HierarchyId hierarchy, const std::string& name);
    Bound LevelOf(MemberPtr member);
    Bound Ordinal(Bound target);
    Bound Property(Bound target);
    Bound Current();
    Bound CurrentOrdinal();
    /// Of a dimension, a hierarchy, a level or a member.
    Bound NameOf(Bound target);
    Bound UniqueNameOf(Bound target);
    bool IsDimension() const;
    SetAlias IterationOf() const;
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
        if (!name.isHidden && name.hierarchy == hierarchy && name.level == level.value_or(name.level)) {
            result.Append({&id, 1});
            found = true;
        }
    }
    return found;
}

bool IsMemberLike(const Bound& bound) {
    return !std::holds_alternative<HierarchyName>(bound) && !std::holds_alternative<LevelName>(bound) &&
           !std::holds_alternative<LevelOfMember>(bound);
}

/// The members of the level that a member is on.
SetPtr MembersOfLevel(const std::shared_ptr<MemberExpression>& member, bool withCalculated) {
    return MakeSet(false, {member->Hierarchy()},
                   [member, withCalculated](Evaluator& evaluator, TupleSet& result) {
                       const MemberRef of{member->Hierarchy(), member->Evaluate(evaluator)};
                       if (of.id == noMember) {
                           return;
                       }
                       const LevelRef level{of.hierarchy, evaluator.Space().LevelOf(of)};
                       result.Append(evaluator.Space().LevelMembers(level));
                       if (withCalculated) {
                           AppendCalculated(evaluator.Space(), level.hierarchy, level.level, result);
                       }
                   });
}

/// The tuple that a function has come to in a named set.
class CurrentSource final : public TupleSource {
public:
    CurrentSource(SetAlias alias, mdx::SourceRange range) : alias_(std::move(alias)), range_(range) {}

    std::size_t Size() const override { return alias_.dimensionality.size(); }
    bool Append(Evaluator& evaluator, std::vector<MemberId>& ids) const override {
        const IterationPlace place = Place(evaluator);
        const std::span<const MemberId> tuple = place.tuples->At(place.tuple);
        ids.insert(ids.end(), tuple.begin(), tuple.end());
        return true;
    }
    IterationPlace Place(const Evaluator& evaluator) const {
        const IterationPlace place = evaluator.IterationOf(alias_.iteration);
        if (place.tuples == nullptr) {
            mdx::RaiseAt(ErrorKind::InvalidExpression, evaluator.Source(), range_,
                         "no function goes through the set here");
        }
        return place;
    }

private:
    SetAlias alias_;
    mdx::SourceRange range_;
};

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
    ItemMember(bool isConstant, HierarchyId hierarchy, std::shared_ptr<const TupleSource> source,
               std::size_t place)
        : MemberExpression(isConstant, hierarchy), source_(std::move(source)), place_(place) {}

    MemberId Evaluate(Evaluator& evaluator) const override {
        std::vector<MemberId> ids;
        return source_->Append(evaluator, ids) ? ids[place_] : noMember;
    }
    const TupleSource* Source() const override { return source_.get(); }

private:
    std::shared_ptr<const TupleSource> source_;
    std::size_t place_;
};

/// The members that a source finds together, as one member or as a tuple.
Bound TupleOf(bool isConstant, const Dimensionality& dimensionality,
              const std::shared_ptr<const TupleSource>& source) {
    TupleExpression tuple;
    for (std::size_t place = 0; place < dimensionality.size(); ++place) {
        tuple.push_back(std::make_unique<ItemMember>(isConstant, dimensionality[place], source, place));
    }
    if (tuple.size() == 1) {
        return std::move(tuple.front());
    }
    return tuple;
}

template <class Describe>
Bound TextOfShared(const std::shared_ptr<MemberExpression>& member, Describe describe) {
    return MakeText(false, [member, describe](Evaluator& evaluator) {
        const MemberRef found{member->Hierarchy(), member->Evaluate(evaluator)};
        return found.id == noMember ? std::string() : describe(evaluator.Space(), found);
    });
}

std::string ParentUniqueName(const MemberSpace& space, MemberRef of) {
    const MemberId parent = space.Parent(of);
    return parent == noMember ? std::string() : space.UniqueName({of.hierarchy, parent});
}
std::string LevelUniqueName(const MemberSpace& space, LevelRef level) {
    return space.HierarchyUniqueName(level.hierarchy) + "." + BracketedName(space.LevelName(level));
}
std::string LevelNameOf(const MemberSpace& space, MemberRef of) {
    return LevelUniqueName(space, {of.hierarchy, space.LevelOf(of)});
}
std::string LevelCaptionOf(const MemberSpace& space, MemberRef of) {
    return std::string(space.LevelName({of.hierarchy, space.LevelOf(of)}));
}
std::string HierarchyNameOf(const MemberSpace& space, MemberRef of) {
    return space.HierarchyUniqueName(of.hierarchy);
}

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
    {"level", [](MethodBinder& b, Bound target) { return b.LevelOf(b.MemberOf(std::move(target))); }},
    {"ordinal", [](MethodBinder& b, Bound target) { return b.Ordinal(std::move(target)); }},
    {"properties", [](MethodBinder& b, Bound target) { return b.Property(std::move(target)); }},
    {"count",
     [](MethodBinder& b, Bound target) -> Bound {
         auto set = b.binder_.ToSet(std::move(target), b.target_);
         return MakeNumber(false, [set = std::move(set)](Evaluator& evaluator) {
             return CellValue::Exact(static_cast<std::int64_t>(set->Evaluate(evaluator).Count()), 0);
         });
     }},
    {"item", [](MethodBinder& b, Bound target) { return b.Item(std::move(target)); }},
    {"value",
     [](MethodBinder& b, Bound target) -> Bound {
         return AnyValue{b.binder_.ToValue(std::move(target), b.target_)};
     }},
    {"name", [](MethodBinder& b, Bound target) { return b.NameOf(std::move(target)); }},
    {"caption",
     [](MethodBinder& b, Bound target) {
         return IsMemberLike(target) ? TextOf<&MemberSpace::Caption>(b, std::move(target))
                                     : b.NameOf(std::move(target));
     }},
    {"member_caption", TextOf<&MemberSpace::Caption>},
    {"member_key", TextOf<&MemberSpace::Key>},
    {"uniquename", [](MethodBinder& b, Bound target) { return b.UniqueNameOf(std::move(target)); }},
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
    if (mdx::IsSetNameMethod(name_)) {
        return IsWord(name_, "current") ? Current() : CurrentOrdinal();
    }
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
    if (const auto* of = std::get_if<LevelOfMember>(&target)) {
        return MembersOfLevel(of->member, withCalculated);
    }
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

Bound MethodBinder::LevelByName(HierarchyId hierarchy, const std::string& name) {
    const MemberSpace& space = binder_.Space();
    for (std::size_t level = 0; level < space.LevelCount(hierarchy); ++level) {
        if (EqualIgnoringCase(space.LevelName({hierarchy, level}), name)) {
            return LevelName{{hierarchy, level}, noMember};
        }
    }
    binder_.Fail(argument_, fmt::format("{} has no level {}", space.HierarchyUniqueName(hierarchy),
                                        BracketedName(name)));
}

Bound MethodBinder::Levels(HierarchyId hierarchy) {
    if (argument_ != mdx::noNode && binder_.At(argument_).kind == mdx::NodeKind::Text) {
        return LevelByName(hierarchy, std::string(binder_.At(argument_).text));
    }
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
    return TupleOf(bothConstant, dimensionality, source);
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
    MemberPtr member = binder.MemberOf(std::move(target));
    const bool isConstant = member->IsConstant();
    return MakeText(isConstant, [member = std::move(member)](Evaluator& evaluator) {
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
    if (const auto* level = std::get_if<LevelOfMember>(&target)) {
        return level->member->Hierarchy();
    }
    binder_.Fail(target_, fmt::format("expected a hierarchy or a level before .{}", name_));
}

Bound MethodBinder::LevelOf(MemberPtr member) {
    if (!member->IsConstant()) {
        return LevelOfMember{std::move(member)};
    }
    const MemberRef of{member->Hierarchy(), member->Evaluate(binder_.GetEvaluator())};
    if (of.id == noMember) {
        binder_.Fail(target_, "the member does not exist, so it has no level");
    }
    return LevelName{{of.hierarchy, binder_.Space().LevelOf(of)}, noMember};
}

Bound MethodBinder::Ordinal(Bound target) {
    if (const auto* level = std::get_if<LevelName>(&target)) {
        const auto number = static_cast<std::int64_t>(level->level.level);
        return MakeNumber(true, [number](Evaluator&) { return CellValue::Exact(number, 0); });
    }
    auto* of = std::get_if<LevelOfMember>(&target);
    if (of == nullptr) {
        binder_.Fail(target_,
                     "expected a level before .Ordinal, such as that of a member: member.Level.Ordinal");
    }
    return MakeNumber(false, [member = std::move(of->member)](Evaluator& evaluator) {
        const MemberRef found{member->Hierarchy(), member->Evaluate(evaluator)};
        return found.id == noMember
                   ? CellValue::Empty()
                   : CellValue::Exact(static_cast<std::int64_t>(evaluator.Space().LevelOf(found)), 0);
    });
}

Bound MethodBinder::Property(Bound target) {
    struct MemberProperty {
        std::string_view name;
        Bound (*bind)(MethodBinder& binder, Bound target);
    };
    static constexpr MemberProperty properties[] = {
        {"caption", TextOf<&MemberSpace::Caption>},
        {"member_caption", TextOf<&MemberSpace::Caption>},
        {"name", TextOf<&MemberSpace::Name>},
        {"member_name", TextOf<&MemberSpace::Name>},
        {"key", TextOf<&MemberSpace::Key>},
        {"member_key", TextOf<&MemberSpace::Key>},
        {"unique_name", TextOf<&MemberSpace::UniqueName>},
        {"member_unique_name", TextOf<&MemberSpace::UniqueName>},
        {"parent_unique_name", TextOf<ParentUniqueName>},
        {"level_unique_name", TextOf<LevelNameOf>},
        {"hierarchy_unique_name", TextOf<HierarchyNameOf>},
    };
    if (argument_ == mdx::noNode) {
        binder_.Fail(node_, "Properties takes the name of a property");
    }
    Call call{binder_, node_, {argument_}};
    const std::string name = call.ConstantText(0);
    for (const MemberProperty& property : properties) {
        if (IsWord(name, property.name)) {
            return property.bind(*this, std::move(target));
        }
    }
    binder_.Fail(argument_,
                 fmt::format("members have no property {}; they have CAPTION, NAME, KEY, UNIQUE_NAME, "
                             "PARENT_UNIQUE_NAME, LEVEL_UNIQUE_NAME and HIERARCHY_UNIQUE_NAME",
                             name));
}

SetAlias MethodBinder::IterationOf() const {
    std::optional<SetAlias> alias = binder_.FindIteration(target_);
    if (!alias) {
        binder_.Fail(target_, fmt::format("expected the name of a set before .{}; a member of that name is "
                                          "written in brackets",
                                          name_));
    }
    return *std::move(alias);
}

Bound MethodBinder::Current() {
    const SetAlias alias = IterationOf();
    return TupleOf(false, alias.dimensionality,
                   std::make_shared<const CurrentSource>(alias, binder_.At(node_).range));
}

Bound MethodBinder::CurrentOrdinal() {
    return MakeNumber(false, [source = std::make_shared<const CurrentSource>(
                                  IterationOf(), binder_.At(node_).range)](Evaluator& evaluator) {
        return CellValue::Exact(static_cast<std::int64_t>(source->Place(evaluator).tuple), 0);
    });
}

/// Whether the target is written as a dimension: `[Accounts]` or `….Dimension`.
bool MethodBinder::IsDimension() const {
    const mdx::Node& target = binder_.At(target_);
    return target.kind == mdx::NodeKind::Path ? target.childCount == 1 : IsWord(target.text, "dimension");
}

Bound MethodBinder::NameOf(Bound target) {
    const MemberSpace& space = binder_.Space();
    std::string name;
    if (const auto* hierarchy = std::get_if<HierarchyName>(&target)) {
        name = IsDimension() ? space.DimensionName(hierarchy->hierarchy)
                             : space.HierarchyName(hierarchy->hierarchy);
    } else if (const auto* level = std::get_if<LevelName>(&target)) {
        name = space.LevelName(level->level);
    } else if (auto* of = std::get_if<LevelOfMember>(&target)) {
        return TextOfShared(of->member, LevelCaptionOf);
    } else {
        return TextOf<&MemberSpace::Name>(*this, std::move(target));
    }
    return MakeText(true, [name = std::move(name)](Evaluator&) { return name; });
}

Bound MethodBinder::UniqueNameOf(Bound target) {
    const MemberSpace& space = binder_.Space();
    std::string name;
    if (const auto* hierarchy = std::get_if<HierarchyName>(&target)) {
        name = IsDimension() ? BracketedName(space.DimensionName(hierarchy->hierarchy))
                             : space.HierarchyUniqueName(hierarchy->hierarchy);
    } else if (const auto* level = std::get_if<LevelName>(&target)) {
        name = LevelUniqueName(space, level->level);
    } else if (auto* of = std::get_if<LevelOfMember>(&target)) {
        return TextOfShared(of->member, LevelNameOf);
    } else {
        return TextOf<&MemberSpace::UniqueName>(*this, std::move(target));
    }
    return MakeText(true, [name = std::move(name)](Evaluator&) { return name; });
}

NumberPtr MethodBinder::Argument() {
    if (argument_ == mdx::noNode) {
        return MakeNumber(true, [](Evaluator&) { return CellValue::Exact(1, 0); });
    }
    return binder_.BindNumber(argument_);
}

Bound BindMethod(Binder& binder, NodeId node) { return MethodBinder(binder, node).Bind(); }

} // namespace qel::engine
