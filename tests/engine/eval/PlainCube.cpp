#include "tests/engine/eval/PlainCube.h"

#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <random>

namespace qel::engine::plain {

namespace {

using test::TemporaryFolder;

/// A line of a dimension table: the value, and its branches from the top, each a key and a name. Lines are in
/// member order.
struct Branch {
    std::string value;
    std::vector<std::pair<std::string, std::string>> steps;
};

/// Account 300 is in two groups, 400 only in a group of its own, and 900 has no facts.
const std::vector<std::array<const char*, 5>> accountLines = {
    {"100", "Cash", "1", "Assets", "11"},
    {"101", "Bank", "1", "Assets", "11"},
    {"200", "O'Neil [net]", "1", "Assets", "12"},
    {"300", "Loan", "1", "Assets", "12"},
    {"300", "Loan", "2", "Debts", "21"},
    {"400", "שכירות", "2", "Debts", ""},
    {"500", "Tax", "3", "Other", "31"},
    {"900", "Unused", "3", "Other", "31"},
    {"1000", "Last & \"least\"", "3", "Other", "32"}};

/// "Shared" is under both regions, and twice under one unit. Some branches end early.
const std::vector<std::array<const char*, 4>> obsLines = {
    {"a", "East", "Shared", "Left"}, {"b", "East", "Shared", "Right"}, {"c", "East", "Solo", ""},
    {"d", "West", "Alone", "Left"},  {"e", "West", "Shared", "Left"},  {"f", "West", "Shared", "Middle"}};

const std::vector<const char*> firms = {"1", "2", "10"};

constexpr std::array<int, 14> firstDays = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365, 396};

std::string Bracketed(const std::string& name) {
    std::string text = "[";
    for (const char c : name) {
        text.append(c == ']' ? 2 : 1, c);
    }
    return text + "]";
}

Hierarchy WithTop(const std::string& dimension, const std::string& name, std::size_t column) {
    Hierarchy hierarchy{Bracketed(dimension), dimension, column, {"(All)"}, {}};
    if (name != dimension) {
        hierarchy.uniqueName += "." + Bracketed(name);
    }
    hierarchy.members.push_back({"All", hierarchy.uniqueName + ".[All]", 0, noParent, {}, true});
    return hierarchy;
}

/// Adds the tree of the branches level by level.
void AddTree(Hierarchy& hierarchy, const std::vector<Branch>& branches) {
    struct Place {
        int member;
        std::string key;
    };
    std::vector<std::vector<Place>> reached(branches.size(), {{0, ""}}); // by branch, from the top down
    std::vector<std::size_t> order(branches.size());
    for (std::size_t depth = 0; depth + 1 < hierarchy.levels.size(); ++depth) {
        const std::size_t levelStart = hierarchy.members.size();
        std::vector<std::string> keys;
        // Members are ordered by parent, then by line.
        for (int parent = 0; parent < static_cast<int>(levelStart); ++parent) {
            for (std::size_t i = 0; i < branches.size(); ++i) {
                if (reached[i].size() != depth + 1 || reached[i].back().member != parent ||
                    branches[i].steps.size() <= depth) {
                    continue;
                }
                const auto& [key, name] = branches[i].steps[depth];
                std::size_t found = levelStart;
                while (found < hierarchy.members.size() &&
                       (hierarchy.members[found].parent != parent || keys[found - levelStart] != key)) {
                    ++found;
                }
                if (found == hierarchy.members.size()) {
                    hierarchy.members.push_back(
                        {name,
                         hierarchy.members[static_cast<std::size_t>(parent)].path + "." + Bracketed(name),
                         static_cast<int>(depth) + 1,
                         parent,
                         {},
                         false});
                    keys.push_back(key);
                }
                hierarchy.members[found].values.insert(branches[i].value);
                reached[i].push_back({static_cast<int>(found), key});
            }
        }
    }
    for (const Branch& branch : branches) {
        hierarchy.members[0].values.insert(branch.value);
    }
}

Hierarchy Calendar(bool byDays) {
    Hierarchy hierarchy = WithTop("Date", "Date", Date);
    hierarchy.levels = {"(All)", "Year", "Quarter", "Month"};
    if (byDays) {
        hierarchy.levels.emplace_back("Day");
    }
    std::vector<Branch> branches;
    std::vector<std::string> texts;
    for (int month = 0; month < 13; ++month) { // January 2023 to January 2024
        const std::string year = month < 12 ? "2023" : "2024";
        const int number = month % 12 + 1;
        const int days = byDays ? firstDays[static_cast<std::size_t>(month) + 1] -
                                      firstDays[static_cast<std::size_t>(month)]
                                : 1;
        for (int day = 1; day <= days; ++day) {
            texts.push_back(byDays ? fmt::format("{}-{:02}-{:02}", year, number, day)
                                   : fmt::format("{}-{:02}", year, number));
        }
    }
    for (const std::string& text : texts) {
        const std::string month = std::to_string(std::stoi(text.substr(5, 2)));
        const std::string quarter = fmt::format("Q{}", (std::stoi(month) + 2) / 3);
        Branch branch{text, {}};
        for (const std::string& step : {text.substr(0, 4), quarter, month}) {
            branch.steps.emplace_back(step, step);
        }
        if (byDays) {
            const std::string day = std::to_string(std::stoi(text.substr(8)));
            branch.steps.emplace_back(day, day);
        }
        branches.push_back(std::move(branch));
    }
    AddTree(hierarchy, branches);
    return hierarchy;
}

std::vector<Hierarchy> MakeHierarchies(bool byDays) {
    std::vector<Branch> codes;
    std::vector<Branch> names;
    std::vector<Branch> groups;
    for (const auto& line : accountLines) {
        codes.push_back({line[0], {{line[0], line[0]}}});
        names.push_back({line[0], {{line[0], line[1]}}});
        groups.push_back({line[0], {{line[2], line[3]}}});
        if (*line[4] != '\0') {
            groups.back().steps.emplace_back(line[4], line[4]);
        }
    }
    std::vector<Branch> units;
    for (const auto& line : obsLines) {
        units.push_back({line[0], {}});
        for (std::size_t level = 1; level < line.size() && *line[level] != '\0'; ++level) {
            units.back().steps.emplace_back(line[level], line[level]);
        }
    }
    std::vector<Branch> firmBranches;
    firmBranches.reserve(firms.size());
    for (const char* firm : firms) {
        firmBranches.push_back({firm, {{firm, firm}}});
    }
    std::vector<Hierarchy> all{Calendar(byDays),
                               WithTop("Accounts", "Codes", Account),
                               WithTop("Accounts", "Names", Account),
                               WithTop("Groups", "Groups", Account),
                               WithTop("OBS", "OBS", Obs),
                               WithTop("Firm", "Firm", Firm),
                               WithTop("MoneyType", "MoneyType", noColumn)};
    const std::vector<std::pair<std::vector<std::string>, std::vector<Branch>>> trees{
        {{"Code"}, codes},
        {{"Name"}, names},
        {{"Group1", "Group2"}, groups},
        {{"L1", "L2", "L3"}, units},
        {{"Firm"}, firmBranches},
        {{"MoneyType"}, {{"", {{"Local", "Local"}}}, {"", {{"Other", "Other"}}}}}};
    for (std::size_t i = 0; i < trees.size(); ++i) {
        Hierarchy& hierarchy = all[i + 1];
        hierarchy.levels.insert(hierarchy.levels.end(), trees[i].first.begin(), trees[i].first.end());
        AddTree(hierarchy, trees[i].second);
    }
    for (Member& member : all.back().members) {
        member.isTop = true; // without a fact column it restricts nothing
    }
    return all;
}

constexpr std::string_view definition = R"({
  "tables": { "facts": { "file": "facts.csv", "delimiter": ";" }, "accounts": { "file": "accounts.csv", "delimiter": ";" },
              "obs": { "file": "obs.csv", "delimiter": ";" } },
  "cubes": [ { "name": "Plain", "facts": "facts",
    "dimensions": [
      { "name": "Date", "column": "date",
        "calendar": { "periods": "PERIODS", "quarters": true, "from": "2023-01-01", "to": "2024-01-31" } },
      { "name": "Accounts", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
        { "name": "Codes", "levels": [ { "name": "Code" } ] },
        { "name": "Names", "levels": [ { "name": "Name", "memberName": "name" } ] } ] },
      { "name": "Groups", "column": "account", "table": "accounts", "key": "code", "main": true, "hierarchies": [
        { "name": "Groups", "levels": [ { "name": "Group1", "key": "g1", "memberName": "g1name" },
                                        { "name": "Group2", "key": "g2" } ] } ] },
      { "name": "OBS", "column": "obs", "table": "obs", "key": "code", "hierarchies": [
        { "name": "OBS", "levels": [ { "name": "L1", "key": "l1" }, { "name": "L2", "key": "l2" },
                                     { "name": "L3", "key": "l3" } ] } ] },
      { "name": "Firm", "column": "firm" },
      { "name": "MoneyType", "members": [ "Local", "Other" ] } ],
    "measures": [ { "name": "Amount", "column": "amount" },
                  { "name": "Quantity", "column": "quantity", "decimals": 3 },
                  { "name": "Lines", "aggregate": "count" } ] } ] })";

std::string Scaled(std::int64_t number, int decimals) {
    const std::int64_t one = decimals == 2 ? 100 : 1000;
    return fmt::format("{}{}.{:0{}}", number < 0 ? "-" : "", std::abs(number) / one, std::abs(number) % one,
                       decimals);
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + "\"";
}

std::shared_ptr<const engine::Cube> Build(const Cube& cube, bool byDays) {
    const TemporaryFolder folder;
    std::string facts = "date;account;obs;firm;amount;quantity\n";
    for (const Fact& fact : cube.facts) {
        facts += fmt::format("{}{};{};{};{};{};{}\n", fact.values[Date], byDays ? "" : "-17",
                             fact.values[Account], fact.values[Obs], fact.values[Firm], Scaled(fact.cents, 2),
                             Scaled(fact.thousandths, 3));
    }
    folder.Write("facts.csv", facts);
    std::string accounts = "code;name;g1;g1name;g2\n";
    for (const auto& line : accountLines) {
        accounts += fmt::format("{};{};{};{};{}\n", line[0], Quoted(line[1]), line[2], line[3], line[4]);
    }
    folder.Write("accounts.csv", accounts);
    std::string obs = "code;l1;l2;l3\n";
    for (const auto& line : obsLines) {
        obs += fmt::format("{};{};{};{}\n", line[0], line[1], line[2], line[3]);
    }
    folder.Write("obs.csv", obs);
    std::string text(definition);
    text.replace(text.find("PERIODS"), 7, byDays ? "days" : "months");
    BuildOptions options;
    options.definition = folder.Write("plain.json", text);
    options.output = folder.Path("plain.cub");
    BuildCube(options);
    return CubeFile::Open(options.output)->FindCube("Plain"); // the mapping outlives the folder
}

} // namespace

std::vector<int> Hierarchy::Children(int member) const {
    std::vector<int> children;
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (members[i].parent == member) {
            children.push_back(static_cast<int>(i));
        }
    }
    return children;
}

std::vector<int> Hierarchy::OfLevel(int level) const {
    std::vector<int> found;
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (members[i].level == level) {
            found.push_back(static_cast<int>(i));
        }
    }
    return found;
}

int Hierarchy::AncestorAt(int member, int level) const {
    while (member != noParent && members[static_cast<std::size_t>(member)].level > level) {
        member = members[static_cast<std::size_t>(member)].parent;
    }
    return member != noParent && members[static_cast<std::size_t>(member)].level == level ? member : noParent;
}

Cube MakeCube(std::uint32_t seed, std::size_t factCount, bool byDays) {
    std::mt19937 random(seed);
    Cube cube;
    cube.hierarchies = MakeHierarchies(byDays);
    const auto pick = [&](const std::set<std::string>& values) {
        return *std::next(values.begin(), static_cast<std::ptrdiff_t>(random() % values.size()));
    };
    while (cube.facts.size() < factCount) {
        Fact fact;
        for (const std::size_t hierarchy : {0U, 1U, 4U, 5U}) {
            fact.values.push_back(pick(cube.hierarchies[hierarchy].members[0].values));
        }
        if (fact.values[Account] == "900") {
            continue;
        }
        for (const std::size_t column : {Account, Obs, Firm}) {
            if (random() % 12 == 0) {
                fact.values[column].clear();
            }
        }
        const std::int64_t most =
            random() % 10 == 0 ? 900'000'000'000 : 100'000; // in cents; sometimes beyond 32 bits
        fact.cents =
            static_cast<std::int64_t>(random() * std::uint64_t{0x10001} % (2 * std::uint64_t(most))) - most;
        fact.thousandths = static_cast<std::int64_t>(random() % 200'001) - 100'000;
        cube.facts.push_back(std::move(fact));
    }
    cube.built = Build(cube, byDays);
    return cube;
}

} // namespace qel::engine::plain
