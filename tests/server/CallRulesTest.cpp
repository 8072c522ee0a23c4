#include "platform/windows/Bstr.h"
#include "tests/server/LedgerCall.h"

#include <gtest/gtest.h>

#include <fstream>

namespace qel::test {
namespace {

class CallRules : public testing::Test {
protected:
    const Apartment apartment_;
    const ComPointer<IDispatch> object_ = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
};

TEST_F(CallRules, NamesAreFoundInAnyLetterCase) {
    const double expected = ValueInProcess({});
    ASSERT_NE(expected, 0);
    for (const wchar_t* name : {L"QelF1", L"qelf1", L"QELF1", L"QeL1"}) {
        Arguments arguments = ArgumentsOf({});
        const CallResult result = Invoke(object_.Get(), name, arguments);
        ASSERT_EQ(result.status, S_OK);
        EXPECT_EQ(V_R8(&result.value.Get()), expected);
    }
    Arguments none;
    EXPECT_EQ(Invoke(object_.Get(), L"QelF2", none).status, DISP_E_UNKNOWNNAME);
}

TEST_F(CallRules, DatesMayBeLeftOutAnywhere) {
    LedgerCall december;
    december.from = december.to;
    const double expected = ValueInProcess(december);
    ASSERT_NE(expected, 0);

    Arguments arguments = ArgumentsOf({});
    arguments[fromAt] = Missing();
    EXPECT_EQ(ValueThroughCom(object_.Get(), arguments), expected) << "in the middle";

    arguments = ArgumentsOf({});
    arguments.erase(arguments.begin() + fromAt);
    const CallResult named = Invoke(object_.Get(), L"QeLF1", arguments, {L"to_date"});
    ASSERT_EQ(named.status, S_OK);
    EXPECT_EQ(V_R8(&named.value.Get()), expected) << "the other one by its name";

    arguments = ArgumentsOf({});
    arguments.resize(fromAt);
    EXPECT_EQ(ValueThroughCom(object_.Get(), arguments), 0) << "both: the zero date lies before the cube's";
}

TEST_F(CallRules, WrongCountsAndNamesAreRefused) {
    Arguments arguments = ArgumentsOf({});
    arguments.push_back(Number(1));
    EXPECT_EQ(Invoke(object_.Get(), L"QeLF1", arguments).status, DISP_E_BADPARAMCOUNT);
    arguments.resize(15);
    EXPECT_EQ(Invoke(object_.Get(), L"QeLF1", arguments).status, DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Invoke(object_.Get(), L"QeLF1", arguments, {L"From_Date"}).status, DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(Invoke(object_.Get(), L"QeLF1", arguments, {L"cubeFile"}).status, DISP_E_PARAMNOTFOUND)
        << "an argument given twice";
}

TEST_F(CallRules, APlaceThatIsMissingIsAnError) {
    ComPointer<ITypeInfo> info;
    EXPECT_EQ(object_->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(object_->GetTypeInfo(0, 0, nullptr), E_POINTER);
    EXPECT_EQ(object_->GetTypeInfo(1, 0, nullptr), E_POINTER);
    EXPECT_EQ(object_->GetTypeInfo(1, 0, info.Receive()), DISP_E_BADINDEX);
    const auto classes = object_.As<IProvideClassInfo>(IID_IProvideClassInfo);
    EXPECT_EQ(classes->GetClassInfo(nullptr), E_POINTER);
    EXPECT_EQ(classes->GetClassInfo(info.Receive()), S_OK);
    EXPECT_TRUE(info);
}

TEST_F(CallRules, AnArgumentThatDoesNotConvertIsNamed) {
    Arguments arguments = ArgumentsOf({});
    arguments[toAt] = Text("soon");
    const CallResult result = Invoke(object_.Get(), L"QeLF1", arguments);
    EXPECT_EQ(result.status, DISP_E_EXCEPTION);
    EXPECT_EQ(static_cast<std::uint32_t>(result.code), 0x800A000DU);
    EXPECT_EQ(result.description, "Type mismatch (argument 18, To_Date)");
}

TEST_F(CallRules, OnlyReferencesReceiveChangedTexts) {
    LedgerCall call;
    call.cubeFile = "  " + call.cubeFile + " ";
    call.selections[4] = "ILS";
    Arguments arguments = ArgumentsOf(call);
    windows::Bstr file(call.cubeFile);
    BSTR place = file.Get();
    file.Release();
    V_VT(arguments[cubeFileAt].Receive()) = VT_BYREF | VT_BSTR;
    V_BSTRREF(&arguments[cubeFileAt].Get()) = &place;
    OwnedVariant moneySet = Text("ILS");
    arguments[moneySetAt] = ReferenceTo(moneySet);
    OwnedVariant rh = Number(7); // selects no member, but returns as a part of the statement
    arguments[rhAt] = ReferenceTo(rh);
    OwnedVariant firm = Number(10);
    arguments[8] = ReferenceTo(firm);
    OwnedVariant measure = Text(" Amount ");
    arguments[measureAt] = ReferenceTo(measure);

    ASSERT_EQ(Invoke(object_.Get(), L"QeLF1", arguments).status, S_OK);
    windows::Bstr returned;
    *returned.Receive() = place;
    EXPECT_EQ(windows::TextOfBstr(returned.Get()), QEL_TEST_CUBE);
    EXPECT_EQ(TextIn(moneySet), "[MoneySet].[ILS]");
    EXPECT_EQ(TextIn(rh), "[RH].[7]");
    EXPECT_EQ(TextIn(measure), "Amount");
    EXPECT_EQ(V_VT(&firm.Get()), VT_R8) << "an argument that did not change keeps its type";
    EXPECT_EQ(TextIn(arguments[1]), "LedgerFNC");
}

TEST_F(CallRules, KeysWithNoBreakSpacesComeBackWithQuotes) {
    LedgerCall call;
    OwnedVariant keys = Texts({"x\xC2\xA0y", "p\xC2\xA0q"}, 1), activities = Texts({"a\xC2\xA0z"}, 1);
    Arguments arguments = ArgumentsOf(call);
    arguments[obsMemberAt] = ReferenceTo(keys);
    arguments[activityAt] = ReferenceTo(activities);
    ASSERT_EQ(Invoke(object_.Get(), L"QelFuncDemo", arguments).status, S_OK);
    const auto keyAt = [](OwnedVariant& list, LONG index) {
        OwnedVariant key;
        EXPECT_EQ(::SafeArrayGetElement(V_ARRAY(&list.Get()), &index, key.Receive()), S_OK);
        return TextIn(key);
    };
    EXPECT_EQ(keyAt(keys, 1), "x\"y");
    EXPECT_EQ(keyAt(keys, 2), "p\"q") << "every key";
    EXPECT_EQ(keyAt(activities, 1), "a\xC2\xA0z") << "of OBS members alone";

    arguments[obsMemberAt] = Texts({"x\xC2\xA0y"}); // by value: the caller's own array stays as it is
    ASSERT_EQ(Invoke(object_.Get(), L"QelFuncDemo", arguments).status, S_OK);
    EXPECT_EQ(keyAt(arguments[obsMemberAt], 0), "x\xC2\xA0y");
}

TEST_F(CallRules, PropertiesKeepTexts) {
    const std::string hebrew = "\xD7\xA1\xD7\xA4\xD7\xA8 'x'";
    Arguments value;
    value.push_back(Text(hebrew));
    ASSERT_EQ(Invoke(object_.Get(), L"g_cubefile", value, {}, DISPATCH_PROPERTYPUT).status, S_OK);
    Arguments none;
    EXPECT_EQ(TextIn(Invoke(object_.Get(), L"g_cubeFile", none).value), hebrew);
    EXPECT_EQ(Invoke(object_.Get(), L"ResQel", none).status, DISP_E_MEMBERNOTFOUND)
        << "it can only be written";
    Arguments tooLarge;
    tooLarge.push_back(Number(40000));
    EXPECT_EQ(Invoke(object_.Get(), L"iLang", tooLarge, {}, DISPATCH_PROPERTYPUT).status, DISP_E_EXCEPTION);
}

TEST_F(CallRules, AFileOfAnotherKindGivesThePlatformsError) {
    const std::string path = QEL_TEST_FOLDER "/other.cub";
    std::ofstream(path, std::ios::binary) << "MZ, but no cube";
    LedgerCall call;
    for (const std::string& file : {path, std::string(QEL_TEST_FOLDER "/missing.cub")}) {
        SCOPED_TRACE(file);
        call.cubeFile = file;
        Arguments arguments = ArgumentsOf(call);
        const std::string text = TextIn(Invoke(object_.Get(), L"QelFuncDemo", arguments).value);
        EXPECT_EQ(text.substr(0, 5), "#err ");
        EXPECT_NE(std::stol(text.substr(5)), 0);
        const CallResult masked = Invoke(object_.Get(), L"QeLF1", arguments);
        EXPECT_EQ(V_VT(&masked.value.Get()), VT_I2) << "a zero of 16 bits, not of a cell";
        EXPECT_EQ(V_I2(&masked.value.Get()), 0);
    }
    Arguments good = ArgumentsOf({});
    EXPECT_EQ(ValueThroughCom(object_.Get(), good), ValueInProcess({}))
        << "the next call opens the cube afresh";
}

} // namespace
} // namespace qel::test
