#include "qel/engine/Drillthrough.h"

#include "qel/engine/RunStatement.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/eval/LedgerCube.h"

#include <gtest/gtest.h>

namespace qel::engine {
namespace {

/// Cells that are sums of facts; the measure is put in place of "@".
const char* const sums[] = {
    "SELECT {@} ON 0 FROM Finance",
    "SELECT FROM Finance WHERE ([Accounts].[AccountCodes].[All].[4000], [Date].[2024], @)",
    "SELECT FROM Finance WHERE ([ActX].[OBSx].[All].[1].[12], [SuperSumery].[SumeryCode].[1], @)",
    "WITH MEMBER [Date].DateSel AS 'SUM(LastPeriods(5, [Date].[All].[2024].[Q2].[5]), @)' "
    "MEMBER [OBS].Sel AS 'SUM({[OBS].[North].[Other], [OBS].[South].[Other]})' "
    "SELECT {[Date].DateSel} ON 0, {[Firma].[1]} ON 1 FROM Finance WHERE [OBS].Sel",
    // A fact of [11] belongs to [12] as well: Sum counts it twice, Aggregate and a slicer once.
    "WITH MEMBER [ActX].[OBSx].S AS 'Sum({[ActX].[OBSx].[1].[11], [ActX].[OBSx].[1].[12]})' "
    "SELECT {@} ON 0 FROM Finance WHERE [ActX].[OBSx].S",
    "WITH MEMBER [ActX].[OBSx].S AS 'Aggregate({[ActX].[OBSx].[1].[11], [ActX].[OBSx].[1].[12]})' "
    "SELECT {@} ON 0 FROM Finance WHERE [ActX].[OBSx].S",
    "SELECT {@} ON 0 FROM Finance WHERE {[ActX].[OBSx].[1].[11], [ActX].[OBSx].[1].[12]}",
    "WITH MEMBER [Firma].A AS 'Sum({([Firma].[1], [Date].[2024]), ([Firma].[2], [Date].[2023])}, @)' "
    "MEMBER [Cost_Centers].B AS 'Sum({[Cost_Centers].[100], [Cost_Centers].[100]})' "
    "SELECT FROM Finance WHERE ([Firma].A, [Cost_Centers].B)",
    "WITH MEMBER [Firma].A AS 'Aggregate({([Firma].[1], [Date].[2024]), ([Firma].[1], [Date])}, @)' "
    "SELECT FROM Finance WHERE [Firma].A",
};

std::string With(std::string statement, const std::string& measure) {
    for (std::size_t at = 0; (at = statement.find('@')) != std::string::npos;) {
        statement.replace(at, 1, measure);
    }
    return statement;
}

std::int64_t CellOf(const std::string& statement) {
    const Cellset cellset = RunStatement(CommonLedger(), statement);
    return cellset.Cell(std::vector<std::size_t>(cellset.AxisCount())).scaled;
}

TEST(Drillthrough, HasTheFactsThatTheCellAddsUp) {
    for (const char* const statement : sums) {
        const std::string amounts = With(statement, "[Measures].[Amount]");
        const FactLines lines =
            RunDrillthrough(CommonLedger(), "DRILLTHROUGH " + amounts + " RETURN Date, [Measures].[Amount]");
        std::int64_t sum = 0;
        for (const auto& row : lines.rows) {
            sum += std::get<CellValue>(row[1]).scaled;
        }
        EXPECT_EQ(sum, CellOf(amounts)) << amounts;
        EXPECT_EQ(lines.total, lines.rows.size()) << amounts;
        EXPECT_EQ(lines.total, CellOf(With(statement, "[Measures].[Lines]"))) << amounts;
        EXPECT_GT(lines.total, 1) << amounts;
        EXPECT_TRUE(std::is_sorted(lines.rows.begin(), lines.rows.end(), [](const auto& a, const auto& b) {
            return std::get<std::string>(a[0]) < std::get<std::string>(b[0]);
        })) << amounts;
    }
}

TEST(Drillthrough, PagesAreThePartsOfTheWhole) {
    const std::string select = "SELECT FROM Finance WHERE [Firma].[1]";
    const FactLines whole = RunDrillthrough(CommonLedger(), "DRILLTHROUGH " + select);
    const FactLines page = RunDrillthrough(CommonLedger(), "drillthrough maxrows 3 firstrowset 2 " + select +
                                                               " RETURN [date], account");
    ASSERT_EQ(page.rows.size(), 3);
    EXPECT_EQ(page.total, whole.total);
    EXPECT_EQ(page.columns, (std::vector<std::string>{"date", "account"}));
    const auto account =
        std::find(whole.columns.begin(), whole.columns.end(), "account") - whole.columns.begin();
    for (std::size_t i = 0; i < page.rows.size(); ++i) {
        const auto& row = whole.rows[i + 1];
        EXPECT_EQ(std::get<std::string>(page.rows[i][0]), std::get<std::string>(row[0]));
        EXPECT_EQ(std::get<std::string>(page.rows[i][1]),
                  std::get<std::string>(row[static_cast<std::size_t>(account)]));
    }
    EXPECT_TRUE(RunDrillthrough(CommonLedger(), "DRILLTHROUGH FIRSTROWSET 1000000 " + select).rows.empty());
}

struct FaultyDrillthrough {
    const char *statement, *fault;
};

const FaultyDrillthrough faulty[] = {
    {"DRILLTHROUGH MAXROWS x SELECT FROM Finance", "expected a whole number of rows"},
    {"DRILLTHROUGH SELECT [Firma].Members ON 0 FROM Finance", "this axis has 3 positions"},
    {"DRILLTHROUGH WITH MEMBER [Measures].Q AS '[Measures].[Amount] / 2' SELECT {[Measures].Q} ON 0 FROM "
     "Finance",
     "a formula computes it"},
    {"DRILLTHROUGH SELECT FROM Finance WHERE {[Measures].[Amount], [Measures].[Lines]}", "several measures"},
    {"DRILLTHROUGH SELECT FROM Finance RETURN nothing", "the lines have no such column; they have date,"},
    {"DRILLTHROUGH SELECT FROM Finance RETURN [Firma].[1]", "expected a column of the lines"},
    {"DRILLTHROUGH SELECT FROM Finance RETURN date account", "expected the end of the statement"},
    {"SELECT FROM Finance RETURN date", "there is no cube [Finance RETURN date]"},
};

TEST(Drillthrough, FaultsAreTold) {
    for (const auto& [statement, fault] : faulty) {
        const Fault raised = FaultOf([&text = statement] { RunDrillthrough(CommonLedger(), text); });
        EXPECT_NE(raised.text.find(fault), std::string::npos) << statement << ": " << raised.text;
    }
    const Fault asCells = FaultOf([] { RunStatement(CommonLedger(), "DRILLTHROUGH SELECT FROM Finance"); });
    EXPECT_EQ(asCells.kind, ErrorKind::InvalidExpression) << asCells.text;
    EXPECT_THROW(RunDrillthrough(CommonLedger(), "DRILLTHROUGH SELECT FROM Finance",
                                 [](double) { throw std::runtime_error("stopped"); }),
                 std::runtime_error);
}

} // namespace
} // namespace qel::engine
