#pragma once

#include <com/sun/star/awt/XTopWindowListener.hpp>
#include <cppuhelper/implbase1.hxx>
#include <functional>

namespace qel::office {

/// Tells when a person closes a window that no one waits for. No exception leaves it.
class CloseListener : public cppu::WeakImplHelper1<com::sun::star::awt::XTopWindowListener> {
public:
    explicit CloseListener(std::function<void()> closed) : closed_(std::move(closed)) {}

    void Silence() { closed_ = {}; }

    void SAL_CALL windowClosing(const com::sun::star::lang::EventObject& event) override;
    void SAL_CALL windowOpened(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL windowClosed(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL windowMinimized(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL windowNormalized(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL windowActivated(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL windowDeactivated(const com::sun::star::lang::EventObject& /*event*/) override {}
    void SAL_CALL disposing(const com::sun::star::lang::EventObject& /*event*/) override {}

private:
    std::function<void()> closed_;
};

} // namespace qel::office
