#pragma once

#include "platform/dialog/MessageBox.h"
#include "platform/dialog/calc/OfficeWindows.h"

namespace qel::office {

/// The office's message boxes.
class OfficeMessages : public MessageDisplay {
public:
    explicit OfficeMessages(const OfficeWindows& windows) : windows_(windows) {}

    /// Returns Ok when the office cannot show the box.
    MessageBoxAnswer Show(std::int32_t style, const std::string& title, const std::string& text) override;

private:
    const OfficeWindows& windows_;
};

} // namespace qel::office
