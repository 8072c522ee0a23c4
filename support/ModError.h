#pragma once

#include "platform/dialog/MessageBox.h"
#include "platform/value/AutomationError.h"

#include <cstdint>
#include <string>

namespace qel {

/// The component's file name without its extension: the title of its boxes.
inline constexpr const char* componentName = "OrmFuncQel4";

/// A trapped error, passed to ReportError.
struct PendingError {
    std::int32_t number = 0;
    std::string description;
    std::string source;           ///< the component or library that raised it
    std::int32_t codeSection = 0; ///< the numbered section that was running; 0 without numbered sections
};

namespace ModError {

/// The exception being handled. Exceptions other than AutomationError get the number 5 and, when they have no
/// text, "An unknown error has occurred!".
PendingError CurrentError(std::int32_t codeSection = 0) noexcept;

/// The report's text, with CRLF between lines.
std::string ComposeErrorText(const PendingError& error, const std::string& extraText,
                             const std::string& functionName, const std::string& moduleName);

/// Shows the report in a box with an OK button and returns when it is closed. Raises nothing.
void ReportError(MessageDisplay& display, const PendingError& error, const std::string& extraText,
                 const std::string& functionName, const std::string& moduleName, std::int32_t reserved1 = 0,
                 std::int32_t reserved2 = 0) noexcept;

} // namespace ModError
} // namespace qel
