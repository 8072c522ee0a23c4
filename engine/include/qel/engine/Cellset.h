#pragma once

#include "qel/engine/Cube.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A number in a cell. Sums stay exact scaled integers until a client asks for the double.
struct CellValue {
    bool isEmpty = true;
    bool isExact = false; ///< `scaled` and `decimals` hold the value
    std::int64_t scaled = 0;
    std::uint8_t decimals = 0;
    double number = 0; ///< the nearest double, exact or not

    static CellValue Empty() { return {}; }
    static CellValue Exact(std::int64_t scaled, std::uint8_t decimals);
    static CellValue Inexact(double number);
};

/// A member on an axis of a cellset.
struct AxisMember {
    std::string name, caption, uniqueName, levelName;
    std::uint32_t levelDepth = 0;
    std::uint32_t hierarchy = 0; ///< its number in the cube; for a measure, one more than the last
    MemberId member =
        noMember; ///< its number in the hierarchy; noMember for a measure or a calculated member
};

/// The answer to a statement: axes of positions (tuples of members), and a cell for every combination.
class Cellset {
public:
    std::size_t AxisCount() const { return axes_ ? axes_->size() : 0; }
    std::size_t PositionCount(std::size_t axis) const { return (*axes_)[axis].positions.size(); }
    /// How many members each position of the axis has.
    std::size_t TupleSize(std::size_t axis) const { return (*axes_)[axis].tupleSize; }
    /// How many levels of a hierarchy, from the top, the axis's set is about, with data or without: all when
    /// it has members of several levels, otherwise those down to the level of its members.
    std::size_t LevelCount(std::size_t axis, std::size_t index) const {
        return (*axes_)[axis].levelCounts[index];
    }
    const AxisMember& MemberAt(std::size_t axis, std::size_t position, std::size_t index) const;
    /// The cell at one position of every axis, columns first.
    const CellValue& Cell(const std::vector<std::size_t>& positions) const;
    /// About how much memory the axes take.
    std::size_t AxisBytes() const;

private:
    friend class CellsetBuilder;
    friend class StatementPlan;

    struct Axis {
        std::size_t tupleSize = 0;
        std::vector<std::size_t> levelCounts; ///< by place in the tuple
        std::vector<std::vector<std::uint32_t>> positions; ///< indices into members
        std::vector<AxisMember> members;
    };
    std::shared_ptr<const std::vector<Axis>> axes_; ///< shared by the answers to one statement
    std::vector<CellValue> cells_;
};

/// Parses the MDX statement, resolves its names in the cube and evaluates every cell. docs/mdx.md lists what
/// is understood. Raises EngineError: SyntaxError, UnknownCube, UnknownName, UnknownMember, InvalidExpression
/// or TooLarge with the place in the statement, DamagedFile.
Cellset RunStatement(const Cube& cube, std::string_view statement);

} // namespace qel::engine
