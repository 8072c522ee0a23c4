#include "qel/engine/RunStatement.h"

#include "engine/eval/Binder.h"
#include "engine/eval/CellsetBuilder.h"
#include "engine/eval/NonEmpty.h"
#include "engine/eval/StatementPlan.h"
#include "engine/mdx/Parser.h"
#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace qel::engine {

namespace {

/// Runs one statement.
class StatementRun {
public:
    StatementRun(const Cube& cube, std::string_view text)
        : statement_(mdx::Parse(text)), space_(cube), evaluator_(space_, text),
          calculations_(cube.GetCalculations().Empty()
                            ? nullptr
                            : std::make_unique<CubeCalculations>(space_, evaluator_)),
          binder_(statement_, space_, evaluator_, calculations_.get()) {}

    /// Resolves names and evaluates the axes. To be called first.
    void Resolve();
    Cellset Answer();
    /// Null when the result has several cells, or its cell is not a single read of facts.
    std::shared_ptr<const StatementPlan> Plan();

private:
    void CheckCube() const;
    Cellset Finish(std::vector<CellValue> cells) const;
    void EvaluateSlicer();
    void EvaluateAxes();
    /// How many levels the set covers at each place, see Cellset::LevelCount.
    std::vector<std::size_t> LevelCounts(const TupleSet& axis) const;
    /// A hierarchy may be on one axis or in the slicer, not both.
    void CheckHierarchies(const Dimensionality& dimensionality, mdx::NodeId node);
    bool RemoveEmpty(std::size_t axis);
    std::vector<CellValue> EvaluateCells();
    void EvaluateCells(std::size_t axis, std::vector<CellValue>& cells);
    bool SlicerIsEmpty() const { return slicer_ && slicer_->Count() == 0; }
    void RemoveEmptyByCells(std::vector<CellValue>& cells);

    mdx::Statement statement_;
    MemberSpace space_;
    Evaluator evaluator_;
    std::unique_ptr<CubeCalculations> calculations_; ///< null: the cube has none
    Binder binder_;
    std::vector<HierarchyId> used_;
    std::optional<CompoundSet> slicer_;
    std::vector<TupleSet> axes_;
    std::vector<std::vector<std::size_t>> levelCounts_; ///< by axis and place, before NON EMPTY
};

void StatementRun::Resolve() {
    CheckCube();
    binder_.BindDefinitions();
    EvaluateSlicer();
    EvaluateAxes();
}

Cellset StatementRun::Answer() {
    bool cellsDecide = false;
    for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
        cellsDecide |= statement_.axes[axis].nonEmpty && !RemoveEmpty(axis);
    }
    std::vector<CellValue> cells = EvaluateCells();
    if (cellsDecide) {
        RemoveEmptyByCells(cells);
    }
    space_.GetCube().CheckUnchanged();
    return Finish(std::move(cells));
}

Cellset StatementRun::Finish(std::vector<CellValue> cells) const {
    CellsetBuilder builder(space_);
    for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
        builder.AddAxis(axes_[axis], levelCounts_[axis]);
    }
    return builder.Finish(std::move(cells), evaluator_.Texts());
}

std::shared_ptr<const StatementPlan> StatementRun::Plan() {
    for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
        if (axes_[axis].Count() != 1 || statement_.axes[axis].nonEmpty) {
            return nullptr;
        }
        for (std::size_t i = 0; i < axes_[axis].dimensionality.size(); ++i) {
            evaluator_.SetCurrent(axes_[axis].dimensionality[i], axes_[axis].ids[i]);
        }
    }
    if (slicer_ && slicer_->Count() != 1) {
        return nullptr;
    }
    std::shared_ptr<const StatementPlan> plan;
    evaluator_.ReadsFacts({}, [&](const FactCell& cell) {
        plan = std::make_shared<const StatementPlan>(space_.GetCube(), Finish({}), cell);
    });
    return plan;
}

void StatementRun::CheckCube() const {
    const std::string& name = space_.GetCube().Name();
    if (!EqualIgnoringCase(name, statement_.cubeName)) {
        mdx::RaiseAt(ErrorKind::UnknownCube, statement_.source, statement_.cubeRange,
                     fmt::format("there is no cube {}; the open cube is {}",
                                 BracketedName(statement_.cubeName), BracketedName(name)));
    }
}

void StatementRun::EvaluateSlicer() {
    if (statement_.slicer == mdx::noNode) {
        return;
    }
    const SetPtr set = binder_.BindSet(statement_.slicer);
    CheckHierarchies(set->GetDimensionality(), statement_.slicer);
    slicer_.emplace(space_, set->Evaluate(evaluator_));
    evaluator_.SetSlicer(*slicer_);
}

void StatementRun::EvaluateAxes() {
    std::size_t cells = 1;
    for (const mdx::AxisClause& clause : statement_.axes) {
        const SetPtr set = binder_.BindSet(clause.set);
        CheckHierarchies(set->GetDimensionality(), clause.set);
        axes_.push_back(set->Evaluate(evaluator_));
        levelCounts_.push_back(LevelCounts(axes_.back()));
    }
    for (const TupleSet& axis : axes_) {
        cells *= std::max<std::size_t>(1, axis.Count());
        if (cells > setLimit) {
            throw EngineError(ErrorKind::TooLarge,
                              fmt::format("the answer has more than {} cells", setLimit));
        }
    }
}

std::vector<std::size_t> StatementRun::LevelCounts(const TupleSet& axis) const {
    std::vector<std::size_t> counts;
    for (std::size_t place = 0; place < axis.dimensionality.size(); ++place) {
        const HierarchyId hierarchy = axis.dimensionality[place];
        std::size_t count = 0;
        for (std::size_t i = 0; i < axis.Count() && count < space_.LevelCount(hierarchy); ++i) {
            const std::size_t own = space_.LevelOf({hierarchy, axis.At(i)[place]}) + 1;
            count = count == 0 || count == own ? own : space_.LevelCount(hierarchy);
        }
        counts.push_back(count);
    }
    return counts;
}

void StatementRun::CheckHierarchies(const Dimensionality& dimensionality, mdx::NodeId node) {
    for (const HierarchyId hierarchy : dimensionality) {
        if (std::find(used_.begin(), used_.end(), hierarchy) != used_.end()) {
            binder_.Fail(node, fmt::format("the hierarchy {} stands on another axis or in the slicer already",
                                           space_.HierarchyUniqueName(hierarchy)));
        }
    }
    used_.insert(used_.end(), dimensionality.begin(), dimensionality.end());
}

bool StatementRun::RemoveEmpty(std::size_t axis) {
    if (SlicerIsEmpty()) {
        return false;
    }
    std::vector<const TupleSet*> others;
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        if (i != axis) {
            others.push_back(&axes_[i]);
        }
    }
    return RemoveEmptyPositions(evaluator_, others, axes_[axis]);
}

std::vector<CellValue> StatementRun::EvaluateCells() {
    std::size_t count = 1;
    for (const TupleSet& axis : axes_) {
        count *= axis.Count();
    }
    std::vector<CellValue> cells;
    cells.reserve(count);
    EvaluateCells(axes_.size(), cells);
    return cells;
}

/// Appends the cells of the axes below `axis`, the first axis varying fastest.
void StatementRun::EvaluateCells(std::size_t axis, std::vector<CellValue>& cells) {
    if (axis == 0) {
        cells.push_back(SlicerIsEmpty() ? CellValue::Empty() : evaluator_.Cell());
        return;
    }
    const TupleSet& tuples = axes_[axis - 1];
    for (std::size_t i = 0; i < tuples.Count(); ++i) {
        const Evaluator::Position position(evaluator_, tuples.dimensionality, tuples.At(i));
        EvaluateCells(axis - 1, cells);
    }
}

/// For axes with calculated cells: removes the positions whose cells are all empty.
void StatementRun::RemoveEmptyByCells(std::vector<CellValue>& cells) {
    std::vector<std::vector<bool>> isKept;
    for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
        isKept.emplace_back(axes_[axis].Count(), !statement_.axes[axis].nonEmpty);
    }
    std::vector<std::size_t> position(axes_.size());
    const auto advance = [&] { // to the next cell, columns varying fastest
        for (std::size_t axis = 0; axis < axes_.size() && ++position[axis] == axes_[axis].Count(); ++axis) {
            position[axis] = 0;
        }
    };
    for (const CellValue& cell : cells) {
        for (std::size_t axis = 0; axis < axes_.size() && !cell.isEmpty; ++axis) {
            isKept[axis][position[axis]] = true;
        }
        advance();
    }
    std::vector<CellValue> kept;
    for (const CellValue& cell : cells) {
        bool all = true;
        for (std::size_t axis = 0; axis < axes_.size() && all; ++axis) {
            all = isKept[axis][position[axis]];
        }
        if (all) {
            kept.push_back(cell);
        }
        advance();
    }
    cells = std::move(kept);
    for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
        TupleSet positions{axes_[axis].dimensionality, {}};
        for (std::size_t i = 0; i < axes_[axis].Count(); ++i) {
            if (isKept[axis][i]) {
                positions.Append(axes_[axis].At(i));
            }
        }
        axes_[axis] = std::move(positions);
    }
}

} // namespace

Cellset RunStatement(const Cube& cube, std::string_view statement) {
    StatementRun run(cube, statement);
    run.Resolve();
    return run.Answer();
}

PlannedAnswer RunAndPlan(const Cube& cube, std::string_view statement) {
    StatementRun run(cube, statement);
    run.Resolve();
    if (std::shared_ptr<const StatementPlan> plan = run.Plan()) {
        return {plan->Run(), plan};
    }
    return {run.Answer(), nullptr};
}

} // namespace qel::engine
