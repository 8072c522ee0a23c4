#pragma once

#include "engine/eval/Evaluator.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qel::engine {

/// A set by its name, for those that ask how far a function has come in it.
class IteratedSet final : public SetExpression {
public:
    IteratedSet(SetPtr set, std::size_t name)
        : SetExpression(set->IsConstant(), set->GetDimensionality()), set_(std::move(set)), name_(name) {}

    void Append(Evaluator& evaluator, TupleSet& result) const override { set_->Append(evaluator, result); }
    std::size_t IterationName() const override { return name_; }

private:
    SetPtr set_;
    std::size_t name_;
};

/// A named set of WITH, or of the cube. `needs` are the sets before it that its formula names.
struct NamedSet {
    std::string_view name;
    SetPtr set;
    mdx::Source source;
    mdx::SourceRange range; ///< in the source
    int depth = 0;          ///< how many expressions stand inside one another in the formula
    std::vector<std::size_t> needs;
    std::size_t iteration = noIteration; ///< see Evaluator::NewIteration
};

/// The named sets of a statement, or of the cube in a statement. Each is evaluated once, on first use, in the
/// context of the slicer; those that the slicer uses, in that of the default members.
class NamedSets {
public:
    /// False when there is one of that name (any letter case).
    bool Add(NamedSet set);
    std::optional<std::size_t> Find(std::string_view name) const;
    std::size_t Count() const { return sets_.size(); }
    const NamedSet& At(std::size_t set) const { return sets_[set]; }
    /// The set by its name. This object must outlive it.
    SetPtr Reference(std::size_t set);
    /// Raises InvalidExpression when the set needs itself, through a calculated member.
    const TupleSet& Tuples(std::size_t set, Evaluator& evaluator);

private:
    struct Result {
        std::optional<TupleSet> tuples;
        bool isRunning = false;
    };

    void Evaluate(std::size_t set, Evaluator& evaluator);
    std::vector<std::size_t> MissingFor(std::size_t set) const;

    std::deque<NamedSet> sets_;  ///< sets of the cube are added while others are evaluated
    std::deque<Result> results_; ///< by set
    std::unordered_map<std::string, std::size_t> numbers_;
};

} // namespace qel::engine
