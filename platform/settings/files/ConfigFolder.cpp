#include "platform/settings/files/ConfigFolder.h"

#include "platform/value/AutomationError.h"
#include "text/Environment.h"
#include "text/Utf8Path.h"

namespace qel {

namespace {

constexpr std::int32_t pathNotFound = 76;

constexpr const char* product = "qel";

std::filesystem::path FromVariable(const char* name) {
    return PathFromUtf8(EnvironmentVariable(name).value_or(""));
}

} // namespace

std::filesystem::path ConfigFolder() {
    const auto configured = FromVariable("XDG_CONFIG_HOME");
    if (configured.is_absolute()) {
        return configured / product;
    }
#ifdef _WIN32
    constexpr const char* variables = "APPDATA";
    const auto folder = FromVariable("APPDATA");
#else
    constexpr const char* variables = "HOME or XDG_CONFIG_HOME";
    const auto home = FromVariable("HOME");
    const auto folder = home.is_absolute() ? home / ".config" : home;
#endif
    if (folder.is_absolute()) {
        return folder / product;
    }
    throw AutomationError(pathNotFound,
                          std::string("The settings' folder is not known: set ") + variables + ".");
}

std::filesystem::path SettingsFile() { return ConfigFolder() / "settings.ini"; }

} // namespace qel
