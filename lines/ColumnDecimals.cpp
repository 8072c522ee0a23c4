#include "lines/ColumnDecimals.h"

#include "platform/value/ValueText.h"

#include <algorithm>
#include <string>

namespace qel {

int DecimalsOf(double number) {
    const std::string text = NumberText(number);
    const auto point = text.find('.');
    const bool hasExponent = text.find('E') != std::string::npos;
    return point == std::string::npos || hasExponent ? 0 : static_cast<int>(text.size() - point - 1);
}

std::optional<int> ColumnDecimals(const std::vector<std::vector<Variant>>& rows, std::size_t column) {
    std::optional<int> most;
    for (const auto& row : rows) {
        if (row[column].Is<double>()) {
            most = std::max(most.value_or(0), DecimalsOf(row[column].As<double>()));
        }
    }
    return most == 1 ? 2 : most;
}

} // namespace qel
