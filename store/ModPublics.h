#pragma once

#include "store/StoreEnvironment.h"

#include <cstdint>
#include <string>

namespace qel::ModPublics {

inline constexpr const char* qelIniFile = "Qel.ini";
inline constexpr const char* cubIniFile = "Cub.ini";
inline constexpr const char* languageSection = "Qel";
inline constexpr const char* languageKey = "QelUILanguage";
/// The section and key of the function wizard's last cube file.
inline constexpr const char* cubeFileSection = "FileCube";
inline constexpr const char* cubeFileKey = "F";

/// A value of the suite's Qel.ini, at most 254 characters; empty when anything is missing. Sets the store's
/// suite folder to MDBPath or the component's folder.
std::string ReadQelIni(StoreEnvironment& store, const std::string& section, const std::string& key);

/// Writes the trimmed value to Cub.ini beside the local database. Non-zero on success.
std::int32_t WriteCubIni(StoreEnvironment& store, const std::string& section, const std::string& key,
                         const std::string& value);

/// The first entry of a section of Cub.ini without its first two characters, which leaves the value of a
/// one-letter key. Empty when there is no entry.
void ReadCubIniSection(StoreEnvironment& store, const std::string& section, std::string& result);

} // namespace qel::ModPublics
