#include "engine/build/Definition.h"

#include "engine/build/FieldDate.h"
#include "engine/build/JsonObject.h"
#include "engine/build/OdbcConnectionText.h"
#include "engine/build/TextFile.h"
#include "engine/storage/Format.h"
#include "qel/engine/EngineError.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <limits>
#include <unordered_set>

namespace qel::engine {

namespace {

/// Rejects a name that was used before (any letter case).
class UniqueNames {
public:
    explicit UniqueNames(std::string what) : what_(std::move(what)) {}

    void Add(const std::string& name, const JsonPlace& place) {
        if (!names_.insert(FoldCase(name)).second) {
            place.Fail(fmt::format("there is another {} named \"{}\"", what_, name));
        }
    }

private:
    std::string what_;
    std::unordered_set<std::string> names_;
};

constexpr int mostSkippedLines = 1000;

/// Reads how a file is written.
void ReadFileFormat(JsonObject& object, CsvFormat& format) {
    constexpr std::string_view delimiters = ",;\t|";
    if (const auto place = object.Optional("delimiter")) {
        const std::size_t choice = place->OneOf({",", ";", "\t", "|", "auto"});
        format.delimiter = choice < delimiters.size() ? delimiters[choice] : '\0';
    }
    if (const auto place = object.Optional("encoding")) {
        format.encoding = EqualIgnoringCase(place->Text(), "auto") ? "" : place->Text();
    }
    if (const auto place = object.Optional("skipLines")) {
        format.skipLines = static_cast<std::uint64_t>(place->Integer(0, mostSkippedLines));
    }
}

/// Reads how amounts and dates are written.
void ReadValueFormat(JsonObject& object, CsvFormat& format) {
    if (const auto place = object.Optional("decimal")) {
        format.decimal = place->OneOf({".", ","}) == 0 ? '.' : ',';
    }
    if (const auto place = object.Optional("thousands")) {
        format.thousands = std::array{',', '.', ' ', '\'', '\0'}[place->OneOf({",", ".", " ", "'", ""})];
    }
    if (const auto place = object.Optional("dates")) {
        format.dates = static_cast<DateFormat>(place->OneOf({"iso", "dmy", "mdy", "ymd"}));
    }
    if (format.decimal == format.thousands) {
        object.Place().Fail("\"decimal\" and \"thousands\" are the same sign");
    }
}

void ReadDatabase(JsonObject& object, const JsonPlace& odbc, TableDefinition& table) {
    table.odbc = OdbcSource{odbc.Where(), odbc.Text(), object.Required("query").Text()};
    if (HoldsPassword(table.odbc->connection)) {
        odbc.Fail("holds a password; keep it in the data source, or in an environment variable: "
                  "\"PWD=${LEDGER_PASSWORD}\"");
    }
    if (const auto file = object.Optional("file")) {
        file->Fail("a table is a \"file\" or a query by \"odbc\", not both");
    }
}

/// Reads one kind of warnings, or an array of kinds.
std::vector<std::string> ReadAccepted(const JsonPlace& place, const std::vector<std::string>& kinds) {
    std::vector<std::string> accepted;
    for (const JsonPlace& element :
         place.value->is_string() ? std::vector<JsonPlace>{place} : place.Elements()) {
        accepted.push_back(kinds[element.OneOf(kinds)]);
    }
    return accepted;
}

TableDefinition ReadTable(const std::string& name, const JsonPlace& place, const CsvFormat& defaults,
                          const std::filesystem::path& folder) {
    TableDefinition table;
    table.name = name;
    JsonObject object(place);
    if (const auto odbc = object.Optional("odbc")) {
        ReadDatabase(object, *odbc, table);
    } else {
        table.format = defaults;
        table.file = folder / PathFromUtf8(object.Required("file").Text());
        ReadFileFormat(object, table.format);
    }
    if (const auto accept = object.Optional("accept")) {
        table.accepted = ReadAccepted(*accept, {lastLine, noRows, hebrewEncoding});
    }
    ReadValueFormat(object, table.format);
    if (const auto columns = object.Optional("columns")) {
        for (const auto& [column, inFile] : JsonObject(*columns).All()) {
            table.columns.emplace_back(column, inFile.Text());
        }
    }
    object.Finish();
    return table;
}

constexpr const char* ownLevels =
    "a table has one column for each level; a column with every member's parent makes none";

/// Reads one cube; its parts refer to the definition's tables.
class CubeReader {
public:
    explicit CubeReader(const std::vector<TableDefinition>& tables) : tables_(tables) {}

    CubeDefinition Read(const JsonPlace& place) const {
        JsonObject object(place);
        CubeDefinition cube;
        cube.place = place.Where();
        cube.name = object.Required("name").Text();
        cube.caption = object.TextOr("caption", cube.name);
        cube.facts = Tables(object.Required("facts"));
        ReadDimensions(object.Required("dimensions"), cube);
        ReadMeasures(object, cube);
        ReadDetails(object, cube);
        ReadSortOrders(object, cube);
        ReadCalculations(object, cube);
        object.Finish();
        return cube;
    }

private:
    std::vector<std::size_t> Tables(const JsonPlace& place) const {
        std::vector<std::size_t> numbers;
        for (const std::string& name : place.Texts()) {
            const auto found = std::find_if(tables_.begin(), tables_.end(),
                                            [&name](const auto& table) { return table.name == name; });
            if (found == tables_.end()) {
                place.Fail(fmt::format("there is no table \"{}\" in \"tables\"", name));
            }
            numbers.push_back(static_cast<std::size_t>(found - tables_.begin()));
        }
        return numbers;
    }

    void ReadDimensions(const JsonPlace& place, CubeDefinition& cube) const {
        UniqueNames names("dimension");
        names.Add("Measures", place);
        std::unordered_set<std::string> calendars;
        for (const JsonPlace& element : place.Elements()) {
            DimensionDefinition dimension = ReadDimension(element);
            names.Add(dimension.name, element);
            if (dimension.calendar && !calendars.insert(*dimension.column).second) {
                element.Fail(
                    fmt::format("the column \"{0}\" has a calendar already; give it a second name in "
                                "the table: \"columns\": {{ \"{0}\": \"{0}\", \"{0}2\": \"{0}\" }}",
                                *dimension.column));
            }
            cube.dimensions.push_back(std::move(dimension));
        }
        if (std::none_of(cube.dimensions.begin(), cube.dimensions.end(),
                         [](const auto& dimension) { return dimension.column.has_value(); })) {
            place.Fail("at least one dimension needs a \"column\" of the facts");
        }
    }

    DimensionDefinition ReadDimension(const JsonPlace& place) const {
        JsonObject object(place);
        DimensionDefinition dimension;
        dimension.place = place.Where();
        dimension.name = object.Required("name").Text();
        dimension.caption = object.TextOr("caption", dimension.name);
        ReadKeys(object, dimension);
        if (const auto main = object.Optional("main")) {
            dimension.isMain = main->Boolean();
        }
        if (dimension.isMain && !dimension.column) {
            place.Fail("a main dimension needs a \"column\"");
        }
        if (const auto accept = object.Optional("accept")) {
            dimension.accepted = ReadAccepted(*accept, {severalParents, equalNames, dateOrder, dateMembers});
        }
        ReadMemberSource(object, dimension);
        object.HintFor("parent", ownLevels);
        object.Finish();
        return dimension;
    }

    /// Reads the fact columns, and the columns of the tables that hold their values.
    void ReadKeys(JsonObject& object, DimensionDefinition& dimension) const {
        if (const auto column = object.Optional("column")) {
            dimension.columns = column->Texts();
            dimension.column = fmt::format("{}", fmt::join(dimension.columns, "+"));
        }
        dimension.keys = dimension.columns;
        const auto table = object.Optional("table");
        const auto key = table ? object.Required("key") : object.Optional("key");
        if (!table && key) {
            key->Fail("a key column needs a \"table\"");
        }
        if (!table) {
            return;
        }
        dimension.tables = Tables(*table);
        dimension.keys = key->Texts();
        if (dimension.column && dimension.keys.size() != dimension.columns.size()) {
            key->Fail(fmt::format("expected as many columns as \"column\" has, which is {}",
                                  dimension.columns.size()));
        }
    }

    /// Reads where the members come from: a calendar, a list, or hierarchies of levels.
    static void ReadMemberSource(JsonObject& object, DimensionDefinition& dimension) {
        const auto calendar = object.Optional("calendar");
        const auto members = object.Optional("members");
        const auto hierarchies = object.Optional("hierarchies");
        HierarchyDefinition base;
        base.place = dimension.place;
        base.name = dimension.name;
        base.caption = dimension.caption;
        base.all = "All";
        ReadTop(object, base);
        if (calendar) {
            ReadCalendar(object, *calendar, dimension);
        }
        if (members) {
            ReadMembers(object, *members, dimension);
        }
        if (calendar && hierarchies) {
            hierarchies->Fail("a calendar has no other hierarchies");
        }
        if (!calendar && !members && !dimension.column && dimension.tables.empty()) {
            object.Place().Fail("needs a \"column\" of the facts, a \"table\" or \"members\"");
        }
        if (hierarchies) {
            ReadHierarchies(*hierarchies, base, dimension);
            return;
        }
        if (!calendar) {
            base.levels = OwnLevels(dimension);
        }
        dimension.hierarchies.push_back(base);
    }

    /// The levels of a dimension that names none: one per column.
    static std::vector<LevelDefinition> OwnLevels(const DimensionDefinition& dimension) {
        if (!dimension.members.empty()) {
            std::vector<LevelDefinition> levels(dimension.members.front().size(),
                                                {"", "", "", "", MemberOrder::File});
            for (std::size_t i = 0; i < levels.size(); ++i) {
                levels[i].name = levels.size() == 1 ? dimension.name : fmt::format("Level{}", i + 1);
            }
            return levels;
        }
        if (dimension.keys.size() == 1) {
            return {{dimension.name, dimension.keys.front(), "", "", MemberOrder::Key}};
        }
        std::vector<LevelDefinition> levels;
        for (const std::string& key : dimension.keys) {
            levels.push_back({key, key, "", "", MemberOrder::Key});
        }
        return levels;
    }

    /// Reads the keys "all" and "default": on a dimension they are the defaults for its hierarchies.
    static void ReadTop(JsonObject& object, HierarchyDefinition& hierarchy) {
        if (const auto all = object.Optional("all")) {
            if (all->value->is_string()) {
                hierarchy.all = all->Text();
            } else if (all->value->is_boolean() && !all->Boolean()) {
                hierarchy.all.reset();
            } else {
                all->Fail("expected the top member's name, or false for none");
            }
        }
        if (const auto member = object.Optional("default")) {
            hierarchy.defaultKey = member->Text();
        }
    }

    static void ReadCalendar(JsonObject& dimensionObject, const JsonPlace& place,
                             DimensionDefinition& dimension) {
        if (dimension.columns.size() != 1 || !dimension.tables.empty()) {
            dimensionObject.Place().Fail("a calendar needs one \"column\", and no \"table\"");
        }
        JsonObject object(place);
        CalendarDefinition calendar;
        calendar.byDays = object.Required("periods").OneOf({"months", "days"}) == 1;
        if (const auto quarters = object.Optional("quarters")) {
            calendar.hasQuarters = quarters->Boolean();
        }
        calendar.from = Day(object.Optional("from"));
        calendar.to = Day(object.Optional("to"));
        if (calendar.from && calendar.to && *calendar.from > *calendar.to) {
            place.Fail("\"from\" is later than \"to\"");
        }
        calendar.levels = {"Year"};
        if (calendar.hasQuarters) {
            calendar.levels.emplace_back("Quarter");
        }
        calendar.levels.emplace_back("Month");
        if (calendar.byDays) {
            calendar.levels.emplace_back("Day");
        }
        if (const auto levels = object.Optional("levels")) {
            const auto names = levels->Texts();
            if (names.size() != calendar.levels.size()) {
                levels->Fail(
                    fmt::format("expected {} names, found {}", calendar.levels.size(), names.size()));
            }
            calendar.levels = names;
        }
        if (const auto names = object.Optional("monthNames")) {
            calendar.monthNames = names->Texts();
            if (calendar.monthNames.size() != 12) {
                names->Fail(
                    fmt::format("expected 12 names, from January on, found {}", calendar.monthNames.size()));
            }
        }
        object.Finish();
        dimension.calendar = calendar;
    }

    static std::optional<std::chrono::sys_days> Day(const std::optional<JsonPlace>& place) {
        if (!place) {
            return std::nullopt;
        }
        const auto day = ParseDate(place->Text(), DateFormat::Iso);
        if (!day) {
            place->Fail(fmt::format("expected {}", ExpectedDate(DateFormat::Iso)));
        }
        return day;
    }

    static void ReadMembers(JsonObject& dimensionObject, const JsonPlace& place,
                            DimensionDefinition& dimension) {
        if (dimension.column || !dimension.tables.empty()) {
            dimensionObject.Place().Fail("\"members\" are for a dimension without \"column\" and \"table\"");
        }
        UniqueNames names("member");
        for (const JsonPlace& element : place.Elements()) {
            dimension.members.push_back(element.Texts());
            names.Add(fmt::format("{}", fmt::join(dimension.members.back(), "\", \"")), element);
            if (dimension.members.back().size() != dimension.members.front().size()) {
                element.Fail(fmt::format("expected {} names, as the first member has, found {}",
                                         dimension.members.front().size(), dimension.members.back().size()));
            }
        }
    }

    static void ReadHierarchies(const JsonPlace& place, const HierarchyDefinition& base,
                                DimensionDefinition& dimension) {
        UniqueNames names("hierarchy");
        for (const JsonPlace& element : place.Elements()) {
            JsonObject object(element);
            HierarchyDefinition hierarchy = base;
            hierarchy.place = element.Where();
            hierarchy.name = object.Required("name").Text();
            names.Add(hierarchy.name, element);
            hierarchy.caption = object.TextOr("caption", hierarchy.name);
            ReadTop(object, hierarchy);
            const JsonPlace levels = object.Required("levels");
            ReadLevels(levels, hierarchy, dimension);
            const std::size_t depth = dimension.members.empty() ? 0 : dimension.members.front().size();
            if (depth != 0 && hierarchy.levels.size() != depth) {
                levels.Fail(fmt::format("expected {}, one for each name of a member", depth));
            }
            object.Finish();
            dimension.hierarchies.push_back(std::move(hierarchy));
        }
    }

    static void ReadLevels(const JsonPlace& place, HierarchyDefinition& hierarchy,
                           const DimensionDefinition& dimension) {
        UniqueNames names("level");
        for (const JsonPlace& element : place.Elements()) {
            JsonObject object(element);
            LevelDefinition level;
            level.name = object.Required("name").Text();
            level.order = dimension.members.empty() ? MemberOrder::Key : MemberOrder::File;
            names.Add(level.name, element);
            level.key = object.TextOr("key", dimension.keys.empty() ? "" : dimension.keys.back());
            level.memberName = object.TextOr("memberName", "");
            level.caption = object.TextOr("caption", "");
            object.HintFor("parent", ownLevels);
            object.HintFor("properties", "a member has a key, a name and a caption; another column can be a "
                                         "level of a hierarchy of its own");
            if (const auto order = object.Optional("order")) {
                level.order = static_cast<MemberOrder>(order->OneOf({"key", "name", "file"}));
            }
            object.Finish();
            const bool usesOthers =
                (!level.key.empty() &&
                 std::count(dimension.keys.begin(), dimension.keys.end(), level.key) == 0) ||
                !level.memberName.empty() || !level.caption.empty();
            if (dimension.tables.empty() && usesOthers) {
                element.Fail("a dimension without a \"table\" has no other columns than its own");
            }
            hierarchy.levels.push_back(std::move(level));
        }
    }

    static void ReadMeasures(JsonObject& object, CubeDefinition& cube) {
        UniqueNames names("measure");
        for (const JsonPlace& element : object.Required("measures").Elements()) {
            cube.measures.push_back(ReadMeasure(element));
            names.Add(cube.measures.back().name, element);
        }
        const auto place = object.Optional("defaultMeasure");
        if (!place) {
            return;
        }
        const auto found = std::find_if(cube.measures.begin(), cube.measures.end(), [&](const auto& measure) {
            return EqualIgnoringCase(measure.name, place->Text());
        });
        if (found == cube.measures.end()) {
            place->Fail(fmt::format("there is no measure \"{}\"", place->Text()));
        }
        cube.defaultMeasure = static_cast<std::size_t>(found - cube.measures.begin());
    }

    static MeasureDefinition ReadMeasure(const JsonPlace& place) {
        JsonObject object(place);
        MeasureDefinition measure;
        measure.name = object.Required("name").Text();
        measure.caption = object.TextOr("caption", measure.name);
        const auto aggregate = object.Optional("aggregate");
        if (aggregate && *aggregate->value == "distinctCount") {
            aggregate->Fail("a measure cannot count distinct values; write a calculated member such as "
                            "Count(NonEmpty([Accounts].[AccountCodes].[AccountCode].Members, "
                            "[Measures].[Lines])), where Lines is a count");
        }
        const bool isCount = aggregate && aggregate->OneOf({"sum", "count"}) == 1;
        const auto column = object.Optional("column");
        const auto decimals = object.Optional("decimals");
        constexpr int mostDecimals = 9;
        const auto minus = object.Optional("minus");
        if (isCount && (column || decimals)) {
            place.Fail("a count has no \"column\" and no \"decimals\"");
        }
        if (isCount && minus) {
            minus->Fail("a count subtracts nothing");
        }
        if (!isCount) {
            measure.column = object.Required("column").Text();
            measure.minus = minus ? std::optional(minus->Text()) : std::nullopt;
        }
        measure.decimals = isCount    ? 0
                           : decimals ? static_cast<std::uint8_t>(decimals->Integer(0, mostDecimals))
                                      : 2;
        object.HintFor("format", "a measure shows its \"decimals\"; a calculated member can have a format");
        object.Finish();
        return measure;
    }

    static void ReadDetails(JsonObject& object, CubeDefinition& cube) {
        const auto place = object.Optional("details");
        if (!place) {
            return;
        }
        if (place->value->is_string()) {
            cube.keepsAllDetails = place->Text() == "all";
            if (!cube.keepsAllDetails) {
                place->Fail("expected \"all\", or an array of columns");
            }
            return;
        }
        UniqueNames names("detail");
        for (const JsonPlace& element : place->Elements()) {
            DetailDefinition& detail = cube.details.emplace_back();
            if (element.value->is_string()) {
                detail.column = detail.caption = element.Text();
            } else {
                JsonObject described(element);
                detail.column = described.Required("column").Text();
                detail.caption = described.TextOr("caption", detail.column);
                described.Finish();
            }
            names.Add(detail.caption, element);
        }
    }

    static void ReadSortOrders(JsonObject& object, CubeDefinition& cube) {
        const auto place = object.Optional("sortOrders");
        if (!place) {
            return;
        }
        for (const JsonPlace& element : place->Elements()) {
            std::unordered_set<std::string> seen;
            for (const JsonPlace& column : element.Elements()) {
                const std::string name = column.Text();
                const bool isUsed =
                    std::any_of(cube.dimensions.begin(), cube.dimensions.end(),
                                [&](const auto& dimension) { return dimension.column == name; });
                if (!isUsed) {
                    column.Fail(fmt::format("no dimension has the column \"{}\"", name));
                }
                if (!seen.insert(name).second) {
                    column.Fail(fmt::format("the column \"{}\" stands twice", name));
                }
            }
            cube.sortOrders.push_back(element.Texts());
        }
    }

    static void ReadCalculations(JsonObject& object, CubeDefinition& cube) {
        Calculations& calculations = cube.calculations;
        for (const JsonPlace& element : Definitions(object, "calculatedMembers")) {
            JsonObject member(element);
            CalculatedMember& read = calculations.members.emplace_back();
            read.name = ShortText(member.Required("name"));
            read.formula = ShortText(member.Required("formula"));
            if (const auto format = member.Optional("format")) {
                read.format = ShortText(*format);
                if (const std::string fault = FindFormatFault(read.format); !fault.empty()) {
                    format->Fail(fault);
                }
            }
            if (const auto order = member.Optional("solveOrder")) {
                using Limits = std::numeric_limits<std::int32_t>;
                read.solveOrder = order->Integer(Limits::min(), Limits::max());
            }
            member.Finish();
        }
        for (const JsonPlace& element : Definitions(object, "namedSets")) {
            JsonObject set(element);
            calculations.sets.push_back(
                {ShortText(set.Required("name")), ShortText(set.Required("formula"))});
            set.Finish();
        }
        if (const auto fault = FindSyntaxFault(calculations)) {
            RefuseCalculation(cube, *fault);
        }
    }

    static std::vector<JsonPlace> Definitions(JsonObject& object, const std::string& key) {
        const auto place = object.Optional(key);
        std::vector<JsonPlace> elements = place ? place->Elements() : std::vector<JsonPlace>();
        if (elements.size() > Calculations::most) {
            place->Fail(fmt::format("a cube has at most {} of them", Calculations::most));
        }
        return elements;
    }

    static std::string ShortText(const JsonPlace& place) {
        std::string text = place.Text();
        if (text.size() > Calculations::longestText) {
            place.Fail(fmt::format("the text has {} bytes; {} is the limit", text.size(),
                                   Calculations::longestText));
        }
        return text;
    }

    const std::vector<TableDefinition>& tables_;
};

} // namespace

std::string TableDefinition::ShortName() const {
    return odbc ? fmt::format("table \"{}\"", name) : PathToUtf8(file.filename());
}

void RefuseCalculation(const CubeDefinition& cube, const CalculationFault& fault) {
    throw EngineError(ErrorKind::InvalidDefinition,
                      fmt::format("{}.{}[{}]: {}", cube.place,
                                  fault.isSet ? "namedSets" : "calculatedMembers", fault.index, fault.text));
}

Definition ParseDefinition(std::string_view text, const std::string& fileName,
                           const std::filesystem::path& folder) {
    const nlohmann::json json = ParseJson(text, fileName);
    JsonFile file{fileName, {}};
    JsonObject object({&json, "", &file});
    CsvFormat defaults;
    if (const auto place = object.Optional("csv")) {
        JsonObject csv(*place);
        ReadFileFormat(csv, defaults);
        ReadValueFormat(csv, defaults);
        csv.Finish();
    }
    Definition definition;
    for (const auto& [name, place] : JsonObject(object.Required("tables")).All()) {
        definition.tables.push_back(ReadTable(name, place, defaults, folder));
    }
    UniqueNames names("cube");
    for (const JsonPlace& place : object.Required("cubes").Elements()) {
        if (definition.cubes.size() == format::mostCubes) {
            place.Fail(fmt::format("a file has at most {} cubes", format::mostCubes));
        }
        definition.cubes.push_back(CubeReader(definition.tables).Read(place));
        names.Add(definition.cubes.back().name, place);
    }
    object.Finish();
    file.RefuseUnknownKeys();
    return definition;
}

Definition ReadDefinition(const std::filesystem::path& path) {
    return ParseDefinition(ReadTextFile(path), PathToUtf8(path), path.parent_path());
}

} // namespace qel::engine
