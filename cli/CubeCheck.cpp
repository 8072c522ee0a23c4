#include "cli/CubeCheck.h"

#include "cube/CubeConnection.h"
#include "cube/CubeDates.h"
#include "cube/CubeLayout.h"
#include "function/OrmQelFunction.h"
#include "platform/value/ValueText.h"

#include <fmt/format.h>
#include <fmt/ostream.h>

namespace qel {

std::string Stopwatch::Text() const {
    const auto passed = std::chrono::steady_clock::now() - start_;
    return fmt::format("{:.1f} ms", std::chrono::duration<double, std::milli>(passed).count());
}

void CubeCheck::Line(std::string_view label, std::string_view text) {
    fmt::print(context_.output, "{:<10}{}\n", fmt::format("{}:", label), text);
}

void CubeCheck::Fault(std::string_view text) {
    Line("missing", text);
    context_.failed = true;
}

void CubeCheck::Print(const std::string& cubeName, const std::string& measure) {
    const auto own = context_.providers.Connect(ModSetCube::ComposeConnectionText(source_, cubeName));
    const auto catalog = own.provider.CreateCatalog();
    catalog->SetActiveConnection(own.connection);
    const Stopwatch watch;
    const auto cube = catalog->CubeAt(0);
    const auto faults = ModSetCube::FindLayoutFaults(*cube);
    Line("cube",
         fmt::format("{}, {} dimensions, read in {}", cube->Name(), cube->DimensionCount(), watch.Text()));
    for (const auto& fault : faults) {
        Fault(fault);
    }
    if (!faults.empty()) {
        return;
    }
    Line("layout", "has everything that the formulas name");
    if (PrintDates(*cube)) {
        PrintFormula(cubeName, measure, *cube);
    }
}

bool CubeCheck::PrintDates(const CubeDef& cube) {
    const auto date = cube.DimensionNamed("Date")->HierarchyAt(0);
    auto faults = ModSetCube::FindDateFaults(*date);
    if (ModSetCube::HasDaysForMonths(*date)) {
        faults = {"[Date] has days and four levels, so that its days are read as months: no formula works"};
    }
    for (const auto& fault : faults) {
        Line("dates", fault);
        context_.failed = true;
    }
    return faults.empty();
}

/// The sum of the first OBS name's first number over the cube's last period, twice: a sheet's later formulas
/// find the connection open.
void CubeCheck::PrintFormula(const std::string& cubeName, const std::string& measure, const CubeDef& cube) {
    const auto numbers = cube.DimensionNamed("ActX")->HierarchyAt(0)->LevelAt(2);
    if (numbers->MemberCount() == 0) {
        Fault("the level of OBS numbers has no member");
        return;
    }
    const auto number = numbers->MemberAt(0);
    const std::string name = number->Parent()->Name();
    ModSetCube::ThreadState thread;
    OrmQelFunction object({thread, context_.providers, context_.locale});
    const Stopwatch first;
    const auto key = [](const std::string& text) { return Variant::List({text}); };
    ValueCall call{.cubeFile = source_,
                   .CubeName = cubeName,
                   .ObsName = key(name),
                   .ObsNum = key(number->Name()),
                   .ObsLevel = key("All"),
                   .ObsMember = key("All"),
                   .ActivityList = key("All"),
                   .Measure = measure};
    object.QelFuncDemo(call);
    const std::string firstTime = first.Text();
    const Stopwatch second;
    call.From_Date = call.To_Date = thread.dates.CubeMaxDate;
    const Variant value = object.QelFuncDemo(call).value;
    Line("formula", fmt::format("OBS {} {}, {}: {} (the first in {}, the next in {})", name, number->Name(),
                                FormatShortDate(thread.dates.CubeMaxDate, context_.locale), ValueText(value),
                                firstTime, second.Text()));
    context_.failed = context_.failed || value.Is<std::string>();
}

} // namespace qel
