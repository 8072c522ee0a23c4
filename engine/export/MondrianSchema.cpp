#include "engine/export/MondrianSchema.h"

#include "qel/engine/BracketedName.h"
#include "qel/engine/CheckCalculations.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"

#include <fmt/format.h>

#include <algorithm>

namespace qel::engine {

namespace {

/// A text escaped as an attribute value.
std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\n':
            escaped += "&#10;";
            break;
        case '\t':
            escaped += "&#9;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

std::string CaptionAttribute(std::string_view name, std::string_view caption) {
    return name == caption ? "" : fmt::format(" caption=\"{}\"", Escaped(caption));
}

bool HasCaptions(const Hierarchy& hierarchy, const Level& level) {
    for (MemberId member = level.members.first; member < level.members.last; ++member) {
        if (hierarchy.MemberName(member) != hierarchy.MemberCaption(member)) {
            return true;
        }
    }
    return false;
}

/// Joins the tables from the top level down; the facts are joined to the first.
std::string Relation(const std::vector<StarTable>& tables, std::size_t first, const std::string& indent) {
    std::string table = fmt::format("{}<Table name=\"{}\"/>\n", indent, tables[first].name);
    if (first + 1 == tables.size()) {
        return table;
    }
    const std::string deeper = Relation(tables, first + 1, indent + "  ");
    const bool rightIsJoin = first + 2 < tables.size();
    return fmt::format(
        "{0}<Join leftKey=\"{1}\" rightKey=\"{2}\"{3}>\n  {4}{5}{0}</Join>\n", indent, rowColumn, ownerColumn,
        rightIsJoin ? fmt::format(" rightAlias=\"{}\"", tables[first + 1].name) : "", table, deeper);
}

/// The kind of a calendar's level, which the keys of its members tell: 2024, 2024-Q1, 2024-03, 2024-03-31.
std::string_view TimeLevelType(const Hierarchy& hierarchy, const Level& level) {
    const std::string_view key =
        level.members.first < level.members.last ? hierarchy.MemberKey(level.members.first) : "";
    switch (key.size()) {
    case 4:
        return "TimeYears";
    case 7:
        return key[5] == 'Q' ? "TimeQuarters" : "TimeMonths";
    case 10:
        return "TimeDays";
    default:
        return "TimeUndefined";
    }
}

std::string LevelElement(const Hierarchy& hierarchy, const StarTable& table, std::size_t level,
                         bool namesTable, bool isTime, bool isUnique) {
    const Level& stored = hierarchy.Levels()[level];
    const std::string tableAttribute = namesTable ? fmt::format(" table=\"{}\"", table.name) : "";
    const std::string captions =
        HasCaptions(hierarchy, stored) ? fmt::format(" captionColumn=\"{}\"", CaptionColumn(level)) : "";
    const std::string levelType =
        isTime ? fmt::format(" levelType=\"{}\"", TimeLevelType(hierarchy, stored)) : "";
    return fmt::format("        <Level name=\"{}\"{} column=\"{}\" nameColumn=\"{}\"{} type=\"Integer\" "
                       "uniqueMembers=\"{}\"{}/>\n",
                       Escaped(stored.name), tableAttribute, IdColumn(level), NameColumn(level), captions,
                       isUnique, levelType);
}

std::string AllAttributes(const Hierarchy& hierarchy) {
    if (!hierarchy.HasAll()) {
        return " hasAll=\"false\"";
    }
    return fmt::format(" hasAll=\"true\" allLevelName=\"{}\" allMemberName=\"{}\"",
                       Escaped(hierarchy.Levels().front().name), Escaped(hierarchy.MemberName(0)));
}

/// Sums by a level with unique members are grouped by it alone. Below the months by which a star is spread
/// they must be grouped by month too, or the coordinator would sum what the shards can.
bool HasUniqueMembers(const FlatStar* flat, const Hierarchy& hierarchy, std::size_t level) {
    return !flat || hierarchy.Index() != flat->calendar || level <= flat->months;
}

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

/// The hierarchy's name in the schema, which is the same to statements. In the description of an aggregate
/// table Mondrian takes [Firma].[Firma] for a hierarchy and finds no level, but finds
/// [Firma].[firma].[Firma].
std::string NameInSchema(const FlatStar* flat, const Hierarchy& hierarchy, const std::string& dimension) {
    const bool isUnclear = flat && hierarchy.Name() == dimension && HasLevelOfItsName(hierarchy);
    return isUnclear ? InOtherCase(hierarchy.Name()) : hierarchy.Name();
}

std::string HierarchyElement(const StarSchema& star, const FlatStar* flat, const Hierarchy& hierarchy,
                             const Dimension& dimension) {
    const auto& tables = star.hierarchies[hierarchy.Index()];
    const bool isJoined = tables.size() > 1;
    std::string attributes;
    const std::string name = NameInSchema(flat, hierarchy, dimension.name);
    if (name != dimension.name) {
        attributes += fmt::format(" name=\"{}\"", Escaped(name));
    }
    attributes += CaptionAttribute(name, hierarchy.Caption()) + AllAttributes(hierarchy);
    attributes += fmt::format(" primaryKey=\"{}\"", ownerColumn);
    if (isJoined) {
        attributes += fmt::format(" primaryKeyTable=\"{}\"", tables.front().name);
    }
    if (hierarchy.DefaultMember() != 0) {
        attributes += fmt::format(" defaultMember=\"{}\"",
                                  Escaped(hierarchy.MemberUniqueName(hierarchy.DefaultMember())));
    }
    std::string text = fmt::format("      <Hierarchy{}>\n{}", attributes, Relation(tables, 0, "        "));
    for (const auto& table : tables) {
        for (const std::size_t level : table.levels) {
            text += LevelElement(hierarchy, table, level, isJoined, dimension.isTime,
                                 HasUniqueMembers(flat, hierarchy, level));
        }
    }
    return text + "      </Hierarchy>\n";
}

/// The fact column that joins the dimension's tables.
const std::string& ForeignKey(const StarSchema& star, const Dimension& dimension) {
    const auto& hierarchies = star.cube->Hierarchies();
    const auto column = hierarchies[dimension.hierarchies.front()].KeyColumn();
    for (const std::size_t index : dimension.hierarchies) {
        if (hierarchies[index].KeyColumn() != column) {
            throw EngineError(
                ErrorKind::InvalidExpression,
                fmt::format("The dimension '{}' of the cube '{}' has hierarchies over several fact "
                            "columns, which the schema cannot say.",
                            dimension.name, star.cube->Name()));
        }
    }
    return column ? star.keyColumns[*column] : star.constantColumn;
}

std::string MeasureElement(const StarSchema& star, std::size_t index) {
    const Measure& measure = star.cube->Measures()[index];
    const bool isCount = measure.function == AggregateFunction::Count;
    const std::string decimals = measure.decimals == 0 ? "" : "." + std::string(measure.decimals, '0');
    return fmt::format("    <Measure name=\"{}\"{} column=\"{}\" aggregator=\"{}\" datatype=\"{}\" "
                       "formatString=\"#,##0{}\"/>\n",
                       Escaped(measure.name), CaptionAttribute(measure.name, measure.caption),
                       star.measureColumns[index], isCount ? "count" : "sum", isCount ? "Integer" : "Numeric",
                       decimals);
}

std::string CalculatedMemberElement(const Cube& cube, const CalculatedMember& member,
                                    const CalculationPlace& place) {
    std::string attributes = " dimension=\"Measures\"";
    if (place.hierarchy) {
        const Hierarchy& hierarchy = cube.Hierarchies()[*place.hierarchy];
        const std::string& dimension = cube.Dimensions()[hierarchy.DimensionIndex()].name;
        attributes = hierarchy.Name() == dimension
                         ? fmt::format(" dimension=\"{}\"", Escaped(dimension))
                         : fmt::format(" hierarchy=\"{}\"",
                                       Escaped(BracketedName(dimension + "." + hierarchy.Name())));
        if (place.parent != noMember) {
            attributes += fmt::format(" parent=\"{}\"", Escaped(hierarchy.MemberUniqueName(place.parent)));
        }
    }
    if (!member.format.empty()) {
        attributes += fmt::format(" formatString=\"{}\"", Escaped(member.format));
    }
    std::string text = fmt::format("    <CalculatedMember name=\"{}\"{}>\n      <Formula>{}</Formula>\n",
                                   Escaped(place.name), attributes, Escaped(member.formula));
    if (member.solveOrder != 0) {
        text += fmt::format("      <CalculatedMemberProperty name=\"SOLVE_ORDER\" value=\"{}\"/>\n",
                            member.solveOrder);
    }
    return text + "    </CalculatedMember>\n";
}

std::string CalculationElements(const Cube& cube) {
    const Calculations& calculations = cube.GetCalculations();
    if (calculations.Empty()) {
        return {};
    }
    std::string text;
    const CalculationPlaces places = FindCalculationPlaces(cube);
    for (std::size_t i = 0; i < places.members.size(); ++i) {
        text += CalculatedMemberElement(cube, calculations.members[i], places.members[i]);
    }
    for (std::size_t i = 0; i < places.setNames.size(); ++i) {
        text += fmt::format("    <NamedSet name=\"{}\">\n      <Formula>{}</Formula>\n    </NamedSet>\n",
                            Escaped(places.setNames[i]), Escaped(calculations.sets[i].formula));
    }
    return text;
}

std::string AggregateLevels(const StarSchema& star, const FlatStar& flat, std::size_t index,
                            std::size_t tableCount) {
    const Hierarchy& hierarchy = star.cube->Hierarchies()[index];
    const std::string& dimension = star.cube->Dimensions()[hierarchy.DimensionIndex()].name;
    const std::string name = NameInSchema(&flat, hierarchy, dimension);
    if (name == dimension && HasLevelOfItsName(hierarchy)) { // statements with it go to the facts
        return {};
    }
    const std::string path =
        name == dimension ? BracketedName(dimension) : BracketedName(dimension) + "." + BracketedName(name);
    std::string text;
    for (std::size_t i = 0; i < tableCount; ++i) {
        for (const std::size_t level : star.hierarchies[index][i].levels) {
            text += fmt::format("        <AggLevel name=\"{}\" column=\"{}\"/>\n",
                                Escaped(path + "." + BracketedName(hierarchy.Levels()[level].name)),
                                FlatColumn(index, level));
        }
    }
    return text;
}

std::string IgnoredColumns(const StarSchema& star) {
    std::vector<std::string> ignored = star.keyColumns;
    if (!star.constantColumn.empty()) {
        ignored.push_back(star.constantColumn);
    }
    std::string text;
    for (const auto& column : ignored) {
        text += fmt::format("        <AggIgnoreColumn column=\"{}\"/>\n", column);
    }
    return text;
}

/// The view as an aggregate table. Of those that hold a statement's levels the server takes the one with the
/// fewest rows, so the stated numbers only give the order of the views.
std::string AggregateElement(const FlatStar& flat, std::size_t place) {
    const StarSchema& star = *flat.star;
    const FlatView& view = flat.views[place];
    std::string text = fmt::format("      <AggName name=\"{}\" approxRowCount=\"{}\">\n"
                                   "        <AggFactCount column=\"{}\"/>\n",
                                   view.name, place + 1, factCountColumn);
    text += view.summedBy ? "" : IgnoredColumns(star);
    for (std::size_t i = 0; i < star.measureColumns.size(); ++i) {
        text += fmt::format("        <AggMeasure name=\"[Measures].{}\" column=\"{}\"/>\n",
                            Escaped(BracketedName(star.cube->Measures()[i].name)), star.measureColumns[i]);
    }
    for (std::size_t index = 0; index < view.tables.size(); ++index) {
        text += AggregateLevels(star, flat, index, view.tables[index]);
    }
    return text + "      </AggName>\n";
}

std::string FactElement(const StarSchema& star, const FlatStar* flat) {
    if (!flat) {
        return fmt::format("    <Table name=\"{}\"/>\n", star.factTable);
    }
    std::string text = fmt::format("    <Table name=\"{}\">\n", star.factTable);
    for (std::size_t i = 0; i < flat->views.size(); ++i) {
        text += AggregateElement(*flat, i);
    }
    return text + "    </Table>\n";
}

} // namespace

std::string ComposeMondrianSchema(const StarSchema& star, const FlatStar* flat) {
    const Cube& cube = *star.cube;
    const auto measures = cube.Measures();
    std::string text = fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Schema name=\"{0}\">\n"
                                   "  <Cube name=\"{0}\"{1} defaultMeasure=\"{2}\">\n{3}",
                                   Escaped(cube.Name()), CaptionAttribute(cube.Name(), cube.Caption()),
                                   Escaped(measures[cube.DefaultMeasure()].name), FactElement(star, flat));
    for (const auto& dimension : cube.Dimensions()) {
        text += fmt::format("    <Dimension name=\"{}\"{}{} foreignKey=\"{}\">\n", Escaped(dimension.name),
                            CaptionAttribute(dimension.name, dimension.caption),
                            dimension.isTime ? " type=\"TimeDimension\"" : "", ForeignKey(star, dimension));
        for (const std::size_t index : dimension.hierarchies) {
            text += HierarchyElement(star, flat, cube.Hierarchies()[index], dimension);
        }
        text += "    </Dimension>\n";
    }
    for (std::size_t i = 0; i < measures.size(); ++i) {
        text += MeasureElement(star, i);
    }
    return text + CalculationElements(cube) + "  </Cube>\n</Schema>\n";
}

} // namespace qel::engine
