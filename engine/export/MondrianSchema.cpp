#include "engine/export/MondrianSchema.h"

#include "engine/export/MondrianAggregates.h"
#include "engine/export/XmlText.h"
#include "qel/engine/BracketedName.h"
#include "qel/engine/CheckCalculations.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace qel::engine {

namespace {

std::string CaptionAttribute(std::string_view name, std::string_view caption) {
    return name == caption ? "" : fmt::format(" caption=\"{}\"", XmlEscaped(caption));
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
                       XmlEscaped(stored.name), tableAttribute, IdColumn(level), NameColumn(level), captions,
                       isUnique, levelType);
}

std::string AllAttributes(const Hierarchy& hierarchy) {
    if (!hierarchy.HasAll()) {
        return " hasAll=\"false\"";
    }
    return fmt::format(" hasAll=\"true\" allLevelName=\"{}\" allMemberName=\"{}\"",
                       XmlEscaped(hierarchy.Levels().front().name), XmlEscaped(hierarchy.MemberName(0)));
}

/// Sums by a level with unique members are grouped by it alone. Below the months by which a star is spread
/// they must be grouped by month too, or the coordinator would sum what the shards can.
bool HasUniqueMembers(const FlatStar* flat, const Hierarchy& hierarchy, std::size_t level) {
    return !flat || hierarchy.Index() != flat->calendar || level <= flat->months;
}

std::string HierarchyElement(const StarSchema& star, const FlatStar* flat, const Hierarchy& hierarchy,
                             const Dimension& dimension) {
    const auto& tables = star.hierarchies[hierarchy.Index()];
    const bool isJoined = tables.size() > 1;
    std::string attributes;
    const std::string name = flat ? NameAmongAggregates(hierarchy, dimension.name) : hierarchy.Name();
    if (name != dimension.name) {
        attributes += fmt::format(" name=\"{}\"", XmlEscaped(name));
    }
    attributes += CaptionAttribute(name, hierarchy.Caption()) + AllAttributes(hierarchy);
    attributes += fmt::format(" primaryKey=\"{}\"", ownerColumn);
    if (isJoined) {
        attributes += fmt::format(" primaryKeyTable=\"{}\"", tables.front().name);
    }
    if (hierarchy.DefaultMember() != 0) {
        attributes += fmt::format(" defaultMember=\"{}\"",
                                  XmlEscaped(hierarchy.MemberUniqueName(hierarchy.DefaultMember())));
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
                       XmlEscaped(measure.name), CaptionAttribute(measure.name, measure.caption),
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
                         ? fmt::format(" dimension=\"{}\"", XmlEscaped(dimension))
                         : fmt::format(" hierarchy=\"{}\"", XmlEscaped(BracketedName(dimension) + "." +
                                                                       BracketedName(hierarchy.Name())));
        if (place.parent != noMember) {
            attributes += fmt::format(" parent=\"{}\"", XmlEscaped(hierarchy.MemberUniqueName(place.parent)));
        }
    }
    if (!member.format.empty()) {
        attributes += fmt::format(" formatString=\"{}\"", XmlEscaped(member.format));
    }
    std::string text = fmt::format("    <CalculatedMember name=\"{}\"{}>\n      <Formula>{}</Formula>\n",
                                   XmlEscaped(place.name), attributes, XmlEscaped(member.formula));
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
                            XmlEscaped(places.setNames[i]), XmlEscaped(calculations.sets[i].formula));
    }
    return text;
}

} // namespace

std::string ComposeMondrianSchema(const StarSchema& star, const FlatStar* flat) {
    const Cube& cube = *star.cube;
    const auto measures = cube.Measures();
    const std::string facts =
        flat ? ComposeAggregates(*flat) : fmt::format("    <Table name=\"{}\"/>\n", star.factTable);
    std::string text = fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Schema name=\"{0}\">\n"
                                   "  <Cube name=\"{0}\"{1} defaultMeasure=\"{2}\">\n{3}",
                                   XmlEscaped(cube.Name()), CaptionAttribute(cube.Name(), cube.Caption()),
                                   XmlEscaped(measures[cube.DefaultMeasure()].name), facts);
    for (const auto& dimension : cube.Dimensions()) {
        text += fmt::format("    <Dimension name=\"{}\"{}{} foreignKey=\"{}\">\n", XmlEscaped(dimension.name),
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
