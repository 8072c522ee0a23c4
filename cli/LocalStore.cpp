#include "cli/LocalStore.h"

#include "platform/settings/files/ConfigFolder.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <system_error>

namespace qel {

namespace {

/// The folder of the running program; the current one where the system does not tell.
std::string ProgramFolder() {
    std::error_code failed;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
    return PathToUtf8(failed ? std::filesystem::current_path() : program.parent_path());
}

} // namespace

MessageBoxAnswer StreamMessages::Show(std::int32_t /*style*/, const std::string& title,
                                      const std::string& text) {
    hasShown_ = true;
    if (!title.empty()) {
        stream_ << title << ":\n";
    }
    stream_ << ReplaceAll(text, "\r\n", "\n") << '\n';
    return MessageBoxAnswer::Ok;
}

LocalStore::LocalStore(std::ostream& messageStream)
    : settingsFile(SettingsFile()), messages(messageStream), registry(settingsFile),
      environment{registry, profiles, database, messages, ProgramFolder()} {}

} // namespace qel
