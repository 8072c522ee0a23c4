#pragma once

#include "platform/value/Variant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel {

/// The answer to a statement as a table.
struct Rowset {
    std::vector<std::string> fields;
    std::vector<std::vector<Variant>> rows;            ///< each as long as `fields`
    std::optional<std::uint64_t> total = std::nullopt; ///< see Recordset::TotalRows
};

} // namespace qel
