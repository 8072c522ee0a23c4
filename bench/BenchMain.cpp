#include "bench/BenchData.h"
#include "bench/DuckDbPeer.h"
#include "bench/FormulaMix.h"
#include "bench/Listings.h"
#include "bench/SqlitePeer.h"
#include "bench/Workload.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace qel::bench;
using qel::ledger::LedgerCube;
using qel::ledger::Selection;

struct BenchOptions {
    std::vector<std::uint64_t> rows{100'000, 1'000'000};
    std::vector<std::string> cubes{"months", "days"};
    std::size_t formulas = 20'000, peerFormulas = 2'000;
    int rounds = 3;
    std::uint64_t seed = 17;
    std::filesystem::path data = QEL_BENCH_DATA, duckDb, csv;
    bool measuresBuild = false;
};

/// Prints the measurements, and writes them as lines "facts,cube,what,number" for the table and the plot.
class Report {
public:
    explicit Report(const std::filesystem::path& csv) {
        if (!csv.empty()) {
            csv_.open(csv);
            csv_ << "facts,cube,what,number\n";
        }
    }

    void Begin(std::uint64_t facts) { facts_ = facts; }
    void BeginCube(const std::string& cube) { cube_ = cube; }
    void Number(const std::string& what, double number) {
        csv_ << fmt::format("{},{},{},{:.4g}\n", facts_, cube_, what, number) << std::flush;
    }
    void Times(const std::string& what, const std::string& key, const Timings& timings);

private:
    std::ofstream csv_;
    std::uint64_t facts_ = 0;
    std::string cube_;
};

void Report::Times(const std::string& what, const std::string& key, const Timings& timings) {
    Number(key + " median", timings.Quantile(0.5));
    Number(key + " p99", timings.Quantile(0.99));
    Number(key + " per second", timings.CallsPerSecond());
    Number(key + " allocations", timings.AllocationsPerCall());
    fmt::print("  {:<44}{:>10.2f}{:>10.1f}{:>14.0f}{:>14.1f}\n", what, timings.Quantile(0.5),
               timings.Quantile(0.99), timings.CallsPerSecond(), timings.AllocationsPerCall());
}

void PrintRatio(Report& report, const std::string& peer, const char* what, const Timings& own,
                const Timings& other) {
    const double ratio = own.CallsPerSecond() / other.CallsPerSecond();
    report.Number(fmt::format("{} ratio {}", peer, what), ratio);
    fmt::print("  {:<44}{:>34.0f}\n", fmt::format("times faster than {}: {}", peer, what), ratio);
}

/// Compares values and times the peer on the first formulas, with the engine's times in `own`.
template <class Run>
std::size_t ComparePeer(Report& report, const std::string& name, const Run& run,
                        const std::vector<SqliteCell>& cells, const std::vector<double>& values,
                        const Workload& same, int rounds) {
    Timings peer(cells.size());
    std::size_t differences = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const double value = peer.Measure(i, [&] { return run(cells[i]); });
        if (value != values[i] && ++differences <= 5) {
            fmt::print(stderr, "{} instead of {}: {}\n", values[i], value, Describe(same.Formulas()[i]));
        }
    }
    for (int round = 1; round < rounds; ++round) { // the peer's best times count too
        for (std::size_t i = 0; i < cells.size(); ++i) {
            peer.Measure(i, [&] { return run(cells[i]); });
        }
    }
    report.Times(fmt::format("{} ({} formulas, {} differ)", name, cells.size(), differences), name, peer);
    PrintRatio(report, name, "formula", same.Recalculation(rounds), peer);
    PrintRatio(report, name, "engine", same.EngineAlone(rounds), peer);
    return differences;
}

void PrintListings(const BenchOptions& options, const BenchData& data, LedgerCube cube, Report& report) {
    double slowest = 0;
    for (const ListingTime& listing : MeasureListings(data, cube, options.rounds)) {
        fmt::print("  list of {:<36}{:>8} members{:>11.2f} ms\n", listing.what, listing.members,
                   listing.milliseconds);
        slowest = std::max(slowest, listing.milliseconds);
    }
    report.Number("slowest list ms", slowest);
}

/// Times the lines behind the first formulas: of the median cell and of the slowest.
void PrintLines(const BenchOptions& options, const BenchData& data, const Workload& all, Report& report) {
    constexpr std::size_t mostCells = 2'000;
    std::vector<Selection> some(all.Formulas().begin(),
                                all.Formulas().begin() +
                                    static_cast<std::ptrdiff_t>(std::min(mostCells, all.Formulas().size())));
    const auto lines = Workload(data, std::move(some), options.seed).FirstLines(options.rounds);
    const double median = lines.Quantile(0.5) / 1e3, slowest = lines.Quantile(1) / 1e3;
    report.Number("lines median ms", median);
    report.Number("lines slowest ms", slowest);
    fmt::print("  first 100 lines of a cell: {:.2f} ms in the median, {:.1f} ms of the slowest\n", median,
               slowest);
}

/// Times the formulas of one cube. Returns the number of values that differ from a peer's.
std::size_t Measure(const BenchOptions& options, const BenchData& data, SqlitePeer& sqlite,
                    DuckDbPeer* duckDb, LedgerCube cube, Report& report) {
    qel::ledger::RandomSelections selections(sqlite.Database(), options.seed);
    const Workload all(data, DrawFormulas(selections, options.seed, options.formulas, cube), options.seed);
    const Workload sheet(data, DrawSheet(selections, options.seed + 1, 834, cube), options.seed);
    fmt::print("cube by {}\n  {:<44}{:>10}{:>10}{:>14}{:>14}\n",
               cube == LedgerCube::Months ? "months" : "days", "", "median µs", "p99 µs", "per second",
               "allocations");
    report.Times("formula, statement new", "new", all.FirstCalculation());
    report.Times("formula, statement new, pages checked", "checked", all.FirstCalculationOfCheckedPages());
    report.Times("formula, statement known", "known", all.Recalculation(options.rounds));
    report.Times("engine alone, from plan to cell", "engine", all.EngineAlone(options.rounds));
    const double sheetNew = sheet.FirstCalculation().Total() / 1e3;
    const double sheetKnown = sheet.Recalculation(options.rounds).Total() / 1e3;
    report.Number("sheet new ms", sheetNew);
    report.Number("sheet known ms", sheetKnown);
    fmt::print("  sheet of 834 rows by 12 months: {:.1f} ms new, {:.1f} ms recalculated\n", sheetNew,
               sheetKnown);
    for (const std::size_t threads : {std::size_t{1}, std::size_t{2}}) {
        const double perSecond = all.FormulasPerSecond(threads, options.rounds);
        report.Number(fmt::format("threads {} per second", threads), perSecond);
        fmt::print("  formulas per second by the clock, {} threads: {:.0f}\n", threads, perSecond);
    }

    PrintListings(options, data, cube, report);
    PrintLines(options, data, all, report);
    if (!sqlite.HasFacts()) {
        return 0;
    }

    std::vector<Selection> first(all.Formulas().begin(),
                                 all.Formulas().begin() + static_cast<std::ptrdiff_t>(std::min(
                                                              options.peerFormulas, options.formulas)));
    const Workload same(data, std::move(first), options.seed);
    std::vector<SqliteCell> cells;
    for (const Selection& formula : same.Formulas()) {
        cells.push_back(sqlite.Prepare(formula));
    }
    const std::vector<double> values = same.Values();
    std::size_t differences =
        ComparePeer(report, "SQLite", SqlitePeer::Run, cells, values, same, options.rounds);
    if (duckDb != nullptr) {
        differences += ComparePeer(
            report, "DuckDB", [&](const SqliteCell& cell) { return duckDb->Run(cell); }, cells, values, same,
            options.rounds);
    }
    return differences;
}

LedgerCube CubeNamed(const std::string& name) {
    return name == "months" ? LedgerCube::Months : LedgerCube::Days;
}

std::size_t RunBench(const BenchOptions& options, const std::filesystem::path& program) {
    std::size_t differences = 0;
    Report report(options.csv);
    for (const std::uint64_t rows : options.rows) {
        report.Begin(rows);
        const BenchData data = PrepareBenchData(options.data, program, rows, options.seed);
        const auto perFact = [rows](const std::filesystem::path& file) {
            return static_cast<double>(std::filesystem::file_size(file)) / static_cast<double>(rows);
        };
        fmt::print("== {} facts\n", rows);
        for (const std::string& cube : options.measuresBuild ? options.cubes : std::vector<std::string>()) {
            report.BeginCube(cube);
            const BuildCost cost = MeasureBuild(data, CubeNamed(cube));
            report.Number("build seconds", cost.seconds);
            report.Number("build processor seconds", cost.processorSeconds);
            report.Number("build megabytes", cost.peakMegabytes);
            fmt::print("build of the cube by {}: {:.1f} s, {:.1f} s of processors, {:.0f} MB\n", cube,
                       cost.seconds, cost.processorSeconds, cost.peakMegabytes);
        }
        report.BeginCube("both");
        const double opening = OpeningMilliseconds(data);
        report.Number("bytes", perFact(data.cubeFile) / 2);
        report.Number("open ms", opening);
        fmt::print("bytes per fact: {:.1f} per cube (two in the file)\nopen: {:.2f} ms\n",
                   perFact(data.cubeFile) / 2, opening);
        SqlitePeer sqlite(data.database);
        if (sqlite.HasFacts()) {
            report.Number("SQLite bytes", perFact(data.database));
            fmt::print("bytes per fact in SQLite: {:.1f}\n", perFact(data.database));
        }
        std::optional<DuckDbPeer> duckDb;
        if (!options.duckDb.empty() && sqlite.HasFacts()) {
            duckDb.emplace(options.duckDb, sqlite);
            fmt::print("DuckDB {}\n", duckDb->Version());
        }
        for (const std::string& cube : options.cubes) {
            report.BeginCube(cube);
            differences +=
                Measure(options, data, sqlite, duckDb ? &*duckDb : nullptr, CubeNamed(cube), report);
        }
        std::fflush(stdout);
    }
    return differences;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Times random formulas over generated ledgers: QelF1 from its arguments to the value, and the engine "
        "alone. Computes the same cells with SQLite (prepared statements, covering indexes) and DuckDB (one "
        "thread, statement texts) and compares the values. Each formula counts with its fastest time over "
        "several rounds. Exit status 1 when a value differs."};
    BenchOptions options;
    app.add_option("--rows", options.rows, "facts of each ledger")->capture_default_str();
    app.add_option("--cube", options.cubes, "months, days")
        ->check(CLI::IsMember({"months", "days"}))
        ->capture_default_str();
    app.add_option("--formulas", options.formulas, "formulas to draw")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000}))
        ->capture_default_str();
    app.add_option("--peer-formulas", options.peerFormulas, "how many of them the peers compute")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000}))
        ->capture_default_str();
    app.add_option("--rounds", options.rounds, "timed passes through the component")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "seed of the ledgers and the formulas")->capture_default_str();
    app.add_option("--data", options.data, "where the generated ledgers are kept")->capture_default_str();
    app.add_option("--duckdb", options.duckDb, "DuckDB's shared library; without it DuckDB is skipped")
        ->check(CLI::ExistingFile);
    app.add_option("--csv", options.csv, "also write the numbers to this file");
    app.add_flag("--build", options.measuresBuild, "also measure the build of each cube");
    CLI11_PARSE(app, argc, argv);
    try {
        return RunBench(options, std::filesystem::absolute(argv[0])) == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        fmt::print(stderr, "qel-bench: {}\n", error.what());
        return 1;
    }
}
