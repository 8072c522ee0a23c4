#pragma once

#include "platform/tables/PersistedTable.h"

#include <string>
#include <vector>

namespace qel::test {

/// A saved recordset in XML form, and what a reader makes of it: the table as Shown() or a part of the fault.
struct RecordsetXmlCase {
    const char* what;
    std::string bytes, result;
};

std::vector<RecordsetXmlCase> ReadableRecordsets();
std::vector<RecordsetXmlCase> UnreadableRecordsets();

/// The columns, then a line for each row.
std::string Shown(const PersistedTable& table);

} // namespace qel::test
