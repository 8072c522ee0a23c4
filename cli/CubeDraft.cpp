#include "cli/CubeDraft.h"

#include "text/Utf8Path.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace qel {

namespace {

constexpr const char* cubeName = "LedgerFNC";

std::string Quoted(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// One text, or an array of several.
std::string TextOrList(const std::vector<std::string>& texts) {
    if (texts.size() == 1) {
        return Quoted(texts.front());
    }
    std::vector<std::string> quoted(texts.size());
    std::transform(texts.begin(), texts.end(), quoted.begin(), Quoted);
    return fmt::format("[ {} ]", fmt::join(quoted, ", "));
}

/// A level's keys. Without a table only the name is needed.
struct DraftLevel {
    std::string name, key, memberName = {}, caption = {};
};

struct DraftHierarchy {
    std::string name;
    std::vector<DraftLevel> levels;
};

/// Writes dimensions as a definition has them.
class DimensionWriter {
public:
    DimensionWriter& Comment(const std::string& text) {
        text_ += "        // " + text + '\n';
        return *this;
    }

    /// `source` is what the dimension stands on; without a column it gets `members`.
    void Add(const std::string& name, const DraftAttribute& source,
             const std::vector<DraftHierarchy>& hierarchies, const std::string& members,
             const std::string& more = "") {
        if (source.lacksValues) {
            Comment("The table has not every value of the ledger. Add them, or build with --skip-bad-lines.");
        }
        if (source.hasManyNames) {
            Comment("A code that has several names shows the first of them.");
        }
        text_ += fmt::format("        {{ \"name\": {}", Quoted(name));
        if (source.columns.empty()) {
            text_ += fmt::format(", \"members\": [ {} ]", members);
        } else {
            text_ += fmt::format(", \"column\": {}", TextOrList(source.columns));
        }
        if (!source.tables.empty()) {
            const auto keys = source.columns.size() > 1 ? source.columns : std::vector{source.key.codes};
            text_ += fmt::format(", \"table\": {}, \"key\": {}", TextOrList(source.tables), TextOrList(keys));
        }
        text_ += more;
        const bool hasKeys = !source.tables.empty() || source.columns.size() > 1;
        for (std::size_t i = 0; i < hierarchies.size(); ++i) {
            text_ += i == 0 ? ",\n          \"hierarchies\": [\n" : ",\n";
            text_ +=
                fmt::format("            {{ \"name\": {}, \"levels\": [ {} ] }}", Quoted(hierarchies[i].name),
                            Levels(hierarchies[i].levels, hasKeys, !source.tables.empty()));
        }
        text_ += hierarchies.empty() ? " },\n" : " ] },\n";
    }

    void AddLine(const std::string& line) { text_ += "        " + line + '\n'; }

    const std::string& Text() const { return text_; }

private:
    static std::string Levels(const std::vector<DraftLevel>& levels, bool hasKeys, bool hasTable) {
        std::vector<std::string> texts;
        for (const auto& level : levels) {
            auto text = fmt::format("{{ \"name\": {}", Quoted(level.name));
            text += hasKeys ? fmt::format(", \"key\": {}", Quoted(level.key)) : "";
            text += hasTable && !level.memberName.empty()
                        ? fmt::format(", \"memberName\": {}", Quoted(level.memberName))
                        : "";
            text += hasTable && !level.caption.empty()
                        ? fmt::format(", \"caption\": {}", Quoted(level.caption))
                        : "";
            texts.push_back(text + " }");
        }
        return fmt::format("{}", fmt::join(texts, ",\n                                          "));
    }

    std::string text_;
};

class DefinitionWriter {
public:
    DefinitionWriter(const DraftSources& sources, const std::filesystem::path& folder)
        : sources_(sources), folder_(folder) {}

    std::string Text() {
        AddDates();
        AddOrganisation();
        AddAccounts();
        AddSimple();
        std::vector<std::string> tables;
        for (const auto& table : sources_.Tables()) {
            tables.push_back(Table(table));
        }
        std::vector<std::string> unused;
        for (const auto& column : sources_.Unused()) {
            unused.push_back(Quoted(column));
        }
        return fmt::format(R"({{
  // Drafted from the files below, for the formulas of the worksheet functions. Change what was guessed wrong: the
  // names in formulas are those of "name"; docs/cube-definition.md explains every key.
  "tables": {{
{}
  }},
  "cubes": [
    {{
      "name": "{}", // the wizards list cubes whose names end in FNC
      "facts": {},{}
      "dimensions": [
{}      ],
      "measures": [
{}
      ],
      "defaultMeasure": "Amount"
    }}
  ]
}}
)",
                           fmt::join(tables, ",\n"), cubeName, TextOrList(sources_.LedgerNames()),
                           unused.empty() ? "" : fmt::format(" // not used: {}", fmt::join(unused, ", ")),
                           dimensions_.Text(), Measures());
    }

private:
    std::string Table(const DraftTable& table) const {
        const auto& file = table.profile;
        std::error_code error;
        auto path = std::filesystem::proximate(std::filesystem::absolute(file.file), folder_, error);
        auto text = fmt::format(
            "{}    // {}{}{}\n    {}: {{ \"file\": {}, \"delimiter\": {}, \"decimal\": {}, "
            "\"thousands\": {}, \"dates\": {}, \"encoding\": {}",
            Unusable(table), file.lines == 1 ? "1 line" : fmt::format("{} lines", file.lines),
            file.skipLines == 0 ? "" : fmt::format("; the header stands in line {}", file.skipLines + 1),
            file.fitsOtherDates ? "; the dates fit \"mdy\" as well, so look whether \"dmy\" is right" : "",
            Quoted(table.name), Quoted(PathToUtf8(error ? file.file : path)), Quoted(file.delimiter),
            Quoted(file.decimal), Quoted(file.thousands), Quoted(file.dates), Quoted(file.encoding));
        text += file.skipLines == 0 ? "" : fmt::format(", \"skipLines\": {}", file.skipLines);
        std::vector<std::string> renamed;
        for (const auto& [name, inFile] :
             sources_.IsLedger(table) ? sources_.Renamed(table) : decltype(sources_.Renamed(table)){}) {
            renamed.push_back(Quoted(name) + ": " + Quoted(inFile));
        }
        if (!renamed.empty()) {
            text += fmt::format(",\n      \"columns\": {{ {} }}", fmt::join(renamed, ", "));
        }
        return text + " }";
    }

    static std::string Unusable(const DraftTable& table) {
        std::string text;
        for (const auto& fault : UnusableLines(table)) {
            text += fmt::format("    // {}: build with --skip-bad-lines, or mend the file\n", fault);
        }
        if (table.profile.totals.count > 0 && text.empty()) {
            text = fmt::format(
                "    // line {} looks like a total: delete it from the file, or it becomes a member\n",
                table.profile.totals.first);
        }
        return text;
    }

    /// The most decimals that the ledger's files have in a role's column.
    int DecimalsOf(ColumnRole role) const {
        int most = 0;
        for (const auto ledger : sources_.Ledgers()) {
            const auto& table = sources_.Tables()[ledger];
            if (const auto column = table.roles.Of(role)) {
                most = std::max<int>(most, table.profile.columns[*column].decimals);
            }
        }
        return most;
    }

    std::string Measures() const {
        const auto& ledger = sources_.FirstLedger();
        const auto measure = [](const std::string& name, const std::string& columns, int decimals) {
            return fmt::format("        {{ \"name\": {}, \"column\": {}, \"decimals\": {} }}", Quoted(name),
                               columns, decimals);
        };
        const auto nameOf = [&](ColumnRole role) {
            return Quoted(sources_.ColumnName(role, *ledger.roles.Of(role)));
        };
        auto amount = nameOf(ColumnRole::Amount);
        auto decimals = DecimalsOf(ColumnRole::Amount);
        if (sources_.HasRole(ColumnRole::Credit)) {
            amount += fmt::format(", \"minus\": {}", nameOf(ColumnRole::Credit));
            decimals = std::max(decimals, DecimalsOf(ColumnRole::Credit));
        }
        std::vector<std::string> measures = {measure("Amount", amount, decimals)};
        if (sources_.HasRole(ColumnRole::Credit)) { // as a ledger's own totals are
            measures.push_back(measure("Debit", nameOf(ColumnRole::Amount), decimals));
            measures.push_back(measure("Credit", nameOf(ColumnRole::Credit), decimals));
        }
        for (const auto further : sources_.FurtherAmounts()) {
            const auto& column = ledger.profile.columns[further];
            measures.push_back(measure(column.name, Quoted(column.name), column.decimals));
        }
        measures.emplace_back("        { \"name\": \"Lines\", \"aggregate\": \"count\" }");
        return fmt::format("{}", fmt::join(measures, ",\n"));
    }

    void AddDates() {
        const auto column = *sources_.FirstLedger().roles.Of(ColumnRole::Date);
        dimensions_.AddLine(fmt::format("{{ \"name\": \"Date\", \"column\": {}, \"calendar\": {{ "
                                        "\"periods\": \"months\", \"quarters\": true }} }},",
                                        Quoted(sources_.ColumnName(ColumnRole::Date, column))));
    }

    void AddOrganisation();
    void AddAccounts();
    void AddSimple();

    const DraftSources& sources_;
    const std::filesystem::path& folder_;
    DimensionWriter dimensions_;
};

/// The OBS names and numbers that a table has for the ledger's column, if there is one.
struct ObsNumbers {
    DraftAttribute source;
    std::string name, number; ///< columns
};

/// The table's columns "obs_name" and "obs_number", if `source` stands on a table that has both.
std::optional<ObsNumbers> ObsNumbersIn(const DraftSources& sources, const DraftAttribute& source) {
    for (const auto& table : sources.Tables()) {
        if (source.tables != std::vector{table.name} || sources.IsLedger(table)) {
            continue;
        }
        ObsNumbers found{source, "", ""};
        for (const auto& column : table.profile.columns) {
            if (column.name != source.key.codes && SubjectOf(column.name) == SubjectOf("obs")) {
                (IsNameHeader(column.name) ? found.name : found.number) = column.name;
            }
        }
        if (!found.name.empty() && !found.number.empty()) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<ObsNumbers> FindObsNumbers(const DraftSources& sources) {
    const auto own = ObsNumbersIn(sources, sources.AttributeOf(ColumnRole::ObsNumber));
    return own ? own : ObsNumbersIn(sources, sources.AttributeOf(ColumnRole::Obs));
}

void DefinitionWriter::AddOrganisation() {
    if (const auto numbers = FindObsNumbers(sources_)) {
        dimensions_
            .Comment("OBS names and numbers: ObsName and ObsNum of the formulas. A number may hold others.")
            .Add("ActX", numbers->source,
                 {{"OBSx",
                   {{"OBS name", numbers->name},
                    {"OBS number", numbers->number, "", numbers->source.key.names}}}},
                 "", ", \"accept\": [ \"severalParents\", \"equalNames\" ]");
    } else {
        dimensions_.Comment("ObsName and ObsNum of the formulas: {\"OBS\"}, {\"1\"} is the whole ledger.")
            .Add("ActX", {}, {{"OBSx", {{"OBS name", ""}, {"OBS number", ""}}}}, "[ \"OBS\", \"1\" ]");
    }
    const auto obs = sources_.ObsAttribute();
    DraftHierarchy levels{"OBS", {}};
    for (const auto& group : obs.groups) {
        levels.levels.push_back({fmt::format("Level{}", levels.levels.size() + 1), group.codes, group.names});
    }
    levels.levels.push_back({fmt::format("Level{}", levels.levels.size() + 1), obs.key.codes, obs.key.names});
    if (!sources_.HasRole(ColumnRole::Obs) && !obs.columns.empty()) {
        dimensions_.Comment("The ledger's cost centres and their groups.");
    }
    if (obs.columns.size() > 1) {
        dimensions_.Comment("A value of the last column means something under its parents only.");
    }
    dimensions_.Add("OBS", obs, {levels}, "\"-\"");
    const auto centre = sources_.AttributeOf(ColumnRole::CostCentre);
    dimensions_.Add("Cost_Centers", centre,
                    {{"Cost_Centers", {{"Cost_Center", centre.key.codes, "", centre.key.names}}}}, "\"-\"");
    const auto activity = sources_.AttributeOf(ColumnRole::Activity);
    dimensions_.Add("Activities", activity,
                    {{"ActivityCodes", {{"ActivityCode", activity.key.codes, "", activity.key.names}}},
                     {"ActivityNames", {{"ActivityName", activity.key.codes, activity.key.names}}}},
                    "\"-\"");
}

void DefinitionWriter::AddAccounts() {
    const auto account = sources_.AttributeOf(ColumnRole::Account);
    const auto& key = account.key;
    if (sources_.FirstLedger().roles.accountIsGuess) {
        dimensions_.Comment("No column is called an account; this one is a guess.");
    }
    dimensions_.Add("Accounts", account,
                    {{"AccountCodes", {{"AccountCode", key.codes, "", key.names}}},
                     {"AccountNames", {{"AccountName", key.codes, key.names}}}},
                    "\"-\"");
    auto groups = account.groups;
    if (groups.empty()) {
        dimensions_.Comment("No column groups the accounts, so that each is a group of its own.");
        groups.push_back(key);
    }
    DraftHierarchy codes{"SumeryCode", {}}, names{"SumeryName", {}};
    for (const auto& group : groups) {
        const auto level = fmt::format("SuperSum{}", codes.levels.size() + 1);
        codes.levels.push_back({level, group.codes, "", group.names});
        names.levels.push_back({level + "Name", group.codes, group.names});
    }
    dimensions_.Add("SuperSumery", account, {codes, names}, "\"-\"",
                    account.columns.empty() ? "" : ", \"main\": true");
    const auto& kind = account.others.empty() ? groups.front() : account.others.front();
    dimensions_.Add("AccX", account, {{"AccX", {{"AccX", kind.codes, "", kind.names}}}}, "\"-\"");
}

void DefinitionWriter::AddSimple() {
    constexpr std::pair<const char*, ColumnRole> simple[] = {{"Firma", ColumnRole::Firm},
                                                             {"Plbs", ColumnRole::Plbs},
                                                             {"RH", ColumnRole::Rh},
                                                             {"Opening_Balance", ColumnRole::OpeningBalance},
                                                             {"MoneySet", ColumnRole::MoneySet}};
    for (const auto& [name, role] : simple) {
        const auto source = sources_.AttributeOf(role);
        std::vector<DraftHierarchy> hierarchies;
        if (!source.tables.empty()) {
            hierarchies.push_back({name, {{name, source.key.codes, "", source.key.names}}});
        }
        dimensions_.Add(name, source, hierarchies, "\"-\"");
    }
    dimensions_.Comment("Dimensions with \"members\" restrict nothing; the ledger has no column for them.");
    dimensions_.AddLine("{ \"name\": \"MoneyType\", \"members\": [ \"Local\" ] }");
}

/// "31/03/2024" for "2024-03-31".
std::string FormulaDate(const std::string& iso, bool isMonthsFirst) {
    return fmt::format("{}/{}/{}", isMonthsFirst ? "01" : iso.substr(8, 2), iso.substr(5, 2),
                       iso.substr(0, 4));
}

std::string FirstOf(const DraftSources& sources, const DraftAttribute& source, const std::string& column) {
    for (const auto& table : sources.Tables()) {
        for (const auto& each : table.profile.columns) {
            if (source.tables == std::vector{table.name} && each.name == column) {
                return each.first;
            }
        }
    }
    return "";
}

} // namespace

std::vector<std::string> UnusableLines(const DraftTable& table) {
    std::vector<std::string> faults;
    const auto add = [&](const engine::SourceLines& lines, const std::string& one, const std::string& several,
                         const std::string& what) {
        if (lines.count > 0) {
            faults.push_back(fmt::format("{} cannot be used, {} {}{}",
                                         lines.count == 1 ? one : fmt::format("{} {}", lines.count, several),
                                         lines.count == 1 ? "line" : "first line", lines.first, what));
        }
    };
    const auto& file = table.profile;
    const bool isLedger = table.roles.Of(ColumnRole::Date) && table.roles.Of(ColumnRole::Amount);
    if (isLedger) {
        add(file.totals, "1 line that looks like a total", "lines that look like totals", "");
    }
    add(file.malformed, "1 line", "lines", fmt::format(" ({})", file.malformed.what));
    for (const auto role : {ColumnRole::Date, ColumnRole::Amount, ColumnRole::Credit}) {
        if (const auto index = isLedger ? table.roles.Of(role) : std::nullopt) {
            const auto& column = file.columns[*index];
            add(column.badValues, "1 value of " + Quoted(column.name), "values of " + Quoted(column.name),
                fmt::format(" ({})", Quoted(column.badValues.what)));
        }
    }
    if (isLedger) {
        const auto& column = file.columns[*table.roles.Of(ColumnRole::Date)];
        add(column.emptyValues, "1 line without " + Quoted(column.name),
            "lines without " + Quoted(column.name), "");
    }
    return faults;
}

std::string DraftDefinition(const DraftSources& sources, const std::filesystem::path& folder) {
    return DefinitionWriter(sources, folder).Text();
}

std::string DraftFormula(const DraftSources& sources, const std::string& cubeFile) {
    std::string least, greatest, name = "OBS", number = "1";
    for (const auto ledger : sources.Ledgers()) {
        const auto& table = sources.Tables()[ledger];
        const auto& dates = table.profile.columns[*table.roles.Of(ColumnRole::Date)];
        least = least.empty() ? dates.least : std::min(least, dates.least);
        greatest = std::max(greatest, dates.greatest);
    }
    if (const auto numbers = FindObsNumbers(sources)) {
        name = FirstOf(sources, numbers->source, numbers->name);
        number = FirstOf(sources, numbers->source, numbers->number);
    }
    // Over all accounts a balanced ledger gives 0.
    const auto column = sources.FirstLedger().roles.Of(ColumnRole::Account);
    const auto account = column ? sources.FirstLedger().profile.columns[*column].first : "";
    const bool isPlain = !account.empty() && account.find('"') == std::string::npos;
    return fmt::format(
        "=QelF1(\"{}\",\"{}\",{{\"{}\"}},{{\"{}\"}},{{\"All\"}},{{\"All\"}},{{\"All\"}},\"All\",\"\","
        "\"{}\",\"Amount\",\"All\",\"All\",\"All\",\"All\",\"All\",\"{}\",\"{}\")",
        cubeFile, cubeName, name, number, isPlain ? account : "All", FormulaDate(least, true),
        FormulaDate(greatest, false));
}

} // namespace qel
