#pragma once

#include "store/StoreEnvironment.h"

#include <cstdint>
#include <string>

namespace qel::ModAPI {

inline constexpr const char* suiteKey = R"(SOFTWARE\QRN\Pralix 17)";
inline constexpr const char* mdbPathValue = "MDBPath";
inline constexpr const char* tempPathValue = "TempPath";
inline constexpr const char* localDbFile = "QelFunction17.mdb";

/// The path of the folder of the local database and Cub.ini, ending in a separator. Does not create it.
std::string LocalDbFolder(StoreEnvironment& store);

/// The folder of the local database and Cub.ini, ending in a separator; read again by every call. A missing
/// folder is created, its parents are not. A failure is reported, and the path is returned anyway.
std::string QelFuncMdbPath(StoreEnvironment& store);

/// A file in that folder; empty when reading the settings failed, so that no file is made in the current
/// folder.
std::string QelFuncMdbFile(StoreEnvironment& store, const std::string& fileName);

/// A text value of the suite's registry key; empty when it is missing or not a text.
std::string GetRegSetting(StoreEnvironment& store, const std::string& valueName);

/// Opens a key and remembers its name. Returns false and leaves `handle` unchanged when it cannot be opened.
[[nodiscard]] bool RegOpen(StoreEnvironment& store, KeyHandle root, const std::string& subKey,
                           KeyHandle& handle);
/// A text value up to its first null character. Returns false and leaves `result` unchanged when the value is
/// missing or not a text.
bool RegGetString(StoreEnvironment& store, KeyHandle handle, const std::string& valueName,
                  std::string& result);
bool RegClose(StoreEnvironment& store, KeyHandle handle);

/// The name of a root or of an opened key; empty for an unknown handle.
std::string KeyName(const StoreEnvironment& store, KeyHandle handle);
/// The index in the table of opened keys, or -1.
std::int16_t FindKey(const StoreEnvironment& store, KeyHandle handle);
/// A handle that the platform reuses gets the new name.
void RememberKey(StoreEnvironment& store, KeyHandle handle, const std::string& name);

} // namespace qel::ModAPI
