#include "text/DecimalText.h"

namespace qel {

std::string DecimalText(std::int64_t scaled, std::uint8_t decimals) {
    const bool isNegative = scaled < 0;
    const auto bits = static_cast<std::uint64_t>(scaled);
    std::string digits = std::to_string(isNegative ? 0 - bits : bits);
    if (decimals > 0) {
        if (digits.size() <= decimals) {
            digits.insert(0, decimals + 1 - digits.size(), '0');
        }
        digits.insert(digits.size() - decimals, 1, '.');
    }
    return isNegative ? "-" + digits : digits;
}

} // namespace qel
