#include "store/ModAPI.h"

#include "support/Folders.h"
#include "support/ModError.h"
#include "support/SettingPaths.h"

#include <algorithm>

namespace qel::ModAPI {

namespace {

constexpr std::int16_t notFound = -1;

} // namespace

std::string LocalDbFolder(StoreEnvironment& store) {
    // The separator is appended before the test for an empty path, so a missing MDBPath means the root of the
    // drive and the two steps after it never apply. That order is intended.
    std::string folder = GetRegSetting(store, mdbPathValue) + store.separator;
    if (folder.empty()) {
        folder = GetRegSetting(store, tempPathValue) + store.separator;
    }
    if (folder.empty()) {
        folder = R"(C:\Pralix 17\)";
    }
    return folder;
}

std::string QelFuncMdbPath(StoreEnvironment& store) {
    std::string folder;
    try {
        folder = LocalDbFolder(store);
        if (!FileExists(folder + localDbFile) && !DirExists(folder)) {
            MakeFolder(folder);
        }
    } catch (...) {
        ModError::ReportError(store.messages, ModError::CurrentError(), "", "QelFuncMdbPath", "ModAPI");
    }
    return folder;
}

std::string QelFuncMdbFile(StoreEnvironment& store, const std::string& fileName) {
    const std::string folder = QelFuncMdbPath(store);
    return folder.empty() ? folder : folder + fileName;
}

std::string GetRegSetting(StoreEnvironment& store, const std::string& valueName) {
    std::string value;
    KeyHandle key = 0;
    if (RegOpen(store, RootKey::CurrentUser, suiteKey, key)) {
        try {
            RegGetString(store, key, valueName, value);
        } catch (...) { // memory lacks
            RegClose(store, key);
            throw;
        }
        RegClose(store, key);
    }
    return value;
}

bool RegOpen(StoreEnvironment& store, KeyHandle root, const std::string& subKey, KeyHandle& handle) {
    const auto opened = store.registry.OpenKey(root, subKey);
    if (!opened) {
        return false;
    }
    handle = *opened;
    RememberKey(store, handle, RootKeyName(root) + "\\" + subKey);
    return true;
}

bool RegGetString(StoreEnvironment& store, KeyHandle handle, const std::string& valueName,
                  std::string& result) {
    const auto value = store.registry.QueryValue(handle, valueName);
    if (!value || value->type != registryString) {
        return false;
    }
    result = value->data.substr(0, value->data.find('\0'));
    return true;
}

bool RegClose(StoreEnvironment& store, KeyHandle handle) { return store.registry.CloseKey(handle) == 0; }

std::string KeyName(const StoreEnvironment& store, KeyHandle handle) {
    std::string name = RootKeyName(handle);
    if (!name.empty()) {
        return name;
    }
    const std::int16_t at = FindKey(store, handle);
    return at == notFound ? std::string() : store.openKeys[static_cast<std::size_t>(at)].name;
}

std::int16_t FindKey(const StoreEnvironment& store, KeyHandle handle) {
    const auto& keys = store.openKeys;
    const auto found =
        std::find_if(keys.begin(), keys.end(), [&](const OpenKey& key) { return key.handle == handle; });
    return found == keys.end() ? notFound : static_cast<std::int16_t>(found - keys.begin());
}

void RememberKey(StoreEnvironment& store, KeyHandle handle, const std::string& name) {
    const std::int16_t at = FindKey(store, handle);
    if (at == notFound) {
        store.openKeys.push_back({handle, name});
    } else {
        store.openKeys[static_cast<std::size_t>(at)].name = name;
    }
}

} // namespace qel::ModAPI
