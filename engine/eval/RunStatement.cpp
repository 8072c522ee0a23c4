#include "qel/engine/RunStatement.h"

#include "engine/eval/Binder.h"
#include "engine/eval/CellsetBuilder.h"
#include "engine/eval/DrilledCell.h"
#include "engine/eval/NonEmpty.h"
#include "engine/eval/StatementPlan.h"
#include "engine/mdx/Parser.h"
#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"
#include "text/NameList.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
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
    /// The facts behind the only cell.
    DrilledCell Drill();

private:
    void CheckIsSelect() const;
    /// Takes the coordinates of the statement's only cell.
    void MoveToCell();
    LineColumn ReturnedColumn(mdx::NodeId node, const std::vector<LineColumn>& known);
    LineColumn ReturnedLevel(mdx::NodeId node, LineColumn::Kind kind);
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
    CheckIsSelect();
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
    CheckIsSelect();
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

DrilledCell StatementRun::Drill() {
    if (!statement_.drillthrough) {
        throw EngineError(ErrorKind::InvalidExpression, "the statement begins with no DRILLTHROUGH");
    }
    MoveToCell();
    DrilledCell cell;
    std::optional<MemberId> measure;
    const auto take = [&](const FactCell& read) {
        if (measure.value_or(read.measure) != read.measure) {
            throw EngineError(ErrorKind::InvalidExpression,
                              "the cell adds up several measures; ask for the lines of each");
        }
        measure = read.measure;
        cell.parts.emplace_back(read.restrictions);
    };
    if (!SlicerIsEmpty() && !evaluator_.AddsFacts(take)) {
        throw EngineError(ErrorKind::InvalidExpression,
                          "the cell has no lines of its own: a formula computes it from other cells");
    }
    const std::vector<LineColumn> known = KnownLineColumns(space_.GetCube());
    const mdx::DrillthroughClause& clause = *statement_.drillthrough;
    for (const mdx::NodeId node : clause.columns) {
        cell.columns.push_back(ReturnedColumn(node, known));
    }
    for (const LineColumn& column : known) {
        if (clause.columns.empty() && column.isShown) {
            cell.columns.push_back(column);
        }
    }
    cell.firstRow = clause.firstRow - 1;
    cell.mostRows = clause.mostRows.value_or(std::numeric_limits<std::uint64_t>::max());
    return cell;
}

void StatementRun::MoveToCell() {
    for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
        if (axes_[axis].Count() != 1) {
            binder_.Fail(statement_.axes[axis].set,
                         fmt::format("DRILLTHROUGH takes one cell, and this axis has {} positions",
                                     axes_[axis].Count()));
        }
        for (std::size_t i = 0; i < axes_[axis].dimensionality.size(); ++i) {
            evaluator_.SetCurrent(axes_[axis].dimensionality[i], axes_[axis].ids[i]);
        }
    }
}

LineColumn StatementRun::ReturnedColumn(mdx::NodeId node, const std::vector<LineColumn>& known) {
    const mdx::Node& expression = statement_.At(node);
    if (expression.kind == mdx::NodeKind::Path && expression.childCount == 1) {
        const std::string_view name = statement_.At(expression.firstChild).text;
        const auto found = std::find_if(known.begin(), known.end(), [&](const LineColumn& column) {
            return EqualIgnoringCase(column.name, name);
        });
        if (found != known.end()) {
            return *found;
        }
    }
    if (expression.kind == mdx::NodeKind::Call && expression.childCount == 1) {
        using Kind = LineColumn::Kind;
        for (const auto& [name, kind] : {std::pair("key", Kind::Key), std::pair("name", Kind::Name),
                                         std::pair("caption", Kind::Caption)}) {
            if (EqualIgnoringCase(expression.text, name)) {
                return ReturnedLevel(expression.firstChild, kind);
            }
        }
    }
    try {
        return ReturnedLevel(node, LineColumn::Kind::Caption);
    } catch (const EngineError& error) {
        if (error.Kind() != ErrorKind::UnknownName) {
            throw;
        }
        std::vector<std::string> names(known.size());
        std::transform(known.begin(), known.end(), names.begin(),
                       [](const LineColumn& column) { return column.name; });
        binder_.Fail(node, fmt::format("the lines have no such column; they have {}", NameList(names)));
    }
}

/// A level, or the lowest one of a hierarchy; or a measure.
LineColumn StatementRun::ReturnedLevel(mdx::NodeId node, LineColumn::Kind kind) {
    const Bound bound = binder_.Bind(node);
    using Kind = LineColumn::Kind;
    const auto columnOf = [&](LevelRef level) {
        const char* const suffix = kind == Kind::Key ? " key" : kind == Kind::Name ? " name" : "";
        return LineColumn{std::string(space_.LevelName(level)) + suffix, kind, level};
    };
    if (const auto* level = std::get_if<LevelName>(&bound);
        level && !space_.IsMeasures(level->level.hierarchy)) {
        return columnOf(level->level);
    }
    if (const auto* hierarchy = std::get_if<HierarchyName>(&bound);
        hierarchy && !space_.IsMeasures(hierarchy->hierarchy)) {
        return columnOf({hierarchy->hierarchy, space_.LevelCount(hierarchy->hierarchy) - 1});
    }
    if (const auto* member = std::get_if<MemberPtr>(&bound); member && (*member)->IsConstant()) {
        const MemberId measure = (*member)->Evaluate(evaluator_);
        if (space_.IsMeasures((*member)->Hierarchy()) && measure < space_.GetCube().Measures().size()) {
            return {space_.GetCube().Measures()[measure].name, LineColumn::Kind::Measure, {}, measure};
        }
    }
    binder_.Fail(node, "expected a column of the lines, a level or a measure");
}

void StatementRun::CheckIsSelect() const {
    if (statement_.drillthrough) {
        throw EngineError(ErrorKind::InvalidExpression,
                          "DRILLTHROUGH gives rows, no cells; open a recordset with it");
    }
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

DrilledCell FindDrilledCell(const Cube& cube, std::string_view statement) {
    StatementRun run(cube, statement);
    run.Resolve();
    return run.Drill();
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
