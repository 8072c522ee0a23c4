#include "tests/server/wizards/SavedTable.h"

#include "lang/StringTable.h"
#include "tests/helpers/automation/RecordsetDouble.h"

namespace qel::test {

ComPointer<IDispatch> MakeSavedTable() {
    Rowset table{.fields = {"lId", "sId", "sText"}, .rows = {}};
    for (const StringTableEntry& entry : StringTable()) {
        table.rows.push_back({std::int32_t{Language::English}, entry.number, entry.english});
        table.rows.push_back({std::int32_t{Language::Hebrew}, entry.number, entry.hebrew});
    }
    return MakeObject([&](DispatchDouble& recordset) {
        DefineRows(recordset, RecordsetOf(std::move(table)));
        recordset.Method(L"Open", [](const Inputs&) {});
        recordset.Method(L"Close", [](const Inputs&) {});
    });
}

} // namespace qel::test
