#pragma once

#include "platform/sheet/Workbook.h"
#include "platform/windows/WindowsApi.h"

#include <memory>

namespace qel::windows {

/// The active workbook of a spreadsheet, which takes new sheets. They cannot be undone: the spreadsheet
/// forgets its steps when a program changes a workbook. Raises 91 for a null pointer and without a workbook.
std::unique_ptr<Workbook> ActiveWorkbookOf(IDispatch* application);

} // namespace qel::windows
