#pragma once

#include "store/StoreEnvironment.h"

#include <cstdint>
#include <string>

namespace qel::ModAPI {

inline constexpr const char* suiteKey = R"(SOFTWARE\QRN\Pralix 17)";
inline constexpr const char* mdbPathValue = "MDBPath";
inline constexpr const char* tempPathValue = "TempPath";
inline constexpr const char* localDbFile = "QelFunction17.mdb";

/// Where the folder of the local database and of Cub.ini is, with a separator at its end. Makes nothing.
std::string LocalDbFolder(StoreEnvironment& store);

/// The folder of the local database and of Cub.ini, with a separator at its end; read anew by every call. A
/// folder that is missing is made, its parents are not; when that fails the error is reported and the folder
/// is returned all the same.
std::string QelFuncMdbPath(StoreEnvironment& store);

/// One text of the suite's registry key; empty when it is missing or no text.
std::string GetRegSetting(StoreEnvironment& store, const std::string& valueName);

/// Opens a key and remembers its name. False, with `handle` as it was, when it cannot be opened.
bool RegOpen(StoreEnvironment& store, KeyHandle root, const std::string& subKey, KeyHandle& handle);
/// A text up to its first zero character. False, with `result` as it was, for a value that is missing or no
/// text.
bool RegGetString(StoreEnvironment& store, KeyHandle handle, const std::string& valueName,
                  std::string& result);
bool RegClose(StoreEnvironment& store, KeyHandle handle);

/// A root's name, or the name under which the key was opened; empty for a handle that was never opened.
std::string KeyName(const StoreEnvironment& store, KeyHandle handle);
/// The place in the table of opened keys, or -1.
std::int16_t FindKey(const StoreEnvironment& store, KeyHandle handle);
/// A handle that the platform gives out again takes its new name.
void RememberKey(StoreEnvironment& store, KeyHandle handle, const std::string& name);

} // namespace qel::ModAPI
