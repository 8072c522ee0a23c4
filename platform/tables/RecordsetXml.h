#pragma once

#include "platform/tables/PersistedTable.h"
#include "platform/tables/XmlElement.h"
#include "platform/value/AutomationError.h"

namespace qel {

/// The depth of a saved recordset's elements; a parser may drop deeper ones.
constexpr int deepestRecordsetElement = 8;

/// An error about a saved recordset: "The file '…' is damaged."
[[nodiscard]] AutomationError RecordsetFault(const std::string& file, std::string_view fault);

/// Raises for bytes that cannot be a recordset in XML form: no bytes, or the binary form.
void RequireXmlForm(const std::string& bytes, const std::string& file);

/// The bytes of a file in XML form. Raises as above, and when the file cannot be read.
std::string RecordsetBytes(const std::string& file);

/// The recordset that was saved as a document with this root
/// (https://learn.microsoft.com/sql/ado/guide/data/xml-persistence-format). Integer columns become Longs, all
/// others texts. Rows whose deletion or insertion was saved before it was written to the database are read as
/// the recordset showed them. `file` stands for the document in errors.
PersistedTable TableFromXml(const XmlElement& root, const std::string& file);

} // namespace qel
