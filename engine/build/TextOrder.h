#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace qel::engine {

/// The indexes of the texts in sorted order: as whole numbers when all of them are, otherwise as texts,
/// ignoring letter case. Equal texts keep their order.
std::vector<std::uint32_t> SortTexts(const std::vector<std::string_view>& texts);

} // namespace qel::engine
