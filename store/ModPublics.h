#pragma once

#include "store/StoreEnvironment.h"

#include <cstdint>
#include <string>

namespace qel::ModPublics {

inline constexpr const char* qelIniFile = "Qel.ini";
inline constexpr const char* cubIniFile = "Cub.ini";
inline constexpr const char* languageSection = "Qel";
inline constexpr const char* languageKey = "QelUILanguage";
/// Where the function wizard keeps the last cube file: the one entry of its section.
inline constexpr const char* cubeFileSection = "FileCube";
inline constexpr const char* cubeFileKey = "F";

/// A value of the suite's Qel.ini, at most 254 characters; empty when anything is missing. Sets the store's
/// suite folder: MDBPath, or the component's own folder.
std::string ReadQelIni(StoreEnvironment& store, const std::string& section, const std::string& key);

/// Writes the value, blanks at both ends removed, into Cub.ini beside the local database. Non-zero on
/// success.
std::int32_t WriteCubIni(StoreEnvironment& store, const std::string& section, const std::string& key,
                         const std::string& value);

/// The first entry of a section of Cub.ini without its first two characters: the value, of a key of one
/// character. Empty when there is none.
void ReadCubIniSection(StoreEnvironment& store, const std::string& section, std::string& result);

} // namespace qel::ModPublics
