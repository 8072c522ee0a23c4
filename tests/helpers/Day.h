#pragma once

#include "platform/value/AutomationDate.h"

namespace qel::test {

inline AutomationDate Day(int year, int month, int day) { return DateFromDay({year, month, day}); }

} // namespace qel::test
