#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace qel {

/// The language numbers of the suite's settings; 2 is a further language of the suite, which the component's
/// own string table does not have.
namespace Language {
inline constexpr std::int16_t English = 0;
inline constexpr std::int16_t Hebrew = 1;
inline constexpr std::int16_t Further = 2;
} // namespace Language

/// What the string table says of the dialogs' font.
inline constexpr std::int32_t fontNameString = 20;
inline constexpr std::int32_t fontSizeString = 21;

struct StringTableEntry {
    std::int32_t number;
    const char* english;
    const char* hebrew;
};

/// Every text of the component that has a number, in ascending order. Made from strings.csv.
std::span<const StringTableEntry> StringTable();

/// Hebrew for language 1, English for any other; none for a number that the table lacks.
std::optional<std::string> FindResourceString(std::int32_t number, std::int16_t language);

/// The same; a number that the table lacks is its own text, so that the gap is seen.
std::string ResourceString(std::int32_t number, std::int16_t language);

} // namespace qel
