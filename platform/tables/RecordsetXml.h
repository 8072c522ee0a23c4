#pragma once

#include "platform/tables/PersistedTable.h"
#include "platform/tables/XmlElement.h"
#include "platform/value/AutomationError.h"

namespace qel {

/// The elements of a saved recordset are not nested deeper; a parser's deeper ones may be left out.
constexpr int deepestRecordsetElement = 8;

/// What is wrong with a saved recordset: "The file '…' is damaged."
AutomationError RecordsetFault(const std::string& file, std::string_view fault);

/// Raises the fault of bytes that cannot be a recordset in its XML form: none, or the binary form's.
void RequireXmlForm(const std::string& bytes, const std::string& file);

/// The bytes of a file in that form. Raises the fault of one that cannot be read, too.
std::string RecordsetBytes(const std::string& file);

/// The recordset that was saved as a document with this root
/// (https://learn.microsoft.com/sql/ado/guide/data/xml-persistence-format). Integer columns become Longs, all
/// others texts. Rows whose deletion or insertion was saved before it was written to the database are read as
/// the recordset showed them. `file` stands for the document in errors.
PersistedTable TableFromXml(const XmlElement& root, const std::string& file);

} // namespace qel
