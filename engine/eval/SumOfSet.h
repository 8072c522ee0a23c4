#pragma once

#include "engine/eval/Expression.h"

#include <optional>
#include <vector>

namespace qel::engine {

/// A sum over members of one hierarchy that is a single read of facts: the members share no facts, so their
/// codes together form one restriction.
struct Folding {
    HierarchyId hierarchy = 0;
    std::vector<KeyRange> codes;
    std::optional<MemberId> measure; ///< nothing: the current measure
};

/// Sum(set, value) and Aggregate, which sum periods in most statements. Duplicates count twice.
class SumOfSet final : public NumberExpression {
public:
    /// A null `value` stands for the cell itself.
    SumOfSet(SetPtr set, NumberPtr value, std::optional<MemberRef> valueMember);

    CellValue Evaluate(Evaluator& evaluator) const override;
    const SumOfSet* AsSum() const override { return this; }
    /// The sum as a single restriction, computed on first use. Null when the set depends on the coordinates,
    /// has calculated or overlapping members, or when the value is more than a measure.
    const Folding* Folded(Evaluator& evaluator) const;

private:
    std::optional<Folding> Fold(Evaluator& evaluator) const;

    SetPtr set_;
    NumberPtr value_;
    std::optional<MemberRef> valueMember_; ///< set when the value is a single stored member
    mutable bool foldTried_ = false;
    mutable std::optional<Folding> folding_;
};

} // namespace qel::engine
