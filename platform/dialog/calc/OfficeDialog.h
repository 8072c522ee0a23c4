#pragma once

#include "platform/dialog/calc/ControlListener.h"
#include "platform/dialog/calc/OfficeControl.h"
#include "platform/dialog/calc/OfficeWindows.h"

#include <com/sun/star/awt/XControlContainer.hpp>
#include <com/sun/star/awt/XDialog2.hpp>
#include <rtl/ref.hxx>

namespace qel::office {

/// A dialog of the office's own controls.
class OfficeDialog : public Dialog, private TranslatableForm {
public:
    OfficeDialog(OfficeWindows& windows, const FormDesign& design, bool isRightToLeft, DialogEvents& events);
    ~OfficeDialog() override;
    OfficeDialog(const OfficeDialog&) = delete;
    OfficeDialog& operator=(const OfficeDialog&) = delete;

    void ShowModal() override;
    void Hide() override;
    TranslatableForm& Texts() override { return *this; }
    /// The office opens no help of this kind.
    void SetHelpFile(const std::string& /*path*/) override {}
    void SetEnabled(std::string_view control, bool isEnabled) override;
    bool IsEnabled(std::string_view control) const override;
    void SetFocus(std::string_view control) override;
    std::string Text(std::string_view control) const override;
    void SetText(std::string_view control, const std::string& text) override;
    bool IsChecked(std::string_view control) const override;
    void SetChecked(std::string_view control, bool isChecked) override;
    void SetItems(std::string_view control, const std::vector<std::string>& items) override;
    std::optional<std::size_t> Selected(std::string_view control) const override;
    void Select(std::string_view control, std::optional<std::size_t> index) override;
    void Bind(std::string_view control, std::shared_ptr<const ListSource> rows) override;
    std::string AskForFile(std::string_view control, const FileQuestion& question) override;

private:
    std::string Tag() const override;
    void SetCaption(const std::string& caption) override;
    /// The office's dialog units follow its own font.
    void SetFont(const DialogFont& /*font*/) override {}
    bool IsRightToLeft() const override { return isRightToLeft_; }
    std::vector<FormControl*> Controls() const override;

    void MakeModel();
    void MakeWindow();
    ControlCallbacks CallbacksOf(OfficeControl& control);
    /// Raises 5 when there is none, or none of these kinds.
    OfficeControl& Find(std::string_view control, std::initializer_list<ControlKind> kinds) const;
    void OnPressed(const OfficeControl& control);
    void OnItem(OfficeControl& control);
    void OnText(OfficeControl& control);
    void OnFocus(OfficeControl& control);
    void CommitSearches();

    OfficeWindows& windows_;
    const FormDesign& design_;
    bool isRightToLeft_;
    DialogEvents& events_;
    com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet> model_;
    com::sun::star::uno::Reference<com::sun::star::awt::XControl> window_;
    std::vector<std::unique_ptr<OfficeControl>> controls_;
    std::vector<rtl::Reference<ControlListener>> listeners_;
    OfficeControl* focused_ = nullptr; ///< the control that had the focus last
    int ownChanges_ = 0;               ///< above 0 while the program changes a control
    bool isShown_ = false;
    bool isHidden_ = false; ///< the program ended it
};

} // namespace qel::office
