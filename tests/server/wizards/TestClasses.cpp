// A library of classes that a test prefix registers: a sheet for scripts to call the wizards with, and the
// suite's table of texts in place of the machine's provider of saved recordsets.

#include "tests/helpers/automation/SheetObject.h"
#include "tests/server/wizards/SavedTable.h"

namespace qel::test {
namespace {

constexpr CLSID sheetClass = {0x5d2f8a14, 0x0c3b, 0x4e67, {0xa1, 0x9f, 0x27, 0xd0, 0x4b, 0x8e, 0x63, 0x10}};

ComPointer<IDispatch> MakeSheet() {
    static const SheetObject sheet;
    return sheet.Application();
}

class Factory : public IClassFactory {
public:
    explicit Factory(ComPointer<IDispatch> (*make)()) : make_(make) {}
    virtual ~Factory() = default;
    STDMETHODIMP QueryInterface(REFIID /*id*/, void** object) override {
        *object = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; } // lives as long as the library
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* /*outer*/, REFIID id, void** object) override {
        return make_()->QueryInterface(id, object);
    }
    STDMETHODIMP LockServer(BOOL /*lock*/) override { return S_OK; }

private:
    ComPointer<IDispatch> (*make_)();
};

} // namespace
} // namespace qel::test

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
    static qel::test::Factory sheets(&qel::test::MakeSheet);
    static qel::test::Factory tables(&qel::test::MakeSavedTable);
    return (classId == qel::test::sheetClass ? sheets : tables).QueryInterface(id, object);
}

STDAPI DllCanUnloadNow() { return S_FALSE; }
