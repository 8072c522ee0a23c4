#include "examples/ledger/LedgerDefinition.h"

#include <fmt/format.h>

#include <string_view>

namespace qel::ledger {
namespace {

constexpr std::string_view opening = R"json({
  "csv": { "delimiter": ",", "decimal": ".", "thousands": "", "dates": "iso" },
  "tables": {
    "ledger": { "file": "ledger.csv" },
    "accounts": { "file": "accounts.csv" },
    "activities": { "file": "activities.csv" },
    "cost_centres": { "file": "cost_centres.csv" },
    "obs": { "file": "obs.csv" },
    "obs_numbers": { "file": "obs_numbers.csv" },
    "firms": { "file": "firms.csv" },
    "plbs": { "file": "plbs.csv" },
    "rh": { "file": "rh.csv" },
    "opening_balance": { "file": "opening_balance.csv" },
    "money_sets": { "file": "money_sets.csv" }
  },
  "cubes": [
)json";

constexpr std::string_view cube = R"json(    {
      "name": "{cube}",
      "caption": "{caption}",
      "facts": "ledger",
      "dimensions": [
        { "name": "Date", "column": "date", "calendar": { "periods": "{periods}", "quarters": true } },
        // Each number under an OBS name selects one or more business lines; number 1 is the whole group.
        { "name": "ActX", "column": "obs_number", "table": "obs_numbers", "key": "code",
          "accept": [ "severalParents", "equalNames" ],
          "hierarchies": [
            { "name": "OBSx", "levels": [ { "name": "OBS name", "key": "obs_name" },
                                          { "name": "OBS number", "key": "obs_number", "caption": "{name}" } ] }
          ] },
        { "name": "OBS", "column": "obs", "table": "obs", "key": "code", "accept": "equalNames",
          "hierarchies": [
            { "name": "OBS", "levels": [ {obs levels} ] }
          ] },
        { "name": "Cost_Centers", "column": "cost_centre", "table": "cost_centres", "key": "code",
          "hierarchies": [
            { "name": "Cost_Centers", "levels": [ { "name": "Cost_Center", "key": "code", "caption": "{name}" } ] }
          ] },
        { "name": "Activities", "column": "activity", "table": "activities", "key": "code",
          "hierarchies": [
            { "name": "ActivityCodes", "levels": [ { "name": "ActivityCode", "key": "code", "caption": "{name}" } ] },
            { "name": "ActivityNames", "levels": [ { "name": "ActivityName", "key": "code", "memberName": "{name}" } ] }
          ] },
        { "name": "Accounts", "column": "account", "table": "accounts", "key": "code",
          "hierarchies": [
            { "name": "AccountCodes", "levels": [ { "name": "AccountCode", "key": "code", "caption": "{name}" } ] },
            { "name": "AccountNames", "levels": [ { "name": "AccountName", "key": "code", "memberName": "{name}" } ] }
          ] },
        { "name": "SuperSumery", "column": "account", "table": "accounts", "key": "code", "main": true,
          "hierarchies": [
            { "name": "SumeryCode", "levels": [ { "name": "SuperSum1", "key": "group1", "caption": "group1_{name}" },
                                                { "name": "SuperSum2", "key": "group2", "caption": "group2_{name}" },
                                                { "name": "SuperSum3", "key": "group3", "caption": "group3_{name}" } ] },
            { "name": "SumeryName", "levels": [ { "name": "SuperSum1Name", "key": "group1", "memberName": "group1_{name}" },
                                                { "name": "SuperSum2Name", "key": "group2", "memberName": "group2_{name}" },
                                                { "name": "SuperSum3Name", "key": "group3", "memberName": "group3_{name}" } ] }
          ] },
        { "name": "AccX", "column": "account", "table": "accounts", "key": "code",
          "hierarchies": [ { "name": "AccX", "levels": [ { "name": "AccX", "key": "kind" } ] } ] },
        { "name": "Firma", "column": "firm", "table": "firms", "key": "code",
          "hierarchies": [ { "name": "Firma", "levels": [ { "name": "Firma", "key": "code", "caption": "{name}" } ] } ] },
        { "name": "Plbs", "column": "plbs", "table": "plbs", "key": "code",
          "hierarchies": [ { "name": "Plbs", "levels": [ { "name": "Plbs", "key": "code", "caption": "{name}" } ] } ] },
        { "name": "RH", "column": "rh", "table": "rh", "key": "code",
          "hierarchies": [ { "name": "RH", "levels": [ { "name": "RH", "key": "code", "caption": "{name}" } ] } ] },
        { "name": "Opening_Balance", "column": "opening_balance", "table": "opening_balance", "key": "code",
          "hierarchies": [
            { "name": "Opening_Balance", "levels": [ { "name": "Opening_Balance", "key": "code", "caption": "{name}" } ] }
          ] },
        { "name": "MoneySet", "column": "money_set", "table": "money_sets", "key": "code",
          "hierarchies": [ { "name": "MoneySet", "levels": [ { "name": "MoneySet", "key": "code", "caption": "{name}" } ] } ] },
        { "name": "MoneyType", "members": [ "Local" ] }
      ],
      "measures": [
        { "name": "Amount", "column": "amount", "decimals": 2 },
        { "name": "Quantity", "column": "quantity", "decimals": 3 },
        { "name": "Lines", "aggregate": "count" }
      ],
      "defaultMeasure": "Amount"
    })json";

constexpr std::string_view closing = "\n  ]\n}\n";

std::string Replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

/// Only the key of the lowest level is the table's key.
std::string ObsLevels(std::size_t count) {
    constexpr std::string_view between = ",\n                                         ";
    std::string levels;
    for (std::size_t level = 1; level <= count; ++level) {
        const std::string key = level == count ? "code" : fmt::format("level{}", level);
        levels += fmt::format(R"({}{{ "name": "Level{}", "key": "{}", "memberName": "level{}_{{name}}" }})",
                              level == 1 ? "" : between, level, key, level);
    }
    return levels;
}

std::string Cube(std::string_view name, std::string_view caption, std::string_view periods,
                 std::string_view nameColumn, std::size_t obsLevels) {
    std::string text = Replaced(std::string(cube), "{obs levels}", ObsLevels(obsLevels));
    text = Replaced(std::move(text), "{cube}", name);
    text = Replaced(std::move(text), "{caption}", caption);
    text = Replaced(std::move(text), "{periods}", periods);
    return Replaced(std::move(text), "{name}", nameColumn);
}

} // namespace

std::string LedgerDefinition(std::size_t obsLevels) {
    return std::string(opening) + Cube("LedgerFNC", "Ledger by months", "months", "name", obsLevels) + ",\n" +
           Cube("LedgerHebrewFNC", "ספר ראשי לפי ימים", "days", "name_he", obsLevels) + std::string(closing);
}

} // namespace qel::ledger
