#include "bench/BenchData.h"

#include "bench/SqlitePeer.h"
#include "examples/ledger/LedgerFiles.h"
#include "examples/ledger/WideLedger.h"
#include "qel/engine/BuildCube.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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
    ledger::WriteDefinition(folder, ledger::WideLedger::obsLevels);
}

void Build(const std::filesystem::path& definition, const std::filesystem::path& output) {
    engine::BuildCube({.definition = definition, .output = output, .skippedLines = {}, .progress = {}});
}

/// Writes the ledger's definition reduced to one cube, next to it.
std::filesystem::path DefinitionOfOne(const BenchData& data, ledger::LedgerCube cube) {
    std::ifstream whole(data.csvFolder / "ledger.json");
    nlohmann::json definition = nlohmann::json::parse(whole, nullptr, true, true);
    definition["cubes"].erase(cube == ledger::LedgerCube::Months ? 1 : 0);
    std::filesystem::path path = data.csvFolder / "one-cube.json";
    std::ofstream(path) << definition;
    return path;
}

void Timed(const char* what, const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    fmt::print(stderr, "  {} made in {:.1f} s\n", what, seconds.count());
}

} // namespace

BenchData PrepareBenchData(const std::filesystem::path& folder, const std::filesystem::path& program,
                           std::uint64_t rows, std::uint64_t seed, std::optional<ledger::LedgerCube> only) {
    const char* const which = !only ? "" : *only == ledger::LedgerCube::Months ? "-months" : "-days";
    const std::filesystem::path own = folder / fmt::format("{}-{}{}", rows, seed, which);
    const std::filesystem::path done = own / "done";
    BenchData data{own, own / "ledger.cub", own / "ledger.sqlite"};
    if (std::filesystem::exists(done) &&
        std::filesystem::last_write_time(done) >= std::filesystem::last_write_time(program)) {
        return data;
    }
    std::filesystem::remove_all(own);
    std::filesystem::create_directories(own);
    Timed("ledger in CSV", [&] { Generate(own, rows, seed); });
    Timed("cube file",
          [&] { Build(only ? DefinitionOfOne(data, *only) : own / "ledger.json", data.cubeFile); });
    Timed("SQLite database", [&] { MakeSqliteDatabase(own, data.database, rows <= mostPeerFacts); });
    std::ofstream(done) << "complete\n";
    return data;
}

BuildCost MeasureBuild(const BenchData& data, ledger::LedgerCube cube) {
    const std::filesystem::path definition = DefinitionOfOne(data, cube);
    const std::filesystem::path output = data.csvFolder / "one-cube.cub";
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        try {
            Build(definition, output);
            _exit(0);
        } catch (const std::exception& error) {
            fmt::print(stderr, "{}\n", error.what());
            _exit(1);
        }
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
        throw std::runtime_error("The cube could not be built again.");
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::filesystem::remove(output);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    constexpr double kilobytesEach = 1024;
    return {elapsed.count(), seconds(usage.ru_utime) + seconds(usage.ru_stime),
            static_cast<double>(usage.ru_maxrss) / kilobytesEach};
}

} // namespace qel::bench
