#pragma once

#include "platform/tables/PersistedTable.h"

namespace qel {

/// The recordset in a file's bytes; `name` is the file's name in errors. See XmlTableReader.
PersistedTable ParseXmlTable(const std::string& bytes, const std::string& name);

/// Reads recordsets saved in XML form.
class XmlTableReader : public PersistedTableReader {
public:
    PersistedTable Read(const std::string& path) override;
};

} // namespace qel
