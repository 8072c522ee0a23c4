#include "platform/settings/files/FileRegistry.h"

#include "platform/value/AutomationError.h"

#include <algorithm>

namespace qel {

namespace {

constexpr std::int32_t closed = 0;
constexpr std::int32_t invalidHandle = 6;
/// The first handle. Small numbers look like errors to some callers.
constexpr KeyHandle firstHandle = 0x100;

std::string SectionName(KeyHandle root, const std::string& subKey) {
    return RootKeyName(root) + "\\" + subKey;
}

} // namespace

std::optional<KeyHandle> FileRegistry::OpenKey(KeyHandle root, const std::string& subKey) {
    std::string section = SectionName(root, subKey);
    try {
        if (!file_.HasSection(section)) {
            return std::nullopt;
        }
    } catch (const AutomationError&) {
        return std::nullopt; // like a registry that cannot be read
    }
    auto place = std::find(openKeys_.begin(), openKeys_.end(), std::string());
    if (place == openKeys_.end()) {
        place = openKeys_.insert(place, std::string());
    }
    *place = std::move(section);
    return firstHandle + static_cast<KeyHandle>(place - openKeys_.begin());
}

std::optional<RegistryValue> FileRegistry::QueryValue(KeyHandle key, const std::string& name) {
    const std::size_t place = key - firstHandle;
    if (place >= openKeys_.size() || openKeys_[place].empty()) {
        return std::nullopt;
    }
    try {
        const auto text = file_.Get(openKeys_[place], name);
        return text ? std::optional(RegistryValue{registryString, *text}) : std::nullopt;
    } catch (const AutomationError&) {
        return std::nullopt;
    }
}

std::int32_t FileRegistry::CloseKey(KeyHandle key) {
    const std::size_t place = key - firstHandle;
    if (place >= openKeys_.size() || openKeys_[place].empty()) {
        return invalidHandle;
    }
    openKeys_[place].clear();
    return closed;
}

void FileRegistry::SetValue(KeyHandle root, const std::string& subKey, const std::string& name,
                            const std::string& text) const {
    file_.Set(SectionName(root, subKey), name, text);
}

} // namespace qel
