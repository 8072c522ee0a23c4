// The interface's function table, entry by entry, as a compiled caller uses it.

#include "platform/windows/Bstr.h"
#include "tests/platform/dialog/win32/BoxReader.h"
#include "tests/server/LedgerCall.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace qel::test {
namespace {

constexpr unsigned standardSlots = 7;

/// Calls the member in that slot (from 1) with arguments that have exactly the table's types.
HRESULT CallSlot(IDispatch* object, unsigned slot, std::vector<VARIANT> arguments) {
    std::vector<VARTYPE> types;
    std::vector<VARIANT*> pointers;
    for (VARIANT& argument : arguments) {
        types.push_back(V_VT(&argument));
        pointers.push_back(&argument);
    }
    VARIANT returned = {};
    EXPECT_EQ(::DispCallFunc(object, (standardSlots + slot - 1) * sizeof(void*), CC_STDCALL, VT_ERROR,
                             static_cast<UINT>(types.size()), types.data(), pointers.data(), &returned),
              S_OK);
    return V_ERROR(&returned);
}

VARIANT PlaceOf(VARTYPE type, void* place) {
    VARIANT argument = {};
    V_VT(&argument) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&argument) = place;
    return argument;
}

VARIANT ByValue(BSTR text) {
    VARIANT argument = {};
    V_VT(&argument) = VT_BSTR;
    V_BSTR(&argument) = text;
    return argument;
}

VARIANT ByValue(short number) {
    VARIANT argument = {};
    V_VT(&argument) = VT_I2;
    V_I2(&argument) = number;
    return argument;
}

/// The arguments of a value call with the table's types: texts and lists by reference.
class TableArguments {
public:
    TableArguments(const LedgerCall& call, bool withLevel) : values_(ArgumentsOf(call)), level_(0) {
        for (OwnedVariant& value : values_) {
            VARIANT& own = value.Get();
            if (V_VT(&own) == VT_DATE) {
                arguments_.push_back(own);
            } else {
                arguments_.push_back(V_VT(&own) == VT_BSTR ? PlaceOf(VT_BSTR, &V_BSTR(&own))
                                                           : PlaceOf(VT_VARIANT, &own));
            }
        }
        if (withLevel) {
            arguments_.push_back(PlaceOf(VT_I2, &level_));
        }
        arguments_.push_back(PlaceOf(VT_VARIANT, &result_.Get()));
    }

    const std::vector<VARIANT>& Get() const { return arguments_; }
    double Result() const { return V_VT(&result_.Get()) == VT_R8 ? V_R8(&result_.Get()) : 0; }

private:
    Arguments values_;
    short level_;
    OwnedVariant result_;
    std::vector<VARIANT> arguments_;
};

class Table : public testing::Test {
protected:
    const Apartment apartment_;
    const ComPointer<IDispatch> object_ = CreateByName(L"OrmFunctionQel4.OrmQelFunction");
};

TEST_F(Table, ValueMembersAreInSlots1And15And16) {
    const double expected = ValueInProcess({});
    ASSERT_NE(expected, 0);
    for (const unsigned slot : {1U, 15U, 16U}) {
        const TableArguments arguments({}, slot == 1);
        EXPECT_EQ(CallSlot(object_.Get(), slot, arguments.Get()), S_OK);
        EXPECT_EQ(arguments.Result(), expected) << "slot " << slot;
    }
}

TEST_F(Table, PropertiesAreInSlots3To11) {
    Arguments none;
    const struct {
        unsigned get, put;
        const wchar_t *name, *text;
    } properties[] = {{3, 4, L"g_cubeFile", L"\x5D0 file"}, {5, 6, L"g_CubeName", L"\x5D0 cube"}};
    for (const auto& property : properties) {
        const windows::Bstr text{std::wstring_view(property.text)};
        windows::Bstr read;
        EXPECT_EQ(CallSlot(object_.Get(), property.put, {ByValue(text.Get())}), S_OK);
        EXPECT_EQ(CallSlot(object_.Get(), property.get, {PlaceOf(VT_BSTR, read.Receive())}), S_OK);
        EXPECT_EQ(windows::TextOfBstr(read.Get()), windows::TextOfBstr(text.Get()))
            << "slot " << property.get;
        EXPECT_EQ(TextIn(Invoke(object_.Get(), property.name, none).value), windows::TextOfBstr(text.Get()))
            << "slot " << property.put;
    }
    const windows::Bstr result(std::wstring_view(L"kept"));
    EXPECT_EQ(CallSlot(object_.Get(), 7, {ByValue(result.Get())}), S_OK);
    short detail = 0;
    short language = 0;
    EXPECT_EQ(CallSlot(object_.Get(), 9, {ByValue(short{-3})}), S_OK);
    EXPECT_EQ(CallSlot(object_.Get(), 11, {ByValue(short{1})}), S_OK);
    EXPECT_EQ(CallSlot(object_.Get(), 8, {PlaceOf(VT_I2, &detail)}), S_OK);
    EXPECT_EQ(CallSlot(object_.Get(), 10, {PlaceOf(VT_I2, &language)}), S_OK);
    EXPECT_EQ(detail, -3);
    EXPECT_EQ(language, 1);
    EXPECT_EQ(V_I2(&Invoke(object_.Get(), L"iShowDetail", none).value.Get()), -3);
    EXPECT_EQ(V_I2(&Invoke(object_.Get(), L"iLang", none).value.Get()), 1);
}

TEST_F(Table, NamesAreInSlots13And14) {
    for (const unsigned slot : {13U, 14U}) {
        OwnedVariant file = Text(QEL_TEST_CUBE);
        OwnedVariant cube = Text("LedgerFNC");
        OwnedVariant type = Text("SuperSum1");
        OwnedVariant member = Text("1");
        OwnedVariant result;
        EXPECT_EQ(CallSlot(object_.Get(), slot,
                           {PlaceOf(VT_BSTR, &V_BSTR(&file.Get())), PlaceOf(VT_BSTR, &V_BSTR(&cube.Get())),
                            PlaceOf(VT_BSTR, &V_BSTR(&type.Get())), PlaceOf(VT_BSTR, &V_BSTR(&member.Get())),
                            PlaceOf(VT_VARIANT, &result.Get())}),
                  S_OK);
        EXPECT_EQ(TextIn(result), "Fixed assets");
    }
}

TEST_F(Table, WizardsAreInSlots2And12AndReportThatThereIsNoCell) {
    const BoxReader box(IDOK);
    struct Wizard {
        unsigned slot;
        const char* reportsItselfAs;
    };
    for (const Wizard wizard : {Wizard{2, "ShowformGetVal"}, Wizard{12, "ShowFormQelName"}}) {
        IDispatch* cell = nullptr;
        windows::Bstr text;
        EXPECT_EQ(
            CallSlot(object_.Get(), wizard.slot,
                     {PlaceOf(VT_DISPATCH, static_cast<void*>(&cell)), PlaceOf(VT_BSTR, text.Receive())}),
            S_OK);
        EXPECT_EQ(windows::TextOfBstr(text.Get()), "");
        EXPECT_NE(box.seen.text.find(wizard.reportsItselfAs), std::string::npos) << box.seen.text;
    }
}

/// The members that the type library describes, in the order of their slots: "1 Start", "3 get ElapsedTime".
std::vector<std::string> MembersByTypeLibrary(IDispatch* object) {
    constexpr UINT tableView = static_cast<UINT>(-1);
    ComPointer<ITypeInfo> calls, table;
    HREFTYPE reference = 0;
    if (FAILED(object->GetTypeInfo(0, 0, calls.Receive())) ||
        FAILED(calls->GetRefTypeOfImplType(tableView, &reference)) ||
        FAILED(calls->GetRefTypeInfo(reference, table.Receive()))) {
        return {};
    }
    std::map<std::size_t, std::string> members;
    FUNCDESC* function = nullptr;
    for (UINT i = 0; SUCCEEDED(table->GetFuncDesc(i, &function)); ++i) {
        windows::Bstr name;
        UINT count = 0;
        table->GetNames(function->memid, name.Receive(), 1, &count);
        const std::size_t slot = static_cast<std::size_t>(function->oVft) / sizeof(void*) + 1;
        const char* const kind = function->invkind == INVOKE_FUNC          ? ""
                                 : function->invkind == INVOKE_PROPERTYGET ? "get "
                                                                           : "put ";
        members[slot] = std::to_string(slot - standardSlots) + " " + kind + windows::TextOfBstr(name.Get());
        table->ReleaseFuncDesc(function);
    }
    std::vector<std::string> inOrder;
    inOrder.reserve(members.size());
    for (const auto& [slot, member] : members) {
        inOrder.push_back(member);
    }
    return inOrder;
}

TEST_F(Table, TheTypeLibraryDescribesEverySlot) {
    const auto timer = CreateByName(L"OrmFunctionQel4.ClTimming");
    EXPECT_EQ(
        MembersByTypeLibrary(object_.Get()),
        (std::vector<std::string>{"1 QelFuncDemo", "2 ShowFormGetVal", "3 get g_cubeFile", "4 put g_cubeFile",
                                  "5 get g_CubeName", "6 put g_CubeName", "7 put ResQel", "8 get iShowDetail",
                                  "9 put iShowDetail", "10 get iLang", "11 put iLang", "12 ShowFormQelName",
                                  "13 QelName", "14 RetQelName", "15 QeL1", "16 QeLF1"}));
    EXPECT_EQ(MembersByTypeLibrary(timer.Get()),
              (std::vector<std::string>{"1 Start", "2 Finish", "3 get ElapsedTime"}));
}

TEST_F(Table, ATimerMeasuresSeconds) {
    const auto timer = CreateByName(L"OrmFunctionQel4.ClTimming");
    double seconds = -1;
    EXPECT_EQ(CallSlot(timer.Get(), 1, {}), S_OK);
    ::Sleep(30);
    EXPECT_EQ(CallSlot(timer.Get(), 2, {}), S_OK);
    EXPECT_EQ(CallSlot(timer.Get(), 3, {PlaceOf(VT_R8, &seconds)}), S_OK);
    EXPECT_GE(seconds, 0.029);
    EXPECT_LT(seconds, 5);
}

} // namespace
} // namespace qel::test
