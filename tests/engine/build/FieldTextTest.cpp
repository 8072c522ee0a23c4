#include "engine/build/AmountText.h"
#include "engine/build/FieldDate.h"

#include <gmock/gmock.h>

namespace qel::engine {
namespace {

TEST(AmountText, ReadsAmountsExactlyOrNotAtAll) {
    const CsvFormat plain;
    CsvFormat english, german, swiss, french;
    english.thousands = ',';
    german.decimal = ',';
    german.thousands = '.';
    swiss.thousands = '\'';
    french.decimal = ',';
    french.thousands = ' ';
    const struct {
        const char* text;
        const CsvFormat& format;
        std::int64_t cents;
    } cases[] = {
        {"", plain, 0},
        {" ", plain, 0},
        {"0", plain, 0},
        {"12", plain, 1200},
        {"12.5", plain, 1250},
        {"12.50", plain, 1250},
        {"12.5000", plain, 1250}, // surplus zeros are exact
        {".5", plain, 50},
        {"5.", plain, 500},
        {"-12.34", plain, -1234},
        {"12.34-", plain, -1234},
        {"- 12.34", plain, -1234},
        {"(12.34)", plain, -1234},
        {"( 12.34 )", plain, -1234},
        {"+1", plain, 100},
        {"1,234.50", english, 123450},
        {"1,234,567", english, 123456700},
        {"1234567.1", english, 123456710},
        {"1.234,50", german, 123450},
        {"-0,01", german, -1},
        {"1'234.50", swiss, 123450},
        {"1\xE2\x80\x99"
         "234.50",
         swiss, 123450},
        {"1 234,50", french, 123450},
        {"1\xC2\xA0"
         "234,50",
         french, 123450},
        {"1\xE2\x80\xAF"
         "234,50\xC2\xA0",
         french, 123450},
        {"\xE2\x88\x92"
         "5",
         plain, -500},
        {"\xE2\x80\x8E-5\xE2\x80\x8F", plain, -500}, // directional marks
        {"-$5.00", plain, -500},
        {"1,234.50 ₪", english, 123450},
        {"₪ 1,234", english, 123400},
        {"1,234.50 ILS", english, 123450},
        {"(nis 1,234.50)", english, -123450},
        {"1.234,00- ש\"ח", german, -123400},
        {"\xE2\x80\x8F-1.234,00\xC2\xA0ש״ח", german, -123400},
        {"92233720368547758.07", plain, 9223372036854775807},
        {"-92233720368547758.07", plain, -9223372036854775807},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(ParseAmount(test.text, test.format, 2).value, test.cents) << "\"" << test.text << "\"";
    }
    const struct {
        const CsvFormat& format;
        std::vector<const char*> texts;
    } refused[] = {
        {plain,
         {"12.505",
          ".",
          "-",
          "--1",
          "-1-",
          "(-1)",
          "(1",
          "1)",
          "()",
          "1e5",
          "1.2.3",
          "1,234.50",
          "12 abc",
          "\xD7\x90",
          "$",
          "$5$",
          "5$50",
          "5 ILSX",
          "ILS",
          "5 $ ₪",
          "92233720368547758.08",
          "99999999999999999999"}},
        {english, {"1,5", "1,2345", ",123", "1234,567", "1,23,456", "1,234,"}},
    };
    for (const auto& c : refused) {
        for (const char* const text : c.texts) {
            EXPECT_EQ(ParseAmount(text, c.format, 2).value, std::nullopt) << "\"" << text << "\"";
        }
    }
    EXPECT_EQ(ParseAmount("5 NIS", plain, 2).currency, ParseAmount("ש''ח 5", plain, 2).currency);
    EXPECT_THAT(AmountRemedy("1.5 שקל חדש.", {}, 2), testing::StartsWith("; take \"שקל חדש\" away"));
    EXPECT_EQ(ParseAmount("7", plain, 0).value, 7);
    EXPECT_EQ(ParseAmount("0.123456789", plain, 9).value, 123456789);
    EXPECT_TRUE(ParseAmount("92233720368547758.08", plain, 2).isTooLarge);
    EXPECT_FALSE(ParseAmount("99999999999999999999x", plain, 2).isTooLarge);
}

TEST(DateText, ReadsTheDeclaredOrderAndIso) {
    using enum DateFormat;
    const struct {
        const char* text;
        DateFormat format;
        const char* day;
    } cases[] = {
        {"2024-03-31", Iso, "2024-03-31"},
        {"2024-3-1", Iso, "2024-03-01"},
        {"20240331", Iso, "2024-03-31"},
        {"\xE2\x80\x8F"
         "2024-03-31\xE2\x80\x8E",
         Iso, "2024-03-31"},
        {"2024-03", Iso, "2024-03-01"},
        {"2024-03-31T23:59:59Z", Iso, "2024-03-31"},
        {"2024-03-31 00:00:00.000", Iso, "2024-03-31"},
        {"9999-12-31", Iso, "9999-12-31"},
        {"31/12/2024", DayMonthYear, "2024-12-31"},
        {"1.2.2024", DayMonthYear, "2024-02-01"},
        {"1 2 2024", DayMonthYear, "2024-02-01"},
        {"31/12/2024 10:30", DayMonthYear, "2024-12-31"},
        {"2024-12-31", DayMonthYear, "2024-12-31"},
        {"31/12/29", DayMonthYear, "2029-12-31"},
        {"31/12/30", DayMonthYear, "1930-12-31"},
        {"03/2024", DayMonthYear, "2024-03-01"},
        {"12/31/2024", MonthDayYear, "2024-12-31"},
        {"24/12/31", YearMonthDay, "2024-12-31"},
        {"31 Dec 2024 10:30", Iso, "2024-12-31"},
        {"December 31, 2024", DayMonthYear, "2024-12-31"},
        {"31-dec-24", MonthDayYear, "2024-12-31"},
        {"Sept 2024", DayMonthYear, "2024-09-01"},
        {"31 בדצמבר 2024", Iso, "2024-12-31"},
        {"מרץ 2024", DayMonthYear, "2024-03-01"},
    };
    for (const auto& test : cases) {
        const auto day = ParseDate(test.text, test.format);
        EXPECT_EQ(day ? FormatDate(*day) : "", test.day) << "\"" << test.text << "\"";
    }
    const struct {
        DateFormat format;
        std::vector<const char*> texts;
    } refused[] = {
        {Iso,
         {"2024-03-31 noon", "2024-02-30", "2024-13-01", "2024-00-01", "31-12-24", "31/12/2024", "0099-01-01",
          "", "2024", "2024-", "2024-03-31-", "2024--31", "31 Dec 24", "+2024-03-31"}},
        {DayMonthYear, {"29/02/2023", "12/31/2024", "31/12/024", "Q1 2024", "1 Janus 2024", "31 Apr 2024"}},
        {MonthDayYear, {"31/12/2024"}},
    };
    for (const auto& c : refused) {
        for (const char* const text : c.texts) {
            EXPECT_FALSE(ParseDate(text, c.format)) << "\"" << text << "\"";
        }
    }
}

} // namespace
} // namespace qel::engine
