#pragma once

#include "wizard/WizardForm.h"

#include <functional>
#include <string>

namespace qel {

/// Runs a command that takes long and lets other windows work meanwhile, unless one runs already.
using LongCommand = std::function<void(const std::function<void()>& command)>;

/// A window that stands beside a sheet while the person works there.
class BesideForm : public WizardForm {
public:
    /// Returns at once where the toolkit can show such windows, otherwise when the form is closed. `closed`
    /// is called when the person closed it; it must not destroy the form before its caller returns.
    void ShowBeside(WindowSide side, std::function<void()> closed);
    /// Takes it from the screen; `closed` is not called.
    void Close();
    /// Whether one of its commands runs: the form must live until it ends.
    bool IsBusy() const { return commands_ > 0; }

protected:
    using WizardForm::WizardForm;

    void OnQueryUnload() override;
    void CloseByPerson();
    /// As Trapped.
    void RunCommand(const std::string& name, const std::function<void()>& command) noexcept;

private:
    std::function<void()> closed_;
    int commands_ = 0;
};

} // namespace qel
