#include "qel/engine/BuildCube.h"
#include "tests/wizard/WizardBench.h"
#include "wizard/FunctionForm.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <chrono>
#include <fstream>

// Times the lists that a user waits for in the function wizard when the cube has very many accounts.

namespace {

using namespace qel;
using test::DialogDouble;
using test::WizardBench;

const char* const givenNames[] = {"Arava", "Negev", "כרמל", "Galil", "שרון", "Golan", "Yarden", "Tavor"};

/// A cube with that many accounts of one line each, besides the other tables of the tests' odd cube.
std::string BuildWideBook(const std::filesystem::path& folder, int accounts) {
    const std::filesystem::path source = std::filesystem::path(QEL_SOURCE_DIR) / "tests/wizard/odd";
    for (const char* file : {"odd.json", "obs.csv"}) {
        std::filesystem::copy_file(source / file, folder / file);
    }
    std::ofstream accountTable(folder / "accounts.csv");
    std::ofstream ledger(folder / "ledger.csv");
    accountTable << "code,name,group,group_name\n";
    ledger << "date,account,obs,centre,activity,firm,amount\n";
    for (int i = 0; i < accounts; ++i) {
        const int code = 100000 + i;
        accountTable << fmt::format("{},{} {} Ltd,{},Group {}\n", code, givenNames[i % 8],
                                    i * 7919 % accounts, i % 90, i % 90);
        ledger << fmt::format("2024-{:02}-05,{},A1,100,S,{},{}.{:02}\n", i % 12 + 1, code, 10 + i % 3, i,
                              i % 100);
    }
    accountTable.close();
    ledger.close();
    const auto cube = folder / "wide.cub";
    engine::BuildOptions options;
    options.definition = folder / "odd.json";
    options.output = cube;
    engine::BuildCube(options);
    return cube.string();
}

/// Prints how long the work takes in milliseconds.
void Timed(const std::string& what, const std::function<std::size_t()>& work) {
    const auto start = std::chrono::steady_clock::now();
    const std::size_t count = work();
    const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
    fmt::print("{:<52} {:>8.2f} ms {:>7} rows\n", what, spent.count(), count);
}

void TimeTheWizard(WizardBench& bench, const std::string& cubeFile) {
    using namespace FunctionForm;
    bench.Remember(cubeFile);
    const auto start = std::chrono::steady_clock::now();
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
        fmt::print("{:<52} {:>8.2f} ms\n", "open the dialog", spent.count());
        dialog.Tick(CheckAcc, true);
        Timed("open the list of accounts for the first time",
              [&] { return dialog.Rows(ListAccount).RowCount(); });
        Timed("type the first letter", [&] { return dialog.Rows(ListAccount).Matching("g").size(); });
        for (const char* typed : {"gol", "golan 31", "כרמ", "1499", "149999", "no such account"}) {
            Timed(fmt::format("type '{}'", typed),
                  [&] { return dialog.Rows(ListAccount).Matching(typed).size(); });
        }
        dialog.Find(ListAccount, "Golan 31");
        Timed("calculate", [&] {
            dialog.Press(Command1);
            return std::size_t{1};
        });
        dialog.Press(CmdOK);
    });
    const auto again = std::chrono::steady_clock::now();
    bench.ShowFormGetVal([&](DialogDouble& dialog) {
        const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - again;
        fmt::print("{:<52} {:>8.2f} ms\n", "open the dialog and restore the account", spent.count());
        dialog.Press(CmdCancel);
    });
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Times the function wizard's opening and the search in its list of accounts."};
    int accounts = 50'000;
    app.add_option("--accounts", accounts, "accounts of the generated cube")
        ->check(CLI::Range(1, 1'000'000))
        ->capture_default_str();
    std::string keptCube;
    app.add_option("--keep-cube", keptCube, "where to leave a copy of the generated cube");
    CLI11_PARSE(app, argc, argv);
    try {
        WizardBench bench;
        const std::string cube = BuildWideBook(bench.folder.Path(), accounts);
        if (!keptCube.empty()) {
            std::filesystem::copy_file(cube, keptCube, std::filesystem::copy_options::overwrite_existing);
        }
        TimeTheWizard(bench, cube);
        for (const std::string& message : bench.TakeMessages()) {
            fmt::print(stderr, "{}\n", message);
        }
        return bench.sheet.log.empty() ? 1 : 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "qel-wizard-bench: {}\n", error.what());
        return 1;
    }
}
