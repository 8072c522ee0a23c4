#include "qel/engine/PlanCache.h"

#include "qel/engine/CubeFile.h"
#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/FaultOf.h"
#include "tests/engine/eval/LedgerCube.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

namespace qel::engine {
namespace {

const std::shared_ptr<const Cube>& Finance() {
    static const std::shared_ptr<const Cube> cube =
        BuildLedgerCube({{"2024-01", "4000", "n1", "A", "100", "7", "1", 100},
                         {"2024-02", "4000", "s2", "B", "200", "8", "2", 2000},
                         {"2024-02", "5100", "n2", "A", "100", "7", "1", -30},
                         {"2023-12", "4200", "n3", "C", "300", "7", "2", 7}});
    return cube;
}

std::string Answer(PlanCache& plans, const std::string& statement) {
    try {
        return Show(plans.Run(*Finance(), statement));
    } catch (const EngineError& error) {
        return error.what();
    }
}

/// A statement gives the same result whether it is new, cached, or cannot be cached.
TEST(PlanCache, AnswersAsTheStatementDoes) {
    const struct {
        const char *what, *statement;
        bool isRemembered;
    } cases[] = {
        {"a sum of periods under a slicer",
         "WITH MEMBER [Date].DateSel as ' SUM( "
         "LastPeriods(3,[Date].[All].[2024].[Q1].[2]),[Measures].[Amount]) ' "
         "SELECT { [Date].DateSel} ON COLUMNS, { [SuperSumery].[SumeryCode].[SuperSum1].[1] } ON ROWS From "
         "Finance "
         "where ( [Firma].[2] )",
         true},
        {"sums of periods and of units, cut with each other",
         "WITH MEMBER [Date].DateSel as "
         "'SUM(LastPeriods(24,[Date].[All].[2024].[Q4].[12]),[Measures].[Amount])' "
         "MEMBER [OBS].Sel as 'SUM({ , [OBS].[All].[North].[Other], [OBS].[All].[South].[Other]})' "
         "SELECT {[Date].DateSel} ON 0, {[SuperSumery].[SumeryCode]} ON 1 FROM Finance WHERE ([OBS].Sel)",
         true},
        {"nothing under the slicer",
         "SELECT {[Measures].[Amount]} ON 0 FROM Finance WHERE ([Firma].[1],[OBS].[South])", true},
        {"a count", "SELECT {[Measures].[Lines]} ON 0 FROM Finance WHERE ([Accounts].[AccountCodes].[4000])",
         true},
        {"two hierarchies of one column",
         "SELECT {[Accounts].[AccountCodes].[5100]} ON 0, "
         "{[SuperSumery].[SumeryCode].[2]} ON 1 FROM Finance",
         true},
        {"no axes", "SELECT FROM Finance WHERE ([Firma].[2])", true},
        {"several cells", "SELECT {[Firma].[1],[Firma].[2]} ON 0 FROM Finance", false},
        {"an empty axis", "SELECT {} ON 0 FROM Finance", false},
        {"non empty", "SELECT NON EMPTY {[Firma].[1]} ON 0 FROM Finance WHERE ([OBS].[South])", false},
        {"a formula that is no sum",
         "WITH MEMBER [Measures].[Twice] AS [Measures].[Amount] * 2 "
         "SELECT {[Measures].[Twice]} ON 0 FROM Finance",
         false},
        {"a slicer of several tuples",
         "SELECT {[Measures].[Amount]} ON 0 FROM Finance WHERE {[Firma].[1],[Firma].[2]}", false},
        {"a member that does not exist", "SELECT {[Firma].[3]} ON 0 FROM Finance", false},
    };
    for (const auto& c : cases) {
        std::string expected;
        try {
            expected = Show(RunStatement(*Finance(), c.statement));
        } catch (const EngineError& error) {
            expected = error.what();
        }
        PlanCache plans;
        for (int time = 0; time < 3; ++time) {
            EXPECT_EQ(Answer(plans, c.statement), expected) << c.what;
        }
        EXPECT_EQ(plans.Count(), c.isRemembered ? 1U : 0U) << c.what;
    }
}

TEST(PlanCache, KeepsItsMemoryBoundAndWhatIsUsed) {
    PlanCache plans(40'000);
    const auto statement = [](int count) {
        return fmt::format("WITH MEMBER [Date].S AS 'SUM(LastPeriods({},[Date].[All].[2024].[Q4].[12]))' "
                           "SELECT {{[Date].S}} ON 0 FROM Finance",
                           count);
    };
    const std::string often = Answer(plans, statement(1));
    std::size_t most = 0;
    for (int count = 2; count < 300; ++count) {
        EXPECT_EQ(Answer(plans, statement(count)), Show(RunStatement(*Finance(), statement(count))));
        EXPECT_EQ(Answer(plans, statement(1)), often);
        most = std::max(most, plans.Count());
    }
    EXPECT_LT(most, 100U);
    EXPECT_GT(most, 10U);
    PlanCache small(500); // less than one plan needs
    EXPECT_EQ(Answer(small, statement(1)), often);
    EXPECT_EQ(small.Count(), 0U);
}

TEST(PlanCache, ServesManyThreads) {
    PlanCache plans(20'000);
    std::vector<std::string> statements, expected;
    for (int month = 1; month <= 12; ++month) {
        statements.push_back(fmt::format("SELECT {{[Date].[All].[2024].[Q{}].[{}]}} ON 0 FROM Finance",
                                         (month - 1) / 3 + 1, month));
        expected.push_back(Show(RunStatement(*Finance(), statements.back())));
    }
    EXPECT_NE(expected[0], expected[1]);
    std::atomic<int> wrong = 0;
    const auto work = [&](std::size_t offset) {
        for (std::size_t i = 0; i < 400; ++i) {
            const std::size_t month = (i + offset) % 12;
            wrong += Answer(plans, statements[month]) == expected[month] ? 0 : 1;
        }
    };
    std::thread first(work, 0), second(work, 5), third(work, 9);
    first.join();
    second.join();
    third.join();
    EXPECT_EQ(wrong, 0);
}

/// Facts that were read before are the same, so only the file tells that it was changed.
TEST(PlanCache, RefusesAFileThatWasChanged) {
    for (const char* what : {"measures", "measures and members"}) {
        const test::TemporaryFolder folder;
        SmallCube().Write(folder.Path("a.cub"));
        const auto cube = CubeFile::Open(folder.Path("a.cub"))->FindCube("Small");
        const std::string rows = what == std::string("measures") ? "" : ", [Accounts].Members ON 1";
        const std::string statement = "SELECT {[Measures].DefaultMember} ON 0" + rows + " FROM Small";
        PlanCache plans;
        plans.Run(*cube, statement);
        plans.Run(*cube, statement);
        EXPECT_EQ(plans.Count(), rows.empty() ? 1U : 0U);
        std::ofstream(folder.Path("a.cub"), std::ios::binary | std::ios::app) << 'x';
        EXPECT_EQ(FaultOf([&] { plans.Run(*cube, statement); }).kind, ErrorKind::DamagedFile) << what;
    }
}

} // namespace
} // namespace qel::engine
