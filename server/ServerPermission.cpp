#include "server/ServerPermission.h"

#include "lang/ModLangFrm.h"
#include "platform/data/DataAccessErrors.h"
#include "platform/data/ProviderServer.h"
#include "platform/data/ServerSections.h"
#include "platform/data/xmla/settings/KnownServers.h"
#include "platform/dialog/win32/SystemMessages.h"
#include "platform/settings/windows/WindowsProfiles.h"
#include "platform/value/AutomationError.h"
#include "platform/windows/WideText.h"
#include "server/Foreground.h"
#include "server/SuiteStore.h"
#include "support/ModError.h"
#include "text/CaseFold.h"
#include "text/ShownText.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace qel::server {

namespace {

constexpr const char* accessKey = "Access";
constexpr std::int32_t pathFileAccessError = 75;

/// Empty when the system does not tell the folder of settings.
std::filesystem::path ServersFile() { return ServerSettingsFile().value_or(std::filesystem::path()); }

/// What servers.ini says; nullopt without a section of the server that has an entry.
std::optional<bool> IsAllowedByFile(const std::string& server) {
    constexpr std::size_t longest = 4096;
    const std::string file = PathToUtf8(ServersFile());
    windows::WindowsProfiles profiles;
    for (const std::string& section : file.empty() ? std::vector<std::string>() : ServerSections(server)) {
        if (profiles.ReadSection(section, longest, file).empty()) {
            continue;
        }
        const std::string access = profiles.ReadString(section, accessKey, longest, file);
        if (!access.empty() && !EqualIgnoringCase(access, "always") && !EqualIgnoringCase(access, "never")) {
            throw AutomationError(ErrorNumber::InvalidProcedureCall,
                                  fmt::format("{}: {} in [{}] is '{}'; it can be 'always' or 'never'.", file,
                                              accessKey, section, access));
        }
        return !EqualIgnoringCase(access, "never");
    }
    return std::nullopt;
}

void WriteToFile(const std::string& server, bool isAllowed) {
    const std::filesystem::path file = ServersFile();
    std::error_code failed;
    std::filesystem::create_directories(file.parent_path(), failed);
    if (file.empty() || windows::WindowsProfiles().WriteString(
                            server, accessKey, isAllowed ? "always" : "never", PathToUtf8(file)) == 0) {
        throw AutomationError(pathFileAccessError, PathToUtf8(file) + " cannot be written.");
    }
}

/// The answers of this process, by server.
class Answers {
public:
    std::optional<bool> Of(const std::string& server) const {
        const std::scoped_lock lock(mutex_);
        const auto answer = isAllowed_.find(server);
        return answer == isAllowed_.end() ? std::nullopt : std::optional(answer->second);
    }
    /// Refuses the server until it is answered: for calls that arrive while a box is open. False when another
    /// thread has asked already.
    bool Begin(const std::string& server) {
        const std::scoped_lock lock(mutex_);
        return isAllowed_.try_emplace(server, false).second;
    }
    void Set(const std::string& server, bool isAllowed) {
        const std::scoped_lock lock(mutex_);
        isAllowed_[server] = isAllowed;
    }

private:
    mutable std::mutex mutex_;
    std::map<std::string, bool> isAllowed_;
};

struct QuestionTexts {
    const char *request, *advice, *remember;
};

constexpr QuestionTexts english = {
    "A formula wants to ask this server. The request contains values of cells.",
    "Allow it only if you know the server and trust the document. Allow it?",
    "Remember this answer? Otherwise it holds until the program ends.",
};
constexpr QuestionTexts hebrew = {
    "נוסחה מבקשת לפנות לשרת הזה. הבקשה מכילה ערכים מתאים.",
    "יש לאשר רק אם השרת מוכר והמסמך אמין. לאשר?",
    "לזכור את התשובה? אחרת היא תקפה עד לסגירת התוכנה.",
};

/// Shows a box whose button No is the default one: Enter, typed for something else, allows nothing.
bool IsYes(const std::string& text) {
    constexpr std::int32_t style = MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2;
    return windows::SystemMessages().Show(style, componentName, text) == MessageBoxAnswer::Yes;
}

bool Ask(const std::string& server, Answers& answers) {
    const bool isHebrew = ModLangFrm::LanguageFromIni(SuiteLanguage().store) == Language::Hebrew;
    const QuestionTexts& texts = isHebrew ? hebrew : english;
    const bool isAllowed =
        IsYes(fmt::format("{}\r\n\r\n{}\r\n\r\n{}", texts.request, OnOneShownLine(server), texts.advice));
    answers.Set(server, isAllowed);
    // The language's text comes first: a box takes its direction from its first letter.
    if (IsYes(fmt::format("{}\r\n\r\n{}", texts.remember, OnOneShownLine(server)))) {
        try {
            WriteToFile(server, isAllowed);
        } catch (const AutomationError& error) {
            windows::SystemMessages().Show(MessageBoxStyle::Exclamation, componentName, error.Description());
        }
    }
    return isAllowed;
}

Answers& AnswersOfProcess() {
    static Answers answers;
    return answers;
}

/// What the user answered or servers.ini says.
std::optional<bool> DecisionOn(const std::string& server) {
    const auto answer = AnswersOfProcess().Of(server);
    return answer ? answer : IsAllowedByFile(server);
}

bool IsAllowed(const std::string& server) {
    if (const auto decision = DecisionOn(server)) {
        return *decision;
    }
    if (!CanAskPerson()) {
        throw AutomationError(
            errorServerNotAllowed,
            fmt::format(
                "Nothing was sent to {0}: it is not a known server, and nobody can be asked. Calculate "
                "again while the spreadsheet's window is in front, or write Access=always into a "
                "section [{0}] of {1}.",
                OnOneShownLine(server), PathToUtf8(ServersFile())));
    }
    return AnswersOfProcess().Begin(server) && Ask(server, AnswersOfProcess());
}

ServerRights RightsOf(const ServerAddress& address, bool isAllowed) {
    ServerRights rights = KnownServers(ServersFile()).RightsOf(address);
    rights.access = isAllowed ? ServerAccess::Allowed : ServerAccess::Refused;
    return rights;
}

} // namespace

ServerRights RightsByPerson(const ServerAddress& address) {
    return RightsOf(address, IsAllowed(address.origin));
}

void AskAboutServer(const ServerAddress& address) { static_cast<void>(IsAllowed(address.origin)); }

ServerRights RightsByAnswer(const ServerAddress& address) {
    return RightsOf(address, DecisionOn(address.origin).value_or(false));
}

void RequireAllowedServer(const std::string& connectionText) {
    const auto server = ServerOfProvider(connectionText);
    if (server && !IsAllowed(*server)) {
        throw AutomationError(
            errorServerNotAllowed,
            fmt::format("Nothing was sent to {0}: you refused it. Access=always in a section [{0}] "
                        "of {1} allows it.",
                        OnOneShownLine(*server), PathToUtf8(ServersFile())));
    }
}

} // namespace qel::server
