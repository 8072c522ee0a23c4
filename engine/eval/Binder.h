#pragma once

#include "engine/eval/Evaluator.h"
#include "engine/eval/NameResolver.h"
#include "engine/eval/NamedSets.h"
#include "engine/mdx/Ast.h"

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qel::engine {

/// What a node of the syntax tree has turned out to be.
using Bound = std::variant<HierarchyName, LevelName, MemberPtr, TupleExpression, SetPtr, NumberPtr, TextPtr,
                           ConditionPtr>;

/// Turns syntax trees into expressions: looks names up, gives every node its type, and converts where the
/// language does: a hierarchy to its current member, a member to a tuple or a set of one, a member or a tuple
/// to the value of its cell. Every error is an EngineError at the node's place.
class Binder {
public:
    Binder(const mdx::Statement& statement, MemberSpace& space, Evaluator& evaluator)
        : statement_(statement), space_(space), evaluator_(evaluator), names_(space, statement) {}

    /// Makes the calculated members and named sets of WITH known, then binds their formulas.
    void BindDefinitions();
    NamedSets& Sets() { return namedSets_; }

    Bound Bind(mdx::NodeId node);
    SetPtr BindSet(mdx::NodeId node) { return ToSet(Bind(node), node); }
    MemberPtr BindMember(mdx::NodeId node) { return ToMember(Bind(node), node); }
    NumberPtr BindNumber(mdx::NodeId node) { return ToNumber(Bind(node), node); }
    TextPtr BindText(mdx::NodeId node);
    ConditionPtr BindCondition(mdx::NodeId node);
    LevelRef BindLevel(mdx::NodeId node);
    HierarchyId BindHierarchy(mdx::NodeId node);

    SetPtr ToSet(Bound bound, mdx::NodeId node);
    MemberPtr ToMember(Bound bound, mdx::NodeId node);
    NumberPtr ToNumber(Bound bound, mdx::NodeId node);
    LevelRef ToLevel(const Bound& bound, mdx::NodeId node) const;

    /// A lone word without brackets, such as DESC; empty for anything else.
    std::string_view Word(mdx::NodeId node) const;
    const mdx::Node& At(mdx::NodeId node) const { return statement_.At(node); }
    const MemberSpace& Space() const { return space_; }
    Evaluator& GetEvaluator() { return evaluator_; }
    [[noreturn]] void Fail(mdx::NodeId node, std::string_view message) const;
    /// Raises InvalidExpression unless the set takes tuples of this shape; an empty one takes any.
    void CheckDimensionality(const Dimensionality& dimensionality, const SetExpression& set,
                             mdx::NodeId node) const;
    std::string Describe(const Dimensionality& dimensionality) const;

private:
    Bound BindPath(mdx::NodeId node, bool wantsLevel);
    Bound BindBraces(mdx::NodeId node);
    Bound BindTuple(mdx::NodeId node);
    Bound BindRange(mdx::NodeId node);
    Bound BindChain(mdx::NodeId node);
    Bound BindConditions(mdx::NodeId node);
    Bound BindComparison(mdx::NodeId node);
    Bound BindIdentity(mdx::NodeId left, mdx::NodeId right);
    Bound BindCall(mdx::NodeId node);
    Bound BindNamedSet(std::size_t set);
    void AddCalculated(const mdx::Definition& definition);
    void BindNamedSet(const mdx::Definition& definition);
    std::string_view LastPart(mdx::NodeId path) const;

    friend class MethodBinder;

    const mdx::Statement& statement_;
    MemberSpace& space_;
    Evaluator& evaluator_;
    NameResolver names_;
    NamedSets namedSets_;
    std::vector<std::size_t> neededSets_; ///< the named sets in the formula that is being bound
};

bool IsSet(const Bound& bound);
MemberPtr ConstantMember(MemberRef member);
SetPtr SetOfTuple(TupleExpression tuple);
/// The value of a tuple's cell; empty when one of its members is absent.
NumberPtr ValueOf(TupleExpression tuple);

} // namespace qel::engine
