#pragma once

#include "engine/eval/CompoundSet.h"
#include "engine/eval/Expression.h"

#include <memory>
#include <optional>
#include <vector>

namespace qel::engine {

/// A sum over members of one hierarchy that is the same as reading one cell: the members share no facts, so
/// their codes together are one restriction.
struct Folding {
    HierarchyId hierarchy = 0;
    std::vector<KeyRange> codes;
    std::optional<MemberId> measure; ///< none: the current one
};

/// Sum(set, value): the shape of every statement that sums periods. Duplicates count twice. Aggregate(set,
/// value) is the value of all tuples together: what they share counts once, and a calculated value is
/// calculated from the whole.
class SumOfSet final : public NumberExpression {
public:
    enum class Kind { Sum, Aggregate };
    /// `value` may be null: the cell itself.
    SumOfSet(Kind kind, SetPtr set, NumberPtr value, std::optional<MemberRef> valueMember);

    CellValue Evaluate(Evaluator& evaluator) const override;
    const SumOfSet* AsSum() const override { return this; }
    /// The sum as one restriction, or null when it cannot be: the set depends on the cell, has calculated
    /// members or, for Sum, overlapping ones, or the value is more than a measure. Made when first asked for.
    const Folding* Folded(Evaluator& evaluator) const;

private:
    std::optional<Folding> Fold(Evaluator& evaluator) const;
    CellValue ValueAt(Evaluator& evaluator) const;
    CellValue EvaluateTogether(Evaluator& evaluator) const;

    Kind kind_;
    SetPtr set_;
    NumberPtr value_;
    std::optional<MemberRef> valueMember_; ///< the value when it is one stored member
    mutable bool foldTried_ = false;
    mutable std::optional<Folding> folding_;
    mutable std::unique_ptr<const CompoundSet> together_; ///< of a set that does not depend on the cell
};

} // namespace qel::engine
