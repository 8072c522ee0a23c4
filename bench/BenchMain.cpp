#include "bench/BenchData.h"
#include "bench/FormulaMix.h"
#include "bench/SqlitePeer.h"
#include "bench/Timings.h"
#include "tests/ledger/reference/FormulaCell.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace {

using namespace qel::bench;
using qel::ledger::FormulaCell;
using qel::ledger::LedgerCube;
using qel::ledger::Selection;

struct BenchOptions {
    std::vector<std::uint64_t> rows{100'000, 1'000'000};
    std::vector<std::string> cubes{"months", "days"};
    std::size_t formulas = 2'000;
    int rounds = 3;
    std::uint64_t seed = 17;
    std::filesystem::path data = QEL_BENCH_DATA;
};

void PrintTimes(const char* what, const Timings& timings) {
    fmt::print("  {:<32}{:>12.2f}{:>12.1f}{:>16.0f}\n", what, timings.Quantile(0.5), timings.Quantile(0.99),
               timings.CallsPerSecond());
}

void PrintRatio(const char* what, const Timings& component, const Timings& peer) {
    fmt::print("  {:<32}{:>12.1f}{:>12.1f}{:>16.1f}\n", what, peer.Quantile(0.5) / component.Quantile(0.5),
               peer.Quantile(0.99) / component.Quantile(0.99),
               component.CallsPerSecond() / peer.CallsPerSecond());
}

/// Times the formulas through the component and through SQLite. Returns how many values differ.
std::size_t Compare(const BenchOptions& options, const BenchData& data, std::uint64_t rows, LedgerCube cube) {
    SqlitePeer peer(data.database);
    qel::ledger::RandomSelections selections(peer.Database(), options.seed);
    const std::vector<Selection> formulas = DrawFormulas(selections, options.seed, options.formulas, cube);
    std::vector<SqliteCell> cells;
    cells.reserve(formulas.size());
    for (const Selection& formula : formulas) {
        cells.push_back(peer.Prepare(formula));
    }
    FormulaCell cell(data.cubeFile.string(), options.seed);
    Timings opening, component, prepared, text;
    opening.Measure([&] { return cell.Value(formulas.front()); });

    std::size_t differences = 0, zeros = 0;
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        const double shown = cell.Value(formulas[i]), expected = SqlitePeer::Run(cells[i]);
        zeros += expected == 0 ? 1 : 0;
        if (shown != expected && ++differences <= 5) {
            fmt::print(stderr, "{} instead of {}: {}\n", shown, expected, Describe(formulas[i]));
        }
    }
    for (int round = 0; round < options.rounds; ++round) {
        for (const Selection& formula : formulas) {
            component.Measure([&] { return cell.Value(formula); });
        }
    }
    for (const SqliteCell& sqliteCell : cells) {
        prepared.Measure([&] { return SqlitePeer::Run(sqliteCell); });
    }
    for (const SqliteCell& sqliteCell : cells) {
        text.Measure([&] { return peer.RunText(sqliteCell); });
    }
    fmt::print("{} facts, cube by {}, {} formulas ({} of them 0), {} values differ\n", rows,
               cube == LedgerCube::Months ? "months" : "days", formulas.size(), zeros, differences);
    fmt::print("  {:<32}{:>12}{:>12}{:>16}\n", "", "median µs", "p99 µs", "formulas/s");
    PrintTimes("QelF1, arguments to value", component);
    PrintTimes("SQLite, from statement text", text);
    PrintTimes("SQLite, statement prepared", prepared);
    PrintRatio("QelF1 is faster than text by", component, text);
    PrintRatio("QelF1 is faster than prepared by", component, prepared);
    fmt::print("  first formula, with opening the cube: {:.0f} µs\n\n", opening.Quantile(0.5));
    return differences;
}

std::size_t RunBench(const BenchOptions& options, const std::filesystem::path& program) {
    std::size_t differences = 0;
    for (const std::uint64_t rows : options.rows) {
        const BenchData data = PrepareBenchData(options.data, program, rows, options.seed);
        fmt::print("cube file {:.1f} bytes a fact (two cubes), SQLite database {:.1f}\n",
                   static_cast<double>(std::filesystem::file_size(data.cubeFile)) / static_cast<double>(rows),
                   static_cast<double>(std::filesystem::file_size(data.database)) /
                       static_cast<double>(rows));
        for (const std::string& cube : options.cubes) {
            differences +=
                Compare(options, data, rows, cube == "months" ? LedgerCube::Months : LedgerCube::Days);
        }
    }
    return differences;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Times random formulas over generated ledgers: the whole path of QelF1 from its arguments to "
        "the value, beside SQLite with covering indexes for the same cells, with its statements "
        "prepared beforehand and from their texts. Every pair of values is "
        "compared; status 1 when one differs."};
    BenchOptions options;
    app.add_option("--rows", options.rows, "facts of each ledger")->capture_default_str();
    app.add_option("--cube", options.cubes, "months, days")
        ->check(CLI::IsMember({"months", "days"}))
        ->capture_default_str();
    app.add_option("--formulas", options.formulas, "formulas to draw")
        ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000}))
        ->capture_default_str();
    app.add_option("--rounds", options.rounds, "timed passes through the component")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "of the ledger and of the formulas")->capture_default_str();
    app.add_option("--data", options.data, "where the generated ledgers are kept")->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        return RunBench(options, std::filesystem::absolute(argv[0])) == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        fmt::print(stderr, "qel-bench: {}\n", error.what());
        return 1;
    }
}
