#pragma once

#include "platform/dialog/MessageBox.h"

namespace qel::windows {

/// The system's message boxes, modal to the calling thread's active window.
class SystemMessages : public MessageDisplay {
public:
    /// Returns Ok when the system cannot show the box.
    MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) override;
};

} // namespace qel::windows
