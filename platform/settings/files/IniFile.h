#pragma once

#include "platform/settings/files/IniLines.h"
#include "platform/value/AutomationError.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qel {

/// A profile file: sections of entries. Section and key names ignore the case of Latin letters; the first of
/// several entries with the same key counts. Every call reads the file, so that programs see each other's
/// changes.
class IniFile {
public:
    explicit IniFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// Nullopt for a missing file, section or key. The readers raise AutomationError when the file exists but
    /// cannot be read.
    std::optional<std::string> Get(const std::string& section, const std::string& key) const;
    bool HasSection(const std::string& section) const;
    /// In file order; empty for a missing file or section.
    std::vector<std::pair<std::string, std::string>> Entries(const std::string& section) const;

    /// Writes one entry and preserves the others, their order and the comments. The file is replaced as a
    /// whole, so a failure leaves it unchanged. Raises AutomationError when it cannot be written or holds a
    /// line that would be lost.
    void Set(const std::string& section, const std::string& key, const std::string& value) const;
    /// Why Set would fail: the file cannot be read, or holds a line that would be lost.
    std::optional<AutomationError> FaultOfContent() const;

private:
    std::filesystem::path path_;
};

/// IniFile::Get on a file's text. `file` is the name in error messages, here and below.
std::optional<std::string> FindInIniText(const std::filesystem::path& file, const std::string& text,
                                         const IniEntry& entry);
/// IniFile::Set on a file's text.
std::string EditIniText(const std::filesystem::path& file, const std::string& text, const IniEntry& entry,
                        const std::string& value);

} // namespace qel
