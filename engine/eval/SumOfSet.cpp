#include "engine/eval/SumOfSet.h"

#include "engine/eval/ForEachTuple.h"

#include <algorithm>

namespace qel::engine {

SumOfSet::SumOfSet(Kind kind, SetPtr set, NumberPtr value, std::optional<MemberRef> valueMember,
                   mdx::SourceRange range)
    : NumberExpression(false), kind_(kind), set_(std::move(set)), value_(std::move(value)),
      valueMember_(valueMember), range_(range) {}

CellValue SumOfSet::Evaluate(Evaluator& evaluator) const {
    if (const std::optional<CellValue> folded = evaluator.FoldedCell(*this)) {
        return *folded;
    }
    if (kind_ == Kind::Aggregate) {
        return EvaluateTogether(evaluator);
    }
    CellValue sum;
    ForEachTuple(evaluator, *set_, [&](std::span<const MemberId>) { sum = Add(sum, ValueAt(evaluator)); });
    return sum;
}

CellValue SumOfSet::ValueAt(Evaluator& evaluator) const {
    return value_ ? value_->Evaluate(evaluator) : evaluator.RequireNumber(evaluator.Cell(), range_);
}

CellValue SumOfSet::EvaluateTogether(Evaluator& evaluator) const {
    std::unique_ptr<const CompoundSet> own; // of a set that depends on the cell
    if (!together_) {
        auto& place = set_->IsConstant() ? together_ : own;
        place = std::make_unique<const CompoundSet>(evaluator.Space(), set_->Evaluate(evaluator));
    }
    const CompoundSet& set = together_ ? *together_ : *own;
    if (set.Count() == 0) {
        return CellValue::Empty();
    }
    const Evaluator::CompoundPosition position(evaluator, set);
    return ValueAt(evaluator);
}

bool SumOfSet::AddsFacts(Evaluator& evaluator, const std::function<void(const FactCell&)>& visit) const {
    const TupleSet tuples = set_->Evaluate(evaluator);
    if (kind_ == Kind::Aggregate) {
        const CompoundSet set(evaluator.Space(), tuples);
        const Evaluator::CompoundPosition position(evaluator, set);
        return tuples.Count() == 0 || ValueAddsFacts(evaluator, visit);
    }
    bool adds = true;
    ForEachTuple(evaluator, *set_, tuples,
                 [&](std::span<const MemberId>) { adds = adds && ValueAddsFacts(evaluator, visit); });
    return adds;
}

bool SumOfSet::ValueAddsFacts(Evaluator& evaluator, const std::function<void(const FactCell&)>& visit) const {
    if (value_ && !valueMember_) {
        return false;
    }
    if (!value_) {
        return evaluator.AddsFacts(visit);
    }
    const Evaluator::Position position(evaluator, {&valueMember_->hierarchy, 1}, {&valueMember_->id, 1});
    return valueMember_->id != noMember && evaluator.AddsFacts(visit);
}

const Folding* SumOfSet::Folded(Evaluator& evaluator) const {
    if (!foldTried_) {
        foldTried_ = true;
        folding_ = Fold(evaluator);
    }
    return folding_ ? &*folding_ : nullptr;
}

std::optional<Folding> SumOfSet::Fold(Evaluator& evaluator) const {
    const MemberSpace& space = evaluator.Space();
    if (!set_->IsConstant() || set_->GetDimensionality().size() != 1 ||
        !space.KeyColumn(set_->GetDimensionality()[0])) {
        return std::nullopt;
    }
    Folding folding;
    folding.hierarchy = set_->GetDimensionality()[0];
    if (value_) {
        if (!valueMember_ || !space.IsMeasures(valueMember_->hierarchy) || IsCalculated(valueMember_->id)) {
            return std::nullopt;
        }
        folding.measure = valueMember_->id;
    }
    const TupleSet set = set_->Evaluate(evaluator);
    for (const MemberId member : set.ids) {
        if (IsCalculated(member)) {
            return std::nullopt;
        }
        const CodeRanges codes = space.Codes({folding.hierarchy, member});
        folding.codes.insert(folding.codes.end(), codes.begin(), codes.end());
    }
    if (kind_ == Kind::Aggregate) {
        JoinRanges(folding.codes);
    } else if (!JoinDisjoint(folding.codes)) {
        return std::nullopt;
    }
    return folding;
}

} // namespace qel::engine
