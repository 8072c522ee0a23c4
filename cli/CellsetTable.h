#pragma once

#include "platform/data/DataAccess.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// The members of one position of an axis.
using Tuple = std::vector<CellsetMember>;

/// A cellset, read whole. Columns or rows that the statement has not are one position without members. Rows
/// are the combinations of all axes but the columns, the last axis varying slowest; its members come first.
struct CellsetTable {
    std::size_t axisCount = 0;
    std::vector<Tuple> columns, rows;
    std::vector<std::vector<Variant>> cells; ///< by row, then column
    /// The axes that rows combine: the statement's rows and those behind them. Empty for up to two axes.
    std::vector<std::vector<Tuple>> combined = {};
    /// The cells as texts with all decimals of their measures, where the provider has them.
    std::vector<std::vector<std::optional<std::string>>> exact = {};
};

CellsetTable ReadGrid(const Cellset& cellset);

/// What stands for a member in a heading.
enum class MemberText : std::uint8_t { Caption, Name, UniqueName, Key };

/// The caption, or the name when there is none; months, quarters and days have their year with them. The key,
/// where the provider does not tell it, is what the unique name ends with, or the name.
std::string TextOf(const CellsetMember& member, MemberText text = MemberText::Caption);

} // namespace qel
