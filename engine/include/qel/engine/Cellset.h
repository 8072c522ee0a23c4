#pragma once

#include "qel/engine/Cube.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::engine {

class TextPool; // of the engine's own use

/// The value of a cell: a number, or a text or a condition that a formula gives. Sums are exact scaled
/// integers; `number` is their nearest double.
struct CellValue {
    bool isEmpty = true;
    bool isExact = false;     ///< the value is scaled / 10^decimals
    bool isCondition = false; ///< `number` is 1 for true, 0 for false
    std::uint8_t decimals = 0;
    std::int64_t scaled = 0;
    double number = 0;                 ///< the nearest double
    const std::string* text = nullptr; ///< valid as long as a cellset with this cell

    bool IsNumber() const { return text == nullptr && !isCondition; }

    static CellValue Empty() { return {}; }
    static CellValue Exact(std::int64_t scaled, std::uint8_t decimals);
    static CellValue Inexact(double number);
    static CellValue Text(const std::string& text);
    static CellValue Condition(bool condition);
};

/// A member on an axis of a cellset.
struct AxisMember {
    std::string name, caption, uniqueName, levelName;
    std::uint32_t levelDepth = 0;
    std::uint32_t hierarchy = 0; ///< number in the cube; for a measure, the number of hierarchies
    MemberId member = noMember;  ///< number in the hierarchy; noMember for a measure or a calculated member
};

/// The result of a statement: axes of positions (tuples of members) and one cell per combination of
/// positions.
class Cellset {
public:
    std::size_t AxisCount() const { return axes_ ? axes_->size() : 0; }
    std::size_t PositionCount(std::size_t axis) const { return (*axes_)[axis].positions.size(); }
    /// The number of members in each position of the axis.
    std::size_t TupleSize(std::size_t axis) const { return (*axes_)[axis].tupleSize; }
    /// How many levels of a hierarchy, from the top, the axis's set is about, with data or without: all when
    /// it has members of several levels, otherwise those down to the level of its members.
    std::size_t LevelCount(std::size_t axis, std::size_t index) const {
        return (*axes_)[axis].levelCounts[index];
    }
    const AxisMember& MemberAt(std::size_t axis, std::size_t position, std::size_t index) const;
    /// The cell at the given position of every axis, columns first.
    const CellValue& Cell(const std::vector<std::size_t>& positions) const;

private:
    friend class CellsetBuilder;
    friend class StatementPlan;

    struct Axis {
        std::size_t tupleSize = 0;
        std::vector<std::size_t> levelCounts;              ///< by place in the tuple
        std::vector<std::vector<std::uint32_t>> positions; ///< indices into members
        std::vector<AxisMember> members;
    };
    /// Approximate memory of the axes in bytes.
    std::size_t AxisBytes() const;

    std::shared_ptr<const std::vector<Axis>> axes_; ///< shared by all results of one plan
    std::vector<CellValue> cells_;
    std::shared_ptr<const TextPool> texts_; ///< of the cells that are texts
};

} // namespace qel::engine
