#pragma once

#include "wizard/WizardContext.h"

#include <functional>

namespace qel {

/// Reads where the suite is and in which language it speaks.
void FindLanguage(const WizardContext& context);

/// Base of both wizards: a dialog in the suite's language that is shown once and read after it is hidden.
class WizardForm : protected DialogEvents {
public:
    ~WizardForm() override = default;
    WizardForm(const WizardForm&) = delete;
    WizardForm& operator=(const WizardForm&) = delete;

    /// Shows the dialog and returns when it is hidden. Failures inside it are reported and leave it open.
    void Show() { dialog_->ShowModal(); }

    bool CanceledPivot = false; ///< closed by Cancel or the close box

protected:
    /// Reads the settings and makes the dialog. Raises what the toolkit raises.
    WizardForm(const WizardContext& context, const FormDesign& design);

    void OnQueryUnload() override { CanceledPivot = true; }
    void Cancel();

    /// Runs an operation. A failure is reported under these names (by default the form's own) and returns
    /// false.
    bool Trapped(const std::string& function, const std::function<void()>& operation,
                 const char* module = nullptr) noexcept;

    /// The name of a control's handler in reports: "TxtDate_LostFocus" for "TxtDate(0)".
    static std::string HandlerName(std::string_view control, const char* event);
    /// The same for a changed choice or text: "ComLevel_Click", "TxtDate_Change".
    std::string ChangeHandlerName(std::string_view control) const;

    /// Shows a text of the suite's table, by its number, as a warning.
    void WarnNumbered(std::int32_t number) const;

    const WizardContext& Context() const { return context_; }
    Dialog& Form() const { return *dialog_; }

private:
    WizardContext context_;
    const FormDesign& design_;
    std::unique_ptr<Dialog> dialog_;
};

} // namespace qel
