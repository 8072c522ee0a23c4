#include "engine/build/BuildWarnings.h"

#include "engine/build/SharedMembers.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/DecimalText.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

bool Accepts(const DimensionDefinition& dimension, const std::string& kind) {
    return std::find(dimension.accepted.begin(), dimension.accepted.end(), kind) != dimension.accepted.end();
}

bool IsAccepted(const BuildWarning& warning, const Definition& definition) {
    for (const CubeDefinition& cube : definition.cubes) {
        for (const DimensionDefinition& dimension : cube.dimensions) {
            if (cube.name == warning.cube && EqualIgnoringCase(dimension.name, warning.dimension) &&
                Accepts(dimension, warning.kind)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

void DimensionWarnings::Add(const char* kind, const std::string& place, const std::string& fault) const {
    const DimensionDefinition& dimension = dimension_.Definition();
    if (!Accepts(dimension, kind)) {
        warnings_.push_back(
            {kind, cube_.name, dimension.name, fmt::format("cube {}, {}: {}", cube_.name, place, fault)});
    }
}

void DimensionWarnings::AddSharedNames() const {
    for (const MemberTree& tree : dimension_.Trees()) {
        const HierarchyDefinition& hierarchy = tree.Definition();
        for (std::uint32_t level = 0; level < hierarchy.levels.size(); ++level) {
            const SharedNames names = FindSharedNames(tree, level);
            if (names.count == 0) {
                continue;
            }
            Add(equalNames,
                fmt::format("level [{}].[{}].[{}]", dimension_.Definition().name, hierarchy.name,
                            hierarchy.levels[level].name),
                fmt::format("{}, first {}; a formula that names one adds them up or takes the first",
                            names.count == 1 ? "one name belongs to several members"
                                             : fmt::format("{} names belong to several members", names.count),
                            names.first));
        }
    }
}

void DimensionWarnings::AddSharedValues(const FactColumns& facts, std::size_t column) const {
    for (const MemberTree& tree : dimension_.Trees()) {
        const SharedValues shared = FindSharedValues(tree);
        if (shared.values.empty()) {
            continue;
        }
        Add(severalParents,
            fmt::format("hierarchy [{}].[{}]", dimension_.Definition().name, tree.Definition().name),
            fmt::format("{} of the column {}, first \"{}\" under {}; {} counts in each of them",
                        shared.values.size() == 1
                            ? "one value has several parents"
                            : fmt::format("{} values have several parents", shared.values.size()),
                        keys_->Name(), keys_->ShownText(shared.values.front()), shared.parents,
                        AmountOf(shared.values, facts, column)));
        return; // hierarchies over one table share their values
    }
}

std::string DimensionWarnings::AmountOf(const std::vector<std::uint32_t>& values, const FactColumns& facts,
                                        std::size_t column) const {
    std::vector<bool> isShared(keys_->CodeCount());
    for (const std::uint32_t value : values) {
        isShared[keys_->Codes()[value]] = true;
    }
    std::size_t measure = cube_.defaultMeasure;
    while (measure < cube_.measures.size() && !cube_.measures[measure].column) {
        ++measure;
    }
    const auto& codes = facts.keys[column];
    std::int64_t sum = 0, lines = 0;
    for (std::size_t row = 0; row < codes.size(); ++row) {
        if (isShared[codes[row]]) {
            ++lines;
            sum += measure < cube_.measures.size() ? facts.values[measure][row] : 0;
        }
    }
    return measure < cube_.measures.size() ? fmt::format("{} {}", cube_.measures[measure].name,
                                                         DecimalText(sum, cube_.measures[measure].decimals))
                                           : fmt::format("{} lines", lines);
}

void DimensionWarnings::AddDateOrder() const {
    const auto date = keys_->IsCalendar() ? keys_->DateOfEitherOrder() : std::nullopt;
    if (date) {
        Add(dateOrder, fmt::format("dimension {}, column {}", dimension_.Definition().name, keys_->Name()),
            fmt::format("every date fits \"dmy\" and \"mdy\", such as \"{}\"; see that \"dates\" is right",
                        *date));
    }
}

void AddReviewed(std::vector<BuildWarning> found, const Definition& definition,
                 std::vector<BuildWarning>& warnings) {
    std::copy_if(found.begin(), found.end(), std::back_inserter(warnings),
                 [&](const BuildWarning& warning) { return !IsAccepted(warning, definition); });
}

void RefuseWarnings(const std::vector<BuildWarning>& warnings) {
    if (warnings.empty()) {
        return;
    }
    std::string text =
        fmt::format("{} stopped the strict build; the cube file is as it was:",
                    warnings.size() == 1 ? "one warning" : fmt::format("{} warnings", warnings.size()));
    for (const BuildWarning& warning : warnings) {
        text += "\n  " + warning.text;
    }
    throw EngineError(ErrorKind::InvalidData, text);
}

} // namespace qel::engine
