#pragma once

#include "platform/dialog/DesignedControl.h"
#include "platform/dialog/calc/SearchBox.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <memory>

namespace qel::office {

/// One control of a dialog, represented by its model. The office's window follows the model.
class OfficeControl : public DesignedControl {
public:
    /// Adds the control's model to the dialog's, unless the control is not on the form.
    OfficeControl(const com::sun::star::uno::Reference<com::sun::star::lang::XMultiServiceFactory>& dialog,
                  const FormDesign& form, std::size_t index, bool isRightToLeft);

    bool HasModel() const { return model_.is(); }
    /// Null unless the control is a bound list.
    SearchBox* Search() const { return search_.get(); }

    void SetText(TextProperty property, const std::string& text) override;
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

private:
    void ShowCaption() override;
    void AlignToFarSide(bool isFar) override;
    void Set(const char* property, const com::sun::star::uno::Any& value);
    void PutInPlace(const FormDesign& form, std::size_t index);
    void MakeAsDesigned(const FormDesign& form);
    void MakeTextBox();
    void AlignToReading();

    com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet> model_;
    std::vector<std::string> items_;
    std::unique_ptr<SearchBox> search_;
};

} // namespace qel::office
