#include "platform/data/xmla/settings/KnownServers.h"

#include "platform/data/ServerSections.h"
#include "platform/settings/files/ConfigFolder.h"
#include "platform/settings/files/IniFile.h"
#include "platform/value/AutomationError.h"
#include "text/CaseFold.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <system_error>

namespace qel {

namespace {

constexpr std::int32_t pathFileAccessError = 75;

std::optional<std::string> SectionIn(const IniFile& settings, const ServerAddress& address) {
    for (auto& section : ServerSections(address.origin)) {
        if (settings.HasSection(section)) {
            return section;
        }
    }
    return std::nullopt;
}

/// True for the first of two words, false for the other or a missing entry.
bool IsFirstWord(const IniFile& settings, const std::filesystem::path& path, const std::string& section,
                 const char* key, const char* first, const char* other) {
    const std::string value = settings.Get(section, key).value_or(other);
    if (!EqualIgnoringCase(value, first) && !EqualIgnoringCase(value, other)) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall,
                              fmt::format("{}: {} in [{}] is '{}'; it can be '{}' or '{}'.", PathToUtf8(path),
                                          key, section, value, first, other));
    }
    return EqualIgnoringCase(value, first);
}

#ifdef _WIN32

/// The user's folder of settings is private there.
void RequirePrivate(const std::filesystem::path& /*path*/) {}

#else

void RequirePrivate(const std::filesystem::path& path) {
    using std::filesystem::perms;
    const perms others = perms::group_all | perms::others_all;
    if ((std::filesystem::status(path).permissions() & others) != perms::none) {
        throw AutomationError(
            ErrorNumber::InvalidProcedureCall,
            fmt::format("{0} holds a password and may be read by others; run: chmod 600 {0}",
                        PathToUtf8(path)));
    }
}

#endif

Credentials CredentialsIn(const IniFile& settings, const std::filesystem::path& path,
                          const std::string& section) {
    const auto user = settings.Get(section, "User");
    if (!user) {
        return {};
    }
    const auto password = settings.Get(section, "Password");
    if (password) {
        RequirePrivate(path);
    }
    return {*user, password.value_or("")};
}

ServerRights RightsIn(const std::filesystem::path& path, const ServerAddress& address) {
    const IniFile settings(path);
    const auto section = SectionIn(settings, address);
    if (!section) {
        return {};
    }
    ServerRights rights;
    rights.access = IsFirstWord(settings, path, *section, "Access", "never", "always")
                        ? ServerAccess::Refused
                        : ServerAccess::Allowed;
    rights.sendsPasswordsUnencrypted =
        IsFirstWord(settings, path, *section, "PasswordWithoutTls", "yes", "no");
    if (rights.access == ServerAccess::Allowed) {
        rights.credentials = CredentialsIn(settings, path, *section);
    }
    return rights;
}

} // namespace

std::optional<std::filesystem::path> ServerSettingsFile() {
    try {
        return ConfigFolder() / "servers.ini";
    } catch (const AutomationError&) {
        return std::nullopt;
    }
}

ServerRights KnownServers::RightsOf(const ServerAddress& address) const {
    ServerRights rights = file_ ? RightsIn(*file_, address) : ServerRights();
    const std::scoped_lock lock(mutex_);
    if (const auto answer = isAllowed_.find(address.origin); answer != isAllowed_.end()) {
        rights.access = answer->second ? ServerAccess::Allowed : ServerAccess::Refused;
    }
    return rights;
}

void KnownServers::Answer(const ServerAddress& address, bool isAllowed) {
    const std::scoped_lock lock(mutex_);
    isAllowed_[address.origin] = isAllowed;
}

void KnownServers::Remember(const ServerAddress& address, bool isAllowed) {
    Answer(address, isAllowed);
    if (!file_) {
        throw AutomationError(pathFileAccessError,
                              "The settings' folder is not known: set HOME or XDG_CONFIG_HOME.");
    }
    std::error_code failed;
    std::filesystem::create_directories(file_->parent_path(), failed);
    if (failed) {
        throw AutomationError(pathFileAccessError,
                              fmt::format("The folder {} cannot be made: {}",
                                          PathToUtf8(file_->parent_path()), failed.message()));
    }
    const IniFile settings(*file_);
    settings.Set(SectionIn(settings, address).value_or(address.origin), "Access",
                 isAllowed ? "always" : "never");
}

} // namespace qel
