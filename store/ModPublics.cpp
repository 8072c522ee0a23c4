#include "store/ModPublics.h"

#include "store/ModAPI.h"
#include "text/Text.h"

namespace qel::ModPublics {

namespace {

constexpr std::size_t valueCapacity = 255;
constexpr std::size_t sectionCapacity = 512;
/// The key "F" and its equals sign.
constexpr std::size_t keyLength = 2;

} // namespace

std::string ReadQelIni(StoreEnvironment& store, const std::string& section, const std::string& key) {
    store.suiteFolder = ModAPI::GetRegSetting(store, ModAPI::mdbPathValue);
    if (store.suiteFolder.empty()) {
        store.suiteFolder = store.componentFolder;
    }
    const std::string value = store.profiles.ReadString(section, key, valueCapacity,
                                                        store.suiteFolder + store.separator + qelIniFile);
    return value.substr(0, value.find('\0'));
}

std::int32_t WriteCubIni(StoreEnvironment& store, const std::string& section, const std::string& key,
                         const std::string& value) {
    const std::string file = ModAPI::QelFuncMdbFile(store, cubIniFile);
    return file.empty() ? 0 : store.profiles.WriteString(section, key, std::string(Trimmed(value)), file);
}

void ReadCubIniSection(StoreEnvironment& store, const std::string& section, std::string& result) {
    const std::string file = ModAPI::QelFuncMdbFile(store, cubIniFile);
    const std::string entries =
        file.empty() ? std::string() : store.profiles.ReadSection(section, sectionCapacity, file);
    const std::string first = entries.substr(0, entries.find('\0'));
    result = first.size() > keyLength ? first.substr(keyLength) : std::string();
}

} // namespace qel::ModPublics
