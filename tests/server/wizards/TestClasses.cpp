// Classes that the tests register: a sheet for scripts that call the wizards, and the suite's table of texts
// in place of the machine's provider of saved recordsets.

#include "tests/helpers/automation/NamedClass.h"
#include "tests/helpers/automation/SheetObject.h"
#include "tests/server/wizards/SavedTable.h"

namespace qel::test {
namespace {

constexpr CLSID sheetClass = {0x5d2f8a14, 0x0c3b, 0x4e67, {0xa1, 0x9f, 0x27, 0xd0, 0x4b, 0x8e, 0x63, 0x10}};

ComPointer<IDispatch> MakeSheet() {
    static const SheetObject sheet;
    return sheet.Application();
}

} // namespace
} // namespace qel::test

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
    static const auto sheets = qel::test::MakeFactory(&qel::test::MakeSheet);
    static const auto tables = qel::test::MakeFactory(&qel::test::MakeSavedTable);
    return (classId == qel::test::sheetClass ? sheets : tables)->QueryInterface(id, object);
}

STDAPI DllCanUnloadNow() { return S_FALSE; }
