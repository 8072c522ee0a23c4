#pragma once

#include "platform/tables/PersistedTable.h"

#include <string>
#include <vector>

namespace qel::test {

/// A saved recordset in XML form and the expected result: the table as Shown(), or a part of the error.
struct RecordsetXmlCase {
    const char* what;
    std::string bytes, result;
};

std::vector<RecordsetXmlCase> ReadableRecordsets();
std::vector<RecordsetXmlCase> UnreadableRecordsets();

/// The columns, then a line for each row.
std::string Shown(const PersistedTable& table);

} // namespace qel::test
