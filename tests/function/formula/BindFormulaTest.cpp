#include "function/formula/BindFormula.h"

#include "function/formula/FormulaError.h"
#include "function/formula/ParseFormula.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace qel {
namespace {

const Locale dayFirst;

ValueCall BindValue(const std::string& text, const Locale& locale = dayFirst) {
    return std::get<ValueCall>(BindFormula(ParseFormula(text), locale).arguments);
}

/// A value formula whose arguments are told apart, with the given tail of dates.
std::string ValueFormula(const std::string& tail) {
    return R"(=QelF1("f","n",{"on"},{"ou"},{"ol"},{"om"},{"ac"},"sg","sl","acc","mea","ms","pl","rh","fi","ob")" +
           tail + ")";
}

TEST(BindFormula, EveryArgumentReachesItsParameter) {
    const auto call = BindValue(ValueFormula(R"(,"01/02/2024",45382)"));
    const auto first = [](const Variant& list) {
        return list.As<std::shared_ptr<const VariantArray>>()->elements.at(0).As<std::string>();
    };
    EXPECT_EQ(fmt::format("{} {} {} {} {} {} {}", call.cubeFile, call.CubeName, first(call.ObsName),
                          first(call.ObsNum), first(call.ObsLevel), first(call.ObsMember),
                          first(call.ActivityList)),
              "f n on ou ol om ac");
    EXPECT_EQ(fmt::format("{} {} {} {} {} {} {} {} {}", call.Summary_Group, call.Seif_level, call.Accounts,
                          call.Measure, call.MoneySet, call.Plbs, call.RH, call.Firma, call.Opening_Balance),
              "sg sl acc mea ms pl rh fi ob");
    EXPECT_EQ(FormatShortDate(call.From_Date, dayFirst), "01/02/2024");
    EXPECT_EQ(FormatShortDate(call.To_Date, dayFirst), "31/03/2024");
}

TEST(BindFormula, FindsTheFunctionInAnyLetterCase) {
    const auto bound = [](const std::string& text) {
        return BindFormula(ParseFormula(text), dayFirst).function;
    };
    EXPECT_EQ(bound("=OrmFunctionQel4.OrmQelFunction.QELNAME(1,2,3,4)"), WorksheetFunction::QelName);
    EXPECT_EQ(bound("=retqelname(1,2,3,4)"), WorksheetFunction::RetQelName);
    EXPECT_EQ(bound("=qelf1(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)"), WorksheetFunction::QeLF1);
    EXPECT_EQ(bound("=qel1(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)"), WorksheetFunction::QeL1);
    EXPECT_EQ(bound("=QelFuncDemo(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,0)"),
              WorksheetFunction::QelFuncDemo);
}

TEST(BindFormula, ConvertsTextsAsAutomationDoes) {
    const auto call = BindValue(R"(=QelF1("f","n",3,"3",TRUE,,{1},12,1.5,4000,TRUE,FALSE,-0.25,1E3,,""))");
    EXPECT_EQ(fmt::format("{}|{}|{}|{}|{}|{}|{}|{}|{}", call.Summary_Group, call.Seif_level, call.Accounts,
                          call.Measure, call.MoneySet, call.Plbs, call.RH, call.Firma, call.Opening_Balance),
              "12|1.5|4000|True|False|-0.25|1000||");
    EXPECT_EQ(call.ObsName.TypeName(), "Double");
    EXPECT_EQ(call.ObsNum.TypeName(), "String");
    EXPECT_EQ(call.ObsLevel.TypeName(), "Boolean");
    EXPECT_EQ(call.ObsMember.TypeName(), "Error");
    EXPECT_EQ(call.ActivityList.TypeName(), "Variant()");
    EXPECT_TRUE(call.From_Date.IsZero());
    EXPECT_TRUE(call.To_Date.IsZero());
}

TEST(BindFormula, DatesFollowTheLocalesOrder) {
    const struct {
        const char* text;
        CalendarDay expected;
        DateOrder order;
    } cases[] = {
        {R"("02/03/2024")", {2024, 3, 2}, DateOrder::DayMonthYear},
        {R"("02/03/2024")", {2024, 2, 3}, DateOrder::MonthDayYear},
        {R"("2024/02/03")", {2024, 2, 3}, DateOrder::YearMonthDay},
        {"DATE(2024,3,2)", {2024, 3, 2}, DateOrder::MonthDayYear},
        {"45382.75", {2024, 3, 31}, DateOrder::DayMonthYear},
    };
    for (const auto& c : cases) {
        Locale locale;
        locale.dateOrder = c.order;
        EXPECT_EQ(DayFromDate(BindValue(ValueFormula(std::string(",,") + c.text), locale).To_Date),
                  c.expected)
            << c.text;
    }
}

TEST(BindFormula, NamesTheArgumentThatDoesNotFit) {
    const struct {
        std::string text;
        std::size_t position;
        const char* part;
    } cases[] = {
        {"=Sum(1)", 2, "There is no function 'Sum'; there are QelF1, QeL1, QelName"},
        {"=OrmFunctionQel4.OrmQelFunction.QelF2(1)", 2, "no function 'QelF2'"},
        {"=OtherServer.OrmQelFunction.QelF1(1)", 2, "no function 'OtherServer.OrmQelFunction.QelF1'"},
        {"=QelName(1,2,3)", 2, "QelName needs 4 arguments, and 3 are given: DimMember is missing"},
        {"=QelName(1,2,3,4,55)", 18, "at most 4 arguments, and 5 are given"},
        {ValueFormula(",,,"), 100, "QelF1 takes at most 18 arguments, and 19 are given"},
        {ValueFormula(R"(,"31/31/2024")"), 98, "Argument 17 (From_Date)"},
        {ValueFormula(R"(,,"")"), 99, "Argument 18 (To_Date)"},
        {ValueFormula(R"(,{"01/01/2024"})"), 98, "Argument 17 (From_Date)"},
        {"=QelName({1,2},2,3,4)", 10, "Argument 1 (cubeFile): Type mismatch"},
    };
    for (const auto& c : cases) {
        try {
            BindFormula(ParseFormula(c.text), dayFirst);
            ADD_FAILURE() << c.text << " was accepted";
        } catch (const FormulaError& error) {
            EXPECT_EQ(error.Position(), c.position) << error.what();
            EXPECT_NE(std::string(error.what()).find(c.part), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace qel
