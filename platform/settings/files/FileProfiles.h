#pragma once

#include "platform/settings/Settings.h"
#include "platform/value/AutomationError.h"

#include <optional>

namespace qel {

/// Profile files as UTF-8 text. Like the platform's own calls, a failed read returns an empty text and a
/// failed write returns 0; LastError gives the reason.
class FileProfiles : public ProfileFiles {
public:
    std::string ReadString(const std::string& section, const std::string& key, std::size_t capacity,
                           const std::string& file) override;
    std::int32_t WriteString(const std::string& section, const std::string& key, const std::string& value,
                             const std::string& file) override;
    std::string ReadSection(const std::string& section, std::size_t capacity,
                            const std::string& file) override;

    /// The error of the last call; nullopt when it succeeded.
    const std::optional<AutomationError>& LastError() const { return lastError_; }

private:
    std::optional<AutomationError> lastError_;
};

} // namespace qel
