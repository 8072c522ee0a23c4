#pragma once

#include "bench/BenchData.h"
#include "bench/Timings.h"
#include "examples/ledger/reference/Selection.h"

#include <string>
#include <vector>

namespace qel::bench {

/// The formulas of one cube, through the component.
class Workload {
public:
    Workload(const BenchData& data, std::vector<ledger::Selection> formulas, std::uint64_t seed)
        : data_(data), formulas_(std::move(formulas)), seed_(seed) {}

    const std::vector<ledger::Selection>& Formulas() const { return formulas_; }
    /// Every formula once, in a program that has just opened the cube, whose file is in the system's memory.
    Timings FirstCalculation() const;
    /// The same on another thread: all pages that the formulas read are checked already.
    Timings FirstCalculationOfCheckedPages() const;
    /// The same again and again.
    Timings Recalculation(int rounds) const;
    /// The statements' plans alone, which every formula was turned into before: from the plan to the cell.
    Timings EngineAlone(int rounds) const;
    /// The first 100 lines behind every formula, read as a spreadsheet reads them.
    Timings FirstLines(int rounds) const;
    /// Formulas a second of so many threads, each with a connection of its own, in the best of the rounds.
    double FormulasPerSecond(std::size_t threads, int rounds) const;
    /// What every formula shows.
    std::vector<double> Values() const;

private:
    std::vector<std::string> Statements() const;

    const BenchData& data_;
    std::vector<ledger::Selection> formulas_;
    std::uint64_t seed_;
};

/// The milliseconds from the file's name to an open cube, in the best of some tries.
double OpeningMilliseconds(const BenchData& data);

} // namespace qel::bench
