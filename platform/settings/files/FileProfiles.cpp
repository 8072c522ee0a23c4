#include "platform/settings/files/FileProfiles.h"

#include "platform/settings/files/IniFile.h"
#include "text/Utf8Path.h"

namespace qel {

namespace {

constexpr std::int32_t written = 1;
constexpr std::int32_t notWritten = 0;

/// Removes surrounding quotes of either kind, which preserve outer blanks.
std::string WithoutQuotes(const std::string& value) {
    const bool isQuoted =
        value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.front() == value.back();
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

/// At most `count` characters.
void Cut(std::string& text, std::size_t count) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (!ContinuesCharacter(text[at]) && count-- == 0) {
            text.resize(at);
            return;
        }
    }
}

template <class Read>
std::string Trapped(std::optional<AutomationError>& lastError, const Read& read) {
    lastError.reset();
    try {
        return read();
    } catch (const AutomationError& error) {
        lastError = error;
        return {};
    }
}

} // namespace

std::string FileProfiles::ReadString(const std::string& section, const std::string& key, std::size_t capacity,
                                     const std::string& file) {
    return Trapped(lastError_, [&] {
        std::string value = WithoutQuotes(IniFile(PathFromSetting(file)).Get(section, key).value_or(""));
        Cut(value, capacity - 1);
        return value;
    });
}

std::int32_t FileProfiles::WriteString(const std::string& section, const std::string& key,
                                       const std::string& value, const std::string& file) {
    lastError_.reset();
    try {
        IniFile(PathFromSetting(file)).Set(section, key, value);
        return written;
    } catch (const AutomationError& error) {
        lastError_ = error;
        return notWritten;
    }
}

std::string FileProfiles::ReadSection(const std::string& section, std::size_t capacity,
                                      const std::string& file) {
    return Trapped(lastError_, [&] {
        std::string entries;
        for (const auto& [key, value] : IniFile(PathFromSetting(file)).Entries(section)) {
            entries.append(key).append(1, '=').append(value).append(1, '\0');
        }
        Cut(entries, capacity - 2);
        return entries;
    });
}

} // namespace qel
