#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/dialog/calc/SearchBox.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <memory>

namespace qel::office {

/// One control of a dialog, by its model: what it shows and holds. The office's window follows the model.
class OfficeControl : public FormControl {
public:
    /// Makes the model in the dialog's; none for a control that takes no place.
    OfficeControl(const com::sun::star::uno::Reference<com::sun::star::lang::XMultiServiceFactory>& dialog,
                  const FormDesign& form, std::size_t index, bool isRightToLeft);

    const ControlDesign& Design() const { return design_; }
    bool HasModel() const { return model_.is(); }
    /// Null for any other kind than a bound list.
    SearchBox* Search() const { return search_.get(); }

    std::string Content() const;
    void SetContent(const std::string& text);
    bool IsChecked() const;
    void SetChecked(bool isChecked);
    bool IsEnabled() const;
    void SetEnabled(bool isEnabled);
    /// Combo and list boxes.
    void SetItems(const std::vector<std::string>& items);
    /// Combo boxes, list boxes and bound lists.
    std::optional<std::size_t> Selected() const;
    void Select(std::optional<std::size_t> index);

    std::string GetText(TextProperty property) const override;
    void SetText(TextProperty property, const std::string& text) override;
    std::string TypeName() const override;
    /// The office's dialog units follow its own font, so the texts keep that one.
    void SetFont(const DialogFont& /*font*/) override {}
    void SetAligment(std::int32_t aligment) override;
    std::vector<FormItem*> Items() const override { return {}; }

private:
    bool HasCaption() const;
    void Set(const char* property, const com::sun::star::uno::Any& value);
    void PutInPlace(const FormDesign& form, std::size_t index);
    void MakeAsDesigned(const FormDesign& form);

    const ControlDesign& design_;
    bool isRightToLeft_;
    com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet> model_;
    std::string caption_;
    std::vector<std::string> items_;
    std::unique_ptr<SearchBox> search_;
};

} // namespace qel::office
