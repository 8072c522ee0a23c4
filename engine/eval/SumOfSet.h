#pragma once

#include "engine/eval/Expression.h"

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

/// Sum(set, value) and Aggregate: the shape of every statement that sums periods. Duplicates count twice.
class SumOfSet final : public NumberExpression {
public:
    /// `value` may be null: the cell itself.
    SumOfSet(SetPtr set, NumberPtr value, std::optional<MemberRef> valueMember);

    CellValue Evaluate(Evaluator& evaluator) const override;
    const SumOfSet* AsSum() const override { return this; }
    /// The sum as one restriction, or null when it cannot be: the set depends on the cell, has calculated or
    /// overlapping members, or the value is more than a measure. Made when first asked for.
    const Folding* Folded(Evaluator& evaluator) const;

private:
    std::optional<Folding> Fold(Evaluator& evaluator) const;

    SetPtr set_;
    NumberPtr value_;
    std::optional<MemberRef> valueMember_; ///< the value when it is one stored member
    mutable bool foldTried_ = false;
    mutable std::optional<Folding> folding_;
};

} // namespace qel::engine
