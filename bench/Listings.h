#pragma once

#include "bench/BenchData.h"
#include "bench/Timings.h"
#include "examples/ledger/reference/Selection.h"

#include <string>
#include <vector>

namespace qel::bench {

/// One of the lists in the dialogs: members that have facts.
struct ListingTime {
    std::string what;
    std::size_t members = 0;
    double milliseconds = 0; ///< from statement to cellset, best of all rounds
};

/// Runs every kind of list, over the whole cube and one structure, as the component does.
std::vector<ListingTime> MeasureListings(const BenchData& data, ledger::LedgerCube cube, int rounds);

} // namespace qel::bench
