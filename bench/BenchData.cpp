#include "bench/BenchData.h"

#include "bench/SqlitePeer.h"
#include "engine/build/BuildCube.h"
#include "examples/ledger/LedgerFiles.h"
#include "examples/ledger/WideLedger.h"

#include <fmt/format.h>

#include <chrono>
#include <functional>

namespace qel::bench {
namespace {

void Generate(const std::filesystem::path& folder, std::uint64_t rows, std::uint64_t seed) {
    const ledger::WideLedger wide({.rows = rows});
    ledger::LedgerCsv csv(folder / "ledger.csv");
    wide.Generate(seed, [&](const ledger::LedgerLine& line) { csv.Write(line); });
    csv.Close();
    for (const ledger::DimensionTable& table : wide.Tables()) {
        ledger::WriteTable(folder, table);
    }
    ledger::WriteDefinition(folder);
}

void Timed(const char* what, const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    fmt::print(stderr, "  {} made in {:.1f} s\n", what, seconds.count());
}

} // namespace

BenchData PrepareBenchData(const std::filesystem::path& folder, const std::filesystem::path& program,
                           std::uint64_t rows, std::uint64_t seed) {
    const std::filesystem::path own = folder / fmt::format("{}-{}", rows, seed);
    const std::filesystem::path done = own / "done";
    BenchData data{own, own / "ledger.cub", own / "ledger.sqlite"};
    if (std::filesystem::exists(done) &&
        std::filesystem::last_write_time(done) >= std::filesystem::last_write_time(program)) {
        return data;
    }
    std::filesystem::remove_all(own);
    std::filesystem::create_directories(own);
    Timed("ledger in CSV", [&] { Generate(own, rows, seed); });
    Timed("cube file", [&] {
        engine::BuildCube(
            {.definition = own / "ledger.json", .output = data.cubeFile, .skippedLines = {}, .progress = {}});
    });
    Timed("SQLite database", [&] { MakeSqliteDatabase(own, data.database); });
    std::ofstream(done) << "complete\n";
    return data;
}

} // namespace qel::bench
