#pragma once

#include "engine/eval/CellArithmetic.h"
#include "engine/eval/TupleSet.h"

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// Expressions whose names are resolved and whose types are known: made once a statement, evaluated as often
// as its cells need.

namespace qel::engine {

class Evaluator;
class SumOfSet;

/// The base of all expressions. A constant expression gives the same result at any coordinates.
class Expression {
public:
    explicit Expression(bool isConstant) : isConstant_(isConstant) {}
    virtual ~Expression() = default;
    Expression(const Expression&) = delete;
    Expression& operator=(const Expression&) = delete;
    bool IsConstant() const { return isConstant_; }

private:
    bool isConstant_;
};

class NumberExpression : public Expression {
public:
    using Expression::Expression;
    virtual CellValue Evaluate(Evaluator& evaluator) const = 0;
    /// This expression as a sum over a set, or null.
    virtual const SumOfSet* AsSum() const { return nullptr; }
};

class TextExpression : public Expression {
public:
    using Expression::Expression;
    virtual std::string Evaluate(Evaluator& evaluator) const = 0;
};

class ConditionExpression : public Expression {
public:
    using Expression::Expression;
    virtual bool Evaluate(Evaluator& evaluator) const = 0;
};

/// A tuple whose members are found together.
class TupleSource {
public:
    TupleSource() = default;
    virtual ~TupleSource() = default;
    TupleSource(const TupleSource&) = delete;
    TupleSource& operator=(const TupleSource&) = delete;
    virtual std::size_t Size() const = 0;
    /// Appends its members; false when there is no tuple.
    virtual bool Append(Evaluator& evaluator, std::vector<MemberId>& ids) const = 0;
};

class MemberExpression : public Expression {
public:
    MemberExpression(bool isConstant, HierarchyId hierarchy)
        : Expression(isConstant), hierarchy_(hierarchy) {}
    HierarchyId Hierarchy() const { return hierarchy_; }
    /// noMember when the member does not exist, such as the parent of a top member.
    virtual MemberId Evaluate(Evaluator& evaluator) const = 0;
    /// The tuple that this is a member of when its members are found together, or null.
    virtual const TupleSource* Source() const { return nullptr; }

private:
    HierarchyId hierarchy_;
};

/// The number of no name of a set.
inline constexpr std::size_t noIteration = static_cast<std::size_t>(-1);

class SetExpression : public Expression {
public:
    SetExpression(bool isConstant, Dimensionality dimensionality)
        : Expression(isConstant), dimensionality_(std::move(dimensionality)) {}
    /// The hierarchies of its tuples; empty for the set {}.
    const Dimensionality& GetDimensionality() const { return dimensionality_; }
    /// Appends the set's tuples to `result`, which has the same dimensionality.
    virtual void Append(Evaluator& evaluator, TupleSet& result) const = 0;
    /// The number of the name that `set.Current` knows the set by, or noIteration.
    virtual std::size_t IterationName() const { return noIteration; }
    TupleSet Evaluate(Evaluator& evaluator) const {
        TupleSet result{dimensionality_, {}};
        Append(evaluator, result);
        return result;
    }

private:
    Dimensionality dimensionality_;
};

using NumberPtr = std::unique_ptr<NumberExpression>;
using TextPtr = std::unique_ptr<TextExpression>;
using ConditionPtr = std::unique_ptr<ConditionExpression>;
using MemberPtr = std::unique_ptr<MemberExpression>;
using SetPtr = std::unique_ptr<SetExpression>;
using TupleExpression = std::vector<MemberPtr>;

/// An expression that evaluates a function object.
template <class Base, class Function>
class FunctionExpression final : public Base {
public:
    template <class... Arguments>
    explicit FunctionExpression(Function function, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...), function_(std::move(function)) {}

    auto Evaluate(Evaluator& evaluator) const -> std::invoke_result_t<const Function&, Evaluator&> override {
        return function_(evaluator);
    }

private:
    Function function_;
};

template <class Function>
class FunctionSet final : public SetExpression {
public:
    FunctionSet(bool isConstant, Dimensionality dimensionality, Function function)
        : SetExpression(isConstant, std::move(dimensionality)), function_(std::move(function)) {}
    void Append(Evaluator& evaluator, TupleSet& result) const override { function_(evaluator, result); }

private:
    Function function_;
};

template <class Function>
NumberPtr MakeNumber(bool isConstant, Function function) {
    return std::make_unique<FunctionExpression<NumberExpression, Function>>(std::move(function), isConstant);
}
template <class Function>
TextPtr MakeText(bool isConstant, Function function) {
    return std::make_unique<FunctionExpression<TextExpression, Function>>(std::move(function), isConstant);
}
template <class Function>
ConditionPtr MakeCondition(Function function) {
    return std::make_unique<FunctionExpression<ConditionExpression, Function>>(std::move(function), false);
}
template <class Function>
MemberPtr MakeMember(bool isConstant, HierarchyId hierarchy, Function function) {
    return std::make_unique<FunctionExpression<MemberExpression, Function>>(std::move(function), isConstant,
                                                                            hierarchy);
}
/// `function(evaluator, result)` appends the set's tuples to `result`.
template <class Function>
SetPtr MakeSet(bool isConstant, Dimensionality dimensionality, Function function) {
    return std::make_unique<FunctionSet<Function>>(isConstant, std::move(dimensionality),
                                                   std::move(function));
}

} // namespace qel::engine
