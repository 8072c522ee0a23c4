#pragma once

#include "engine/eval/FactAccessPlan.h"
#include "engine/eval/SumOfSet.h"

#include <deque>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A calculated member's formula. Of several that meet in one cell the one with the highest solve order is
/// evaluated first, and of equal ones the one defined last.
struct CalculatedFormula {
    NumberPtr formula;
    int solveOrder = 0;
    mdx::SourceRange range;
};

/// What a cell of stored facts reads: at most one restriction a key column, and a measure.
struct FactCell {
    std::vector<Restriction> restrictions;
    MemberId measure = 0;
    std::deque<std::vector<KeyRange>> intersections; ///< owns codes that no member has as they are

    void Clear();
    /// Adds a restriction, or tightens the one that the key column already has.
    void Restrict(std::size_t keyColumn, CodeRanges codes);
};

/// The value of a cell that sums these facts.
CellValue ValueOf(FactSum total, const MeasureColumn& measure);

/// Evaluates cells: holds the current member of every hierarchy and the formulas of calculated members.
class Evaluator {
public:
    Evaluator(const MemberSpace& space, std::string_view statement);

    const MemberSpace& Space() const { return space_; }
    std::string_view Statement() const { return statement_; }
    MemberId Current(HierarchyId hierarchy) const { return coordinates_[hierarchy]; }
    void SetCurrent(HierarchyId hierarchy, MemberId member) { coordinates_[hierarchy] = member; }
    /// In the order of the calculated members' numbers.
    void AddFormula(CalculatedFormula formula) { formulas_.push_back(std::move(formula)); }

    /// The value of the cell at the current coordinates.
    CellValue Cell();
    /// The value of the sum at the current coordinates when that is one read of facts.
    std::optional<CellValue> FoldedCell(const SumOfSet& sum);
    /// What the cell reads when it is one read of facts, without the restrictions of the hierarchies in
    /// `open`; false when it is not, or when a formula sets one of these.
    bool ReadsFacts(std::span<const HierarchyId> open, FactCell& cell);

    /// Sets the coordinates of a tuple for as long as it lives.
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

    /// Counts formulas within one another and all of one cell; raises InvalidExpression when there is no end,
    /// and TooLarge when there is one too far away.
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
    /// Replaces calculated members by what their formulas read, starting with `sum` unless null. False when a
    /// formula is no foldable sum.
    bool Fold(const SumOfSet* sum);
    bool Apply(const SumOfSet& sum);
    void CollectRestrictions(std::span<const HierarchyId> open, FactCell& cell) const;
    CellValue Read(const FactCell& cell) const;

    const MemberSpace& space_;
    std::string_view statement_;
    std::vector<MemberId> coordinates_; ///< by hierarchy
    std::vector<MemberId> saved_;       ///< coordinates that positions have replaced
    std::vector<CalculatedFormula> formulas_;
    std::vector<MemberId> folding_; ///< coordinates while calculated members are being replaced
    std::vector<FoldedHierarchy> folded_;
    FactCell cell_;
    int depth_ = 0;
    int evaluations_ = 0; ///< for the outermost cell
};

} // namespace qel::engine
