#include "platform/windows/UserLocale.h"

#include "tests/server/LedgerCall.h"

#include <gtest/gtest.h>

#include <map>

namespace qel::test {
namespace {

/// Changes the user's regional settings and restores them at the end.
class RegionalSettings : public testing::Test {
protected:
    void TearDown() override {
        for (const auto& [type, text] : before_) {
            ::SetLocaleInfoW(LOCALE_USER_DEFAULT, type, text.c_str());
        }
    }

    void Set(LCTYPE type, const wchar_t* text) {
        wchar_t old[80] = {};
        ASSERT_NE(::GetLocaleInfoW(LOCALE_USER_DEFAULT, type, old, 80), 0);
        before_.emplace(type, old); // the first one counts
        ASSERT_NE(::SetLocaleInfoW(LOCALE_USER_DEFAULT, type, text), 0);
    }

    void SetShortDate(const wchar_t* picture, const wchar_t* separator) {
        Set(LOCALE_SSHORTDATE, picture);
        Set(LOCALE_SDATE, separator);
    }

private:
    std::map<LCTYPE, std::wstring> before_;
};

TEST_F(RegionalSettings, AreReadAsTheyAreNow) {
    struct Case {
        const char* what;
        const wchar_t *picture, *dateSeparator, *decimal, *thousand;
        Locale locale;
    };
    const Case cases[] = {
        {"Israel", L"dd/MM/yyyy", L"/", L".", L",", {DateOrder::DayMonthYear, '/', '.', ','}},
        {"United States", L"M/d/yyyy", L"/", L".", L",", {DateOrder::MonthDayYear, '/', '.', ','}},
        {"Germany", L"dd.MM.yyyy", L".", L",", L".", {DateOrder::DayMonthYear, '.', ',', '.'}},
        {"Sweden; thousands by a no-break space",
         L"yyyy-MM-dd",
         L"-",
         L",",
         L"\xA0",
         {DateOrder::YearMonthDay, '-', ',', ' '}},
        {"a weekday in front", L"ddd, MM/dd/yy", L"/", L".", L"'", {DateOrder::MonthDayYear, '/', '.', '\''}},
        {"a word in front", L"'day' yy/MM/dd", L"/", L".", L",", {DateOrder::YearMonthDay, '/', '.', ','}},
    };
    for (const Case& c : cases) {
        SetShortDate(c.picture, c.dateSeparator);
        Set(LOCALE_SDECIMAL, c.decimal);
        Set(LOCALE_STHOUSAND, c.thousand);
        const Locale read = windows::UserLocale();
        EXPECT_EQ(read.dateOrder, c.locale.dateOrder) << c.what;
        EXPECT_EQ(read.dateSeparator, c.locale.dateSeparator) << c.what;
        EXPECT_EQ(read.decimalSeparator, c.locale.decimalSeparator) << c.what;
        EXPECT_EQ(read.thousandsSeparator, c.locale.thousandsSeparator) << c.what;
    }
}

TEST_F(RegionalSettings, DecideWhichDayATextIs) {
    const Apartment apartment;
    const auto valueFrom = [](const char* from) {
        const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
        Arguments arguments = ArgumentsOf({});
        arguments[fromAt] = Text(from);
        return ValueThroughCom(object.Get(), arguments);
    };
    const auto valueFromDay = [](double day) {
        LedgerCall call;
        call.from = day;
        return ValueInProcess(call);
    };
    const double thirdOfApril = valueFromDay(45385);
    const double fourthOfMarch = valueFromDay(45355);
    ASSERT_NE(thirdOfApril, fourthOfMarch);
    SetShortDate(L"dd/MM/yyyy", L"/");
    EXPECT_EQ(valueFrom("03/04/2024"), thirdOfApril);
    SetShortDate(L"M/d/yyyy", L"/");
    EXPECT_EQ(valueFrom("03/04/2024"), fourthOfMarch);
}

} // namespace
} // namespace qel::test
