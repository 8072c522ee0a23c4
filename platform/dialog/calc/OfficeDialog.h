#pragma once

#include "platform/dialog/DesignedDialog.h"
#include "platform/dialog/calc/CloseListener.h"
#include "platform/dialog/calc/ControlListener.h"
#include "platform/dialog/calc/LaterCall.h"
#include "platform/dialog/calc/OfficeControl.h"
#include "platform/dialog/calc/OfficeWindows.h"

#include <com/sun/star/awt/XControlContainer.hpp>
#include <com/sun/star/awt/XDialog2.hpp>
#include <com/sun/star/awt/XWindow.hpp>
#include <optional>
#include <rtl/ref.hxx>

namespace qel::office {

/// A dialog of the office's own controls.
class OfficeDialog : public DesignedDialog<OfficeControl> {
public:
    OfficeDialog(OfficeWindows& windows, const FormDesign& design, bool isRightToLeft, DialogEvents& events);
    ~OfficeDialog() override;
    OfficeDialog(const OfficeDialog&) = delete;
    OfficeDialog& operator=(const OfficeDialog&) = delete;

    void ShowModal() override;
    void ShowBeside(WindowSide side) override;
    void Hide() override;
    std::function<void()> Hider() override;
    /// The office cannot open this kind of help file.
    void SetHelpFile(const std::string& /*path*/) override {}
    void SetEnabled(std::string_view control, bool isEnabled) override;
    void SetFocus(std::string_view control) override;
    std::string AskForFile(std::string_view control, const FileQuestion& question) override;

private:
    void SetCaption(const std::string& caption) override;
    /// The office's dialog units follow its own font.
    void SetFont(const DialogFont& /*font*/) override {}

    void MakeModel();
    void MakeWindow();
    /// False when the handler hid the dialog.
    bool Load();
    ControlCallbacks CallbacksOf(OfficeControl& control);
    void OnPressed(const OfficeControl& control);
    void OnItem(OfficeControl& control);
    void OnText(OfficeControl& control);
    void OnFocus(OfficeControl& control);
    /// True for a key that a searchable list takes from the dialog's buttons.
    bool OnKey(sal_Int16 key);
    void Commit(OfficeControl& control);
    void CommitSearches();
    /// Fills the searchable list that has the focus. While a handler runs, later.
    void PrepareFocused();
    /// Reading may show boxes, as a handler may.
    void ReadRows(const SearchBox& search);
    void SettleSearches();
    void TellLater();
    /// Tells of the fields that were left. False when a handler moved the focus back to one, or shows
    /// something new.
    bool TellLeft();
    /// The same while a mouse button may be down on the control that took the focus.
    void TellLeftByClick();
    void TellChanged();
    void Tell(const std::function<void()>& handler);
    com::sun::star::uno::Reference<com::sun::star::awt::XWindow> WindowOf(const OfficeControl& control) const;

    OfficeWindows& windows_;
    com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet> model_;
    com::sun::star::uno::Reference<com::sun::star::awt::XControl> window_;
    std::vector<rtl::Reference<ControlListener>> listeners_;
    rtl::Reference<LaterCall> later_;
    rtl::Reference<LaterCall> hider_;       ///< null until it is needed
    rtl::Reference<CloseListener> closing_; ///< of a dialog that is shown beside its window
    OfficeControl* focused_ = nullptr;      ///< the control that had the focus last
    /// The one that took it, unless it came with Tab: the mouse may be down on it.
    const OfficeControl* clicked_ = nullptr;
    const OfficeControl* spoilt_ = nullptr; ///< whose press began before a handler showed something new
    std::vector<OfficeControl*> left_;      ///< fields that lost the focus and whose handler has not run yet
    std::vector<OfficeControl*> changed_;   ///< by choices whose handler has not run yet
    /// A choice that was told right before: the office says twice what a screen reader chooses.
    const OfficeControl* told_ = nullptr;
    std::optional<std::size_t> toldChoice_;
    int handlers_ = 0;   ///< that run, and may show boxes
    int focusMoves_ = 0; ///< by the program
    bool isShown_ = false;
    bool isHidden_ = false; ///< the program ended it
    bool isTab_ = false;    ///< the last key
};

} // namespace qel::office
