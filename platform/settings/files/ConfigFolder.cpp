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

#ifdef _WIN32

std::filesystem::path ConfigFolder() {
    const auto folder = FromVariable("APPDATA");
    if (folder.is_absolute()) {
        return folder / product;
    }
    throw AutomationError(pathNotFound, "The settings' folder is not known: set APPDATA.");
}

#else

std::filesystem::path ConfigFolder() {
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

#endif

std::filesystem::path SettingsFile() { return ConfigFolder() / "settings.ini"; }

} // namespace qel
