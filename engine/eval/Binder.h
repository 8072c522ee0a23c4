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

/// The meaning of a node of the syntax tree.
using Bound = std::variant<HierarchyName, LevelName, MemberPtr, TupleExpression, SetPtr, NumberPtr, TextPtr,
                           ConditionPtr>;

/// Turns syntax trees into typed expressions: resolves names and applies MDX's implicit conversions (a
/// hierarchy to its current member, a member to a tuple or a set, a member or a tuple to the value of its
/// cell). Errors are EngineErrors that point at the node.
class Binder {
public:
    Binder(const mdx::Statement& statement, MemberSpace& space, Evaluator& evaluator)
        : statement_(statement), space_(space), evaluator_(evaluator), names_(space, statement) {}

    /// Declares the calculated members and named sets of WITH, then binds their formulas.
    void BindDefinitions();

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

    /// A single word without brackets, such as DESC; otherwise empty.
    std::string_view Word(mdx::NodeId node) const;
    const mdx::Node& At(mdx::NodeId node) const { return statement_.At(node); }
    const MemberSpace& Space() const { return space_; }
    Evaluator& GetEvaluator() { return evaluator_; }
    [[noreturn]] void Fail(mdx::NodeId node, std::string_view message) const;
    /// Raises InvalidExpression unless the set has this dimensionality. An empty dimensionality matches any.
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
/// The value of a tuple's cell; empty when one of its members does not exist.
NumberPtr ValueOf(TupleExpression tuple);

} // namespace qel::engine
