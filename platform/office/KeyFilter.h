#pragma once

#include <com/sun/star/awt/XExtendedToolkit.hpp>
#include <com/sun/star/awt/XKeyHandler.hpp>
#include <cppuhelper/implbase1.hxx>
#include <functional>
#include <rtl/ref.hxx>

namespace qel::office {

/// Sees every key of the office before its windows do. `takes` is true for a key that no window shall get.
class KeyFilter : public cppu::WeakImplHelper1<com::sun::star::awt::XKeyHandler> {
public:
    using Takes = std::function<bool(sal_Int16 key)>;

    explicit KeyFilter(Takes takes) : takes_(std::move(takes)) {}

    sal_Bool SAL_CALL keyPressed(const com::sun::star::awt::KeyEvent& event) override;
    sal_Bool SAL_CALL keyReleased(const com::sun::star::awt::KeyEvent& /*event*/) override { return false; }
    void SAL_CALL disposing(const com::sun::star::lang::EventObject& /*event*/) override {}

private:
    Takes takes_;
};

/// While it lives, a filter sees the office's keys.
class FilteredKeys {
public:
    using Toolkit = com::sun::star::uno::Reference<com::sun::star::awt::XExtendedToolkit>;

    FilteredKeys(const Toolkit& toolkit, KeyFilter::Takes takes);
    ~FilteredKeys();
    FilteredKeys(const FilteredKeys&) = delete;
    FilteredKeys& operator=(const FilteredKeys&) = delete;

private:
    Toolkit toolkit_;
    rtl::Reference<KeyFilter> filter_;
};

} // namespace qel::office
