#pragma once

#include "bench/BenchData.h"
#include "bench/Timings.h"
#include "examples/ledger/reference/Selection.h"

#include <string>
#include <vector>

namespace qel::bench {

/// One of the lists that the dialogs fill themselves from: members that have facts.
struct ListingTime {
    std::string what;
    std::size_t members = 0;
    double milliseconds = 0; ///< from the statement to the cellset, in the best of the rounds
};

/// Asks for every kind of list, of the whole cube and of one structure, as the component does.
std::vector<ListingTime> MeasureListings(const BenchData& data, ledger::LedgerCube cube, int rounds);

} // namespace qel::bench
