#pragma once

#include <com/sun/star/awt/XActionListener.hpp>
#include <com/sun/star/awt/XControl.hpp>
#include <com/sun/star/awt/XFocusListener.hpp>
#include <com/sun/star/awt/XItemListener.hpp>
#include <com/sun/star/awt/XTextListener.hpp>
#include <cppuhelper/implbase4.hxx>
#include <functional>

namespace qel::office {

/// Events of an office control: pressed, item or state changed, text edited, focus gained.
struct ControlCallbacks {
    std::function<void()> onPressed, onItem, onText, onFocus;
};

using ControlListenerInterfaces =
    cppu::WeakImplHelper4<com::sun::star::awt::XActionListener, com::sun::star::awt::XItemListener,
                          com::sun::star::awt::XTextListener, com::sun::star::awt::XFocusListener>;

/// Passes a control's events on until Silence. No exception leaves it.
class ControlListener : public ControlListenerInterfaces {
public:
    explicit ControlListener(ControlCallbacks callbacks) : callbacks_(std::move(callbacks)) {}

    /// Subscribes to all events of the control.
    void ListenTo(const com::sun::star::uno::Reference<com::sun::star::awt::XControl>& control);
    void Silence() { callbacks_ = {}; }

    void SAL_CALL actionPerformed(const com::sun::star::awt::ActionEvent& event) override;
    void SAL_CALL itemStateChanged(const com::sun::star::awt::ItemEvent& event) override;
    void SAL_CALL textChanged(const com::sun::star::awt::TextEvent& event) override;
    void SAL_CALL focusGained(const com::sun::star::awt::FocusEvent& event) override;
    void SAL_CALL focusLost(const com::sun::star::awt::FocusEvent& /*event*/) override {}
    void SAL_CALL disposing(const com::sun::star::lang::EventObject& /*event*/) override {}

private:
    ControlCallbacks callbacks_;
};

} // namespace qel::office
