#pragma once

#include "platform/settings/Settings.h"

namespace qel::windows {

/// The system's profile files, in the system's code page, or in UTF-16 when they start with its byte order
/// mark. Writing a letter that the code page lacks converts the file to UTF-16.
class WindowsProfiles : public ProfileFiles {
public:
    std::string ReadString(const std::string& section, const std::string& key, std::size_t capacity,
                           const std::string& file) override;
    std::int32_t WriteString(const std::string& section, const std::string& key, const std::string& value,
                             const std::string& file) override;
    std::string ReadSection(const std::string& section, std::size_t capacity,
                            const std::string& file) override;
};

} // namespace qel::windows
