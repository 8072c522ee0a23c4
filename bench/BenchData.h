#pragma once

#include "examples/ledger/reference/Selection.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace qel::bench {

/// With more facts the peers take too long and fill the memory, so only the engine is measured.
inline constexpr std::uint64_t mostPeerFacts = 10'000'000;

/// A generated ledger, the file of its cubes and its SQLite database.
struct BenchData {
    std::filesystem::path csvFolder, cubeFile, database;
};

/// The cost of building one cube, in its own process.
struct BuildCost {
    double seconds = 0, processorSeconds = 0;
    double peakMegabytes = 0;
};

/// Creates what is missing or older than `program` in a subfolder of `folder`, reporting on standard error.
/// The file holds both cubes, or only one. Raises what the builders raise.
BenchData PrepareBenchData(const std::filesystem::path& folder, const std::filesystem::path& program,
                           std::uint64_t rows, std::uint64_t seed, std::optional<ledger::LedgerCube> only);

/// Builds one of the cubes and measures it. To be called while the program has a single thread.
BuildCost MeasureBuild(const BenchData& data, ledger::LedgerCube cube);

} // namespace qel::bench
