#pragma once

#include "workbook/cells/WorkbookContent.h"

#include <filesystem>

namespace qel {

/// Reads an .xlsx, .xlsm or .ods file. Raises WorkbookError.
WorkbookContent ReadWorkbook(const std::filesystem::path& path);

} // namespace qel
