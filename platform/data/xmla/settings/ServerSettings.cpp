#include "platform/data/xmla/settings/ServerSettings.h"

#include "platform/settings/files/IniFile.h"
#include "platform/value/AutomationError.h"
#include "text/Utf8Path.h"

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
                                          PathToUtf8(path), key, limitsSection, *text, most));
    }
    return number;
}

} // namespace

ServerOptions ReadServerOptions(const std::shared_ptr<const KnownServers>& known) {
    ServerOptions options;
    options.rights = [known](const ServerAddress& address) { return known->RightsOf(address); };
    const auto& file = known->File();
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
    return options;
}

} // namespace qel
