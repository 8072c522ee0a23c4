#pragma once

#include "engine/eval/CubeCalculations.h"
#include "engine/eval/Evaluator.h"
#include "engine/eval/NameResolver.h"
#include "engine/eval/NamedSets.h"
#include "engine/mdx/Ast.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace qel::engine {

/// A number, a text or a condition; which of them is known only when it is evaluated.
struct AnyValue {
    NumberPtr value;
};

/// The level of a member that depends on cells.
struct LevelOfMember {
    std::shared_ptr<MemberExpression> member;
};

/// A set that a function goes through, by its name: `set AS name`, or a named set.
struct SetAlias {
    std::size_t iteration = noIteration;
    Dimensionality dimensionality;
};

/// The meaning of a node of the syntax tree.
using Bound = std::variant<HierarchyName, LevelName, MemberPtr, TupleExpression, SetPtr, NumberPtr, TextPtr,
                           ConditionPtr, AnyValue, LevelOfMember, SetAlias>;

/// Turns syntax trees into typed expressions: resolves names and applies MDX's implicit conversions (a
/// hierarchy to its current member, a member to a tuple or a set, a member or a tuple to the value of its
/// cell). Errors are EngineErrors that point at the node.
class Binder {
public:
    /// `calculations` are the cube's, or null; `scope` says which calculated members and sets names can mean.
    Binder(const mdx::Statement& statement, MemberSpace& space, Evaluator& evaluator,
           CubeCalculations* calculations, Scope scope = Scope::Statement);
    ~Binder();
    Binder(const Binder&) = delete;
    Binder& operator=(const Binder&) = delete;

    /// Declares the calculated members and named sets of the cube and of WITH, then binds the formulas of
    /// WITH.
    void BindDefinitions();
    /// Adds the definition's member to the space, in this binder's scope.
    void AddCalculated(const mdx::Definition& definition);
    /// The name of the definition's set.
    std::string_view SetName(const mdx::Definition& definition) const;

    Bound Bind(mdx::NodeId node);
    /// The meaning of a text, as if it stood in the statement in place of the node.
    Bound BindTextOf(mdx::NodeId node, std::string text);
    SetPtr BindSet(mdx::NodeId node) { return ToSet(Bind(node), node); }
    MemberPtr BindMember(mdx::NodeId node) { return ToMember(Bind(node), node); }
    NumberPtr BindNumber(mdx::NodeId node) { return ToNumber(Bind(node), node); }
    /// A number, a text or a condition.
    NumberPtr BindValue(mdx::NodeId node) { return ToValue(Bind(node), node); }
    TextPtr BindText(mdx::NodeId node) { return ToText(Bind(node), node); }
    ConditionPtr BindCondition(mdx::NodeId node) { return ToCondition(Bind(node), node); }
    LevelRef BindLevel(mdx::NodeId node);
    HierarchyId BindHierarchy(mdx::NodeId node);

    SetPtr ToSet(Bound bound, mdx::NodeId node);
    MemberPtr ToMember(Bound bound, mdx::NodeId node);
    TupleExpression ToTuple(Bound bound, mdx::NodeId node, std::string_view expected);
    NumberPtr ToNumber(Bound bound, mdx::NodeId node);
    NumberPtr ToValue(Bound bound, mdx::NodeId node);
    TextPtr ToText(Bound bound, mdx::NodeId node);
    ConditionPtr ToCondition(Bound bound, mdx::NodeId node);
    LevelRef ToLevel(const Bound& bound, mdx::NodeId node) const;

    /// A single word without brackets, such as DESC; otherwise empty.
    std::string_view Word(mdx::NodeId node) const;
    const mdx::Node& At(mdx::NodeId node) const { return statement_.At(node); }
    /// The name that `set.Current` knows a named set or an alias by, if the node is one.
    std::optional<SetAlias> FindIteration(mdx::NodeId node);
    const MemberSpace& Space() const { return space_; }
    /// The cube's calculated members that were named so far in its own scope, and its sets.
    const std::vector<MemberId>& NeededMembers() const { return neededMembers_; }
    const std::vector<std::size_t>& NeededStoredSets() const { return neededStoredSets_; }
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
    void RejectTexts(mdx::NodeId first, const std::vector<Bound>& operands) const;
    bool IsHierarchyMethod(mdx::NodeId node) const;
    Bound BindIdentity(mdx::NodeId left, mdx::NodeId right);
    Bound BindCall(mdx::NodeId node);
    Bound BindCase(mdx::NodeId node);
    Bound BindTextChain(mdx::NodeId node);
    Bound BindAlias(mdx::NodeId node);
    /// The set that the only part of a path names, or nothing.
    std::optional<Bound> BindSetName(mdx::NodeId node);
    /// The cube's set of that name. Raises InvalidExpression when it cannot be named here.
    std::optional<std::size_t> FindStoredSet(mdx::NodeId node);
    Binder& Root() { return outer_ != nullptr ? *outer_ : *this; }
    void BindNamedSet(const mdx::Definition& definition);
    std::string_view LastPart(mdx::NodeId path) const;

    friend class MethodBinder;
    struct BoundText;

    const mdx::Statement& statement_;
    MemberSpace& space_;
    Evaluator& evaluator_;
    CubeCalculations* calculations_;
    Scope scope_;
    NameResolver names_;
    NamedSets namedSets_;
    std::vector<MemberId> neededMembers_;
    std::vector<std::size_t> neededStoredSets_;
    std::vector<std::size_t> neededSets_;               ///< the named sets in the formula that is being bound
    std::unordered_map<std::string, SetAlias> aliases_; ///< by folded name
    std::vector<std::unique_ptr<BoundText>> texts_;     ///< that StrToSet and others read
    Binder* outer_ = nullptr;                           ///< the statement's binder, of that of a text
};

bool IsSet(const Bound& bound);
MemberPtr ConstantMember(MemberRef member);
SetPtr SetOfTuple(TupleExpression tuple);
/// The value of a tuple's cell; empty when one of its members does not exist. With `number`, evaluating a
/// text or a condition raises InvalidExpression there.
NumberPtr ValueOf(TupleExpression tuple, std::optional<mdx::SourceRange> number);
/// Compares two values, of which an empty one is 0, "" or false. Raises InvalidExpression at `range` when
/// they are of different kinds.
int CompareValues(const Evaluator& evaluator, const CellValue& a, const CellValue& b, mdx::SourceRange range);

} // namespace qel::engine
