#include "cli/CubeTotals.h"

#include "cli/TextTable.h"
#include "text/DecimalText.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <stdexcept>

namespace qel {

namespace {

using engine::SourceTotals;

void Add(const SourceTotals& source, SourceTotals& total) {
    total.linesRead += source.linesRead;
    total.linesUsed += source.linesUsed;
    total.linesSkipped += source.linesSkipped;
    total.sums.resize(source.sums.size());
    for (std::size_t i = 0; i < source.sums.size(); ++i) {
        total.sums[i] = static_cast<std::int64_t>(static_cast<std::uint64_t>(total.sums[i]) +
                                                  static_cast<std::uint64_t>(source.sums[i]));
    }
}

std::vector<std::string> Line(const SourceTotals& totals, std::span<const engine::Measure> measures) {
    std::vector<std::string> line = {"  " + totals.file, fmt::format("{}", totals.linesRead),
                                     fmt::format("{}", totals.linesUsed),
                                     fmt::format("{}", totals.linesSkipped)};
    for (std::size_t i = 0; i < measures.size(); ++i) {
        line.push_back(DecimalText(totals.sums[i], measures[i].decimals));
    }
    return line;
}

} // namespace

void PrintTotals(const engine::CubeFile& file, std::ostream& output) {
    for (std::size_t i = 0; i < file.Cubes().size(); ++i) {
        const engine::Cube& cube = file.Cubes()[i];
        const auto sources = file.Sources(i);
        if (sources.empty()) {
            throw std::runtime_error(
                fmt::format("{}: built before totals were kept; build it again", PathToUtf8(file.Path())));
        }
        TextTable table{1, {{"  file", "lines read", "used", "skipped"}}};
        for (const auto& measure : cube.Measures()) {
            table.lines.front().push_back(measure.name);
        }
        SourceTotals total;
        total.file = "total";
        for (const SourceTotals& source : sources) {
            table.lines.push_back(Line(source, cube.Measures()));
            Add(source, total);
        }
        if (sources.size() > 1) {
            table.lines.push_back(Line(total, cube.Measures()));
        }
        fmt::print(output, "cube {}\n", cube.Name());
        PrintTable(table, output);
    }
}

} // namespace qel
