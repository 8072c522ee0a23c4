#pragma once

#include "platform/value/Variant.h"

#include <string>
#include <vector>

namespace qel {

/// The rows of a recordset that was saved to a file.
struct PersistedTable {
    std::vector<std::string> columns;
    std::vector<std::vector<Variant>> rows; ///< each as long as `columns`; Null for a field without a value
};

class PersistedTableReader {
public:
    virtual ~PersistedTableReader() = default;
    /// Raises AutomationError, naming the file and the fault, when the file is missing, damaged or in another
    /// format.
    virtual PersistedTable Read(const std::string& path) = 0;
};

} // namespace qel
