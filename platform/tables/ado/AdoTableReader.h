#pragma once

#include "platform/tables/PersistedTable.h"

namespace qel::windows {

/// Reads saved recordsets through the provider that saves them, in their XML form and their binary one.
class AdoTableReader : public PersistedTableReader {
public:
    /// Whether the provider, MSPersist, is on this machine.
    static bool IsInstalled();
    PersistedTable Read(const std::string& path) override;
};

} // namespace qel::windows
