#pragma once

#include "qel/engine/Cellset.h"
#include "qel/engine/Cube.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qel::engine {

struct NoLineValue {
    NoLineValue() = default;
    // Not trivial: GCC 12's std::variant of strings and trivial types alone takes itself for always filled,
    // and destroys garbage where memory for the copy of a string lacks.
    // NOLINTBEGIN(modernize-use-equals-default)
    NoLineValue(const NoLineValue& /*other*/) noexcept {}
    NoLineValue& operator=(const NoLineValue& /*other*/) noexcept { return *this; }
    // NOLINTEND(modernize-use-equals-default)
    ~NoLineValue() = default;

    bool operator==(const NoLineValue&) const = default;
};

/// A value of a fact: nothing, a text (a key, a name, a date such as 2024-03-31), or an amount.
using LineValue = std::variant<NoLineValue, std::string, CellValue>;

/// The facts behind a cell.
struct FactLines {
    std::vector<std::string> columns;
    std::vector<std::vector<LineValue>> rows; ///< each as long as `columns`
    std::uint64_t total = 0;                  ///< also those that MAXROWS and FIRSTROWSET leave out
};

/// Whether the statement begins with DRILLTHROUGH.
bool IsDrillthrough(std::string_view statement);

/// Runs DRILLTHROUGH [MAXROWS n] [FIRSTROWSET n] SELECT ... [RETURN column, ...] over a statement of one cell
/// that adds up facts; docs/mdx.md lists what it gives. A fact that the cell counts twice is there twice.
/// `progress` (may be empty) is told the share done; an exception that it throws reaches the caller. Raises
/// EngineError as RunStatement does.
FactLines RunDrillthrough(const Cube& cube, std::string_view statement,
                          const std::function<void(double)>& progress = {});

} // namespace qel::engine
