#include "platform/dialog/calc/ControlListener.h"

#include <com/sun/star/awt/XButton.hpp>
#include <com/sun/star/awt/XCheckBox.hpp>
#include <com/sun/star/awt/XComboBox.hpp>
#include <com/sun/star/awt/XListBox.hpp>
#include <com/sun/star/awt/XTextComponent.hpp>
#include <com/sun/star/awt/XWindow.hpp>

namespace qel::office {

namespace awt = com::sun::star::awt;
namespace uno = com::sun::star::uno;

namespace {

void Tell(const std::function<void()>& callback) {
    try {
        // The call may destroy the listener's owner, and the callback with it.
        if (const auto kept = callback) {
            kept();
        }
    } catch (...) { // NOLINT(bugprone-empty-catch): what fails in a handler is reported there
    }
}

} // namespace

void ControlListener::ListenTo(const uno::Reference<awt::XControl>& control) {
    if (const uno::Reference<awt::XButton> button(control, uno::UNO_QUERY); button.is()) {
        button->addActionListener(this);
    }
    if (const uno::Reference<awt::XCheckBox> box(control, uno::UNO_QUERY); box.is()) {
        box->addItemListener(this);
    }
    if (const uno::Reference<awt::XListBox> list(control, uno::UNO_QUERY); list.is()) {
        list->addItemListener(this);
    }
    if (const uno::Reference<awt::XComboBox> combo(control, uno::UNO_QUERY); combo.is()) {
        combo->addItemListener(this);
    }
    if (const uno::Reference<awt::XTextComponent> text(control, uno::UNO_QUERY); text.is()) {
        text->addTextListener(this);
    }
    if (const uno::Reference<awt::XWindow> window(control, uno::UNO_QUERY); window.is()) {
        window->addFocusListener(this);
    }
}

void ControlListener::actionPerformed(const awt::ActionEvent& /*event*/) { Tell(callbacks_.onPressed); }

void ControlListener::itemStateChanged(const awt::ItemEvent& /*event*/) { Tell(callbacks_.onItem); }

void ControlListener::textChanged(const awt::TextEvent& /*event*/) { Tell(callbacks_.onText); }

void ControlListener::focusGained(const awt::FocusEvent& /*event*/) { Tell(callbacks_.onFocus); }

} // namespace qel::office
