#pragma once

#include "platform/settings/files/IniLines.h"
#include "platform/value/AutomationError.h"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qel {

/// A file of sections and entries, as profile files are. Names of sections and keys are compared ignoring the
/// case of Latin letters; of entries that share a key, the first one counts. The file is read by every call,
/// so that two programs see each other's changes.
class IniFile {
public:
    explicit IniFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// None for a missing file, section or key. The readers raise AutomationError when the file is there and
    /// cannot be read.
    std::optional<std::string> Get(const std::string& section, const std::string& key) const;
    bool HasSection(const std::string& section) const;
    /// In the file's order; empty for a missing file or section.
    std::vector<std::pair<std::string, std::string>> Entries(const std::string& section) const;

    /// Writes one entry; the others, their order and the comments stay. The file is replaced as a whole, so a
    /// failure leaves it as it was. Raises AutomationError when it cannot be written, and when it holds a
    /// line that would be lost.
    void Set(const std::string& section, const std::string& key, const std::string& value) const;
    /// Why Set would refuse to write the file as it is: it cannot be read, or holds a line that would be
    /// lost.
    std::optional<AutomationError> FaultOfContent() const;

private:
    std::filesystem::path path_;
};

/// What IniFile::Get reads in a file's text. `file` names the text in errors, here and below.
std::optional<std::string> FindInIniText(const std::filesystem::path& file, const std::string& text,
                                         const IniEntry& entry);
/// What IniFile::Set makes of a file's text.
std::string EditIniText(const std::filesystem::path& file, const std::string& text, const IniEntry& entry,
                        const std::string& value);

} // namespace qel
