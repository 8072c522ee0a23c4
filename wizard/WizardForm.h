#pragma once

#include "wizard/WizardContext.h"

#include <functional>

namespace qel {

/// What both wizards have in common: a dialog in the suite's language that is shown once, and read after it
/// was hidden.
class WizardForm : protected DialogEvents {
public:
    ~WizardForm() override = default;
    WizardForm(const WizardForm&) = delete;
    WizardForm& operator=(const WizardForm&) = delete;

    /// Shows the dialog and returns when it was hidden. What fails in it is reported and leaves it open.
    void Show() { dialog_->ShowModal(); }

    bool CanceledPivot = false; ///< Cancel or the close box ended it

protected:
    /// Reads the settings and makes the dialog. Raises what the toolkit raises.
    WizardForm(const WizardContext& context, const FormDesign& design);

    void OnQueryUnload() override { CanceledPivot = true; }
    void Cancel();

    /// Runs an operation. False when it raised, which is reported under these names; none for the form's own.
    bool Trapped(const std::string& function, const std::function<void()>& operation,
                 const char* module = nullptr) noexcept;

    /// The name under which a control's handler reports itself: "TxtDate_LostFocus" of "TxtDate(0)".
    static std::string HandlerName(std::string_view control, const char* event);
    /// The same for another choice or an edited text: "ComLevel_Click", "TxtDate_Change".
    std::string ChangeHandlerName(std::string_view control) const;

    /// Shows the text of a number of the suite's table as a warning.
    void WarnNumbered(std::int32_t number) const;

    const WizardContext& Context() const { return context_; }
    Dialog& Form() const { return *dialog_; }

private:
    WizardContext context_;
    const FormDesign& design_;
    std::unique_ptr<Dialog> dialog_;
};

} // namespace qel
