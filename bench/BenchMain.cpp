#include "bench/BenchData.h"
#include "bench/CellRanges.h"
#include "bench/DuckDbPeer.h"
#include "bench/FormulaMix.h"
#include "bench/Listings.h"
#include "bench/ScanPeer.h"
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
    bool measuresBuild = false, scans = false;
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

/// Compares the first formulas' values with the peer's, which is timed; run(i) returns the i-th.
template <class Run>
std::size_t ComparePeer(Report& report, const std::string& name, const Run& run,
                        const std::vector<double>& values, const Workload& same, int rounds) {
    Timings peer(values.size());
    std::size_t differences = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value = peer.Measure(i, [&] { return run(i); });
        if (value != values[i] && ++differences <= 5) {
            fmt::print(stderr, "{} instead of {}: {}\n", values[i], value, Describe(same.Formulas()[i]));
        }
    }
    for (int round = 1; round < rounds; ++round) { // the peer's best times count too
        for (std::size_t i = 0; i < values.size(); ++i) {
            peer.Measure(i, [&] { return run(i); });
        }
    }
    report.Times(fmt::format("{} ({} formulas, {} differ)", name, values.size(), differences), name, peer);
    PrintRatio(report, name, "formula", same.Recalculation(rounds), peer);
    PrintRatio(report, name, "engine", same.EngineAlone(rounds), peer);
    return differences;
}

/// Other ways to compute the cells of one ledger.
struct Peers {
    Peers(const BenchOptions& options, const BenchData& data, std::uint64_t rows) : sqlite(data.database) {
        if (!options.duckDb.empty() && sqlite.HasFacts()) {
            duckDb.emplace(options.duckDb, sqlite);
        }
        if (options.scans || !sqlite.HasFacts()) {
            scan.emplace(rows, options.seed);
        }
    }

    SqlitePeer sqlite;
    std::optional<DuckDbPeer> duckDb;
    std::optional<ScanPeer> scan;
};

/// Returns the number of values that differ from a peer's.
std::size_t ComparePeers(const BenchOptions& options, const BenchData& data, Peers& peers,
                         const std::vector<Selection>& formulas, Report& report) {
    const auto count = std::min(options.peerFormulas, formulas.size());
    const Workload same(data, {formulas.begin(), formulas.begin() + static_cast<std::ptrdiff_t>(count)},
                        options.seed);
    const RangeFinder finder(peers.sqlite.Database());
    std::vector<std::optional<CellRanges>> ranges;
    for (const Selection& formula : same.Formulas()) {
        ranges.push_back(finder.Find(formula));
    }
    const std::vector<double> values = same.Values();
    std::size_t differences = 0;
    const auto compare = [&](const char* name, const auto& run, int rounds) {
        differences += ComparePeer(report, name, run, values, same, rounds);
    };
    if (peers.sqlite.HasFacts()) {
        std::vector<SqliteCell> cells;
        cells.reserve(ranges.size());
        for (const auto& cell : ranges) {
            cells.push_back(peers.sqlite.Prepare(cell));
        }
        compare(
            "SQLite", [&](std::size_t i) { return SqlitePeer::Run(cells[i]); }, options.rounds);
        if (peers.duckDb) {
            compare(
                "DuckDB", [&](std::size_t i) { return peers.duckDb->Run(cells[i]); }, options.rounds);
        }
    }
    if (peers.scan) { // its time varies little
        compare(
            "scan", [&](std::size_t i) { return ranges[i] ? peers.scan->Run(*ranges[i]) : 0; }, 1);
    }
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
std::size_t Measure(const BenchOptions& options, const BenchData& data, Peers& peers, LedgerCube cube,
                    Report& report) {
    qel::ledger::RandomSelections selections(peers.sqlite.Database(), options.seed);
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
    return ComparePeers(options, data, peers, all.Formulas(), report);
}

LedgerCube CubeNamed(const std::string& name) {
    return name == "months" ? LedgerCube::Months : LedgerCube::Days;
}

std::size_t RunBench(const BenchOptions& options, const std::filesystem::path& program) {
    std::size_t differences = 0;
    Report report(options.csv);
    for (const std::uint64_t rows : options.rows) {
        report.Begin(rows);
        const bool hasBoth = options.cubes.size() > 1;
        const auto only = hasBoth ? std::optional<LedgerCube>() : CubeNamed(options.cubes.front());
        const BenchData data = PrepareBenchData(options.data, program, rows, options.seed, only);
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
        const double bytesEach = perFact(data.cubeFile) / (hasBoth ? 2 : 1);
        report.Number("bytes", bytesEach);
        report.Number("open ms", opening);
        fmt::print("bytes per fact and cube: {:.1f}\nopen: {:.2f} ms\n", bytesEach, opening);
        Peers peers(options, data, rows);
        if (peers.duckDb) {
            fmt::print("DuckDB {}\n", peers.duckDb->Version());
        }
        if (peers.sqlite.HasFacts()) {
            report.Number("SQLite bytes", perFact(data.database));
            fmt::print("bytes per fact in SQLite: {:.1f}\n", perFact(data.database));
        }
        for (const std::string& cube : options.cubes) {
            report.BeginCube(cube);
            differences += Measure(options, data, peers, CubeNamed(cube), report);
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
    app.add_flag(
        "--scan", options.scans,
        "also compute the cells by a plain scan of all lines, as is always done above 10,000,000 facts");
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
