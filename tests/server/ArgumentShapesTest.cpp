#include "platform/windows/VariantConversion.h"
#include "tests/server/LedgerCall.h"
#include "tests/server/RangeDouble.h"

#include <gtest/gtest.h>

#include <functional>

namespace qel::test {
namespace {

/// An array of one element of that type, set by a scalar, with that lower bound.
OwnedVariant ArrayOf(VARTYPE type, LONG lowerBound, UINT dimensions = 1) {
    SAFEARRAYBOUND bounds[2] = {{1, lowerBound}, {1, lowerBound}};
    OwnedVariant array;
    V_VT(&array.Get()) = static_cast<VARTYPE>(VT_ARRAY | type);
    V_ARRAY(&array.Get()) = ::SafeArrayCreate(type, dimensions, bounds);
    OwnedVariant one = Number(1);
    EXPECT_EQ(::VariantChangeType(&one.Get(), &one.Get(), 0, type == VT_VARIANT ? VARTYPE{VT_BSTR} : type),
              S_OK);
    LONG place[2] = {lowerBound, lowerBound};
    void* element = &V_UI1(&one.Get());
    if (type == VT_VARIANT || type == VT_DECIMAL) {
        element = &one.Get();
    } else if (type == VT_BSTR) {
        element = V_BSTR(&one.Get());
    }
    EXPECT_EQ(::SafeArrayPutElement(V_ARRAY(&array.Get()), place, element), S_OK);
    return array;
}

OwnedVariant Scalar(VARTYPE type) {
    OwnedVariant one = Number(1);
    EXPECT_EQ(::VariantChangeType(&one.Get(), &one.Get(), 0, type), S_OK);
    return one;
}

OwnedVariant RangeOf(const std::vector<std::string>& texts) {
    std::vector<OwnedVariant> cells;
    cells.reserve(texts.size());
    for (const std::string& text : texts) {
        cells.push_back(Text(text));
    }
    OwnedVariant value;
    V_VT(&value.Get()) = VT_DISPATCH;
    V_DISPATCH(&value.Get()) = MakeRange(std::move(cells)).Release();
    return value;
}

struct ShapeCase {
    const char* what;
    std::function<OwnedVariant()> make;
};

const ShapeCase keyOneShapes[] = {
    {"a double", [] { return Scalar(VT_R8); }},
    {"a 16-bit integer", [] { return Scalar(VT_I2); }},
    {"a 32-bit integer", [] { return Scalar(VT_I4); }},
    {"an unsigned integer", [] { return Scalar(VT_UI4); }},
    {"a 64-bit integer", [] { return Scalar(VT_I8); }},
    {"a single", [] { return Scalar(VT_R4); }},
    {"an amount of money", [] { return Scalar(VT_CY); }},
    {"a decimal", [] { return Scalar(VT_DECIMAL); }},
    {"an array of texts in variants", [] { return ArrayOf(VT_VARIANT, 0); }},
    {"a one-based array", [] { return ArrayOf(VT_VARIANT, 1); }},
    {"an array that begins at -3", [] { return ArrayOf(VT_VARIANT, -3); }},
    {"an array of integers", [] { return ArrayOf(VT_I2, 0); }},
    {"an array of long integers", [] { return ArrayOf(VT_I4, 1); }},
    {"an array of doubles", [] { return ArrayOf(VT_R8, 0); }},
    {"an array of amounts", [] { return ArrayOf(VT_CY, 0); }},
    {"an array of decimals", [] { return ArrayOf(VT_DECIMAL, 0); }},
    {"a cell", [] { return RangeOf({" 1 "}); }},
    {"a range whose first cell counts",
     [] {
         return RangeOf({"1", "2", ""});
     }},
};

TEST(ArgumentShapes, EveryShapeOfTheKeyOneSelectsTheSame) {
    const Apartment apartment;
    const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    const double expected = ValueInProcess({});
    ASSERT_NE(expected, 0);
    for (const ShapeCase& shape : keyOneShapes) {
        SCOPED_TRACE(shape.what);
        Arguments arguments = ArgumentsOf({});
        arguments[obsNumberAt] = shape.make();
        EXPECT_EQ(ValueThroughCom(object.Get(), arguments), expected);

        OwnedVariant variable = shape.make(); // a script's variable, and a variable that refers to another
        OwnedVariant reference = ReferenceTo(variable);
        arguments[obsNumberAt] = ReferenceTo(variable);
        EXPECT_EQ(ValueThroughCom(object.Get(), arguments), expected);
        arguments[obsNumberAt] = ReferenceTo(reference);
        EXPECT_EQ(ValueThroughCom(object.Get(), arguments), expected);
    }
}

TEST(ArgumentShapes, ReferencesToValuesAndArraysAreFollowed) {
    const Apartment apartment;
    const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    const double expected = ValueInProcess({});
    Arguments arguments = ArgumentsOf({});
    short number = 1;
    V_VT(arguments[obsNumberAt].Receive()) = VT_BYREF | VT_I2;
    V_I2REF(&arguments[obsNumberAt].Get()) = &number;
    OwnedVariant names = Texts({"OBS"});
    V_VT(arguments[obsNameAt].Receive()) = VT_BYREF | VT_ARRAY | VT_VARIANT;
    V_ARRAYREF(&arguments[obsNameAt].Get()) = &V_ARRAY(&names.Get());
    EXPECT_EQ(ValueThroughCom(object.Get(), arguments), expected);
}

TEST(ArgumentShapes, WhatIsNoKeySelectsNothing) {
    const Apartment apartment;
    const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    const ShapeCase shapes[] = {{"a plain text", [] { return Text("1"); }},
                                {"a date", [] { return Day(1); }},
                                {"a logical value", [] { return Scalar(VT_BOOL); }},
                                {"an array of dates", [] { return ArrayOf(VT_DATE, 0); }},
                                {"a missing argument", [] { return Missing(); }}};
    for (const ShapeCase& shape : shapes) {
        SCOPED_TRACE(shape.what);
        Arguments arguments = ArgumentsOf({});
        arguments[obsNumberAt] = shape.make();
        EXPECT_EQ(ValueThroughCom(object.Get(), arguments), 0);
    }
}

struct FailingShape {
    const char* what;
    std::function<OwnedVariant()> make;
    std::uint32_t code;
    const char* description;
};

TEST(ArgumentShapes, ListsThatCannotBeMadeFailTheCall) {
    const Apartment apartment;
    const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    const std::vector<std::string> six(6, "1");
    const std::vector<std::string> seven(7, "1");
    const FailingShape shapes[] = {
        {"seven keys", [&] { return Texts(seven); }, 0x80040001, "To many dimensions"},
        {"six keys from one on", [&] { return Texts(six, 1); }, 0x80040001, "To many dimensions"},
        {"two dimensions", [] { return ArrayOf(VT_VARIANT, 0, 2); }, 0x800A0009, "Subscript out of range"},
    };
    for (const FailingShape& shape : shapes) {
        SCOPED_TRACE(shape.what);
        Arguments arguments = ArgumentsOf({});
        arguments[obsNumberAt] = shape.make();
        const CallResult result = Invoke(object.Get(), L"QeLF1", arguments);
        EXPECT_EQ(result.status, DISP_E_EXCEPTION);
        EXPECT_EQ(static_cast<std::uint32_t>(result.code), shape.code);
        EXPECT_EQ(result.description, shape.description);
        EXPECT_EQ(result.source, "OrmFuncQel4");
    }
    Arguments arguments = ArgumentsOf({});
    arguments[obsNumberAt] = Texts(six);
    EXPECT_EQ(ValueThroughCom(object.Get(), arguments), ValueInProcess({}));
}

TEST(ArgumentShapes, TextsAndDatesAreConvertedFromWhatTheCellHolds) {
    const Apartment apartment;
    const auto object = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
    const double expected = ValueInProcess({});
    Arguments arguments = ArgumentsOf({});
    arguments[fromAt] = Number(45292);
    arguments[toAt] = Text("2024-12-31");
    arguments[cubeFileAt] = RangeOf({QEL_TEST_CUBE});
    EXPECT_EQ(ValueThroughCom(object.Get(), arguments), expected);

    LedgerCall account;
    account.selections[2] = "4111";
    arguments = ArgumentsOf(account);
    arguments[9] = Number(4111);
    EXPECT_EQ(ValueThroughCom(object.Get(), arguments), ValueInProcess(account));
}

} // namespace
} // namespace qel::test
