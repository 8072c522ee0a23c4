#include "function/OrmQelFunction.h"
#include "tests/helpers/ErrorOf.h"
#include "tests/helpers/doubles/RecordingProvider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace qel {
namespace {

using test::ErrorOf;
using test::LedgerProvider;
using test::RecordingProvider;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Log = std::vector<std::string>;

/// The arguments of one formula.
struct Formula : ValueCall {
    Formula()
        : ValueCall{.cubeFile = "a.cub", .CubeName = "Finance", .Accounts = "4000", .Measure = "Amount"} {
        ObsName = Variant::List({"1"});
        ObsNum = Variant::List({"12"});
        ObsLevel = Variant::List({"Cost_Centers"});
        ObsMember = Variant::List({"100"});
        ActivityList = Variant::List({"All"});
        From_Date = DateFromDay({2020, 1, 1});
        To_Date = DateFromDay({2020, 3, 31});
    }
};

const std::string textOfA = test::ConnectionTextFor("a.cub"), textOfB = test::ConnectionTextFor("b.cub");

class ValueFormulaTest : public ::testing::Test {
protected:
    std::unique_ptr<OrmQelFunction> NewObject() {
        return std::make_unique<OrmQelFunction>(FunctionContext{thread_, provider_, locale_});
    }

    /// What QeLF1 sends.
    std::string SentBy(const std::function<void(Formula&)>& change) {
        Formula formula;
        change(formula);
        provider_.TakeLog();
        object_->QeLF1(formula);
        const auto statements = provider_.Statements();
        return statements.size() == 1 ? statements[0] : std::to_string(statements.size()) + " statements";
    }

    RecordingProvider provider_ = LedgerProvider();
    Locale locale_;
    ModSetCube::ThreadState thread_;
    std::unique_ptr<OrmQelFunction> object_ = NewObject();
};

TEST_F(ValueFormulaTest, OpensTheCubeSendsOneStatementAndReturnsTheCell) {
    provider_.cell = -12.34;
    Formula formula;
    formula.cubeFile = "  a.cub ";
    formula.CubeName = " Finance  ";
    EXPECT_EQ(object_->QeLF1(formula).value.As<double>(), -12.34);
    EXPECT_THAT(provider_.TakeLog(),
                ElementsAre("new connection", "open " + textOfA, "catalog " + textOfA,
                            HasSubstr("LastPeriods(3,[Date].[2020].[3])"), "close cellset"));
    EXPECT_EQ(object_->get_g_cubeFile() + "|" + object_->get_g_CubeName(), "a.cub|Finance");
}

TEST_F(ValueFormulaTest, EveryArgumentReachesItsPlace) {
    const auto all = [](Formula& f) {
        f.ObsName = 71.0;
        f.ObsNum = 72.0;
        f.ObsMember = 73.0;
        f.ActivityList = 74.0;
        f.Summary_Group = "SuperSum1";
        f.Seif_level = "75";
        f.Accounts = "76";
        f.Measure = "Lines";
        f.MoneySet = "77";
        f.Plbs = "78";
        f.RH = "79";
        f.Firma = "80";
        f.Opening_Balance = "81";
    };
    const std::string sent = SentBy(all);
    for (const char* piece :
         {"[Measures].[Lines]", "[SuperSum1].[75]", "Finance where (  [Plbs].[78],[RH].[79],[Firma].[80],",
          "[Opening_Balance].[81],[MoneySet].[77],", "[ActivityCode].[74],", "[OBSx].[All].[71].[72],",
          "[Cost_Centers].[All].[73],", "[AccountCodes].[All].[76])"}) {
        EXPECT_THAT(sent, HasSubstr(piece));
    }
    Formula twin;
    all(twin);
    provider_.TakeLog();
    object_->QeL1(twin);
    EXPECT_EQ(provider_.Statements().at(0), sent);
}

TEST_F(ValueFormulaTest, RestoresQuotesAndDates) {
    const auto partOf = [](const std::string& statement, const std::string& start, const std::string& end) {
        const std::size_t from = statement.find(start);
        return statement.substr(from, statement.find(end, from) - from);
    };
    const auto carriers = [](Formula& f) {
        f.ObsMember = Variant::List({"ע\u00A0מ 5\u00A0", "x"});
        f.ActivityList = Variant::List({"a\u00A0b"});
    };
    EXPECT_EQ(partOf(SentBy(carriers), "[Cost", ",[Acc"), "[Cost_Centers].[All].[ע\"מ 5\"]");
    EXPECT_EQ(partOf(SentBy(carriers), "[ActivityCode]", ",[ActX"), "[ActivityCode].[a\u00A0b]")
        << "only OBS members carry quotes";
    EXPECT_EQ(partOf(SentBy([](Formula& f) { f.From_Date = {}; }), "LastPeriods", ","), "LastPeriods(1")
        << "without a start only the period of the end";
    const auto onTheLastDay = [](Formula& f) {
        f.From_Date = {};
        f.To_Date = DateFromDay({2020, 12, 31});
    };
    EXPECT_EQ(SentBy(onTheLastDay), "0 statements")
        << "the end stands in for the start, and it lies after the last month's first day";
    locale_ = {DateOrder::MonthDayYear, '.', ',', '.'};
    const auto aprilToMay = [](Formula& f) {
        f.From_Date = {DateFromDay({2020, 4, 1}).days + 0.5};
        f.To_Date = {DateFromDay({2020, 5, 4}).days + 0.25};
    };
    EXPECT_EQ(partOf(SentBy(aprilToMay), "LastPeriods", ")"), "LastPeriods(1,[Date].[2020].[5]")
        << "with its time, the start lies after the first of April";
}

TEST_F(ValueFormulaTest, ShowsNumbersAndTheOutdatedCubeAndMasksTheRest) {
    const Variant zero = std::int16_t{0};
    const struct {
        const char* what;
        std::function<void(RecordingProvider&, Formula&)> set;
        Variant demo, shown;
        Reached reached;
        bool keepsConnection, namesCube;
    } cases[] = {
        {"a number", [](auto& p, auto&) { p.cell = 5.5; }, 5.5, 5.5, Reached::Slicers, true, true},
        {"a number as text stays a text", [](auto& p, auto&) { p.cell = "12.5"; }, "12.5", "12.5",
         Reached::Slicers, true, true},
        {"a word", [](auto& p, auto&) { p.cell = "n/a"; }, "n/a", zero, Reached::Slicers, true, true},
        {"the words of the version check", [](auto& p, auto&) { p.cell = "outdated cube VERSION"; },
         "outdated cube VERSION", "outdated cube VERSION", Reached::Slicers, true, true},
        {"an empty cell", [](auto& p, auto&) { p.cell = Null{}; }, zero, zero, Reached::Slicers, true, true},
        {"start after end", [](auto&, auto& f) { f.From_Date.days += 400; }, "#ERR 11111111", zero,
         Reached::OpenCube, true, true},
        {"outside the cube",
         [](auto&, auto& f) {
             f.From_Date = f.To_Date = DateFromDay({2018, 1, 1});
         },
         zero, zero, Reached::OpenCube, true, true},
        {"no dates", [](auto&, auto& f) { f.From_Date = f.To_Date = {}; }, zero, zero, Reached::OpenCube,
         true, true},
        {"the statement fails", [](auto& p, auto&) { p.failingStatement = -2147217904; }, "#ERR -2147217904",
         zero, Reached::Slicers, true, true},
        {"an unknown level", [](auto&, auto& f) { f.ObsLevel = Variant::List({"Level9"}); }, "#ERR 3265",
         zero, Reached::Slicers, true, true},
        {"no such file", [](auto& p, auto&) { p.failingOpen = -2147467259; }, "#err -2147467259", zero,
         Reached::Nothing, false, false},
        {"no Date dimension", [](auto& p, auto&) { p.DimensionScript("Date").name = "X"; }, "#err 3265", zero,
         Reached::Nothing, false, false},
        {"a date that no calendar has", [](auto&, auto& f) { f.To_Date = {1e9}; }, "#err 6", zero,
         Reached::OpenCube, false, false},
        {"outdated cube", [](auto& p, auto&) { p.DimensionScript("ActX").levels.pop_back(); },
         "Outdated Cube Version", "Outdated Cube Version", Reached::Nothing, false, false},
    };
    for (const auto& c : cases) {
        for (const bool isForWorksheet : {false, true}) {
            provider_ = LedgerProvider();
            object_ = NewObject();
            Formula formula;
            c.set(provider_, formula);
            const FormulaResult result =
                isForWorksheet ? object_->QeLF1(formula) : object_->QelFuncDemo(formula);
            EXPECT_EQ(result.value.Get(), (isForWorksheet ? c.shown : c.demo).Get()) << c.what;
            EXPECT_EQ(result.reached, c.reached) << c.what;
            const bool isMasked = isForWorksheet && c.demo.Get() != c.shown.Get();
            EXPECT_EQ(result.masked, isMasked ? c.demo.As<std::string>() : "") << c.what;
            EXPECT_EQ(thread_.CubeConnection != nullptr, c.keepsConnection) << c.what;
            EXPECT_EQ(object_->get_g_cubeFile() + object_->get_g_CubeName(),
                      c.namesCube ? "a.cubFinance" : "")
                << c.what;
        }
    }
}

TEST_F(ValueFormulaTest, TextsComeBackAsFarAsTheCallCame) {
    const ValueCall call{.cubeFile = " a.cub ",
                         .CubeName = " Finance ",
                         .Accounts = " 9 ",
                         .Measure = " Amount ",
                         .MoneySet = "5 ",
                         .Plbs = " 1 ",
                         .RH = " 2 ",
                         .Firma = " 3 ",
                         .Opening_Balance = "4"};
    const struct {
        Reached reached;
        ValueCall call;
        const char* texts;
    } cases[] = {
        {Reached::Nothing, call, "a.cub|Finance||| 9 | Amount |5 | 1 | 2 | 3 |4|"},
        {Reached::OpenCube, call, "a.cub|Finance||| 9 |Amount|5 | 1 | 2 | 3 |4|"},
        {Reached::Slicers, call,
         "a.cub|Finance||| 9 |Amount|[MoneySet].[5]| 1 |[RH].[2]|[Firma].[3]|[Opening_Balance].[4]|"},
        {Reached::Slicers,
         {.MoneySet = "All", .Plbs = "ALL", .RH = " all ", .Firma = " all "},
         "|||||||ALL| all |||"}, // RH is kept when it restricts nothing
    };
    for (const auto& c : cases) {
        std::string texts;
        const ValueCall after = TextsAfter(c.call, c.reached);
        for (const auto text : valueCallTexts) {
            texts += after.*text + "|";
        }
        EXPECT_EQ(texts, c.texts);
    }
}

TEST_F(ValueFormulaTest, AListThatCannotBeMadeFailsTheCallBeforeAnyWork) {
    const Variant tooMany = Variant::List(std::vector<Variant>(7, 1.0)), noText = Variant::List({Null{}}),
                  noKey = Variant::List({ErrorValue{2042}});
    const auto fail = [&](const std::function<void(Formula&)>& spoil) {
        Formula formula;
        spoil(formula);
        return ErrorOf([&] { object_->QeLF1(formula); });
    };
    // Of two failures the first one in the order of conversion is told.
    const auto first = [&](Variant ValueCall::*one, Variant ValueCall::*other) {
        return fail([&](Formula& f) {
            f.*one = noKey;
            f.*other = tooMany;
        });
    };
    EXPECT_EQ(fail([&](Formula& f) { f.ObsNum = noText; }), 94);
    EXPECT_EQ(fail([&](Formula& f) { f.ActivityList = tooMany; }), ErrorNumber::ToManyDimensions);
    const std::array order = {&ValueCall::ObsName, &ValueCall::ObsLevel, &ValueCall::ObsMember,
                              &ValueCall::ActivityList, &ValueCall::ObsNum};
    for (std::size_t i = 1; i < order.size(); ++i) {
        EXPECT_EQ(first(order[i - 1], order[i]), ErrorNumber::TypeMismatch) << i;
        EXPECT_EQ(first(order[i], order[i - 1]), ErrorNumber::ToManyDimensions) << i;
    }
    Formula scalar;
    scalar.ObsLevel = "All";
    EXPECT_EQ(ErrorOf([&] { object_->QelFuncDemo(scalar); }), ErrorNumber::TypeMismatch)
        << "QelFuncDemo takes arrays";
    EXPECT_EQ(provider_.TakeLog(), Log{});
}

TEST_F(ValueFormulaTest, CountsObsMembersIn16Bits) {
    Formula formula;
    formula.ObsMember = Variant::List(std::vector<Variant>(32768, "1"));
    EXPECT_TRUE(object_->QelFuncDemo(formula).value.Is<double>());
    formula.ObsMember = Variant::List(std::vector<Variant>(32769, "1"));
    EXPECT_EQ(object_->QelFuncDemo(formula).value.As<std::string>(), "#err 6");
    formula.ObsMember = Variant::List({"1", Null{}});
    EXPECT_EQ(object_->QelFuncDemo(formula).value.As<std::string>(), "#err 94") << "a key that is not used";
    EXPECT_EQ(object_->get_g_cubeFile() + "|" + object_->get_g_CubeName(), "a.cub|Finance")
        << "a failure keeps the cube before";
}

TEST_F(ValueFormulaTest, ReusesReopensAndRecoversTheConnection) {
    const auto opensOf = [&](const std::string& cubeFile) {
        Formula formula;
        formula.cubeFile = cubeFile;
        provider_.TakeLog();
        object_->QeLF1(formula);
        Log log = provider_.TakeLog();
        log.erase(std::remove_if(log.begin(), log.end(),
                                 [](const std::string& line) {
                                     return line.rfind("statement ", 0) == 0 || line == "close cellset";
                                 }),
                  log.end());
        return log;
    };
    EXPECT_EQ(opensOf("a.cub"), (Log{"new connection", "open " + textOfA, "catalog " + textOfA}));
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
    EXPECT_EQ(object_->QeLF1(formula).value.As<double>(), 7);
    provider_.TakeLog();
    auto second = NewObject();
    EXPECT_EQ(provider_.TakeLog(), Log{"release"}) << "the first one's is taken away";
    EXPECT_EQ(object_->QeLF1(formula).value.As<double>(), 7);
    provider_.TakeLog();
    second.reset();
    EXPECT_EQ(provider_.TakeLog(), Log{"release"}) << "released without a close of its own";
    EXPECT_EQ(thread_.CubeConnection, nullptr);
    EXPECT_EQ(object_->QeLF1(formula).value.As<double>(), 7);
    EXPECT_EQ(provider_.log.at(0), "new connection");
}

} // namespace
} // namespace qel
