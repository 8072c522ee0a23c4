#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace qel {

/// The language numbers of the suite's settings. 2 is another language of the suite, which the component's
/// own string table lacks.
namespace Language {
inline constexpr std::int16_t English = 0;
inline constexpr std::int16_t Hebrew = 1;
inline constexpr std::int16_t Further = 2;
} // namespace Language

/// The strings that hold the dialogs' font.
inline constexpr std::int32_t fontNameString = 20;
inline constexpr std::int32_t fontSizeString = 21;

struct StringTableEntry {
    std::int32_t number;
    const char* english;
    const char* hebrew;
};

/// The component's numbered texts, in ascending order. Generated from strings.csv.
std::span<const StringTableEntry> StringTable();

/// Hebrew for language 1, otherwise English; null for a missing number.
std::optional<std::string> FindResourceString(std::int32_t number, std::int16_t language);

/// The same, but a missing number gives the number itself as text, so that the gap is visible.
std::string ResourceString(std::int32_t number, std::int16_t language);

} // namespace qel
