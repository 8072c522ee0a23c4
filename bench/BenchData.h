#pragma once

#include "examples/ledger/reference/Selection.h"

#include <cstdint>
#include <filesystem>

namespace qel::bench {

/// More facts than these fill the memory and take the peers too long: there the engine is measured alone.
inline constexpr std::uint64_t mostPeerFacts = 10'000'000;

/// A generated ledger, its cube and its SQLite database.
struct BenchData {
    std::filesystem::path csvFolder, cubeFile, database;
};

/// What a build of one cube took, in a process of its own.
struct BuildCost {
    double seconds = 0, processorSeconds = 0;
    double peakMegabytes = 0;
};

/// Makes what is missing, or older than `program`, in a folder of its own under `folder`; says so on standard
/// error. Raises what the builders raise.
BenchData PrepareBenchData(const std::filesystem::path& folder, const std::filesystem::path& program,
                           std::uint64_t rows, std::uint64_t seed);

/// Builds a file of one of the cubes and measures it. To be called while the program has one thread.
BuildCost MeasureBuild(const BenchData& data, ledger::LedgerCube cube);

} // namespace qel::bench
