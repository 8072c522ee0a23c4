#include "function/ArgToList.h"

#include "platform/value/CellValues.h"
#include "tests/helpers/ErrorOf.h"

#include <gtest/gtest.h>

namespace qel {
namespace {

constexpr Locale commaDecimal{DateOrder::DayMonthYear, '/', ',', '.'};

class Workbook : public Object {
public:
    std::string TypeName() const override { return "Workbook"; }
};

Variant ArrayOf(ElementType type, ArrayShape bounds, std::vector<Variant> elements) {
    return std::make_shared<const VariantArray>(VariantArray{type, std::move(bounds), std::move(elements)});
}

/// The list's elements between bars; an element that is not even a text is "empty".
std::string Listed(const KeyList& list) {
    std::string text = "|";
    for (const Variant& key : list) {
        text += (key.Is<std::string>() ? key.As<std::string>() : "empty") + "|";
    }
    return text;
}

std::string ListedOrError(const Variant& value) {
    std::string text;
    const auto failure = test::FailureOf([&] { text = Listed(ArgToList(value, commaDecimal)); });
    return failure.Number() == 0 ? text : std::to_string(failure.Number()) + " " + failure.Description();
}

TEST(ArgToList, MakesKeysByTheTypeOfTheArgument) {
    const AutomationDate march{43921};
    const std::vector<Variant> sevenKeys(7, 1.0);
    const struct {
        const char* what;
        Variant value;
        const char* list;
    } cases[] = {
        {"a whole number", 3.0, "|3|"},
        {"a fraction in the locale's form", 2.5, "|2,5|"},
        {"integers", std::int32_t{-12}, "|-12|"},
        {"currency", Currency{120000}, "|12|"},
        {"a plain text is no key", "3", "|empty|"},
        {"a date is no key", march, "|empty|"},
        {"neither is a logical value", true, "|empty|"},
        {"nor a byte", std::uint8_t{3}, "|empty|"},
        {"nor nothing", Variant(), "|empty|"},
        {"nor an omitted argument", ErrorValue{parameterNotFound}, "|empty|"},
        {"nor no object", std::shared_ptr<const Object>(), "|empty|"},
        {"nor an object other than a range", std::shared_ptr<const Object>(std::make_shared<Workbook>()),
         "|empty|"},
        {"an array of texts as such is no key", ArrayOf(ElementType::String, {{0, 0}}, {"3"}), "|empty|"},
        {"nor an array of dates", ArrayOf(ElementType::Date, {{0, 0}}, {march}), "|empty|"},
        {"an array constant, texts untrimmed",
         Variant::List({" Level2 ", 4.0, "שכר", true, Variant(), march}),
         "| Level2 |4|שכר|True||31/03/2020|"},
        {"one-based", ArrayOf(ElementType::Double, {{1, 5}}, {1.0, 2.0, 3.0, 4.0, 5.0}), "|1|2|3|4|5|"},
        {"bounds below zero", ArrayOf(ElementType::Long, {{-3, -1}}, {1.0, 2.0, 3.0}), "|1|2|3|"},
        {"seven keys", Variant::List(sevenKeys), "-2147221503 To many dimensions"},
        {"six one-based keys reach the same bound",
         ArrayOf(ElementType::Variant, {{1, 6}}, std::vector<Variant>(6, 1.0)),
         "-2147221503 To many dimensions"},
        {"the bound is told before the dimensions",
         ArrayOf(ElementType::Variant, {{0, 6}, {0, 0}}, sevenKeys), "-2147221503 To many dimensions"},
        {"two dimensions", ArrayOf(ElementType::Variant, {{0, 1}, {0, 0}}, {"1", "2"}),
         "9 Subscript out of range"},
        {"no elements", Variant::List({}), "9 Subscript out of range"},
        {"never dimensioned", ArrayOf(ElementType::Double, {}, {}), "9 Subscript out of range"},
        {"a cell error in an array", Variant::List({"1", ErrorValue{2042}}), "13 Type mismatch"},
        {"null in an array", Variant::List({Null{}}), "94 Invalid use of Null"},
        {"a range in its order, trimmed of blanks only", RangeOf({" 10 ", 11.0, "\u00A0x"}),
         "|10|11|\u00A0x|"},
        {"a range has no limit of six", RangeOf(std::vector<Variant>(8, "a")), "|a|a|a|a|a|a|a|a|"},
        {"one empty cell is an empty text", RangeOf({Variant()}), "||"},
        {"a cell error", RangeOf({"1", ErrorValue{2042}}), "13 Type mismatch"},
        {"a range without cells", RangeOf({}), "|empty|"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ListedOrError(c.value), c.list) << c.what;
    }
}

TEST(ArgToList, CountsCellsIn16Bits) {
    EXPECT_EQ(ArgToList(RangeOf(std::vector<Variant>(32768, "a")), commaDecimal).size(), 32768U);
    EXPECT_EQ(ListedOrError(RangeOf(std::vector<Variant>(32769, "a"))), "6 Overflow");
}

TEST(ArrayToList, TakesTheTextOfAnyScalar) {
    EXPECT_EQ(Listed(ArrayToList("3", commaDecimal)), "|3|");
    EXPECT_EQ(Listed(ArrayToList(AutomationDate{43921}, commaDecimal)), "|31/03/2020|");
    EXPECT_EQ(Listed(ArrayToList(Variant(), commaDecimal)), "||");
}

} // namespace
} // namespace qel
