#pragma once

#include "platform/tables/PersistedTable.h"

namespace qel::windows {

/// Reads saved recordsets, in XML or binary form, through the provider that saves them.
class AdoTableReader : public PersistedTableReader {
public:
    /// Whether the provider MSPersist is installed.
    static bool IsInstalled();
    PersistedTable Read(const std::string& path) override;
};

} // namespace qel::windows
