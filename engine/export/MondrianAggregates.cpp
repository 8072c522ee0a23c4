#include "engine/export/MondrianAggregates.h"

#include "engine/export/XmlText.h"
#include "qel/engine/BracketedName.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace qel::engine {

namespace {

bool HasLevelOfItsName(const Hierarchy& hierarchy) {
    const auto& levels = hierarchy.Levels();
    return std::any_of(levels.begin(), levels.end(),
                       [&](const Level& level) { return EqualIgnoringCase(level.name, hierarchy.Name()); });
}

/// The name with the first Latin letter in the other case.
std::string InOtherCase(std::string name) {
    const auto letter = std::find_if(name.begin(), name.end(), [](char character) {
        return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
    });
    if (letter != name.end()) {
        *letter = static_cast<char>(*letter ^ ' ');
    }
    return name;
}

std::string AggregateLevels(const StarSchema& star, std::size_t index, std::size_t tableCount) {
    const Hierarchy& hierarchy = star.cube->Hierarchies()[index];
    const std::string& dimension = star.cube->Dimensions()[hierarchy.DimensionIndex()].name;
    const std::string name = NameAmongAggregates(hierarchy, dimension);
    if (name == dimension && HasLevelOfItsName(hierarchy)) { // statements with it go to the facts
        return {};
    }
    const std::string path =
        name == dimension ? BracketedName(dimension) : BracketedName(dimension) + "." + BracketedName(name);
    std::string text;
    for (std::size_t i = 0; i < tableCount; ++i) {
        for (const std::size_t level : star.hierarchies[index][i].levels) {
            text += fmt::format("        <AggLevel name=\"{}\" column=\"{}\"/>\n",
                                XmlEscaped(path + "." + BracketedName(hierarchy.Levels()[level].name)),
                                FlatColumn(index, level));
        }
    }
    return text;
}

/// The columns that are no levels. Without any Mondrian would not sum the rows for a statement with all
/// levels of the view.
std::string IgnoredColumns(const StarSchema& star, const FlatView& view) {
    std::vector<std::string> ignored = star.keyColumns;
    if (view.summedBy) {
        ignored = {star.keyColumns[*view.summedBy]};
    } else if (!star.constantColumn.empty()) {
        ignored.push_back(star.constantColumn);
    }
    std::string text;
    for (const auto& column : ignored) {
        text += fmt::format("        <AggIgnoreColumn column=\"{}\"/>\n", column);
    }
    return text;
}

std::string AggregateElement(const FlatStar& flat, std::size_t place) {
    const StarSchema& star = *flat.star;
    const FlatView& view = flat.views[place];
    std::string text = fmt::format("      <AggName name=\"{}\" approxRowCount=\"{}\">\n"
                                   "        <AggFactCount column=\"{}\"/>\n",
                                   view.name, place + 1, factCountColumn);
    text += IgnoredColumns(star, view);
    for (std::size_t i = 0; i < star.measureColumns.size(); ++i) {
        text += fmt::format("        <AggMeasure name=\"[Measures].{}\" column=\"{}\"/>\n",
                            XmlEscaped(BracketedName(star.cube->Measures()[i].name)), star.measureColumns[i]);
    }
    for (std::size_t index = 0; index < view.tables.size(); ++index) {
        text += AggregateLevels(star, index, view.tables[index]);
    }
    return text + "      </AggName>\n";
}

} // namespace

std::string NameAmongAggregates(const Hierarchy& hierarchy, const std::string& dimension) {
    const bool isUnclear = hierarchy.Name() == dimension && HasLevelOfItsName(hierarchy);
    return isUnclear ? InOtherCase(hierarchy.Name()) : hierarchy.Name();
}

std::string ComposeAggregates(const FlatStar& flat) {
    std::string text = fmt::format("    <Table name=\"{}\">\n", flat.star->factTable);
    for (std::size_t i = 0; i < flat.views.size(); ++i) {
        text += AggregateElement(flat, i);
    }
    return text + "    </Table>\n";
}

} // namespace qel::engine
