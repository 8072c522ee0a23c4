#pragma once

#include "platform/dialog/calc/OfficeDialogToolkit.h"

#include <string>

namespace qel::calc {

/// The box that stands in front of a wizard while a server is asked.
class ServerWait : private DialogEvents {
public:
    ServerWait(office::OfficeWindows& windows, const std::string& server, bool isHebrew);
    ~ServerWait() override = default;
    ServerWait(const ServerWait&) = delete;
    ServerWait& operator=(const ServerWait&) = delete;

    /// Returns after End, and when the person cancels or closes the box.
    void Show() { dialog_->ShowModal(); }
    void End() { dialog_->Hide(); }

private:
    void OnLoad() override {}
    void OnClick(std::string_view /*control*/) override { End(); }
    void OnChange(std::string_view /*control*/) override {}
    bool OnLeave(std::string_view /*control*/) override { return true; }
    void OnQueryUnload() override {}

    std::unique_ptr<Dialog> dialog_;
};

} // namespace qel::calc
