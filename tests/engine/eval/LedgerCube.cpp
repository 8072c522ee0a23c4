#include "tests/engine/eval/LedgerCube.h"

#include "qel/engine/BuildCube.h"
#include "qel/engine/CubeFile.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>

namespace qel::engine {

namespace {

using test::TemporaryFolder;

constexpr std::string_view definition = R"({
  "tables": { "ledger": { "file": "ledger.csv", "delimiter": ";" }, "accounts": { "file": "accounts.csv" },
              "obs": { "file": "obs.csv" }, "numbers": { "file": "numbers.csv" } },
  "cubes": [ { "name": "Finance", "facts": "ledger",
    "dimensions": [
      { "name": "Date", "column": "date",
        "calendar": { "periods": "months", "quarters": true, "from": "2023-01-01", "to": "2024-12-31" } },
      { "name": "ActX", "column": "number", "table": "numbers", "key": "code", "hierarchies": [
        { "name": "OBSx", "levels": [ { "name": "Name", "key": "name" }, { "name": "Number", "key": "number" } ] } ] },
      { "name": "OBS", "column": "obs", "table": "obs", "key": "code", "hierarchies": [
        { "name": "OBS", "levels": [ { "name": "Level1", "key": "level1" }, { "name": "Level2", "key": "level2" } ] } ] },
      { "name": "Cost_Centers", "column": "centre", "hierarchies": [
        { "name": "Cost_Centers", "levels": [ { "name": "Cost_Center" } ] } ] },
      { "name": "Activities", "column": "activity", "hierarchies": [
        { "name": "ActivityCodes", "levels": [ { "name": "ActivityCode" } ] },
        { "name": "ActivityNames", "levels": [ { "name": "ActivityName" } ] } ] },
      { "name": "Accounts", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
        { "name": "AccountCodes", "levels": [ { "name": "AccountCode", "key": "code", "caption": "name" } ] },
        { "name": "AccountNames", "levels": [ { "name": "AccountName", "key": "code", "memberName": "name" } ] } ] },
      { "name": "SuperSumery", "column": "account", "table": "accounts", "key": "code", "main": true, "hierarchies": [
        { "name": "SumeryCode", "levels": [ { "name": "SuperSum1", "key": "group1" }, { "name": "SuperSum2", "key": "group2" } ] },
        { "name": "SumeryName", "levels": [ { "name": "SuperSum1Name", "key": "group1", "memberName": "group1_name" },
                                            { "name": "SuperSum2Name", "key": "group2", "memberName": "group2_name" } ] } ] },
      { "name": "AccX", "column": "account", "table": "accounts", "key": "code", "hierarchies": [
        { "name": "AccX", "levels": [ { "name": "AccX", "key": "group1" } ] } ] },
      { "name": "Firma", "column": "firm" },
      { "name": "MoneyType", "members": [ "Local", "Other" ] } ],
    "measures": [ { "name": "Amount", "column": "amount", "decimals": 2 }, { "name": "Lines", "aggregate": "count" } ],
    "defaultMeasure": "Amount")";

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        quoted.append(c == '"' ? 2 : 1, c);
    }
    return quoted + '"';
}

void WriteTables(const TemporaryFolder& folder) {
    std::string accounts = "code,name,group1,group1_name,group2,group2_name\n";
    for (const LedgerAccount& account : ledgerAccounts) {
        accounts += fmt::format("{},{},{},{},{},{}\n", account.code, Quoted(account.name), account.group1,
                                account.group1Name, account.group2, account.group2Name);
    }
    folder.Write("accounts.csv", accounts);
    std::string obs = "code,level1,level2\n";
    for (const LedgerObs& leaf : ledgerObs) {
        obs += fmt::format("{},{},{}\n", leaf.code, leaf.level1, leaf.level2);
    }
    folder.Write("obs.csv", obs);
    std::string numbers = "code,name,number\n";
    for (const LedgerObsNumber& number : ledgerObsNumbers) {
        numbers += fmt::format("{},{},{}\n", number.code, number.name, number.number);
    }
    folder.Write("numbers.csv", numbers);
}

} // namespace

std::shared_ptr<const Cube> BuildLedgerCube(const std::vector<LedgerLine>& lines, const std::string& keys) {
    const TemporaryFolder folder;
    WriteTables(folder);
    std::string ledger = "date;account;obs;number;centre;activity;firm;amount\n";
    for (const LedgerLine& line : lines) {
        ledger +=
            fmt::format("{}-15;{};{};{};{};{};{};{}{}.{:02}\n", line.month, line.account, line.obs,
                        line.obsNumber, line.costCentre, line.activity, line.firm, line.cents < 0 ? "-" : "",
                        std::abs(line.cents) / 100, std::abs(line.cents) % 100);
    }
    folder.Write("ledger.csv", ledger);
    BuildOptions options;
    options.definition = folder.Write("cube.json", std::string(definition) + keys + "}]}");
    options.output = folder.Path("finance.cub");
    BuildCube(options);
    return CubeFile::Open(options.output)->FindCube("Finance"); // the mapping outlives the folder
}

std::shared_ptr<const Cube> BuildCommonLedger(const std::string& keys) {
    const std::vector<LedgerLine> lines = {
        {"2024-01", "4000", "n1", "A", "100", "7", "1", 100000},
        {"2024-02", "4000", "n1", "A", "100", "7", "1", 200050},
        {"2024-03", "4000", "n2", "B", "200", "8", "1", 300000},
        {"2024-03", "4000", "s2", "C", "300", "8", "2", 50},
        {"2023-12", "4100", "s1", "A", "100", "7", "2", 7000},
        {"2024-01", "5000", "n3", "A", "100", "7", "1", -40000},
        {"2024-02", "5000", "s3", "B", "200", "7", "2", -30000},
        {"2024-05", "5100", "n1", "A", "100", "8", "1", -12345},
        {"2024-05", "5100", "n1", "A", "100", "8", "1", 12345},
        {"2024-04", "5200", "s2", "C", "300", "7", "1", -1},
    };
    return BuildLedgerCube(lines, keys);
}

const Cube& CommonLedger() {
    static const std::shared_ptr<const Cube> cube = BuildCommonLedger("");
    return *cube;
}

std::string ShowValue(const CellValue& value) {
    if (value.isEmpty) {
        return "-";
    }
    if (value.text != nullptr) {
        return "'" + *value.text + "'";
    }
    if (value.isCondition) {
        return value.number != 0 ? "true" : "false";
    }
    return fmt::format("{}{}", value.isExact ? "" : "~", value.number);
}

std::string Show(const Cellset& cellset) {
    const auto tuple = [&](std::size_t axis, std::size_t position) {
        std::string text;
        for (std::size_t i = 0; i < cellset.TupleSize(axis); ++i) {
            text += (i > 0 ? "+" : "") + cellset.MemberAt(axis, position, i).uniqueName;
        }
        return text;
    };
    if (cellset.AxisCount() == 0) {
        return ShowValue(cellset.Cell({}));
    }
    std::string text;
    for (std::size_t column = 0; column < cellset.PositionCount(0); ++column) {
        text += (column > 0 ? " | " : "") + tuple(0, column);
    }
    const std::size_t rows = cellset.AxisCount() > 1 ? cellset.PositionCount(1) : 1;
    for (std::size_t row = 0; row < rows; ++row) {
        text += "\n" + (cellset.AxisCount() > 1 ? tuple(1, row) + ": " : std::string());
        for (std::size_t column = 0; column < cellset.PositionCount(0); ++column) {
            std::vector<std::size_t> cell{column};
            if (cellset.AxisCount() > 1) {
                cell.push_back(row);
            }
            text += (column > 0 ? " | " : "") + ShowValue(cellset.Cell(cell));
        }
    }
    return text;
}

} // namespace qel::engine
