#pragma once

#include <com/sun/star/awt/XActionListener.hpp>
#include <com/sun/star/awt/XControl.hpp>
#include <com/sun/star/awt/XFocusListener.hpp>
#include <com/sun/star/awt/XItemListener.hpp>
#include <com/sun/star/awt/XTextListener.hpp>
#include <cppuhelper/implbase4.hxx>
#include <functional>

namespace qel::office {

/// What a control of the office tells: pressed, another item or state, an edited text, the focus.
struct ControlCallbacks {
    std::function<void()> onPressed, onItem, onText, onFocus;
};

using ControlListenerInterfaces =
    cppu::WeakImplHelper4<com::sun::star::awt::XActionListener, com::sun::star::awt::XItemListener,
                          com::sun::star::awt::XTextListener, com::sun::star::awt::XFocusListener>;

/// Hands a control's events on for as long as somebody wants them. No exception leaves it.
class ControlListener : public ControlListenerInterfaces {
public:
    explicit ControlListener(ControlCallbacks callbacks) : callbacks_(std::move(callbacks)) {}

    /// Listens to everything that the control can tell.
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
