#include "function/OrmQelFunction.h"
#include "platform/value/AutomationError.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace qel {
namespace {

using test::LedgerProvider;
using test::RecordingProvider;
using Log = std::vector<std::string>;

/// The arguments of one formula.
struct Formula {
    std::string cubeFile = "a.cub", cubeName = "Finance";
    Variant obsName = 1.0, obsNumber = 12.0, obsLevel = Variant::List({"Cost_Centers"}), obsMember = 100.0,
            activities = Variant::List({"All"});
    std::string summaryGroup = "All", seifLevel = "All", accounts = "4000", measure = " Amount ";
    std::string moneySet = "All", plbs = "All", rh = "All", firma = "All", openingBalance = "All";
    AutomationDate from = DateFromDay({2020, 1, 1}), to = DateFromDay({2020, 3, 31});
};

const std::string textOfA =
    "Provider=MSOLAP;Data Source=a.cub;Initial Catalog=Finance;Client Cache Size=25;Auto Synch Period=10000";
const std::string textOfB =
    "Provider=MSOLAP;Data Source=b.cub;Initial Catalog=Finance;Client Cache Size=25;Auto Synch Period=10000";

class ValueFormulaTest : public ::testing::Test {
protected:
    std::unique_ptr<OrmQelFunction> NewObject() {
        return std::make_unique<OrmQelFunction>(FunctionContext{thread_, provider_, locale_});
    }

    static Variant QeLF1(OrmQelFunction& object, Formula& f) {
        return object.QeLF1(f.cubeFile, f.cubeName, f.obsName, f.obsNumber, f.obsLevel, f.obsMember,
                            f.activities, f.summaryGroup, f.seifLevel, f.accounts, f.measure, f.moneySet,
                            f.plbs, f.rh, f.firma, f.openingBalance, f.from, f.to);
    }

    static Variant QelFuncDemo(OrmQelFunction& object, Formula& f, KeyList obsMembers = {"100"}) {
        KeyList obsName = {"1"};
        KeyList obsNumber = {"12"};
        KeyList obsLevel = {"Cost_Centers"};
        KeyList activities = {"All"};
        return object.QelFuncDemo(f.cubeFile, f.cubeName, obsName, obsNumber, obsLevel, obsMembers,
                                  activities, f.summaryGroup, f.seifLevel, f.accounts, f.measure, f.moneySet,
                                  f.plbs, f.rh, f.firma, f.openingBalance, f.from, f.to);
    }

    std::string SentBy(const std::function<void(Formula&)>& change) {
        Formula formula;
        change(formula);
        provider_.TakeLog();
        QeLF1(*object_, formula);
        const auto statements = provider_.Statements();
        return statements.size() == 1 ? statements[0] : std::to_string(statements.size()) + " statements";
    }

    RecordingProvider provider_ = LedgerProvider();
    Locale locale_;
    ModSetCube::ThreadState thread_;
    std::unique_ptr<OrmQelFunction> object_ = NewObject();
};

TEST_F(ValueFormulaTest, SendsTheStatementAndReturnsTheCell) {
    provider_.TakeLog();
    provider_.cell = -12.34;
    Formula formula;
    formula.cubeFile = "  a.cub ";
    formula.cubeName = " Finance  ";
    EXPECT_EQ(QeLF1(*object_, formula).As<double>(), -12.34);
    const Log log = {
        "open " + textOfA, "catalog " + textOfA,
        "statement WITH MEMBER [Date].DateSel as '   SUM( "
        "LastPeriods(3,[Date].[2020].[3]),[Measures].[Amount])    ' "
        "SELECT  { [Date].DateSel} ON COLUMNS,  { [SuperSumery].[SumeryCode] }ON ROWS  From Finance where (  "
        "[ActX].[OBSx].[All].[1].[12],[Cost_Centers].[All].[100],[Accounts].[AccountCodes].[All].[4000])",
        "close cellset"};
    EXPECT_EQ(provider_.TakeLog(), log);
    EXPECT_EQ(formula.cubeFile + "|" + formula.cubeName + "|" + formula.measure, "a.cub|Finance|Amount")
        << "the caller's texts come back trimmed";
    EXPECT_EQ(object_->get_g_cubeFile() + "|" + object_->get_g_CubeName(), "a.cub|Finance");
}

TEST_F(ValueFormulaTest, EveryArgumentReachesItsPlace) {
    const std::string sent = SentBy([](Formula& f) {
        f.obsName = 71.0;
        f.obsNumber = 72.0;
        f.obsMember = 73.0;
        f.activities = 74.0;
        f.summaryGroup = "SuperSum1";
        f.seifLevel = "75";
        f.accounts = "76";
        f.measure = "Lines";
        f.moneySet = "77";
        f.plbs = "78";
        f.rh = "79";
        f.firma = "80";
        f.openingBalance = "81";
    });
    EXPECT_EQ(
        sent.substr(sent.find("[Measures]")),
        "[Measures].[Lines])    ' SELECT  { [Date].DateSel} ON COLUMNS,  { "
        "[SuperSumery].[SumeryCode].[SuperSum1].[75] }ON ROWS  From Finance where (  [Plbs].[78],[RH].[79],"
        "[Firma].[80],[Opening_Balance].[81],[MoneySet].[77],[Activities].[ActivityCodes].[ActivityCode].[74]"
        ","
        "[ActX].[OBSx].[All].[71].[72],[Cost_Centers].[All].[73],[Accounts].[AccountCodes].[All].[76])");
    Formula twin;
    provider_.TakeLog();
    object_->QeL1(twin.cubeFile, twin.cubeName, twin.obsName, twin.obsNumber, twin.obsLevel, twin.obsMember,
                  twin.activities, twin.summaryGroup, twin.seifLevel, twin.accounts, twin.measure,
                  twin.moneySet, twin.plbs, twin.rh, twin.firma, twin.openingBalance, twin.from, twin.to);
    EXPECT_EQ(provider_.Statements().at(0), SentBy([](Formula&) {}));
}

TEST_F(ValueFormulaTest, RestoresQuotesAndDates) {
    const auto partOf = [](const std::string& statement, const std::string& start, const std::string& end) {
        const std::size_t from = statement.find(start);
        return statement.substr(from, statement.find(end, from) - from);
    };
    EXPECT_EQ(partOf(SentBy([](Formula& f) { f.obsMember = Variant::List({"ע\u00A0מ 5\u00A0"}); }), "[Cost",
                     ",[Acc"),
              "[Cost_Centers].[All].[ע\"מ 5\"]");
    EXPECT_EQ(partOf(SentBy([](Formula& f) { f.from = {}; }), "LastPeriods", ","), "LastPeriods(1")
        << "without a start only the period of the end";
    const auto onTheLastDay = [](Formula& f) {
        f.from = {};
        f.to = DateFromDay({2020, 12, 31});
    };
    EXPECT_EQ(SentBy(onTheLastDay), "0 statements")
        << "the end stands in for the start, and it lies after the last month's first day";
    locale_ = {DateOrder::MonthDayYear, '.', ',', '.'};
    const auto aprilToMay = [](Formula& f) {
        f.from = DateFromDay({2020, 4, 1});
        f.to = DateFromDay({2020, 5, 4});
    };
    EXPECT_EQ(partOf(SentBy(aprilToMay), "LastPeriods", ")"), "LastPeriods(2,[Date].[2020].[5]");
}

TEST_F(ValueFormulaTest, ShowsNumbersAndTheOutdatedCubeAndMasksTheRest) {
    const Variant zero = std::int16_t{0};
    const struct {
        const char* what;
        std::function<void(RecordingProvider&, Formula&)> set;
        Variant demo, shown;
        bool keepsConnection;
    } cases[] = {
        {"a number", [](auto& p, auto&) { p.cell = 5.5; }, 5.5, 5.5, true},
        {"a number as text stays a text", [](auto& p, auto&) { p.cell = "12.5"; }, "12.5", "12.5", true},
        {"a word", [](auto& p, auto&) { p.cell = "n/a"; }, "n/a", zero, true},
        {"the words of the version check", [](auto& p, auto&) { p.cell = "outdated cube VERSION"; },
         "outdated cube VERSION", "outdated cube VERSION", true},
        {"an empty cell", [](auto& p, auto&) { p.cell = Null{}; }, zero, zero, true},
        {"start after end", [](auto&, auto& f) { f.from.days += 400; }, "#ERR 11111111", zero, true},
        {"outside the cube",
         [](auto&, auto& f) {
             f.from = f.to = DateFromDay({2018, 1, 1});
         },
         zero, zero, true},
        {"no dates", [](auto&, auto& f) { f.from = f.to = {}; }, zero, zero, true},
        {"the statement fails", [](auto& p, auto&) { p.failingStatement = -2147217904; }, "#ERR -2147217904",
         zero, true},
        {"no such file", [](auto& p, auto&) { p.failingOpen = -2147467259; }, "#err -2147467259", zero,
         false},
        {"no Date dimension", [](auto& p, auto&) { p.DimensionScript("Date").name = "X"; }, "#err 3265", zero,
         false},
        {"a date that no calendar has", [](auto&, auto& f) { f.to = {1e9}; }, "#err 6", zero, false},
        {"outdated cube", [](auto& p, auto&) { p.DimensionScript("ActX").levels.pop_back(); },
         "Outdated Cube Version", "Outdated Cube Version", false},
    };
    for (const auto& c : cases) {
        for (const bool throughWorksheet : {false, true}) {
            provider_ = LedgerProvider();
            object_ = NewObject();
            Formula formula;
            c.set(provider_, formula);
            const Variant result =
                throughWorksheet ? QeLF1(*object_, formula) : QelFuncDemo(*object_, formula);
            EXPECT_EQ(result.Get(), (throughWorksheet ? c.shown : c.demo).Get()) << c.what;
            EXPECT_EQ(thread_.CubeConnection != nullptr, c.keepsConnection) << c.what;
        }
    }
}

TEST_F(ValueFormulaTest, AListThatCannotBeMadeFailsTheCallBeforeAnyWork) {
    provider_.TakeLog();
    Formula formula;
    formula.cubeFile = " a.cub ";
    formula.obsNumber = Variant::List({Null{}});
    formula.activities = Variant::List(std::vector<Variant>(7, 1.0));
    try {
        QeLF1(*object_, formula);
        FAIL() << "no error";
    } catch (const AutomationError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::ToManyDimensions) << "activities come before the OBS number";
        EXPECT_EQ(error.Description(), "To many dimensions");
    }
    EXPECT_EQ(formula.cubeFile, " a.cub ");
    EXPECT_EQ(provider_.TakeLog(), Log{});
}

TEST_F(ValueFormulaTest, CountsObsMembersIn16Bits) {
    Formula formula;
    EXPECT_TRUE(QelFuncDemo(*object_, formula, KeyList(32768, "1")).Is<double>());
    EXPECT_EQ(QelFuncDemo(*object_, formula, KeyList(32769, "1")).As<std::string>(), "#err 6");
}

TEST_F(ValueFormulaTest, ReusesReopensAndRecoversTheConnection) {
    const auto opensOf = [&](const std::string& cubeFile) {
        Formula formula;
        formula.cubeFile = cubeFile;
        provider_.TakeLog();
        QeLF1(*object_, formula);
        Log log = provider_.TakeLog();
        log.erase(std::remove_if(log.begin(), log.end(),
                                 [](const std::string& line) {
                                     return line.rfind("statement ", 0) == 0 || line == "close cellset";
                                 }),
                  log.end());
        return log;
    };
    EXPECT_EQ(opensOf("a.cub"), (Log{"open " + textOfA, "catalog " + textOfA}));
    EXPECT_EQ(opensOf(" a.cub"), Log{}) << "one open and one check for both calls";
    EXPECT_EQ(opensOf("b.cub"), (Log{"close", "open " + textOfB, "catalog " + textOfB}));
    object_->put_g_cubeFile("else");
    EXPECT_EQ(opensOf("b.cub"), (Log{"close", "open " + textOfB, "catalog " + textOfB}))
        << "a caller that sets g_cubeFile forces a reopening";
    provider_.failingOpen = 53;
    EXPECT_EQ(opensOf("a.cub"), (Log{"close", "open " + textOfA, "release"}));
    provider_.failingOpen = 0;
    EXPECT_EQ(opensOf("a.cub"), (Log{"new connection", "open " + textOfA, "catalog " + textOfA}));
}

TEST_F(ValueFormulaTest, ObjectsOfAThreadShareOneConnection) {
    provider_.cell = 7.0;
    Formula formula;
    EXPECT_EQ(QeLF1(*object_, formula).As<double>(), 7);
    provider_.TakeLog();
    auto second = NewObject();
    EXPECT_EQ(provider_.TakeLog(), (Log{"new connection", "release"})) << "the first one's is replaced";
    EXPECT_EQ(QeLF1(*object_, formula).As<double>(), 7) << "through the second one's";
    provider_.TakeLog();
    second.reset();
    EXPECT_EQ(provider_.TakeLog(), Log{"release"}) << "released without a close of its own";
    EXPECT_EQ(thread_.CubeConnection, nullptr);
    EXPECT_EQ(QeLF1(*object_, formula).As<double>(), 7);
    EXPECT_EQ(provider_.log.at(0), "new connection");
}

} // namespace
} // namespace qel
