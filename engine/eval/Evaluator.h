#pragma once

#include "engine/eval/CompoundSet.h"
#include "engine/eval/FactAccessPlan.h"
#include "engine/eval/SumOfSet.h"
#include "engine/eval/TextPool.h"

#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace qel::engine {

/// A calculated member's formula. When several meet in one cell, the one with the highest solve order
/// applies, and among equal ones the one defined last.
struct CalculatedFormula {
    NumberPtr formula; ///< null: of the cube, and not bound yet
    int solveOrder = 0;
    int depth = 0;                           ///< how many expressions stand inside one another in it
    mdx::SourceRange range = {};             ///< in the source
    mdx::Source source = std::string_view(); ///< that its parts are places in
};

/// A tuple of a set that a function goes through.
struct IterationPlace {
    const TupleSet* tuples = nullptr;
    std::size_t tuple = 0;
};

/// The facts that a cell reads: at most one restriction per key column, and a measure.
struct FactCell {
    std::vector<Restriction> restrictions;
    MemberId measure = 0;
    std::vector<std::vector<KeyRange>>
        intersections; ///< owns sets of codes that are not those of a single member

    void Clear();
    /// Adds a restriction, or intersects it with the key column's existing one.
    void Restrict(std::size_t keyColumn, CodeRanges codes);
    /// The same of the hierarchy's key column, unless there is none or the codes are all that it has.
    void Restrict(const MemberSpace& space, HierarchyId hierarchy, CodeRanges codes);
};

/// Converts a sum of facts to a cell value.
CellValue ValueOf(FactSum total, const MeasureColumn& measure);

/// Evaluates cells. Holds the current member of every hierarchy and the formulas of the calculated members.
class Evaluator {
public:
    Evaluator(const MemberSpace& space, std::string_view statement);

    const MemberSpace& Space() const { return space_; }
    /// The text being evaluated: the statement, or the cube's definition of a calculation.
    const mdx::Source& Source() const { return innermost_ != nullptr ? innermost_->Source() : statement_; }
    /// Raises InvalidExpression, at `range`, where a slicer or Aggregate leaves no single member.
    MemberId Current(HierarchyId hierarchy, mdx::SourceRange range) const;
    void SetCurrent(HierarchyId hierarchy, MemberId member) { coordinates_[hierarchy] = member; }
    /// Sets the coordinates that cells and named sets start from; several tuples are one compound position.
    void SetSlicer(const CompoundSet& slicer);
    /// To be called in the order of the calculated members' numbers.
    void AddFormula(CalculatedFormula formula) { formulas_.push_back(std::move(formula)); }
    CalculatedFormula& Formula(std::size_t number) { return formulas_[number]; }
    /// `bind` makes the formula of this number, which was added without one.
    void BindFormulasBy(std::function<void(std::size_t number)> bind) { bindFormula_ = std::move(bind); }

    /// The value of the cell at the current coordinates.
    CellValue Cell();
    /// Returns the value; raises InvalidExpression at `range` when it is a text or a condition.
    const CellValue& RequireNumber(const CellValue& value, mdx::SourceRange range) const;
    /// The text as a value. Raises TooLarge when the statement's texts exceed their limit.
    CellValue ValueOfText(std::string text) { return CellValue::Text(texts_->Keep(std::move(text))); }
    std::shared_ptr<const TextPool> Texts() const { return texts_; }
    /// The value of the sum at the current coordinates, when it is a single read of facts.
    std::optional<CellValue> FoldedCell(const SumOfSet& sum);
    /// Visits every read of facts that the current cell sums, leaving out restrictions of the hierarchies in
    /// `open`. False when the cell is not a sum of reads, or when a formula sets one of those hierarchies.
    bool ReadsFacts(std::span<const HierarchyId> open, const std::function<void(const FactCell&)>& visit);

    /// Visits every read of facts that the current cell adds up, also where sums over sets stand inside one
    /// another: facts that the cell counts twice are visited twice. False when a formula does more than add.
    bool AddsFacts(const std::function<void(const FactCell&)>& visit);

    /// Sets a tuple's coordinates for its own lifetime.
    class Position {
    public:
        Position(Evaluator& evaluator, std::span<const HierarchyId> dimensionality,
                 std::span<const MemberId> tuple);
        ~Position();
        Position(const Position&) = delete;
        Position& operator=(const Position&) = delete;

    private:
        Evaluator& evaluator_;
        std::span<const HierarchyId> dimensionality_;
    };

    /// Replaces the members of the set's hierarchies by all its tuples together, for as long as it lives.
    class CompoundPosition {
    public:
        CompoundPosition(Evaluator& evaluator, const CompoundSet& set);
        ~CompoundPosition();
        CompoundPosition(const CompoundPosition&) = delete;
        CompoundPosition& operator=(const CompoundPosition&) = delete;

    private:
        Evaluator& evaluator_;
        std::vector<MemberId> saved_;
    };

    /// Tells `set.Current` and `set.CurrentOrdinal` which tuple of a named set a function has come to.
    class Iteration {
    public:
        /// `name` is the number of the set's name, or noIteration.
        Iteration(Evaluator& evaluator, std::size_t name, const TupleSet& tuples);
        ~Iteration();
        Iteration(const Iteration&) = delete;
        Iteration& operator=(const Iteration&) = delete;
        void MoveTo(std::size_t tuple) { evaluator_.SetIteration(name_, {tuples_, tuple}); }

    private:
        Evaluator& evaluator_;
        std::size_t name_;
        const TupleSet* tuples_;
        IterationPlace before_;
    };
    /// A number for the name of a set.
    std::size_t NewIteration() { return iterationCount_++; }
    /// Where the innermost iteration over the set of this name is; no tuples outside of one.
    IterationPlace IterationOf(std::size_t name) const {
        return name < iterations_.size() ? iterations_[name] : IterationPlace{};
    }

    /// Goes back to the slicer's coordinates for as long as it lives.
    class SlicerScope {
    public:
        explicit SlicerScope(Evaluator& evaluator)
            : evaluator_(evaluator), saved_(std::exchange(evaluator.coordinates_, evaluator.slicer_)) {}
        ~SlicerScope() { evaluator_.coordinates_ = std::move(saved_); }
        SlicerScope(const SlicerScope&) = delete;
        SlicerScope& operator=(const SlicerScope&) = delete;

    private:
        Evaluator& evaluator_;
        std::vector<MemberId> saved_;
    };

    /// Counts the expressions inside one another of formulas that need others, and all formulas of one cell;
    /// raises InvalidExpression when there is no end, and TooLarge when there is one too far away. Errors
    /// are places in the formula's source as long as it lives.
    class Nesting {
    public:
        Nesting(Evaluator& evaluator, const mdx::Source& source, mdx::SourceRange range, int depth);
        ~Nesting() {
            evaluator_.depth_ -= steps_;
            evaluator_.innermost_ = outer_;
        }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

        const mdx::Source& Source() const { return source_; }

    private:
        /// The innermost formula that is also evaluated further out, or this one.
        const Nesting& Repeated() const;

        Evaluator& evaluator_;
        const Nesting* outer_;
        mdx::Source source_;
        mdx::SourceRange range_;
        int steps_;
    };

private:
    /// A compound set that coordinates refer to.
    struct Compound {
        const CompoundSet* set;
        bool isStoredOnly = false; ///< its tuples with calculated members are being added elsewhere
    };
    /// The part of a compound set that no position has replaced.
    struct OpenCompound {
        std::size_t number;
        const FactRegion* region;
    };

    struct FoldedHierarchy {
        HierarchyId hierarchy;
        CodeRanges codes;
    };

    void SetIteration(std::size_t name, IterationPlace place);
    const CalculatedFormula* TopFormula(std::span<const MemberId> coordinates);
    /// Replaces calculated members by what their formulas read, starting with `sum` unless it is null. False
    /// when a formula is not a foldable sum.
    bool Fold(const SumOfSet* sum);
    bool Apply(const SumOfSet& sum);
    void CollectRestrictions(std::span<const HierarchyId> open, FactCell& cell) const;
    CellValue Read(const FactCell& cell) const;
    /// What the coordinates in folding_ make.
    CellValue ReadFolded();
    /// False when one of them has tuples with calculated members, which are no region.
    bool FindOpenCompounds(std::vector<OpenCompound>& open);
    CellValue AddCalculatedTuples(const std::vector<OpenCompound>& open);
    void VisitParts(const std::vector<OpenCompound>& compounds, std::span<const HierarchyId> open,
                    const std::function<void(const FactCell&)>& visit);
    MemberId AddCompound(const CompoundSet& set);

    const MemberSpace& space_;
    mdx::Source statement_;
    const Nesting* innermost_ = nullptr;
    std::vector<MemberId> coordinates_; ///< by hierarchy
    std::vector<MemberId> slicer_;      ///< the coordinates that the slicer leaves
    std::vector<Compound> compounds_;   ///< by number from firstCompound on
    std::vector<MemberId> saved_;       ///< coordinates replaced by Position objects
    std::vector<CalculatedFormula> formulas_;
    std::function<void(std::size_t number)> bindFormula_;
    std::vector<IterationPlace> iterations_; ///< by the number of a set's name
    std::size_t iterationCount_ = 0;
    std::shared_ptr<TextPool> texts_ = std::make_shared<TextPool>();
    std::vector<MemberId> folding_; ///< coordinates during Fold
    std::vector<FoldedHierarchy> folded_;
    FactCell cell_;
    int depth_ = 0;
    int evaluations_ = 0;   ///< of the outermost cell
    int positions_ = 0;     ///< Position objects that exist now
    int deepPositions_ = 0; ///< made inside many others, in the whole statement
};

} // namespace qel::engine
