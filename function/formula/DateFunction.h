#pragma once

#include "platform/value/AutomationDate.h"

namespace qel {

/// The spreadsheet's DATE(year, month, day): fractions are cut off, years below 1900 count from 1900, and a
/// month or day outside its range runs on into the neighbouring years and months (day 0 is the last of the
/// month before). Raises AutomationError for years outside 1900 to 9999.
AutomationDate DateOf(double year, double month, double day);

} // namespace qel
