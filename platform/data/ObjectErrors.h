#pragma once

#include "platform/value/AutomationError.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Wrong uses of ADO's objects. `provider` is the error's source.

namespace qel {

[[nodiscard]] AutomationError ObjectOpenError(const std::string& provider);
[[nodiscard]] AutomationError ObjectClosedError(const std::string& provider);
/// A connection that is closed, missing, or another provider's.
[[nodiscard]] AutomationError InvalidConnectionError(const std::string& provider);
[[nodiscard]] AutomationError NoActiveConnectionError(const std::string& provider);

/// The index as an offset into `count` items. Raises 9 outside them.
std::size_t CheckedIndex(std::int32_t index, std::size_t count);

template <class Item>
const Item& ItemAt(const std::vector<Item>& items, std::int32_t index) {
    return items[CheckedIndex(index, items.size())];
}

} // namespace qel
