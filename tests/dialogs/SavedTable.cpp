// A class that a test prefix registers as ADODB.Recordset: the suite's table of texts, opened as a saved
// recordset. It holds what the component's own strings hold.

#include "lang/StringTable.h"
#include "platform/windows/VariantConversion.h"
#include "tests/automation/DispatchDouble.h"

#include <vector>

namespace qel::test {
namespace {

struct TextRow {
    std::int32_t language, number;
    const char* text;

    Variant Column(std::int32_t column) const {
        return column == 2 ? Variant(std::string(text)) : Variant(column == 0 ? language : number);
    }
};

std::vector<TextRow> AllTexts() {
    std::vector<TextRow> rows;
    for (const StringTableEntry& entry : StringTable()) {
        rows.push_back({Language::English, entry.number, entry.english});
        rows.push_back({Language::Hebrew, entry.number, entry.hebrew});
    }
    return rows;
}

struct Cursor {
    std::vector<TextRow> rows = AllTexts();
    std::size_t at = 0;
};

ComPointer<IDispatch> MakeField(const std::shared_ptr<Cursor>& cursor, std::int32_t column) {
    static constexpr const char* names[] = {"lId", "sId", "sText"};
    auto field = MakeDouble();
    field->Define(L"Name", [column](const auto&) { return Text(names[column]); });
    field->Define(L"Value", [cursor, column](const auto&) {
        return windows::ToAutomation(cursor->rows.at(cursor->at).Column(column));
    });
    return ComPointer<IDispatch>(field.Get());
}

ComPointer<IDispatch> MakeRecordset() {
    const auto cursor = std::make_shared<Cursor>();
    auto fields = MakeDouble();
    fields->Define(L"Count", [](const auto&) { return windows::ToAutomation(3); });
    fields->Define(L"Item", [cursor](const auto& inputs) {
        return ObjectValue(
            MakeField(cursor, windows::FromAutomation(*inputs.at(0)).template As<std::int32_t>()));
    });
    auto recordset = MakeDouble();
    const auto nothing = [](const auto&) { return OwnedVariant(); };
    recordset->Define(L"Open", nothing);
    recordset->Define(L"Close", nothing);
    recordset->Define(L"Fields",
                      [fields](const auto&) { return ObjectValue(ComPointer<IDispatch>(fields.Get())); });
    recordset->Define(
        L"EOF", [cursor](const auto&) { return windows::ToAutomation(cursor->at == cursor->rows.size()); });
    recordset->Define(L"MoveNext", [cursor](const auto&) {
        ++cursor->at;
        return OwnedVariant();
    });
    return ComPointer<IDispatch>(recordset.Get());
}

class RecordsetFactory : public IClassFactory {
public:
    virtual ~RecordsetFactory() = default;
    STDMETHODIMP QueryInterface(REFIID /*id*/, void** object) override {
        *object = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; } // lives as long as the library
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* /*outer*/, REFIID id, void** object) override {
        return MakeRecordset()->QueryInterface(id, object);
    }
    STDMETHODIMP LockServer(BOOL /*lock*/) override { return S_OK; }
};

} // namespace
} // namespace qel::test

extern "C" __declspec(dllexport) HRESULT WINAPI
    DllGetClassObject(REFCLSID /*classId*/, REFIID id, void** object) {
    static qel::test::RecordsetFactory factory;
    return factory.QueryInterface(id, object);
}

extern "C" __declspec(dllexport) HRESULT WINAPI DllCanUnloadNow() { return S_FALSE; }
