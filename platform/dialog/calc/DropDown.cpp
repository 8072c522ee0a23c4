#include "platform/dialog/calc/DropDown.h"

#include <com/sun/star/accessibility/AccessibleRole.hpp>
#include <com/sun/star/accessibility/AccessibleStateType.hpp>
#include <com/sun/star/accessibility/XAccessible.hpp>
#include <com/sun/star/accessibility/XAccessibleAction.hpp>
#include <com/sun/star/accessibility/XAccessibleStateSet.hpp>
#include <com/sun/star/awt/XTextComponent.hpp>

namespace qel::office {

namespace accessibility = com::sun::star::accessibility;
namespace uno = com::sun::star::uno;

namespace {

uno::Reference<accessibility::XAccessibleContext> ContextOf(const DropDown::Control& control) {
    const uno::Reference<accessibility::XAccessible> accessible(control, uno::UNO_QUERY);
    return accessible.is() ? accessible->getAccessibleContext()
                           : uno::Reference<accessibility::XAccessibleContext>();
}

} // namespace

bool DropDown::IsOpen() const {
    const auto context = ContextOf(control_);
    for (sal_Int32 i = 0; context.is() && i < context->getAccessibleChildCount(); ++i) {
        const auto part = context->getAccessibleChild(i)->getAccessibleContext();
        if (part->getAccessibleRole() == accessibility::AccessibleRole::LIST) {
            return part->getAccessibleStateSet()->contains(accessibility::AccessibleStateType::SHOWING);
        }
    }
    return false;
}

void DropDown::Open(std::size_t rows) {
    if (IsOpen()) {
        if (rows == rows_) {
            return;
        }
        Toggle();
    }
    rows_ = rows;
    const uno::Reference<com::sun::star::awt::XTextComponent> text(control_, uno::UNO_QUERY_THROW);
    const auto cursor = text->getSelection();
    Toggle();
    text->setSelection(cursor); // all of it is selected now
}

void DropDown::Close() {
    if (IsOpen()) {
        Toggle();
    }
}

void DropDown::Toggle() const {
    const uno::Reference<accessibility::XAccessibleAction> box(ContextOf(control_), uno::UNO_QUERY);
    if (box.is() && box->getAccessibleActionCount() > 0) {
        box->doAccessibleAction(0);
    }
}

} // namespace qel::office
