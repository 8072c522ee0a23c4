#include "platform/value/Conversion.h"

#include "platform/value/AutomationError.h"
#include "tests/helpers/ErrorOf.h"

#include <gtest/gtest.h>

#include <limits>

namespace qel {
namespace {

using test::ErrorOf;

constexpr Locale plain{};
constexpr Locale commaDecimal{DateOrder::DayMonthYear, '.', ',', '.'};

class Workbook : public Object {
public:
    std::string TypeName() const override { return "Workbook"; }
};

Variant ArrayOf(ElementType type) {
    return std::make_shared<const VariantArray>(VariantArray{type, {{0, 0}}, {Variant()}});
}

TEST(Conversion, WritesValuesAsThePlatformDoes) {
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
    const struct {
        const char* what;
        Variant value;
        const char* text;
    } cases[] = {
        {"whole number", 12.0, "12"},
        {"locale's decimal separator", 12.5, "12,5"},
        {"15 digits are written, the 17th is noise", 0.1 + 0.2, "0,3"},
        {"15 digits whole", 123456789012345.0, "123456789012345"},
        {"larger goes to an exponent", 1e15, "1E+15"},
        {"small goes to an exponent", 0.00001, "1E-05"},
        {"negative zero", -0.0, "0"},
        {"single has 7 digits", 0.1F, "0,1"},
        {"integers of every size", std::int16_t{-7}, "-7"},
        {"byte is a number", std::uint8_t{65}, "65"},
        {"currency without zeros at the end", Currency{12500}, "1,25"},
        {"currency below one", Currency{-5}, "-0,0005"},
        {"lowest currency", Currency{lowest}, "-922337203685477,5808"},
        {"largest decimal", Decimal{0xFFFFFFFF, 0xFFFFFFFFFFFFFFFF, 0, false},
         "79228162514264337593543950335"},
        {"decimal with places", Decimal{0, 1500, 3, true}, "-1,5"},
        {"whole decimal keeps its zeros", Decimal{0, 1500, 0, false}, "1500"},
        {"negative zero decimal", Decimal{0, 0, 2, true}, "0"},
        {"date", AutomationDate{43921}, "31.03.2020"},
        {"logical", true, "True"},
        {"empty", Variant(), ""},
        {"text as it stands", "\u00A0 שכר \"א\"", "\u00A0 שכר \"א\""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ToText(c.value, commaDecimal), c.text) << c.what;
    }
}

TEST(Conversion, RaisesThePlatformsErrors) {
    const struct {
        Variant value;
        std::int32_t toText, toDouble;
    } cases[] = {{Null{}, 94, 94},
                 {ErrorValue{2042}, 13, 13},
                 {ArrayOf(ElementType::Double), 13, 13},
                 {std::shared_ptr<const Object>(std::make_shared<Workbook>()), 13, 13},
                 {"twelve", 0, 13},
                 {"1E999", 0, 6},
                 {"12", 0, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(ErrorOf([&] { ToText(c.value, plain); }), c.toText) << c.value.TypeName();
        EXPECT_EQ(ErrorOf([&] { ToDouble(c.value, plain); }), c.toDouble) << c.value.TypeName();
    }
    EXPECT_EQ(ErrorOf([] { ToDate(3e6, plain); }), 6);
    EXPECT_EQ(ErrorOf([] { ToDate("soon", plain); }), 13);
    EXPECT_EQ(ToDate("31/03/2020", plain), ToDate(43921, plain));
    EXPECT_EQ(ToDate(Variant(), plain).days, 0);
    EXPECT_STREQ(PlatformError(6).what(), "Overflow");
}

TEST(Conversion, ReadsNumbersAsThePlatformDoes) {
    const struct {
        const char* text;
        double number;
    } numbers[] = {{"12", 12},    {" 12.5 ", 12.5},   {"-3", -3},      {"3-", -3},
                   {"- 3", -3},   {"+3", 3},          {"(4.5)", -4.5}, {"1,234,567.5", 1234567.5},
                   {".5", 0.5},   {"5.", 5},          {"1E3", 1000},   {"1d-2", 0.01},
                   {"&H1F", 31},  {"&hFFFFFFFF", -1}, {"&O17", 15},    {"\t7\n", 7},
                   {"1E-999", 0}, {"0.1E+1", 1}};
    for (const auto& c : numbers) {
        EXPECT_TRUE(IsNumericText(c.text, plain)) << c.text;
        EXPECT_DOUBLE_EQ(ToDouble(c.text, plain), c.number) << c.text;
    }
    for (const char* text :
         {"",     " ",  "-",        ".",       ",5",    "1.2.3", "1.2,3", "--3",  "-3-",
          "(-3)", "()", "1E",       "1E+",     "E3",    "12a",   "&H",    "&HG",  "&H100000000",
          "1 2",  "١٢", "\u00A012", "#ERR 13", "1E999", "inf",   "nan",   "0x10", "31/03/2020"}) {
        EXPECT_FALSE(IsNumericText(text, plain)) << text;
    }
    EXPECT_DOUBLE_EQ(ToDouble("1.234,5", commaDecimal), 1234.5);
    EXPECT_DOUBLE_EQ(ToDouble(Decimal{1, 0, 1, true}, plain), -1844674407370955161.6);
    EXPECT_DOUBLE_EQ(ToDouble(Currency{-12345}, plain), -1.2345);
    EXPECT_EQ(ToDouble(true, plain), -1);
}

TEST(Conversion, TellsNumbersFromOtherTypes) {
    for (const Variant& number :
         {Variant(), Variant(true), Variant(1.5), Variant(Currency{1}), Variant("12")}) {
        EXPECT_TRUE(IsNumeric(number, plain)) << number.TypeName();
    }
    for (const Variant& other : {Variant(Null{}), Variant(AutomationDate{1}), Variant(ErrorValue{2042}),
                                 ArrayOf(ElementType::Double), Variant(std::shared_ptr<const Object>())}) {
        EXPECT_FALSE(IsNumeric(other, plain)) << other.TypeName();
    }
}

TEST(Conversion, NamesTypesAsThePlatformDoes) {
    const std::pair<Variant, const char*> cases[] = {
        {std::int16_t{1}, "Integer"},
        {std::int32_t{1}, "Long"},
        {1.0F, "Single"},
        {std::uint8_t{1}, "Byte"},
        {AutomationDate{1}, "Date"},
        {Variant(), "Empty"},
        {std::shared_ptr<const Object>(), "Nothing"},
        {std::shared_ptr<const Object>(std::make_shared<Workbook>()), "Workbook"},
        {Variant::List({1.0, "a"}), "Variant()"},
        {ArrayOf(ElementType::Decimal), "Decimal()"},
        {ArrayOf(ElementType::String), "String()"}};
    for (const auto& [value, name] : cases) {
        EXPECT_EQ(value.TypeName(), name);
    }
}

} // namespace
} // namespace qel
