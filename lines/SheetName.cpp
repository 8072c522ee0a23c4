#include "lines/SheetName.h"

#include "text/CaseFold.h"

#include <algorithm>

namespace qel {

namespace {

constexpr std::size_t mostUnits = 31;
constexpr std::string_view refusedSigns = "[]*?:/\\";

/// The text's first characters, as many as fit.
std::string FirstUnits(std::string_view text, std::size_t most) {
    std::size_t units = 0, end = 0;
    while (end < text.size()) {
        const auto first = static_cast<unsigned char>(text[end]);
        const std::size_t bytes = first < 0x80U ? 1 : first < 0xE0U ? 2 : first < 0xF0U ? 3 : 4;
        units += bytes == 4 ? 2 : 1;
        if (units > most) {
            break;
        }
        end += bytes;
    }
    return std::string(text.substr(0, end));
}

} // namespace

std::string SheetNameFor(std::string_view sheet, std::string_view cell,
                         const std::vector<std::string>& taken) {
    std::string legal(sheet);
    std::replace_if(
        legal.begin(), legal.end(),
        [](char sign) { return refusedSigns.find(sign) != std::string_view::npos; }, ' ');
    if (legal.starts_with('\'')) {
        legal.front() = '_';
    }
    for (int copy = 1;; ++copy) {
        const std::string ending =
            ' ' + std::string(cell) + (copy == 1 ? "" : " (" + std::to_string(copy) + ")");
        std::string name = FirstUnits(legal, mostUnits - ending.size()) + ending;
        const bool isTaken = std::any_of(taken.begin(), taken.end(), [&](const std::string& other) {
            return EqualIgnoringCase(other, name);
        });
        if (!isTaken) {
            return name;
        }
    }
}

} // namespace qel
