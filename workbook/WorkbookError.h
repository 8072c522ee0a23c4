#pragma once

#include <stdexcept>

namespace qel {

/// Why a file is no workbook that can be read.
class WorkbookError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace qel
