#include "qel/engine/Cellset.h"
#include "qel/engine/EngineError.h"
#include "qel/engine/PlanCache.h"
#include "tests/engine/eval/RandomMdx.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Compares random statements with an evaluator that scans all facts for every number.

namespace qel::engine {
namespace {

using namespace plain;

struct Axis {
    Set set;
    bool isNonEmpty = false;
};

/// A statement and its meaning.
struct Statement {
    explicit Statement(const plain::Cube& cube) : world(cube) {}

    std::string text;
    World world;
    std::vector<Axis> axes;
    std::optional<Set> slicer;
};

std::string InQuotes(const std::string& formula) {
    std::string text = "'";
    for (const char c : formula) {
        text.append(c == '\'' ? 2 : 1, c);
    }
    return text + "'";
}

class StatementMaker {
public:
    StatementMaker(const plain::Cube& cube, std::uint32_t seed) : cube_(cube), random_(cube, seed) {}

    Statement Make() {
        Statement statement(cube_);
        calculatedMembers_.clear();
        random_.ForgetName();
        std::string with;
        if (random_.OneIn(3)) {
            const Set named = random_.SetOver(random_.AnyHierarchy(), 1);
            random_.Name("Ours", named);
            with += " SET Ours AS " + (random_.OneIn(2) ? InQuotes(named.text) : named.text);
        }
        if (random_.OneIn(2)) {
            with += AddFormula(statement, cube_.hierarchies.size(), random_.NumberOf(2));
        }
        if (random_.OneIn(2)) {
            const std::size_t hierarchy = random_.AnyHierarchy();
            with += AddFormula(statement, hierarchy, random_.MemberFormula(hierarchy));
        }
        free_.resize(cube_.hierarchies.size());
        for (std::size_t i = 0; i < free_.size(); ++i) {
            free_[i] = i;
        }
        std::string where; // it affects the conditions on the axes, so it is drawn first
        if (random_.OneIn(2)) {
            statement.slicer = MakeSlicer(statement.world, random_.OneIn(2));
            where = " WHERE " + statement.slicer->text;
        }
        statement.text = (with.empty() ? "" : "WITH" + with + " ") + "SELECT " + MakeAxes(statement) +
                         " FROM [Plain]" + where;
        return statement;
    }

private:
    std::string AddFormula(Statement& statement, std::size_t hierarchy, Number number) {
        const bool isMeasure = hierarchy == cube_.hierarchies.size();
        const std::string name = isMeasure ? "X" : "Y";
        const std::string path =
            fmt::format("{}.[{}]", isMeasure ? "[Measures]" : cube_.hierarchies[hierarchy].uniqueName, name);
        const auto solveOrder = static_cast<int>(random_.Below(3));
        const std::string order = solveOrder > 0 ? fmt::format(", SOLVE_ORDER = {}", solveOrder) : "";
        std::string text = fmt::format(" MEMBER {} AS {}{}", path,
                                       random_.OneIn(2) ? InQuotes(number.text) : number.text, order);
        calculatedMembers_.emplace_back(hierarchy, calculated + static_cast<int>(calculatedMembers_.size()));
        statement.world.Add({hierarchy, solveOrder, name, path, std::move(number)});
        return text;
    }

    std::size_t TakeHierarchy() {
        const std::size_t at = random_.Below(free_.size());
        const std::size_t hierarchy = free_[at];
        free_.erase(free_.begin() + static_cast<std::ptrdiff_t>(at));
        return hierarchy;
    }

    /// The set followed by its hierarchy's calculated members.
    Set WithCalculated(const World& world, Set set) {
        for (const auto& [hierarchy, member] : calculatedMembers_) {
            if (set.hierarchies == std::vector<std::size_t>{hierarchy}) {
                const std::string text = fmt::format("{{{}, {}}}", set.text, world.PathOf(hierarchy, member));
                set = {text, set.hierarchies, [set, number = member](const World& at, const Place& place) {
                           std::vector<Tuple> tuples = set.at(at, place);
                           tuples.push_back({number});
                           return tuples;
                       }};
            }
        }
        return set;
    }

    Set MakeSlicer(const World& world, bool isSet) {
        const std::size_t hierarchy = TakeHierarchy();
        if (isSet && random_.OneIn(2)) {
            const std::size_t second = TakeHierarchy();
            return random_.OneIn(2)
                       ? random_.TuplesOver(hierarchy, second)
                       : random_.Crossed(random_.SetOver(hierarchy, 0), random_.SetOver(second, 0));
        }
        if (isSet) {
            return WithCalculated(world, random_.SetOver(hierarchy, 1));
        }
        Set slicer{"", {hierarchy}, nullptr};
        Tuple tuple{random_.AnyMember(hierarchy)};
        if (random_.OneIn(2)) {
            slicer.hierarchies.push_back(TakeHierarchy());
            tuple.push_back(random_.AnyMember(slicer.hierarchies.back()));
        }
        for (const auto& [owner, member] : calculatedMembers_) {
            const auto at = std::find(slicer.hierarchies.begin(), slicer.hierarchies.end(), owner);
            if (at != slicer.hierarchies.end() && random_.OneIn(2)) {
                tuple[static_cast<std::size_t>(at - slicer.hierarchies.begin())] = member;
            }
        }
        for (std::size_t i = 0; i < tuple.size(); ++i) {
            slicer.text += (i > 0 ? ", " : "") + world.PathOf(slicer.hierarchies[i], tuple[i]);
        }
        slicer.text = "(" + slicer.text + ")";
        slicer.at = [tuple](const World&, const Place&) { return std::vector<Tuple>{tuple}; };
        return slicer;
    }

    std::string MakeAxes(Statement& statement) {
        std::string text;
        const std::size_t measures = cube_.hierarchies.size();
        const auto add = [&](Set set) {
            const bool isNonEmpty = random_.OneIn(2);
            text += fmt::format("{}{}{} ON {}", statement.axes.empty() ? "" : ", ",
                                isNonEmpty ? "NON EMPTY " : "", set.text, statement.axes.size());
            statement.axes.push_back({std::move(set), isNonEmpty});
        };
        const auto stored = [&] {
            return WithCalculated(statement.world,
                                  random_.SetOver(TakeHierarchy(), static_cast<int>(random_.Below(3))));
        };
        const int measure = static_cast<int>(random_.Below(3));
        const Set chosen =
            WithCalculated(statement.world,
                           {"{" + statement.world.PathOf(measures, measure) + "}",
                            {measures},
                            [measure](const World&, const Place&) { return std::vector<Tuple>{{measure}}; }});
        const std::size_t axes = random_.Below(4);
        if (axes > 0) {
            add(random_.OneIn(3) ? stored() : chosen);
        }
        if (axes > 1) {
            const Set rows = random_.OneIn(2) ? random_.Crossed(stored(), stored()) : stored();
            add(random_.OneIn(4) ? random_.Ordered(rows) : rows);
        }
        if (axes > 2 && random_.OneIn(2)) {
            add(stored());
        }
        return text;
    }

    const plain::Cube& cube_;
    RandomMdx random_;
    std::vector<std::size_t> free_; ///< hierarchies on no axis
    std::vector<std::pair<std::size_t, int>> calculatedMembers_;
};

constexpr const char* noCurrentMember = "has no current member here";

std::string Shown(const Value& value) {
    return value.isEmpty ? "-" : fmt::format("{}{}", value.isExact ? "" : "~", value.number);
}

/// The result as text: the tuples of every axis, then the cells, the first axis varying fastest.
class PlainAnswer {
public:
    explicit PlainAnswer(Statement& statement) : statement_(statement) {
        Place place = statement.world.Defaults();
        if (statement.slicer) {
            const std::vector<Tuple> slicer = statement.slicer->at(statement.world, place);
            isNowhere_ = slicer.empty();
            place = WithAll(place, statement.slicer->hierarchies, slicer);
            statement.world.StartFrom(place);
        }
        for (const Axis& axis : statement.axes) {
            axes_.push_back(axis.set.at(statement.world, place));
        }
        EvaluateCells(axes_.size(), place, {});
        for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
            isKept_.emplace_back(axes_[axis].size(), !statement.axes[axis].isNonEmpty);
        }
        for (const auto& [position, value] : cells_) {
            for (std::size_t axis = 0; axis < position.size() && !value.isEmpty; ++axis) {
                isKept_[axis][position[axis]] = true;
            }
        }
    }

    std::string Text() const {
        std::string text;
        for (std::size_t axis = 0; axis < axes_.size(); ++axis) {
            for (std::size_t i = 0; i < axes_[axis].size(); ++i) {
                if (isKept_[axis][i]) {
                    for (std::size_t k = 0; k < axes_[axis][i].size(); ++k) {
                        text += statement_.world.PathOf(statement_.axes[axis].set.hierarchies[k],
                                                        axes_[axis][i][k]) +
                                " ";
                    }
                    text += "\n";
                }
            }
            text += "--\n";
        }
        for (const auto& [position, value] : cells_) {
            bool isKept = true;
            for (std::size_t axis = 0; axis < position.size(); ++axis) {
                isKept = isKept && isKept_[axis][position[axis]];
            }
            text += isKept ? Shown(value) + "\n" : "";
        }
        return text;
    }

private:
    void EvaluateCells(std::size_t axis, const Place& place, std::vector<std::size_t> position) {
        if (axis == 0) {
            std::reverse(position.begin(), position.end());
            cells_.emplace_back(std::move(position), CellAt(place));
            return;
        }
        for (std::size_t i = 0; i < axes_[axis - 1].size(); ++i) {
            position.push_back(i);
            EvaluateCells(axis - 1,
                          With(place, statement_.axes[axis - 1].set.hierarchies, axes_[axis - 1][i]),
                          position);
            position.pop_back();
        }
    }

    Value CellAt(const Place& place) const { return isNowhere_ ? Value() : statement_.world.CellAt(place); }

    const Statement& statement_;
    bool isNowhere_ = false; ///< the slicer has no tuple
    std::vector<std::vector<Tuple>> axes_;
    std::vector<std::vector<bool>> isKept_;
    std::vector<std::pair<std::vector<std::size_t>, Value>> cells_;
};

std::string EngineAnswer(const Cellset& cellset) {
    std::string text;
    std::size_t cells = 1;
    for (std::size_t axis = 0; axis < cellset.AxisCount(); ++axis) {
        cells *= cellset.PositionCount(axis);
        for (std::size_t i = 0; i < cellset.PositionCount(axis); ++i) {
            for (std::size_t k = 0; k < cellset.TupleSize(axis); ++k) {
                text += cellset.MemberAt(axis, i, k).uniqueName + " ";
            }
            text += "\n";
        }
        text += "--\n";
    }
    std::vector<std::size_t> position(cellset.AxisCount());
    for (std::size_t cell = 0; cell < cells; ++cell) {
        const CellValue& value = cellset.Cell(position);
        text += Shown({value.isEmpty, value.isExact, value.scaled, value.decimals, value.number}) + "\n";
        for (std::size_t axis = 0; axis < position.size() && ++position[axis] == cellset.PositionCount(axis);
             ++axis) {
            position[axis] = 0;
        }
    }
    return text;
}

/// The answer, which a second run must repeat, or `noCurrentMember`.
std::string EngineAnswer(PlanCache& plans, const engine::Cube& cube, const std::string& statement) {
    try {
        std::string answer = EngineAnswer(plans.Run(cube, statement));
        EXPECT_EQ(EngineAnswer(plans.Run(cube, statement)), answer) << "again: " << statement;
        return answer;
    } catch (const EngineError& error) {
        const std::string message = error.what();
        return message.find(noCurrentMember) != std::string::npos ? noCurrentMember : message;
    }
}

std::string ExpectedAnswer(Statement& statement) {
    try {
        return PlainAnswer(statement).Text();
    } catch (const NoCurrentMember&) {
        return noCurrentMember;
    }
}

TEST(RandomStatement, IsAnsweredAsTheFactsSay) {
    struct Case {
        std::uint32_t seed;
        std::size_t facts;
        bool byDays;
        int statements;
    };
    for (const Case& test : {Case{1, 40, false, 4000}, Case{2, 300, false, 1000}, Case{3, 120, true, 3000}}) {
        const plain::Cube cube = MakeCube(test.seed, test.facts, test.byDays);
        PlanCache plans;
        StatementMaker maker(cube, test.seed);
        for (int i = 0; i < test.statements; ++i) {
            Statement statement = maker.Make();
            ASSERT_EQ(EngineAnswer(plans, *cube.built, statement.text), ExpectedAnswer(statement))
                << statement.text;
        }
    }
}

} // namespace
} // namespace qel::engine
