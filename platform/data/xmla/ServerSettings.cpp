#include "platform/data/xmla/ServerSettings.h"

#include "platform/settings/files/ConfigFolder.h"
#include "platform/settings/files/IniFile.h"
#include "platform/value/AutomationError.h"

#include <fmt/format.h>

#include <charconv>
#include <system_error>

namespace qel {

namespace {

constexpr const char* limitsSection = "Limits";

/// The entry's number; nullopt when the entry is missing.
std::optional<std::uint32_t> LimitIn(const IniFile& settings, const std::filesystem::path& path,
                                     const char* key) {
    const auto text = settings.Get(limitsSection, key);
    if (!text) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    constexpr std::uint32_t most = 100'000;
    const auto [end, failed] = std::from_chars(text->data(), text->data() + text->size(), number);
    if (failed != std::errc() || end != text->data() + text->size() || number == 0 || number > most) {
        throw AutomationError(ErrorNumber::InvalidProcedureCall,
                              fmt::format("{}: {} in [{}] is '{}', which is not a whole number from 1 to {}.",
                                          path.string(), key, limitsSection, *text, most));
    }
    return number;
}

void RequirePrivate(const std::filesystem::path& path) {
    using std::filesystem::perms;
    const perms others = perms::group_all | perms::others_all;
    if ((std::filesystem::status(path).permissions() & others) != perms::none) {
        throw AutomationError(
            ErrorNumber::InvalidProcedureCall,
            fmt::format("{0} holds a password and may be read by others; run: chmod 600 {0}", path.string()));
    }
}

Credentials CredentialsFor(const std::filesystem::path& path, const std::string& host) {
    const IniFile settings(path);
    const auto user = settings.Get(host, "User");
    if (!user) {
        return {};
    }
    const auto password = settings.Get(host, "Password");
    if (password) {
        RequirePrivate(path);
    }
    return {*user, password.value_or("")};
}

} // namespace

std::optional<std::filesystem::path> ServerSettingsFile() {
    try {
        return ConfigFolder() / "servers.ini";
    } catch (const AutomationError&) {
        return std::nullopt;
    }
}

ServerOptions ReadServerOptions(const std::optional<std::filesystem::path>& file) {
    ServerOptions options;
    if (!file) {
        return options;
    }
    const IniFile settings(*file);
    if (const auto seconds = LimitIn(settings, *file, "ConnectSeconds")) {
        options.limits.connect = std::chrono::seconds(*seconds);
    }
    if (const auto seconds = LimitIn(settings, *file, "RequestSeconds")) {
        options.limits.request = std::chrono::seconds(*seconds);
    }
    if (const auto megabytes = LimitIn(settings, *file, "AnswerMegabytes")) {
        options.limits.answerBytes = std::size_t{*megabytes} << 20U;
    }
    options.credentials = [path = *file](const std::string& host) { return CredentialsFor(path, host); };
    return options;
}

} // namespace qel
