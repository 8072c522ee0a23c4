#pragma once

#include <cstdint>
#include <string>

namespace qel {

/// The platform's own numbers: buttons and icon of a message box, added up.
namespace MessageBoxStyle {
inline constexpr std::int32_t Exclamation = 48;       ///< OK alone, the warning icon
inline constexpr std::int32_t YesNoWithStop = 4 + 16; ///< Yes and No, the stop icon
} // namespace MessageBoxStyle

/// The button that closed a message box, with the platform's number.
enum class MessageBoxAnswer : std::uint8_t {
    Ok = 1,
    Cancel = 2,
    Abort = 3,
    Retry = 4,
    Ignore = 5,
    Yes = 6,
    No = 7
};

/// Shows message boxes. (Not called MessageBox: Windows' headers define a macro of that name.)
class MessageDisplay {
public:
    virtual ~MessageDisplay() = default;
    /// Returns when the user has answered. `title` may be empty; lines of `text` end in CRLF.
    virtual MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) = 0;
};

} // namespace qel
