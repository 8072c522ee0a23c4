#pragma once

#include "cube/ThreadState.h"
#include "cube/ValueQuery.h"
#include "platform/data/Providers.h"
#include "platform/data/Rowset.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::ModSetCube {

/// Which of the lines behind a value are wanted.
struct LinesRequest {
    std::uint64_t most = 10'000;           ///< 0 for all of them
    std::vector<std::string> columns = {}; ///< as RETURN takes them; none for those that the provider gives
    Recordset::Progress progress = {};     ///< may stop the reading by an exception
};

/// The lines of the ledger that a value adds up, by date.
struct CellLines {
    Rowset rows;
    std::optional<std::size_t> amount; ///< the field whose numbers the value adds up
    bool isComplete = false;           ///< none were left out
};

/// The statement that asks for the lines of a value in one go: DRILLTHROUGH over its own statement.
std::string ComposeLinesStatement(const ValueQuery& query, const LinesRequest& request);

/// The same for each period and each OBS member, for providers that drill through plain members only.
std::vector<std::string> ComposePlainLinesStatements(const ValueQuery& query, const DateTable& dates,
                                                     const LinesRequest& request);

/// Reads the lines over the open CubeConnection: in one statement, or in plain ones where the provider
/// refuses that. Raises what the provider raises for those.
CellLines ReadCellLines(const ThreadState& thread, const Providers& providers, const ValueQuery& query,
                        const LinesRequest& request);

/// The rest of an open recordset.
Rowset ReadRows(Recordset& recordset);

/// The sum of a field's numbers as decimals, without the rounding of doubles.
double SumOfField(const Rowset& rows, std::size_t field);

} // namespace qel::ModSetCube
