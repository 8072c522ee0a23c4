#include "examples/ledger/GroupLedger.h"
#include "examples/ledger/LedgerFiles.h"
#include "examples/ledger/WideLedger.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>
#include <exception>

namespace {

using namespace qel::ledger;

void WriteTables(const std::filesystem::path& folder, const std::vector<DimensionTable>& tables,
                 std::size_t obsLevels) {
    for (const DimensionTable& table : tables) {
        WriteTable(folder, table);
    }
    WriteDefinition(folder, obsLevels);
}

void Generate(const std::filesystem::path& folder, std::uint64_t seed, bool wide,
              const WideLedgerShape& shape) {
    std::filesystem::create_directories(folder);
    LedgerCsv csv(folder / "ledger.csv");
    std::uint64_t count = 0;
    const LineSink sink = [&](const LedgerLine& line) {
        csv.Write(line);
        ++count;
    };
    if (wide) {
        const WideLedger ledger(shape);
        ledger.Generate(seed, sink);
        WriteTables(folder, ledger.Tables(), WideLedger::obsLevels);
    } else {
        GenerateGroupLedger(seed, sink);
        WriteTables(folder, GroupTables(), groupObsLevels);
    }
    csv.Close();
    fmt::print("{} ledger lines written to {}\n", count, folder.string());
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{
        "Writes a ledger in CSV with its dimension tables and a cube definition: the example group's "
        "books, or with --rows a ledger of any size for benchmarks."};
    std::filesystem::path folder;
    std::uint64_t seed = 17;
    WideLedgerShape shape;
    app.add_option("--output", folder, "folder to write to; created when missing")->required();
    app.add_option("--seed", seed, "the same number gives the same ledger")->capture_default_str();
    const CLI::Option* rows =
        app.add_option("--rows", shape.rows, "write a ledger of about this many lines instead")
            ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{100'000'000}));
    const auto knob = [&](const char* name, std::size_t& value, const char* help) {
        app.add_option(name, value, help)
            ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000}))
            ->capture_default_str()
            ->group("Shape, with --rows");
    };
    knob("--accounts", shape.accounts, "accounts");
    knob("--activities", shape.activities, "activities");
    knob("--cost-centres", shape.costCentres, "cost centres");
    knob("--obs-leaves", shape.obsLeaves, "sites of the OBS tree");
    knob("--obs-numbers", shape.obsNumbers, "OBS numbers");
    knob("--firms", shape.firms, "firms");
    knob("--plbs", shape.plbs, "Plbs members");
    knob("--money-sets", shape.moneySets, "money sets");
    knob("--months", shape.months, "months from January 2020");
    CLI11_PARSE(app, argc, argv);
    try {
        Generate(folder, seed, rows->count() > 0, shape);
    } catch (const std::exception& error) {
        fmt::print(stderr, "qel-ledger-generate: {}\n", error.what());
        return 1;
    }
    return 0;
}
