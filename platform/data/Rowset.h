#pragma once

#include "platform/value/Variant.h"

#include <string>
#include <vector>

namespace qel {

/// The answer to a statement as a table.
struct Rowset {
    std::vector<std::string> fields;
    std::vector<std::vector<Variant>> rows; ///< each as long as `fields`
};

} // namespace qel
