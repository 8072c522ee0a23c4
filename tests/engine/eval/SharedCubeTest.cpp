#include "engine/EngineError.h"
#include "tests/engine/eval/LedgerCube.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace qel::engine {
namespace {

const char* const statements[] = {
    "SELECT {[Measures].[Amount],[Measures].[Lines]} ON 0, {[Accounts].[AccountCodes].Members} ON 1 FROM "
    "Finance",
    "WITH MEMBER [Date].[Sel] AS 'SUM(LastPeriods(3,[Date].[All].[2024].[Q1].[3]),[Measures].[Amount])' "
    "SELECT {[Date].[Sel]} ON 0, {[OBS].[Level2].Members} ON 1 FROM Finance WHERE ([Firma].[1])",
    "SELECT {[Measures].[Amount]} ON 0, NON EMPTY CrossJoin({[Firma].Members},{[Cost_Centers].Members}) ON 1 "
    "FROM Finance",
    "SELECT {[Measures].[Amount]} ON 0, Order({[OBS].[Level2].Members},[Measures].[Amount],BDESC) ON 1 FROM "
    "Finance",
    "SELECT {[Measures].[Amount]} ON 0, {[OBS].[Level2].[nowhere]} ON 1 FROM Finance",
};

/// The cells, or what is wrong.
std::string Answer(const Cube& cube, const char* statement) {
    try {
        return Show(RunStatement(cube, statement));
    } catch (const EngineError& error) {
        return std::string("error: ") + error.what();
    }
}

TEST(SharedCube, StatementsOfSeveralThreadsAnswerAsTheyDoAlone) {
    std::vector<LedgerLine> lines;
    for (int i = 0; i < 6000; ++i) {
        const auto pick = [i](const auto& list, int stride) { return list[i / stride % std::ssize(list)]; };
        constexpr const char* months[] = {"2023-12", "2024-01", "2024-02", "2024-03"};
        lines.push_back({pick(months, 1), pick(ledgerAccounts, 4).code, pick(ledgerObs, 7).code,
                         pick(ledgerObsNumbers, 3).code, pick(ledgerCostCentres, 11),
                         pick(ledgerActivities, 5), pick(ledgerFirms, 13), i * 37 % 10007 - 5000});
    }
    std::vector<std::string> alone;
    const auto quiet = BuildLedgerCube(lines);
    for (const char* const statement : statements)
        alone.push_back(Answer(*quiet, statement));
    ASSERT_EQ(alone.back().substr(0, 7), "error: ");
    ASSERT_NE(alone.front().substr(0, 7), "error: ");

    const auto cube = BuildLedgerCube(lines); // its pages are unread, so the threads check them as well
    constexpr std::size_t threadCount = 4;
    std::atomic<std::size_t> ready = 0, differences = 0;
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (++ready; ready < threadCount;)
                std::this_thread::yield();
            for (std::size_t i = 0; i < 40; ++i) {
                const std::size_t which = (i + thread) % std::size(statements);
                differences += Answer(*cube, statements[which]) == alone[which] ? 0U : 1U;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(differences, 0U);
}

} // namespace
} // namespace qel::engine
