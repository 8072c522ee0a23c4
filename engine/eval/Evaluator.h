#pragma once

#include "engine/eval/FactAccessPlan.h"
#include "engine/eval/SumOfSet.h"

#include <deque>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A calculated member's formula. When several meet in one cell, the one with the highest solve order
/// applies, and among equal ones the one defined last.
struct CalculatedFormula {
    NumberPtr formula;
    int solveOrder = 0;
    mdx::SourceRange range;
};

/// The facts that a cell reads: at most one restriction per key column, and a measure.
struct FactCell {
    std::vector<Restriction> restrictions;
    MemberId measure = 0;
    std::deque<std::vector<KeyRange>>
        intersections; ///< owns sets of codes that are not those of a single member

    void Clear();
    /// Adds a restriction, or intersects it with the key column's existing one.
    void Restrict(std::size_t keyColumn, CodeRanges codes);
};

/// Converts a sum of facts to a cell value.
CellValue ValueOf(FactSum total, const MeasureColumn& measure);

/// Evaluates cells. Holds the current member of every hierarchy and the formulas of the calculated members.
class Evaluator {
public:
    Evaluator(const MemberSpace& space, std::string_view statement);

    const MemberSpace& Space() const { return space_; }
    std::string_view Statement() const { return statement_; }
    MemberId Current(HierarchyId hierarchy) const { return coordinates_[hierarchy]; }
    void SetCurrent(HierarchyId hierarchy, MemberId member) { coordinates_[hierarchy] = member; }
    /// To be called in the order of the calculated members' numbers.
    void AddFormula(CalculatedFormula formula) { formulas_.push_back(std::move(formula)); }

    /// The value of the cell at the current coordinates.
    CellValue Cell();
    /// The value of the sum at the current coordinates, when it is a single read of facts.
    std::optional<CellValue> FoldedCell(const SumOfSet& sum);
    /// Fills `cell` with what the current cell reads, leaving out restrictions of the hierarchies in `open`.
    /// False when the cell is not a single read of facts, or when a formula sets one of those hierarchies.
    bool ReadsFacts(std::span<const HierarchyId> open, FactCell& cell);

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

    /// Counts the nesting and the number of formulas of a cell. Raises InvalidExpression for endless
    /// recursion and TooLarge for too many evaluations.
    class Nesting {
    public:
        explicit Nesting(Evaluator& evaluator, mdx::SourceRange range);
        ~Nesting() { --evaluator_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Evaluator& evaluator_;
    };

private:
    struct FoldedHierarchy {
        HierarchyId hierarchy;
        CodeRanges codes;
    };

    const CalculatedFormula* TopFormula(std::span<const MemberId> coordinates) const;
    /// Replaces calculated members by what their formulas read, starting with `sum` unless it is null. False
    /// when a formula is not a foldable sum.
    bool Fold(const SumOfSet* sum);
    bool Apply(const SumOfSet& sum);
    void CollectRestrictions(std::span<const HierarchyId> open, FactCell& cell) const;
    CellValue Read(const FactCell& cell) const;

    const MemberSpace& space_;
    std::string_view statement_;
    std::vector<MemberId> coordinates_; ///< by hierarchy
    std::vector<MemberId> saved_;       ///< coordinates replaced by Position objects
    std::vector<CalculatedFormula> formulas_;
    std::vector<MemberId> folding_; ///< coordinates during Fold
    std::vector<FoldedHierarchy> folded_;
    FactCell cell_;
    int depth_ = 0;
    int evaluations_ = 0; ///< of the outermost cell
};

} // namespace qel::engine
