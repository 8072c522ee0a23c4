#include "qel/engine/EngineError.h"
#include "qel/engine/RunStatement.h"
#include "tests/engine/eval/LedgerCube.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <thread>

namespace qel::engine {
namespace {

constexpr std::array statements = {
    "WITH MEMBER [Date].DateSel as '   SUM( LastPeriods(3,[Date].[All].[2024].[Q1].[3]),[Measures].[Amount]) "
    "   '\r\n "
    "Member [Obs].Sel as ' SUM ({  , [OBS].[All].[North].[O''Neil] , [OBS].[All].[South].[O''Neil] }) '  "
    "SELECT  { "
    "[Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode].[SuperSum1].[2] }ON ROWS  From Finance where "
    "(  "
    "[Firma].[2],[ActX].[OBSx].[All].[1].[12],[Obs].Sel,[Accounts].[AccountCodes].[All].[5000])",
    "SELECT {[AccX].[AccX].[All] } on columns,  non empty{  "
    "crossjoin([Accounts].[AccountCodes].[AccountCode].members,"
    "[Accounts].[AccountNames].[AccountName].members)}on rows FROM Finance where( [Firma].[All].[1], "
    "[ActX].[1])",
    "WITH SET s AS Filter([OBS].Members, [OBS].CurrentMember.Name <> \"Other\" AND NOT "
    "IsEmpty([Measures].[Lines])) "
    "SELECT Order(s, [Measures].[Amount], DESC) ON 0, {YTD([Date].[2024].[Q1].[2]), "
    "[Date].[2023]:[Date].[2024]} ON 1 "
    "FROM [Finance] -- end",
};

class DamagedStatement : public testing::Test {
protected:
    std::shared_ptr<const Cube> cube_ =
        BuildLedgerCube({{"2024-01", "5000", "n3", "A", "100", "7", "2", 100},
                         {"2024-03", "4000", "s2", "B", "300", "8", "1", -101}});
};

/// Runs an arbitrary text; true when it has a result. An error must concern the statement and give a
/// position.
bool Answers(const Cube& cube, const std::string& text) {
    try {
        Show(RunStatement(cube, text));
        return true;
    } catch (const EngineError& error) {
        const std::string message = error.what();
        EXPECT_EQ(message.compare(0, 5, "line "), 0) << message << "\n" << text;
        EXPECT_NE(message.find(", near \""), std::string::npos) << message << "\n" << text;
        EXPECT_GE(error.Kind(), ErrorKind::UnknownCube) << text;
        EXPECT_LE(error.Kind(), ErrorKind::TooLarge) << text;
        return false;
    }
}

TEST_F(DamagedStatement, GivesAResultOrAnErrorWithAPosition) {
    std::mt19937 random(5);
    constexpr std::string_view odd = "[]{}()'\",.&:*-+/<=\\\0\r\n \xD7\xA9\xC2\xA0\xFF"
                                     "9a";
    for (const char* statement : statements) {
        const std::string whole(statement);
        ASSERT_TRUE(Answers(*cube_, whole)) << whole;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            Answers(*cube_, whole.substr(0, length));
            Answers(*cube_, whole.substr(length));
        }
        for (int round = 0; round < 3000; ++round) {
            std::string damaged = whole;
            for (std::size_t faults = 1 + random() % 3; faults > 0; --faults) {
                const std::size_t at = random() % damaged.size();
                switch (random() % 3) {
                case 0:
                    damaged[at] = odd[random() % odd.size()];
                    break;
                case 1:
                    damaged.erase(at, 1 + random() % 4);
                    break;
                default:
                    damaged.insert(at, 1, odd[random() % odd.size()]);
                    break;
                }
            }
            Answers(*cube_, damaged);
        }
    }
}

TEST_F(DamagedStatement, DoesNotDisturbOtherThreads) {
    std::vector<std::string> expected;
    expected.reserve(statements.size());
    for (const char* statement : statements) {
        expected.push_back(Show(RunStatement(*cube_, statement)));
    }
    std::array<int, 4> wrong{};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < wrong.size(); ++thread) {
        threads.emplace_back([&, thread] {
            for (std::size_t round = 0; round < 300; ++round) {
                const std::size_t which = (round + thread) % statements.size();
                wrong[thread] += Show(RunStatement(*cube_, statements[which])) != expected[which] ? 1 : 0;
                const std::string damaged = std::string(statements[which]).substr(0, 20 + round);
                try {
                    RunStatement(*cube_, damaged);
                } catch (const EngineError&) {
                    continue; // reported by its own thread
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, (std::array<int, 4>{}));
}

} // namespace
} // namespace qel::engine
