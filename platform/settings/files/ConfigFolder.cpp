#include "platform/settings/files/ConfigFolder.h"

#include "platform/value/AutomationError.h"

#include <cstdlib>

namespace qel {

namespace {

constexpr std::int32_t pathNotFound = 76;

std::filesystem::path FromVariable(const char* name) {
    const char* value =
        std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here changes the environment
    return value ? std::filesystem::path(value) : std::filesystem::path();
}

} // namespace

std::filesystem::path ConfigFolder() {
    constexpr const char* product = "qel";
    const auto configured = FromVariable("XDG_CONFIG_HOME");
    if (configured.is_absolute()) {
        return configured / product;
    }
    const auto home = FromVariable("HOME");
    if (home.is_absolute()) {
        return home / ".config" / product;
    }
    throw AutomationError(pathNotFound, "The settings' folder is not known: set HOME or XDG_CONFIG_HOME.");
}

std::filesystem::path SettingsFile() { return ConfigFolder() / "settings.ini"; }

} // namespace qel
