#pragma once

#include "platform/tables/PersistedTable.h"

namespace qel::windows {

/// Reads recordsets saved in XML form with the machine's XML parser, MSXML 6.
class MsxmlTableReader : public PersistedTableReader {
public:
    PersistedTable Read(const std::string& path) override;
};

} // namespace qel::windows
