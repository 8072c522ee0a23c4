#include "qel/engine/BuildCube.h"
#include "qel/engine/Cellset.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/RunStatement.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace qel::engine {
namespace {

/// The page's first example, as a reader would copy it.
std::string ExampleOf(const char* page) {
    std::ifstream file(page);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::string opening = "```jsonc\n";
    const std::size_t first = text.find(opening) + opening.size();
    return text.substr(first, text.find("```", first) - first);
}

TEST(CubeDefinitionPage, ShowsADefinitionThatBuilds) {
    const test::TemporaryFolder folder;
    folder.Write("ledger.csv",
                 "date,account,firm,amount\n2024-01-31,4000,1,\"1,000.25\"\n2024-02-01,4000,2,-0.50\n");
    folder.Write("accounts.csv",
                 "code;name;group1;group1_name;group2;group2_name\n4000;Sales;4;Income;41;Trade\n");
    BuildOptions options;
    options.definition = folder.Write("cube.json", ExampleOf(QEL_DEFINITION_PAGE));
    options.output = folder.Path("cube.cub");
    BuildCube(options);
    const auto cube = CubeFile::Open(options.output)->FindCube("LedgerFNC");
    const Cellset cells =
        RunStatement(*cube, "SELECT FROM LedgerFNC WHERE [SuperSumery].[SumeryName].[Income].[Trade]");
    EXPECT_EQ(cells.Cell({}).scaled, 99975);
}

} // namespace
} // namespace qel::engine
