#include "qel/engine/BuildCube.h"

#include "engine/build/BadLines.h"
#include "engine/build/BuildPaths.h"
#include "engine/build/BuildWarnings.h"
#include "engine/build/CubeBuilder.h"
#include "engine/build/Definition.h"
#include "engine/build/FactSorter.h"
#include "engine/build/FilePrint.h"
#include "engine/build/PreviousBuild.h"
#include "engine/build/SpillStore.h"
#include "engine/storage/CubeFileWriter.h"
#include "qel/engine/CheckCalculations.h"
#include "qel/engine/CubeFile.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace qel::engine {

namespace {

/// Only the complete file has every name that a formula may use.
void CheckCalculations(const Definition& definition, CubeFileWriter& writer) {
    if (std::all_of(definition.cubes.begin(), definition.cubes.end(),
                    [](const CubeDefinition& cube) { return cube.calculations.Empty(); })) {
        return;
    }
    const auto file = CubeFile::Open(writer.Complete());
    for (std::size_t i = 0; i < definition.cubes.size(); ++i) {
        if (const auto fault = FindCalculationFault(file->Cubes()[i])) {
            RefuseCalculation(definition.cubes[i], *fault);
        }
    }
}

std::optional<PreviousBuild> OpenPrevious(const BuildOptions& options) {
    std::error_code unknown;
    return options.previous && std::filesystem::exists(*options.previous, unknown)
               ? std::optional<PreviousBuild>(std::in_place, *options.previous)
               : std::nullopt;
}

Continuation ContinuationOf(std::size_t cube, const Definition& definition, const BuildOptions& options,
                            const std::optional<PreviousBuild>& previous) {
    Continuation continuation;
    if (!options.previous) {
        return continuation;
    }
    continuation.obstacle = ContinuationObstacle(definition.cubes[cube], definition);
    continuation.keeps = continuation.obstacle.empty();
    if (continuation.keeps) {
        continuation.definition = TakePrint(options.definition, 0).all;
        if (previous) {
            previous->Take(static_cast<std::uint32_t>(cube), continuation);
        } else {
            continuation.obstacle = "there is no previous cube file yet";
        }
    }
    return continuation;
}

} // namespace

BuildTotals BuildCube(const BuildOptions& options) {
    const Definition definition = ReadDefinition(options.definition);
    CheckWrittenPaths(options, definition);
    BuildTotals totals;
    CubeFileWriter writer(options.output); // created first, so that a wrong path fails before a long build
    SpillStore store(options.output, options.memory);
    BadLines badLines(options.skippedLines);
    // The metadata of all cubes comes before any facts, so that opening reads few pages.
    std::vector<std::unique_ptr<CubeBuilder>> cubes;
    std::optional<PreviousBuild> previous = OpenPrevious(options);
    for (const CubeDefinition& cube : definition.cubes) {
        cubes.push_back(
            std::make_unique<CubeBuilder>(definition, cube, badLines, options.progress, store,
                                          ContinuationOf(cubes.size(), definition, options, previous)));
        cubes.back()->Run(totals);
        writer.AddCube(cubes.back()->Model());
    }
    previous.reset();
    badLines.Finish();
    totals.distinctLinesSkipped = badLines.LineCount();
    for (std::uint32_t i = 0; i < cubes.size(); ++i) {
        const std::string step = "Writing " + cubes[i]->Model().name;
        const auto progress = [&](double share) {
            if (options.progress) {
                options.progress(step, share);
            }
        };
        WriteFacts(cubes[i]->Model(), cubes[i]->Facts(), i, store, writer, progress);
        cubes[i]->WriteKept(i, writer);
        cubes[i].reset();
    }
    CheckCalculations(definition, writer);
    if (options.review) {
        AddReviewed(options.review(writer.Complete()), definition, totals.warnings);
    }
    if (options.strict) {
        RefuseWarnings(totals.warnings);
    }
    totals.bytesWritten = writer.Commit();
    return totals;
}

} // namespace qel::engine
