#include "engine/build/Definition.h"

#include "tests/engine/FaultOf.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::engine {
namespace {

/// A valid definition with one part replaced.
std::string With(const std::string& part, const std::string& replacement) {
    std::string text = R"({
  // a comment
  "csv": { "delimiter": ";", "decimal": ",", "thousands": "." },
  "tables": {
    "ledger": { "file": "ledger.csv", "dates": "dmy", "columns": { "amount": "Value GBP" } },
    "accounts": { "file": "accounts.csv", "decimal": ".", "thousands": "" }
  },
  "cubes": [ {
    "name": "LedgerFNC", "facts": [ "ledger" ],
    "dimensions": [
      { "name": "Date", "column": "date", "calendar": { "periods": "days", "quarters": false, "from": "2024-01-01" } },
      { "name": "Accounts", "column": "account", "table": "accounts", "key": "code", "all": "Total", "hierarchies": [
        { "name": "Codes", "levels": [ { "name": "Code", "caption": "name" } ] },
        { "name": "Names", "all": false, "default": "1", "levels": [ { "name": "Group", "key": "group" },
                                                                     { "name": "Name", "memberName": "name", "order": "file" } ] } ] },
      { "name": "Firm", "column": "firm" },
      { "name": "MoneyType", "members": [ "Local" ] }
    ],
    "measures": [ { "name": "Amount", "column": "amount", "decimals": 3 }, { "name": "Lines", "aggregate": "count" } ],
    "defaultMeasure": "lines",
    "sortOrders": [ [ "account", "date" ] ]
  } ]
})";
    const auto place = text.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    return text.replace(place, part.size(), replacement);
}

TEST(Definition, FillsInDefaults) {
    const Definition definition = ParseDefinition(With("// a comment", "/* another */"), "d.json", "/data");
    const TableDefinition& accounts = definition.tables[0]; // tables are sorted by name
    const TableDefinition& ledger = definition.tables[1];
    EXPECT_EQ(accounts.file, std::filesystem::path("/data/accounts.csv"));
    EXPECT_EQ(accounts.format.delimiter, ';');
    EXPECT_EQ(accounts.format.decimal, '.');
    EXPECT_EQ(accounts.format.thousands, '\0');
    EXPECT_EQ(ledger.format.thousands, '.');
    EXPECT_EQ(ledger.format.dates, DateFormat::DayMonthYear);
    EXPECT_EQ(ledger.columns.at(0).second, "Value GBP");

    const CubeDefinition& cube = definition.cubes.at(0);
    EXPECT_EQ(cube.caption, "LedgerFNC");
    EXPECT_EQ(cube.defaultMeasure, 1U);
    EXPECT_EQ(cube.measures[0].decimals, 3);
    EXPECT_EQ(cube.dimensions[0].calendar->levels, (std::vector<std::string>{"Year", "Month", "Day"}));
    const auto& codes = cube.dimensions[1].hierarchies.at(0);
    const auto& names = cube.dimensions[1].hierarchies.at(1);
    EXPECT_EQ(codes.all, "Total") << "inherited from the dimension";
    EXPECT_EQ(names.all, std::nullopt);
    EXPECT_EQ(names.defaultKey, "1");
    EXPECT_EQ(codes.levels.at(0).key, "code") << "the dimension's key";
    EXPECT_EQ(names.levels.at(1).order, MemberOrder::File);
    EXPECT_EQ(cube.dimensions[2].hierarchies.at(0).levels.at(0).key, "firm");
}

TEST(Definition, NamesTheKeyThatIsWrong) {
    const struct {
        const char *part, *replacement, *message;
    } cases[] = {
        {"// a comment", "a comment",
         "line 2, column 3: syntax error while parsing object key - invalid literal; last "
         "read: '{<U+000A>  a'; expected string literal"},
        {"\"facts\": [ \"ledger\" ]", "\"name\": \"B\"", "the key \"name\" stands twice in one object"},
        {"\"cubes\"", "\"cube\"", "the key \"cubes\" is missing; is \"cube\" meant for it?"},
        {"\"csv\"", "\"cvs\"", "unknown key \"cvs\"; did you mean \"csv\"?"},
        {"{ \"name\": \"Firm\", \"column\"", "{ \"name\": \"Firm\", \"colum\": 1, \"column\"",
         "cubes[0].dimensions[2]: unknown key \"colum\"; did you mean \"column\"?"},
        {"\"Code\", \"caption\"", "\"Code\", \"captions\"",
         "cubes[0].dimensions[1].hierarchies[0].levels[0]: unknown key \"captions\"; did you mean "
         "\"caption\"?"},
        {"\"Code\", \"caption\"", "\"Code\", \"wholly other\"",
         "cubes[0].dimensions[1].hierarchies[0].levels[0]: unknown key \"wholly other\""},
        {"\"key\": \"group\"", "\"key\": 5",
         "cubes[0].dimensions[1].hierarchies[1].levels[0].key: expected a text, found number"},
        {"\"key\": \"group\"", "\"key\": \"\"",
         "cubes[0].dimensions[1].hierarchies[1].levels[0].key: expected a text that is not empty"},
        {"[ \"ledger\" ]", "\"leger\"", "cubes[0].facts: there is no table \"leger\" in \"tables\""},
        {"[ \"ledger\" ]", "[]", "cubes[0].facts: expected at least one element"},
        {"[ \"ledger\" ]", "{}", "cubes[0].facts: expected an array, found object"},
        {"\";\"", "\"::\"",
         "csv.delimiter: expected one of \",\", \";\", \"\t\", \"|\", \"auto\", found \"::\""},
        {"\"thousands\": \".\"", "\"thousands\": \",\"",
         "csv: \"decimal\" and \"thousands\" are the same sign"},
        {"\"decimal\": \".\", \"thousands\": \"\"", "\"decimal\": \".\"",
         "tables.accounts: \"decimal\" and \"thousands\" are the same sign"},
        {"{ \"file\": \"ledger.csv\", ", "{ ", "tables.ledger: the key \"file\" is missing"},
        {"\"name\": \"Firm\"", "\"name\": \"DATE\"",
         "cubes[0].dimensions[2]: there is another dimension named \"DATE\""},
        {"\"name\": \"Firm\"", "\"name\": \"measures\"",
         "cubes[0].dimensions[2]: there is another dimension named \"measures\""},
        {"\"name\": \"Names\"", "\"name\": \"codes\"",
         "cubes[0].dimensions[1].hierarchies[1]: there is another hierarchy named \"codes\""},
        {"\"name\": \"Lines\"", "\"name\": \"amount\"",
         "cubes[0].measures[1]: there is another measure named \"amount\""},
        {"\"days\"", "\"weeks\"",
         "cubes[0].dimensions[0].calendar.periods: expected one of \"months\", \"days\", found \"weeks\""},
        {"\"2024-01-01\"", "\"01/02/2024\"",
         "cubes[0].dimensions[0].calendar.from: expected a date such as 2024-12-31"},
        {"\"2024-01-01\"", "\"2024-01-01\", \"to\": \"2023-12-31\"",
         "cubes[0].dimensions[0].calendar: \"from\" is later than \"to\""},
        {"\"quarters\": false", "\"levels\": [ \"Y\" ]",
         "cubes[0].dimensions[0].calendar.levels: expected 4 names, found 1"},
        {"\"quarters\": false", "\"quarters\": 0",
         "cubes[0].dimensions[0].calendar.quarters: expected true or false, found number"},
        {"\"column\": \"firm\"", "\"column\": \"date\", \"calendar\": { \"periods\": \"months\" }",
         "cubes[0].dimensions[2]: the column \"date\" has a calendar already; give it a second name in the "
         "table: "
         "\"columns\": { \"date\": \"date\", \"date2\": \"date\" }"},
        {"\"quarters\": false", "\"monthNames\": [ \"Jan\", \"Feb\" ]",
         "cubes[0].dimensions[0].calendar.monthNames: expected 12 names, from January on, found 2"},
        {"\"order\": \"file\"", "\"properties\": [ \"city\" ], \"parent\": \"group\"",
         "cubes[0].dimensions[1].hierarchies[1].levels[1]: unknown key \"parent\"; a table has one column "
         "for each "
         "level; a column with every member's parent makes none\n  "
         "cubes[0].dimensions[1].hierarchies[1].levels[1]: "
         "unknown key \"properties\"; a member has a key, a name and a caption; another column can be a "
         "level of a "
         "hierarchy of its own"},
        {"\"decimals\": 3", "\"format\": \"0\"",
         "cubes[0].measures[0]: unknown key \"format\"; a measure shows its \"decimals\"; a calculated "
         "member can have "
         "a format"},
        {"\"sortOrders\"",
         R"("calculatedMembers": [ { "name": "x", "formula": "1", "format": "0;0;@" } ], "sortOrders")",
         "cubes[0].calculatedMembers[0].format: the sign @ of a format is for texts; write it in quotes to "
         "show it"},
        {"\"column\": \"firm\"", "\"main\": true, \"members\": [ \"x\" ]",
         "cubes[0].dimensions[2]: a main dimension needs a \"column\""},
        {"\"column\": \"firm\"", "\"caption\": \"x\"",
         "cubes[0].dimensions[2]: needs a \"column\" of the facts, a \"table\" or \"members\""},
        {"\"column\": \"firm\"", "\"column\": \"firm\", \"members\": [ \"x\" ]",
         "cubes[0].dimensions[2]: \"members\" are for a dimension without \"column\" and \"table\""},
        {"\"column\": \"firm\"", "\"column\": \"firm\", \"key\": \"code\"",
         "cubes[0].dimensions[2].key: a key column needs a \"table\""},
        {"\"column\": \"firm\"",
         "\"column\": \"firm\", \"hierarchies\": [ { \"name\": \"F\", \"levels\": [ { \"name\": \"F\", "
         "\"key\": \"x\" } ] } ]",
         "cubes[0].dimensions[2].hierarchies[0].levels[0]: a dimension without a \"table\" has no other "
         "columns than its own"},
        {"\"column\": \"firm\"", R"("column": ["firm", "unit"], "table": "accounts", "key": "code")",
         "cubes[0].dimensions[2].key: expected as many columns as \"column\" has, which is 2"},
        {"\"column\": \"firm\"", R"("column": "firm", "accept": ["equalNames", "all"])",
         R"(cubes[0].dimensions[2].accept[1]: expected one of "severalParents", "equalNames", "dateOrder", )"
         R"("dateMembers", found "all")"},
        {"\"all\": \"Total\"", "\"all\": true",
         "cubes[0].dimensions[1].all: expected the top member's name, or false for none"},
        {"[ \"Local\" ]", "[ \"Local\", \"LOCAL\" ]",
         "cubes[0].dimensions[3].members[1]: there is another member named \"LOCAL\""},
        {"[ \"Local\" ]", R"([ [ "a", "b" ], "c" ])",
         "cubes[0].dimensions[3].members[1]: expected 2 names, as the first member has, found 1"},
        {"[ \"Local\" ]",
         R"([ [ "a", "b" ] ], "hierarchies": [ { "name": "H", "levels": [ { "name": "L" } ] } ])",
         "cubes[0].dimensions[3].hierarchies[0].levels: expected 2, one for each name of a member"},
        {"[ \"Local\" ]",
         R"([ "a" ], "hierarchies": [ { "name": "H", "levels": [ { "name": "L", "key": "x" } ] } ])",
         "cubes[0].dimensions[3].hierarchies[0].levels[0]: a dimension without a \"table\" has no other "
         "columns than its own"},
        {"\"aggregate\": \"count\"", R"("aggregate": "count", "minus": "credit")",
         "cubes[0].measures[1].minus: a count subtracts nothing"},
        {"\"aggregate\": \"count\"", R"("aggregate": "distinctCount", "column": "account")",
         "cubes[0].measures[1].aggregate: a measure cannot count distinct values; write a calculated member "
         "such as Count(NonEmpty([Accounts].[AccountCodes].[AccountCode].Members, [Measures].[Lines])), "
         "where "
         "Lines is a count"},
        {"\"decimals\": 3", "\"decimals\": 10",
         "cubes[0].measures[0].decimals: expected a whole number from 0 to 9"},
        {"\"decimals\": 3", "\"decimals\": 1.5",
         "cubes[0].measures[0].decimals: expected a whole number from 0 to 9"},
        {"\"column\": \"amount\", ", "", "cubes[0].measures[0]: the key \"column\" is missing"},
        {"\"aggregate\": \"count\"", "\"aggregate\": \"count\", \"column\": \"x\"",
         "cubes[0].measures[1]: a count has no \"column\" and no \"decimals\""},
        {"\"lines\"", "\"Balance\"", "cubes[0].defaultMeasure: there is no measure \"Balance\""},
        {"\"sortOrders\"",
         R"("calculatedMembers": [ { "name": "[Measures].[Net]", "formula": "1 +" } ], "sortOrders")",
         "cubes[0].calculatedMembers[0]: the cube's definition of [Measures].[Net], line 1, column 4: "
         "expected an operand, found the end of the statement, near \"1 +\""},
        {"\"sortOrders\"", R"("details": "some", "sortOrders")",
         "cubes[0].details: expected \"all\", or an array of columns"},
        {"\"sortOrders\"", R"("details": [ "a", { "column": "b", "caption": "A" } ], "sortOrders")",
         "cubes[0].details[1]: there is another detail named \"A\""},
        {"\"sortOrders\"", R"("namedSets": [ { "name": "Main ones", "formula": "{}" } ], "sortOrders")",
         "cubes[0].namedSets[0]: the cube's definition of Main ones, line 1, column 6: expected the end of "
         "the name, which takes brackets unless it is one word, found 'ones', near \"Main ones\""},
        {"\"sortOrders\"",
         R"("namedSets": [ { "name": "s", "formula": "{}", "format": "0" } ], "sortOrders")",
         "cubes[0].namedSets[0]: unknown key \"format\""},
        {"\"account\", \"date\" ]", "\"acount\" ]",
         "cubes[0].sortOrders[0][0]: no dimension has the column \"acount\""},
        {"\"account\", \"date\" ]", "\"firm\", \"firm\" ]",
         "cubes[0].sortOrders[0][1]: the column \"firm\" stands twice"},
    };
    for (const auto& test : cases) {
        const auto [kind, text] =
            FaultOf([&] { ParseDefinition(With(test.part, test.replacement), "d.json", ""); });
        EXPECT_EQ(kind, ErrorKind::InvalidDefinition) << test.message;
        EXPECT_EQ(text, std::string("d.json: ") + test.message);
    }
}

} // namespace
} // namespace qel::engine
