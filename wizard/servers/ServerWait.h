#pragma once

#include "lang/ModLangFrm.h"
#include "platform/dialog/DialogToolkit.h"

#include <functional>
#include <memory>
#include <string>

namespace qel {

/// The controls of the box.
const FormDesign& ServerWaitDesign();

/// The box that stands in front of a wizard while a server is asked.
class ServerWait : private DialogEvents {
public:
    ServerWait(DialogToolkit& toolkit, const ModLangFrm::LanguageState& language, const std::string& server);
    ~ServerWait() override = default;
    ServerWait(const ServerWait&) = delete;
    ServerWait& operator=(const ServerWait&) = delete;

    /// Returns after Ender's call, and when the person cancels or closes the box.
    void Show() { dialog_->ShowModal(); }
    /// For any thread; does nothing once the box is gone.
    std::function<void()> Ender() { return dialog_->Hider(); }

private:
    void OnLoad() override {}
    void OnClick(std::string_view /*control*/) override { dialog_->Hide(); }
    void OnChange(std::string_view /*control*/) override {}
    bool OnLeave(std::string_view /*control*/) override { return true; }
    void OnQueryUnload() override {}

    std::unique_ptr<Dialog> dialog_;
};

} // namespace qel
