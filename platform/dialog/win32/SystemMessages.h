#pragma once

#include "platform/dialog/MessageBox.h"

namespace qel::windows {

/// The system's message boxes. A box belongs to the window that is active in the calling thread, a dialog's
/// or the spreadsheet's, which waits until it is closed.
class SystemMessages : public MessageDisplay {
public:
    /// Ok too when the system could not show the box.
    MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) override;
};

} // namespace qel::windows
