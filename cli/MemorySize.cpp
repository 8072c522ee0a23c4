#include "cli/MemorySize.h"

#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>

namespace qel {

std::optional<std::uint64_t> ParseMemorySize(std::string_view text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [unit, fault] = std::from_chars(text.data(), end, number);
    if (fault != std::errc() || end - unit != 1) {
        return std::nullopt;
    }
    const unsigned shift = *unit == 'M' || *unit == 'm' ? 20 : *unit == 'G' || *unit == 'g' ? 30 : 0;
    if (shift == 0 || number > std::numeric_limits<std::size_t>::max() >> shift ||
        number << shift < leastMemory) {
        return std::nullopt;
    }
    return number << shift;
}

} // namespace qel
