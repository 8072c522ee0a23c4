#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace qel::engine {

/// The places of the texts in their order: as whole numbers when all are such, otherwise as texts without
/// regard to letter case. Equal ones keep their sequence. Place i of the result is the number of the text.
std::vector<std::uint32_t> SortTexts(const std::vector<std::string_view>& texts);

} // namespace qel::engine
