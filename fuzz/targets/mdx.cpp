#include "qel/engine/BuildCube.h"
#include "qel/engine/Cellset.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/Drillthrough.h"
#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/helpers/SmallStack.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

// Runs any bytes as a statement on a small cube, in a thread with a small stack: the result is a cellset or
// an EngineError, in bounded time.

namespace {

constexpr std::string_view ledger = "date,account,group,firm,amount\n"
                                    "2024-01-31,4000,Income,1,10.00\n2024-02-29,4000,Income,2,-3.50\n"
                                    "2024-02-29,5000,Costs,1,7.25\n2023-12-31,5100,Costs,2,0.01\n";

constexpr std::string_view definition = R"({ "tables": { "ledger": { "file": "ledger.csv" } },
  "cubes": [ { "name": "Finance", "facts": "ledger", "dimensions": [
    { "name": "Date", "column": "date", "calendar": { "periods": "months", "quarters": true } },
    { "name": "Accounts", "column": "account", "table": "ledger", "key": "account", "hierarchies": [
      { "name": "Codes", "levels": [ { "name": "Group", "key": "group" }, { "name": "Code", "key": "account" } ] },
      { "name": "Names", "levels": [ { "name": "Name", "key": "account" } ] } ] },
    { "name": "Firma", "column": "firm" }, { "name": "MoneyType", "members": [ "Local" ] } ],
  "measures": [ { "name": "Amount", "column": "amount", "decimals": 2 }, { "name": "Lines", "aggregate": "count" } ] } ] })";

std::shared_ptr<const qel::engine::Cube> BuildSmallCube() {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("qel-fuzz-" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "ledger.csv") << ledger;
    std::ofstream(folder / "cube.json") << definition;
    qel::engine::BuildOptions options;
    options.definition = folder / "cube.json";
    options.output = folder / "small.cub";
    qel::engine::BuildCube(options);
    auto cube = qel::engine::CubeFile::Open(options.output)->FindCube("Finance");
    std::filesystem::remove_all(folder);
    return cube;
}

/// What stands between two bytes 1 comes many times: small inputs make long statements.
std::string Lengthened(std::string_view text) {
    constexpr char mark = 1;
    constexpr std::size_t mostBytes = 20'000;
    std::string longer;
    for (std::size_t piece = 0; true; ++piece) {
        const std::size_t end = std::min(text.find(mark), text.size());
        longer += text.substr(0, end);
        while (piece % 2 == 1 && end > 0 && longer.size() + end < mostBytes) {
            longer += text.substr(0, end);
        }
        if (end == text.size()) {
            return longer;
        }
        text.remove_prefix(end + 1);
    }
}

void RunInput(const qel::engine::Cube& cube, std::string_view statement) {
    try {
        if (qel::engine::IsDrillthrough(statement)) {
            static_cast<void>(qel::engine::RunDrillthrough(cube, statement));
            return;
        }
        const qel::engine::Cellset cellset = qel::engine::RunStatement(cube, statement);
        for (std::size_t axis = 0; axis < cellset.AxisCount(); ++axis) {
            for (std::size_t i = 0; i < cellset.PositionCount(axis) && cellset.TupleSize(axis) > 0; ++i) {
                static_cast<void>(cellset.MemberAt(axis, i, cellset.TupleSize(axis) - 1));
            }
        }
    } catch (const qel::engine::EngineError&) {
        return; // an expected error
    }
}

const qel::engine::Cube& SmallCube() {
    static const std::shared_ptr<const qel::engine::Cube> cube = BuildSmallCube();
    return *cube;
}

} // namespace

/// Builds the cube before the time of the first input is measured: a build waits for the disk.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    SmallCube();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string statement = Lengthened({reinterpret_cast<const char*>(data), size});
    qel::test::RunOnSmallStack([&] { RunInput(SmallCube(), statement); });
    return 0;
}
