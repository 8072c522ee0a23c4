#pragma once

#include "engine/eval/CompoundSet.h"
#include "engine/eval/Expression.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace qel::engine {

struct FactCell;

/// A sum over members of one hierarchy that is a single read of facts: the members share no facts, so their
/// codes together form one restriction.
struct Folding {
    HierarchyId hierarchy = 0;
    std::vector<KeyRange> codes;
    std::optional<MemberId> measure; ///< nothing: the current measure
};

/// Sum(set, value), which sums periods in most statements: duplicates count twice. Aggregate(set, value) is
/// the value of all tuples as one position: overlapping tuples count once, and a calculated value is computed
/// from the whole.
class SumOfSet final : public NumberExpression {
public:
    enum class Kind { Sum, Aggregate };
    /// A null `value` stands for the cell itself.
    SumOfSet(Kind kind, SetPtr set, NumberPtr value, std::optional<MemberRef> valueMember,
             mdx::SourceRange range);

    CellValue Evaluate(Evaluator& evaluator) const override;
    const SumOfSet* AsSum() const override { return this; }
    /// The sum as a single restriction, computed on first use. Null when the set depends on the coordinates,
    /// has calculated members or, for Sum, overlapping ones, or when the value is more than a measure.
    const Folding* Folded(Evaluator& evaluator) const;

    /// Visits the reads of facts that the sum adds up at the current coordinates, see Evaluator::AddsFacts.
    bool AddsFacts(Evaluator& evaluator, const std::function<void(const FactCell&)>& visit) const;

private:
    bool ValueAddsFacts(Evaluator& evaluator, const std::function<void(const FactCell&)>& visit) const;
    std::optional<Folding> Fold(Evaluator& evaluator) const;
    CellValue ValueAt(Evaluator& evaluator) const;
    CellValue EvaluateTogether(Evaluator& evaluator) const;

    Kind kind_;
    SetPtr set_;
    NumberPtr value_;
    std::optional<MemberRef> valueMember_; ///< set when the value is a single stored member
    mdx::SourceRange range_;
    mutable bool foldTried_ = false;
    mutable std::optional<Folding> folding_;
    mutable std::unique_ptr<const CompoundSet> together_; ///< of a set that does not depend on the cell
};

} // namespace qel::engine
