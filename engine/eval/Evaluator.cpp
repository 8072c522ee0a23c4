#include "engine/eval/Evaluator.h"

#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

/// The depth of nested expressions of formulas that refer to each other. Stops endless recursion before the
/// stack overflows; some threads have small stacks.
constexpr int nestingLimit = 400;
/// When each formula uses the next one twice, evaluations double with every step; forty such formulas would
/// take years.
constexpr int evaluationLimit = 1'000'000;
/// Likewise when each set reads two cells of the next one. Positions within this many others are counted.
constexpr int deepPosition = 6;
constexpr int deepPositionLimit = 1'000'000;

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

void FactCell::Restrict(const MemberSpace& space, HierarchyId hierarchy, CodeRanges codes) {
    const std::optional<std::size_t> keyColumn = space.KeyColumn(hierarchy);
    if (keyColumn && !CoversAll(codes, space.GetCube().Facts().KeyColumns()[*keyColumn].codes)) {
        Restrict(*keyColumn, codes);
    }
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
    slicer_ = coordinates_;
}

MemberId Evaluator::Current(HierarchyId hierarchy, mdx::SourceRange range) const {
    const MemberId member = coordinates_[hierarchy];
    if (IsCompound(member)) {
        mdx::RaiseAt(
            ErrorKind::InvalidExpression, Source(), range,
            fmt::format("{} has no current member here: the slicer or an Aggregate leaves several of "
                        "its members, or none",
                        space_.HierarchyUniqueName(hierarchy)));
    }
    return member;
}

void Evaluator::SetSlicer(const CompoundSet& slicer) {
    const MemberId compound = AddCompound(slicer);
    for (std::size_t place = 0; place < slicer.GetDimensionality().size(); ++place) {
        const MemberId common = slicer.CommonMember(place);
        coordinates_[slicer.GetDimensionality()[place]] = common != noMember ? common : compound;
    }
    slicer_ = coordinates_;
}

CellValue Evaluator::Cell() {
    if (const CalculatedFormula* top = TopFormula(coordinates_)) {
        const Nesting nesting(*this, top->source, top->range, top->depth);
        return top->formula->Evaluate(*this);
    }
    folded_.clear();
    folding_ = coordinates_;
    return ReadFolded();
}

const CellValue& Evaluator::RequireNumber(const CellValue& value, mdx::SourceRange range) const {
    if (!value.IsNumber()) {
        mdx::RaiseAt(ErrorKind::InvalidExpression, Source(), range,
                     value.isCondition
                         ? "expected a number, found a condition"
                         : fmt::format("expected a number, found the text \"{}\"", *value.text));
    }
    return value;
}

std::optional<CellValue> Evaluator::FoldedCell(const SumOfSet& sum) {
    if (!Fold(&sum)) {
        return std::nullopt;
    }
    std::vector<OpenCompound> open;
    if (!compounds_.empty() && !FindOpenCompounds(open)) {
        return std::nullopt;
    }
    return ReadFolded();
}

bool Evaluator::ReadsFacts(std::span<const HierarchyId> open,
                           const std::function<void(const FactCell&)>& visit) {
    std::vector<OpenCompound> compounds;
    if (!Fold(nullptr) || !FindOpenCompounds(compounds)) {
        return false;
    }
    for (const HierarchyId hierarchy : open) {
        for (const FoldedHierarchy& folded : folded_) {
            if (folded.hierarchy == hierarchy) {
                return false;
            }
        }
    }
    VisitParts(compounds, open, visit);
    return true;
}

bool Evaluator::AddsFacts(const std::function<void(const FactCell&)>& visit) {
    if (ReadsFacts({}, visit)) {
        return true;
    }
    const CalculatedFormula* top = TopFormula(coordinates_);
    const SumOfSet* sum = top != nullptr ? top->formula->AsSum() : nullptr;
    if (sum == nullptr) {
        return false;
    }
    const Nesting nesting(*this, top->source, top->range, top->depth);
    return sum->AddsFacts(*this, visit);
}

const CalculatedFormula* Evaluator::TopFormula(std::span<const MemberId> coordinates) {
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
    if (top != nullptr && top->formula == nullptr) {
        bindFormula_(static_cast<std::size_t>(top - formulas_.data()));
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
    for (HierarchyId hierarchy = 0; hierarchy < space_.Measures(); ++hierarchy) {
        const bool isOpen = std::find(open.begin(), open.end(), hierarchy) != open.end();
        const bool isOne = folding_[hierarchy] != noMember && !IsCompound(folding_[hierarchy]);
        if (isOne && !isOpen) {
            cell.Restrict(space_, hierarchy, space_.Codes({hierarchy, folding_[hierarchy]}));
        }
    }
    for (const FoldedHierarchy& folded : folded_) {
        cell.Restrict(space_, folded.hierarchy, folded.codes);
    }
}

CellValue Evaluator::Read(const FactCell& cell) const {
    const FactTable& facts = space_.GetCube().Facts();
    return ValueOf(SumFacts(facts, cell.restrictions, cell.measure), facts.Measures()[cell.measure]);
}

CellValue Evaluator::ReadFolded() {
    if (compounds_.empty()) {
        CollectRestrictions({}, cell_);
        return Read(cell_);
    }
    std::vector<OpenCompound> open;
    CellValue sum;
    if (!FindOpenCompounds(open)) {
        sum = AddCalculatedTuples(open);
        folded_.clear();
        folding_ = coordinates_;
    }
    VisitParts(open, {}, [&](const FactCell& cell) { sum = Add(sum, Read(cell)); });
    return sum;
}

bool Evaluator::FindOpenCompounds(std::vector<OpenCompound>& open) {
    bool areStored = true;
    for (std::size_t number = 0; number < compounds_.size(); ++number) {
        const CompoundSet& set = *compounds_[number].set;
        std::vector<bool> places;
        for (const HierarchyId hierarchy : set.GetDimensionality()) {
            places.push_back(folding_[hierarchy] == firstCompound + number);
        }
        if (std::find(places.begin(), places.end(), true) == places.end()) {
            continue;
        }
        const FactRegion& region = set.Region(places);
        open.push_back({number, &region});
        areStored = areStored && (compounds_[number].isStoredOnly || region.calculated.Count() == 0);
    }
    return areStored;
}

/// The cells of the tuples with calculated members. What two compound sets combine counts in one of them.
CellValue Evaluator::AddCalculatedTuples(const std::vector<OpenCompound>& open) {
    CellValue sum;
    std::vector<std::size_t> marked;
    for (auto compound = open.rbegin(); compound != open.rend(); ++compound) {
        if (compounds_[compound->number].isStoredOnly) {
            continue;
        }
        const TupleSet& tuples = compound->region->calculated;
        for (std::size_t i = 0; i < tuples.Count(); ++i) {
            const Position position(*this, tuples.dimensionality, tuples.At(i));
            sum = Add(sum, Cell());
        }
        compounds_[compound->number].isStoredOnly = true;
        marked.push_back(compound->number);
    }
    for (const std::size_t number : marked) {
        compounds_[number].isStoredOnly = false;
    }
    return sum;
}

/// Visits every combination of one box of each compound set.
void Evaluator::VisitParts(const std::vector<OpenCompound>& compounds, std::span<const HierarchyId> open,
                           const std::function<void(const FactCell&)>& visit) {
    FactCell whole;
    CollectRestrictions(open, whole);
    const std::span<const KeyColumn> columns = space_.GetCube().Facts().KeyColumns();
    std::vector<std::size_t> chosen(compounds.size());
    bool isDone = std::any_of(compounds.begin(), compounds.end(),
                              [](const OpenCompound& compound) { return compound.region->boxes.empty(); });
    FactCell part;
    while (!isDone) {
        part.Clear();
        part.restrictions = whole.restrictions;
        part.measure = whole.measure;
        for (std::size_t i = 0; i < compounds.size(); ++i) {
            const FactRegion& region = *compounds[i].region;
            const RegionBox& box = region.boxes[chosen[i]];
            part.measure = box.measure != noMember ? box.measure : part.measure;
            for (std::size_t k = 0; k < region.keyColumns.size(); ++k) {
                if (!CoversAll(box.codes[k], columns[region.keyColumns[k]].codes)) {
                    part.Restrict(region.keyColumns[k], box.codes[k]);
                }
            }
        }
        visit(part);
        std::size_t turned = 0;
        while (turned < compounds.size() && ++chosen[turned] == compounds[turned].region->boxes.size()) {
            chosen[turned++] = 0;
        }
        isDone = turned == compounds.size();
    }
}

MemberId Evaluator::AddCompound(const CompoundSet& set) {
    compounds_.push_back({&set});
    return firstCompound + static_cast<MemberId>(compounds_.size() - 1);
}

Evaluator::Position::Position(Evaluator& evaluator, std::span<const HierarchyId> dimensionality,
                              std::span<const MemberId> tuple)
    : evaluator_(evaluator), dimensionality_(dimensionality) {
    if (evaluator.positions_ >= deepPosition && ++evaluator.deepPositions_ > deepPositionLimit) {
        throw EngineError(
            ErrorKind::TooLarge,
            fmt::format("more than {} cells are read for sets inside one another", deepPositionLimit));
    }
    ++evaluator.positions_;
    for (std::size_t i = 0; i < dimensionality.size(); ++i) {
        evaluator.saved_.push_back(std::exchange(evaluator.coordinates_[dimensionality[i]], tuple[i]));
    }
}

Evaluator::Position::~Position() {
    --evaluator_.positions_;
    for (std::size_t i = dimensionality_.size(); i-- > 0;) {
        evaluator_.coordinates_[dimensionality_[i]] = evaluator_.saved_.back();
        evaluator_.saved_.pop_back();
    }
}

Evaluator::CompoundPosition::CompoundPosition(Evaluator& evaluator, const CompoundSet& set)
    : evaluator_(evaluator), saved_(evaluator.coordinates_) {
    const MemberId compound = evaluator.AddCompound(set);
    for (std::size_t place = 0; place < set.GetDimensionality().size(); ++place) {
        const MemberId common = set.CommonMember(place);
        evaluator.coordinates_[set.GetDimensionality()[place]] = common != noMember ? common : compound;
    }
}

Evaluator::CompoundPosition::~CompoundPosition() {
    evaluator_.compounds_.pop_back();
    evaluator_.coordinates_ = std::move(saved_);
}

Evaluator::Iteration::Iteration(Evaluator& evaluator, std::size_t name, const TupleSet& tuples)
    : evaluator_(evaluator), name_(name), tuples_(&tuples), before_(evaluator.IterationOf(name)) {}

Evaluator::Iteration::~Iteration() { evaluator_.SetIteration(name_, before_); }

void Evaluator::SetIteration(std::size_t name, IterationPlace place) {
    if (name == noIteration) {
        return;
    }
    if (name >= iterations_.size()) {
        iterations_.resize(name + 1);
    }
    iterations_[name] = place;
}

Evaluator::Nesting::Nesting(Evaluator& evaluator, const mdx::Source& source, mdx::SourceRange range,
                            int depth)
    : evaluator_(evaluator), outer_(evaluator.innermost_), source_(source), range_(range), steps_(1 + depth) {
    if (evaluator.depth_ + steps_ > nestingLimit) {
        const Nesting& repeated = Repeated();
        mdx::RaiseAt(
            ErrorKind::InvalidExpression, repeated.source_, repeated.range_,
            fmt::format(
                "the calculated member needs itself, or more than {} expressions inside one another, to be "
                "evaluated",
                nestingLimit));
    }
    if (outer_ == nullptr) {
        evaluator.evaluations_ = 0;
    }
    if (++evaluator.evaluations_ > evaluationLimit) {
        mdx::RaiseAt(
            ErrorKind::TooLarge, source, range,
            fmt::format("one cell needs more than {} evaluations of calculated members", evaluationLimit));
    }
    evaluator.depth_ += steps_;
    evaluator.innermost_ = this;
}

const Evaluator::Nesting& Evaluator::Nesting::Repeated() const {
    const auto isSame = [](const Nesting& a, const Nesting& b) {
        return a.source_.text.data() == b.source_.text.data() && a.range_.begin == b.range_.begin;
    };
    for (const Nesting* inner = this; inner != nullptr; inner = inner->outer_) {
        for (const Nesting* outer = inner->outer_; outer != nullptr; outer = outer->outer_) {
            if (isSame(*inner, *outer)) {
                return *inner;
            }
        }
    }
    return *this;
}

} // namespace qel::engine
