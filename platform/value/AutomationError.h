#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace qel {

/// The only exception that crosses layers: an automation error as a macro sees it.
class AutomationError : public std::exception {
public:
    AutomationError(std::int32_t number, std::string description, std::string source = "OrmFuncQel4")
        : number_(number), description_(std::move(description)), source_(std::move(source)) {}

    std::int32_t Number() const { return number_; }
    const std::string& Description() const { return description_; }
    /// The component or library that raised it.
    const std::string& Source() const { return source_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    std::int32_t number_;
    std::string description_;
    std::string source_;
};

/// The platform's own error numbers.
namespace ErrorNumber {
inline constexpr std::int32_t InvalidProcedureCall = 5;
inline constexpr std::int32_t Overflow = 6;
inline constexpr std::int32_t SubscriptOutOfRange = 9;
inline constexpr std::int32_t TypeMismatch = 13;
inline constexpr std::int32_t ObjectVariableNotSet = 91;
inline constexpr std::int32_t InvalidUseOfNull = 94;
/// "To many dimensions": the first number of the user-defined space.
inline constexpr std::int32_t ToManyDimensions = static_cast<std::int32_t>(0x80040001);
} // namespace ErrorNumber

/// An error with the platform's description of its number ("Type mismatch", "Overflow", ...).
[[nodiscard]] AutomationError PlatformError(std::int32_t number);

} // namespace qel
