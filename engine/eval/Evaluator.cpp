#include "engine/eval/Evaluator.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

/// Stops endless recursion before the stack overflows; some threads have small stacks.
constexpr int nestingLimit = 400;
/// When each formula uses the next one twice, evaluations double with every step; forty such formulas would
/// take years.
constexpr int evaluationLimit = 10'000'000;

} // namespace

void FactCell::Clear() {
    restrictions.clear();
    intersections.clear();
}

void FactCell::Restrict(std::size_t keyColumn, CodeRanges codes) {
    for (Restriction& restriction : restrictions) {
        if (restriction.keyColumn == keyColumn) {
            std::vector<KeyRange>& common = intersections.emplace_back();
            Intersect(restriction.codes, codes, common);
            restriction.codes = common;
            return;
        }
    }
    restrictions.push_back({keyColumn, codes});
}

CellValue ValueOf(FactSum total, const MeasureColumn& measure) {
    if (total.rows == 0) {
        return CellValue::Empty();
    }
    if (measure.function == AggregateFunction::Count) {
        return CellValue::Exact(static_cast<std::int64_t>(total.rows), 0);
    }
    // Unsigned, because values of a damaged file may overflow.
    const std::uint64_t scaled =
        static_cast<std::uint64_t>(total.sum) * static_cast<std::uint64_t>(measure.unit);
    return CellValue::Exact(static_cast<std::int64_t>(scaled), measure.decimals);
}

Evaluator::Evaluator(const MemberSpace& space, std::string_view statement)
    : space_(space), statement_(statement) {
    coordinates_.resize(space.HierarchyCount());
    for (HierarchyId hierarchy = 0; hierarchy < coordinates_.size(); ++hierarchy) {
        coordinates_[hierarchy] = space.DefaultMember(hierarchy);
    }
}

CellValue Evaluator::Cell() {
    if (const CalculatedFormula* top = TopFormula(coordinates_)) {
        const Nesting nesting(*this, top->range);
        return top->formula->Evaluate(*this);
    }
    folded_.clear();
    folding_ = coordinates_;
    CollectRestrictions({}, cell_);
    return Read(cell_);
}

std::optional<CellValue> Evaluator::FoldedCell(const SumOfSet& sum) {
    if (!Fold(&sum)) {
        return std::nullopt;
    }
    CollectRestrictions({}, cell_);
    return Read(cell_);
}

bool Evaluator::ReadsFacts(std::span<const HierarchyId> open, FactCell& cell) {
    if (!Fold(nullptr)) {
        return false;
    }
    for (const HierarchyId hierarchy : open) {
        for (const FoldedHierarchy& folded : folded_) {
            if (folded.hierarchy == hierarchy) {
                return false;
            }
        }
    }
    CollectRestrictions(open, cell);
    return true;
}

const CalculatedFormula* Evaluator::TopFormula(std::span<const MemberId> coordinates) const {
    const CalculatedFormula* top = nullptr;
    if (formulas_.empty()) {
        return top;
    }
    for (const MemberId member : coordinates) {
        if (!IsCalculated(member)) {
            continue;
        }
        const CalculatedFormula& formula = formulas_[member - firstCalculated];
        if (top == nullptr || formula.solveOrder > top->solveOrder ||
            (formula.solveOrder == top->solveOrder && &formula > top)) {
            top = &formula;
        }
    }
    return top;
}

bool Evaluator::Fold(const SumOfSet* sum) {
    if (sum != nullptr && sum->Folded(*this) == nullptr) {
        return false;
    }
    folding_ = coordinates_;
    folded_.clear();
    if (sum != nullptr && !Apply(*sum)) {
        return false;
    }
    while (const CalculatedFormula* top = TopFormula(folding_)) {
        const SumOfSet* next = top->formula->AsSum();
        if (next == nullptr || !Apply(*next)) {
            return false;
        }
    }
    return true;
}

bool Evaluator::Apply(const SumOfSet& sum) {
    const Folding* folding = sum.Folded(*this);
    if (folding == nullptr) {
        return false;
    }
    for (const FoldedHierarchy& folded : folded_) {
        if (folded.hierarchy == folding->hierarchy) {
            return false; // nested sums over one hierarchy, or a recursive formula
        }
    }
    folded_.push_back({folding->hierarchy, folding->codes});
    folding_[folding->hierarchy] = noMember;
    if (folding->measure) {
        folding_[space_.Measures()] = *folding->measure;
    }
    return true;
}

void Evaluator::CollectRestrictions(std::span<const HierarchyId> open, FactCell& cell) const {
    cell.Clear();
    cell.measure = folding_[space_.Measures()];
    const auto restrict = [&](HierarchyId hierarchy, CodeRanges codes) {
        const std::optional<std::size_t> keyColumn = space_.KeyColumn(hierarchy);
        if (keyColumn && !CoversAll(codes, space_.GetCube().Facts().KeyColumns()[*keyColumn].codes)) {
            cell.Restrict(*keyColumn, codes);
        }
    };
    for (HierarchyId hierarchy = 0; hierarchy < space_.Measures(); ++hierarchy) {
        const bool isOpen = std::find(open.begin(), open.end(), hierarchy) != open.end();
        if (folding_[hierarchy] != noMember && !isOpen) {
            restrict(hierarchy, space_.Codes({hierarchy, folding_[hierarchy]}));
        }
    }
    for (const FoldedHierarchy& folded : folded_) {
        restrict(folded.hierarchy, folded.codes);
    }
}

CellValue Evaluator::Read(const FactCell& cell) const {
    const FactTable& facts = space_.GetCube().Facts();
    return ValueOf(SumFacts(facts, cell.restrictions, cell.measure), facts.Measures()[cell.measure]);
}

Evaluator::Position::Position(Evaluator& evaluator, std::span<const HierarchyId> dimensionality,
                              std::span<const MemberId> tuple)
    : evaluator_(evaluator), dimensionality_(dimensionality) {
    for (std::size_t i = 0; i < dimensionality.size(); ++i) {
        evaluator.saved_.push_back(std::exchange(evaluator.coordinates_[dimensionality[i]], tuple[i]));
    }
}

Evaluator::Position::~Position() {
    for (std::size_t i = dimensionality_.size(); i-- > 0;) {
        evaluator_.coordinates_[dimensionality_[i]] = evaluator_.saved_.back();
        evaluator_.saved_.pop_back();
    }
}

Evaluator::Nesting::Nesting(Evaluator& evaluator, mdx::SourceRange range) : evaluator_(evaluator) {
    if (evaluator.depth_ >= nestingLimit) {
        mdx::RaiseAt(
            ErrorKind::InvalidExpression, evaluator.statement_, range,
            fmt::format("the calculated member needs more than {} others, or itself, to be evaluated",
                        nestingLimit));
    }
    if (evaluator.depth_ == 0) {
        evaluator.evaluations_ = 0;
    }
    if (++evaluator.evaluations_ > evaluationLimit) {
        mdx::RaiseAt(
            ErrorKind::TooLarge, evaluator.statement_, range,
            fmt::format("one cell needs more than {} evaluations of calculated members", evaluationLimit));
    }
    ++evaluator.depth_;
}

} // namespace qel::engine
