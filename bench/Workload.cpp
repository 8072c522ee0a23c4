#include "bench/Workload.h"

#include "cube/CellLines.h"
#include "cube/CubeConnection.h"
#include "engine/eval/StatementPlan.h"
#include "examples/ledger/reference/FormulaCell.h"
#include "qel/engine/CubeFile.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace qel::bench {
namespace {

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Keeps the statement that was sent last.
struct LastStatement : DataObserver {
    std::string text; ///< empty when none was sent

    void OnOpening(const std::string& /*connectionText*/, std::chrono::nanoseconds /*time*/) override {}
    void OnStatement(const std::string& statement) override { text = statement; }
};

/// So that no disk is measured.
void LoadIntoMemory(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> block(1U << 20U);
    while (file.read(block.data(), static_cast<std::streamsize>(block.size()))) {
    }
}

Timings TimeOnce(ledger::FormulaCell& cell, const std::vector<ledger::Selection>& formulas) {
    Timings timings(formulas.size());
    cell.Value(formulas.front()); // opens the cube
    for (std::size_t i = 0; i < formulas.size(); ++i) {
        timings.Measure(i, [&] { return cell.Value(formulas[i]); });
    }
    return timings;
}

} // namespace

Timings Workload::FirstCalculation() const {
    LoadIntoMemory(data_.cubeFile);
    ledger::FormulaCell cell(data_.cubeFile.string(), seed_);
    return TimeOnce(cell, formulas_);
}

Timings Workload::FirstCalculationOfCheckedPages() const {
    EmbeddedDataAccess shared;
    ledger::FormulaCell first(data_.cubeFile.string(), seed_, shared);
    TimeOnce(first, formulas_);
    ledger::FormulaCell second(data_.cubeFile.string(), seed_, shared);
    return TimeOnce(second, formulas_);
}

Timings Workload::Recalculation(int rounds) const {
    Timings timings(formulas_.size());
    ledger::FormulaCell cell(data_.cubeFile.string(), seed_);
    for (const ledger::Selection& formula : formulas_) {
        cell.Value(formula);
    }
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < formulas_.size(); ++i) {
            timings.Measure(i, [&] { return cell.Value(formulas_[i]); });
        }
    }
    return timings;
}

std::vector<std::string> Workload::Statements() const {
    EmbeddedDataAccess embedded;
    LastStatement last;
    Providers providers(embedded);
    providers.observer = &last;
    ledger::FormulaCell cell(data_.cubeFile.string(), seed_, providers);
    std::vector<std::string> statements;
    for (const ledger::Selection& formula : formulas_) {
        last.text.clear();
        cell.Value(formula);
        if (!last.text.empty()) { // a period outside the cube needs none
            statements.push_back(last.text);
        }
    }
    return statements;
}

Timings Workload::EngineAlone(int rounds) const {
    const auto file = engine::CubeFile::Open(data_.cubeFile);
    const bool byMonths = formulas_.front().cube == ledger::LedgerCube::Months;
    const auto cube = file->FindCube(byMonths ? "LedgerFNC" : "LedgerHebrewFNC");
    std::vector<std::shared_ptr<const engine::StatementPlan>> plans;
    for (const std::string& statement : Statements()) {
        plans.push_back(engine::RunAndPlan(*cube, statement).plan);
        if (plans.back() == nullptr) {
            throw std::runtime_error("A formula's statement has no plan: " + statement);
        }
    }
    Timings timings(plans.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < plans.size(); ++i) {
            timings.Measure(i, [&] { return plans[i]->Run(); });
        }
    }
    return timings;
}

Timings Workload::FirstLines(int rounds) const {
    EmbeddedDataAccess embedded;
    const Providers providers(embedded);
    const bool byMonths = formulas_.front().cube == ledger::LedgerCube::Months;
    const auto own = providers.Connect(ModSetCube::ComposeConnectionText(
        data_.cubeFile.string(), byMonths ? "LedgerFNC" : "LedgerHebrewFNC"));
    const auto statements = Statements();
    Timings timings(statements.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < statements.size(); ++i) {
            timings.Measure(i, [&] {
                const auto lines = own.provider.CreateRecordset();
                lines->Open("DRILLTHROUGH MAXROWS 100 " + statements[i], own.connection, optionsUnspecified,
                            optionsUnspecified, optionsUnspecified);
                return ModSetCube::ReadRows(*lines).rows.size();
            });
        }
    }
    return timings;
}

double Workload::FormulasPerSecond(std::size_t threads, int rounds) const {
    EmbeddedDataAccess shared;
    double best = 0;
    std::vector<std::unique_ptr<ledger::FormulaCell>> cells;
    for (std::size_t i = 0; i < threads; ++i) {
        cells.push_back(std::make_unique<ledger::FormulaCell>(data_.cubeFile.string(), seed_, shared));
    }
    for (int round = 0; round <= rounds; ++round) { // the first one warms up
        const auto start = std::chrono::steady_clock::now();
        std::vector<std::thread> running;
        for (std::size_t thread = 0; thread < threads; ++thread) {
            running.emplace_back([&, thread] {
                for (std::size_t i = 0; i < formulas_.size(); ++i) {
                    cells[thread]->Value(formulas_[(i + thread * 7919) % formulas_.size()]);
                }
            });
        }
        for (std::thread& thread : running) {
            thread.join();
        }
        const double perSecond = static_cast<double>(threads * formulas_.size()) / SecondsSince(start);
        best = round == 0 ? 0 : std::max(best, perSecond);
    }
    return best;
}

std::vector<double> Workload::Values() const {
    ledger::FormulaCell cell(data_.cubeFile.string(), seed_);
    std::vector<double> values;
    for (const ledger::Selection& formula : formulas_) {
        values.push_back(cell.Value(formula));
    }
    return values;
}

double OpeningMilliseconds(const BenchData& data) {
    constexpr int tries = 20;
    double best = 0;
    for (int i = 0; i < tries; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const auto file = engine::CubeFile::Open(data.cubeFile);
        const double milliseconds = SecondsSince(start) * 1e3;
        best = i == 0 ? milliseconds : std::min(best, milliseconds);
    }
    return best;
}

} // namespace qel::bench
