#pragma once

#include "platform/settings/Settings.h"
#include "platform/value/AutomationError.h"

#include <optional>

namespace qel {

/// Profile files as UTF-8 text. What cannot be read is empty and what cannot be written returns 0, as the
/// platform's own calls have it; LastError tells why.
class FileProfiles : public ProfileFiles {
public:
    std::string ReadString(const std::string& section, const std::string& key, std::size_t capacity,
                           const std::string& file) override;
    std::int32_t WriteString(const std::string& section, const std::string& key, const std::string& value,
                             const std::string& file) override;
    std::string ReadSection(const std::string& section, std::size_t capacity,
                            const std::string& file) override;

    /// Of the last call; none when it succeeded.
    const std::optional<AutomationError>& LastError() const { return lastError_; }

private:
    std::optional<AutomationError> lastError_;
};

} // namespace qel
