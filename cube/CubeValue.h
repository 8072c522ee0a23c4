#pragma once

#include "cube/PeriodSelection.h"
#include "cube/ThreadState.h"
#include "platform/data/Providers.h"
#include "platform/value/AutomationError.h"

#include <optional>
#include <variant>

namespace qel::ModSetCube {

/// What a cell's statement gives: its value as the provider has it, or why there is none.
using CellAnswer = std::variant<Variant, AutomationError>;

/// What a call shows: the number; 0 (16-bit) for an empty cell or a period outside the cube; "#ERR 11111111"
/// for a period that ends before it starts; "#ERR " and the number for any failure, which stands beside it.
struct CubeValue {
    Variant value;
    std::optional<AutomationError> failure;
};

/// A call as far as it comes without reading the cell.
struct PreparedValue {
    std::variant<ValueQuery, CubeValue> content; ///< what to ask for, or the value that is known already
    bool hasSlicers = false; ///< the period lies in the cube and the keys are texts, so they became slicers
};

/// The call's query over the open cube. Raises nothing.
PreparedValue PrepareCubeValue(ThreadState& thread, const Locale& locale, const ValueCall& call,
                               const ValueKeys& keys, DayRange days);

/// Runs a value statement and reads its one cell. Raises nothing that providers raise.
CellAnswer ReadCell(const ProviderConnection& server, const std::string& statement);
/// The query's statement over the open CubeConnection.
CellAnswer ReadCell(const ThreadState& thread, const Providers& providers, const ValueQuery& query);

/// The same for a call that comes again: prepares the cell, if the provider takes the query and nobody
/// listens to statements, and keeps it by the call's key.
CellAnswer ReadCellAndKeep(ThreadState& thread, const Providers& providers, const ValueQuery& query,
                           std::string key);
/// A kept cell. Nothing when it fails: what was kept is of no use then.
std::optional<CellAnswer> ReadKnownCell(const PreparedCell& cell);

CubeValue ValueOf(CellAnswer answer);

/// GetCubeValue: the three together. Raises nothing.
CubeValue GetCubeValue(ThreadState& thread, const Providers& providers, const Locale& locale,
                       const ValueCall& call, const ValueKeys& keys, DayRange days);

} // namespace qel::ModSetCube
