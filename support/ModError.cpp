#include "support/ModError.h"

#include <exception>
#include <string_view>

namespace qel::ModError {

namespace {

constexpr const char* lineEnd = "\r\n";
constexpr const char* unknownError = "An unknown error has occurred!";

void AppendLine(std::string& text, const char* label, const std::string& value) {
    text += lineEnd;
    text += label;
    text += value;
}

/// Leaves the copy empty where memory lacks.
void Copy(std::string_view text, std::string& copy) noexcept {
    try {
        copy = text;
    } catch (const std::exception&) {
        copy.clear();
    }
}

} // namespace

PendingError CurrentError(std::int32_t codeSection) noexcept {
    PendingError pending{ErrorNumber::InvalidProcedureCall, {}, {}, codeSection};
    Copy(componentName, pending.source);
    try {
        throw;
    } catch (const AutomationError& error) {
        pending.number = error.Number();
        Copy(error.Description(), pending.description);
        Copy(error.Source(), pending.source);
    } catch (const std::exception& error) {
        Copy(error.what(), pending.description);
    } catch (...) {
        Copy(unknownError, pending.description);
    }
    return pending;
}

std::string ComposeErrorText(const PendingError& error, const std::string& extraText,
                             const std::string& functionName, const std::string& moduleName) {
    std::string text = "Error : " + std::to_string(error.number) + lineEnd + lineEnd + error.description;
    if (!extraText.empty()) {
        text += std::string(lineEnd) + lineEnd + extraText;
    }
    text += lineEnd;
    if (error.codeSection > 0) {
        text += std::string(lineEnd) + lineEnd + "Code Section : " + std::to_string(error.codeSection);
    }
    if (!functionName.empty()) {
        AppendLine(text, "Function : ", functionName);
    }
    if (!moduleName.empty()) {
        AppendLine(text, "Module : ", moduleName);
    }
    AppendLine(text, "Source : ", error.source);
    return text;
}

void ReportError(MessageDisplay& display, const PendingError& error, const std::string& extraText,
                 const std::string& functionName, const std::string& moduleName, std::int32_t /*reserved1*/,
                 std::int32_t reserved2) noexcept {
    // `reserved2` once chose between two reports, which are the same today.
    static_cast<void>(reserved2 > 0);
    try {
        display.Show(MessageBoxStyle::Exclamation, componentName,
                     ComposeErrorText(error, extraText, functionName, moduleName));
    } catch (...) { // NOLINT(bugprone-empty-catch): there is no one left to tell
    }
}

} // namespace qel::ModError
