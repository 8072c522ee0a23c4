#pragma once

#include "platform/value/AutomationDate.h"

namespace qel::windows {

/// The user's regional settings as they are now.
Locale UserLocale();

} // namespace qel::windows
