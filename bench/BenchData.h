#pragma once

#include <cstdint>
#include <filesystem>

namespace qel::bench {

/// A generated ledger, its cube and its SQLite database.
struct BenchData {
    std::filesystem::path csvFolder, cubeFile, database;
};

/// Makes what is missing, or older than `program`, in a folder of its own under `folder`; says so on standard
/// error. Raises what the builders raise.
BenchData PrepareBenchData(const std::filesystem::path& folder, const std::filesystem::path& program,
                           std::uint64_t rows, std::uint64_t seed);

} // namespace qel::bench
