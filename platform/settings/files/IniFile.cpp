#include "platform/settings/files/IniFile.h"

#include "files/AtomicFile.h"
#include "files/FolderLock.h"
#include "platform/settings/files/IniLines.h"
#include "platform/value/AutomationError.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <SimpleIni.h>
#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>

namespace qel {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t deviceIoError = 57;
constexpr std::int32_t pathFileAccessError = 75;

/// The library drops comments after the last entry. A section added at the end keeps them as its own
/// comments; it is removed again before the text is written.
constexpr const char* endSection = "\x01 end";

AutomationError FileError(std::int32_t number, const fs::path& path, std::string_view fault) {
    return {number, fmt::format("The settings file '{}' {}.", PathToUtf8(path), fault)};
}

/// Empty when the file is missing.
std::string ReadText(const fs::path& path) {
    std::error_code unknown;
    const auto status = fs::status(path, unknown);
    if (status.type() == fs::file_type::not_found) {
        return {};
    }
    // A pipe or a device may have no end.
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw FileError(pathFileAccessError, path,
                        fs::is_directory(status) ? "cannot be read: it is a folder"
                                                 : "cannot be read: it is not a regular file");
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw FileError(pathFileAccessError, path, "cannot be read");
    }
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (file.bad()) {
        throw FileError(deviceIoError, path, "cannot be read to its end");
    }
    return text;
}

using Ini = CSimpleIniA;

void Load(Ini& ini, const fs::path& path, const std::string& text) {
    ini.SetUnicode(true);
    ini.SetMultiKey(true);
    ini.SetSpaces(false);
    if (ini.LoadData(text) < 0) {
        throw FileError(deviceIoError, path, "cannot be understood");
    }
}

std::string WithSection(const std::string& text, const std::string& section) {
    return text + "\n[" + section + "]\n";
}

std::string TextOf(const Ini& ini) {
    std::string text;
    ini.Save(text, false);
    return ReplaceAll(text, "\r\n", "\n"); // as the library ends lines on Windows
}

/// The text with one entry set.
std::string Edited(const fs::path& path, const std::string& text, const std::string& section,
                   const std::string& key, const std::string& value) {
    Ini before;
    Load(before, path, text);
    const bool isNew = !before.SectionExists(section.c_str());
    Ini ini;
    Load(ini, path, WithSection(text, isNew ? section : endSection));
    ini.SetValue(section.c_str(), key.c_str(), value.c_str(), nullptr, true);
    std::string edited = TextOf(ini);
    if (!isNew) {
        edited.erase(edited.rfind(std::string("[") + endSection + "]"));
    }
    while (edited.ends_with("\n\n")) {
        edited.pop_back();
    }
    return edited;
}

[[noreturn]] void RaiseNotWritten(const std::string& message) {
    throw AutomationError(pathFileAccessError, fmt::format("The settings cannot be saved: {}.", message));
}

void Replace(const fs::path& path, const std::string& text) {
    AtomicFile file(path, RaiseNotWritten);
    file.Append(std::as_bytes(std::span(text)));
    file.Commit();
}

void RequireOneLine(const fs::path& path, std::string_view value) {
    if (value.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
        throw FileError(ErrorNumber::InvalidProcedureCall, path, "cannot hold a value of more than one line");
    }
}

/// Raises, without writing, when the line with that number would be lost.
void RequireNone(const fs::path& path, const std::optional<std::size_t>& line) {
    if (line) {
        throw FileError(
            pathFileAccessError, path,
            fmt::format("is left unchanged: line {} would be lost, because it is not a name=value, [section] "
                        "or comment (;) line, or is out of place. Correct or remove it first",
                        *line));
    }
}

} // namespace

std::optional<std::string> FindInIniText(const fs::path& file, const std::string& text,
                                         const IniEntry& entry) {
    Ini ini;
    Load(ini, file, text);
    const char* value = ini.GetValue(entry.section.c_str(), entry.key.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::string EditIniText(const fs::path& file, const std::string& text, const IniEntry& entry,
                        const std::string& value) {
    RequireOneLine(file, value);
    RequireNone(file, FirstBrokenLine(text));
    std::string edited = Edited(file, text, entry.section, entry.key, value);
    RequireNone(file, FirstLineLost(text, edited, entry));
    return edited;
}

std::optional<std::string> IniFile::Get(const std::string& section, const std::string& key) const {
    return FindInIniText(path_, ReadText(path_), {section, key});
}

bool IniFile::HasSection(const std::string& section) const {
    Ini ini;
    Load(ini, path_, ReadText(path_));
    return ini.SectionExists(section.c_str());
}

std::vector<std::pair<std::string, std::string>> IniFile::Entries(const std::string& section) const {
    Ini ini;
    Load(ini, path_, ReadText(path_));
    const auto* stored = ini.GetSection(section.c_str());
    std::vector<std::pair<std::string, std::string>> entries;
    if (!stored) {
        return entries;
    }
    std::vector<std::pair<Ini::Entry, const char*>> inOrder(stored->begin(), stored->end());
    std::stable_sort(inOrder.begin(), inOrder.end(),
                     [](const auto& a, const auto& b) { return a.first.nOrder < b.first.nOrder; });
    for (const auto& [key, value] : inOrder) {
        entries.emplace_back(key.pItem, value);
    }
    return entries;
}

void IniFile::Set(const std::string& section, const std::string& key, const std::string& value) const {
    const FolderLock lock(path_);
    if (!lock.IsFree()) {
        throw FileError(pathFileAccessError, path_, "cannot be written: another program holds its folder");
    }
    Replace(path_, EditIniText(path_, ReadText(path_), {section, key}, value));
}

std::optional<AutomationError> IniFile::FaultOfContent() const {
    try {
        EditIniText(path_, ReadText(path_), {"any", "entry"}, "");
        return std::nullopt;
    } catch (const AutomationError& fault) {
        return fault;
    }
}

} // namespace qel
