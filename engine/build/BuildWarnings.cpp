#include "engine/build/BuildWarnings.h"

#include "engine/build/SharedMembers.h"
#include "engine/build/SourceEncoding.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/DecimalText.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

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

/// A file that is read in a western encoding and has words of Hebrew.
bool LooksLikeHebrew(const TableDefinition& table) {
    constexpr const char* western[] = {"windows-1252", "cp1252",      "ISO-8859-1", "ISO8859-1",
                                       "latin1",       "ISO-8859-15", "ISO8859-15"};
    return std::any_of(std::begin(western), std::end(western),
                       [&](const char* name) { return EqualIgnoringCase(name, table.format.encoding); }) &&
           DetectEncoding(table.file) == "windows-1255";
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
                fmt::format(
                    "{} {}. A formula with such a name shows the sum of these members (ObsMember) or the "
                    "first one only (any other argument). To tell them apart, give them names of their own "
                    "(\"memberName\"); if the sum or the first is meant, set \"accept\": \"equalNames\" in "
                    "the dimension",
                    names.count == 1
                        ? "several members have one name:"
                        : fmt::format("{} names belong to several members each, such as", names.count),
                    names.first));
        }
    }
}

void DimensionWarnings::AddSharedValues(const FactStore& facts, std::size_t column) const {
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

std::string DimensionWarnings::AmountOf(const std::vector<std::uint32_t>& values, const FactStore& facts,
                                        std::size_t column) const {
    std::vector<bool> isShared(keys_->Codes().size());
    for (const std::uint32_t value : values) {
        isShared[value] = true;
    }
    std::size_t measure = cube_.defaultMeasure;
    while (measure < cube_.measures.size() && !cube_.measures[measure].column) {
        ++measure;
    }
    std::int64_t sum = 0, lines = 0;
    facts.ForEach([&](const FactBlock& block) {
        for (std::size_t row = 0; row < block.rows; ++row) {
            if (isShared[block.keys[column][row]]) {
                ++lines;
                sum += measure < cube_.measures.size() ? block.values[measure][row] : 0;
            }
        }
    });
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

std::string NoRowsText(const TableDefinition& table) {
    return table.odbc ? "its query answers no rows" : "it has no lines below its header";
}

void AddTableWarnings(const TableReader& reader, std::vector<BuildWarning>& warnings) {
    const TableDefinition& table = reader.Table();
    const auto add = [&](const char* kind, const std::string& text) {
        const bool isKnown = std::any_of(warnings.begin(), warnings.end(),
                                         [&text](const auto& warning) { return warning.text == text; });
        if (!isKnown) {
            warnings.push_back({kind, "", "", text});
        }
    };
    const auto mayHave = [&](const char* kind) {
        return std::find(table.accepted.begin(), table.accepted.end(), kind) == table.accepted.end();
    };
    const RecordReader& records = reader.Records();
    if (!records.IsComplete() && mayHave(lastLine)) {
        add(lastLine, fmt::format("{}, line {}: the last line has no line end; the file may be cut off",
                                  records.Name(), records.Number()));
    }
    if (reader.LinesRead() == 0 && mayHave(noRows)) {
        add(noRows, fmt::format("{}: {}", records.Name(), NoRowsText(table)));
    }
    if (!table.odbc && LooksLikeHebrew(table) && mayHave(hebrewEncoding)) {
        add(hebrewEncoding,
            fmt::format(
                "{}: its letters look like Hebrew, not like {}, in which it shows \"àáâ\" for \"אבג\"; set "
                "\"encoding\": \"windows-1255\" in the table \"{}\"",
                records.Name(), table.format.encoding, table.name));
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
