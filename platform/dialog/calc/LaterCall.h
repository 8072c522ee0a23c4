#pragma once

#include <com/sun/star/awt/XCallback.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <cppuhelper/implbase1.hxx>
#include <functional>

namespace qel::office {

/// A call that the office makes when it has nothing else to do. No exception leaves it.
class LaterCall : public cppu::WeakImplHelper1<com::sun::star::awt::XCallback> {
public:
    explicit LaterCall(std::function<void()> call) : call_(std::move(call)) {}

    /// Asks for one more call.
    void Post(const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context);
    void Silence() { call_ = {}; }

    void SAL_CALL notify(const com::sun::star::uno::Any& data) override;

private:
    std::function<void()> call_;
};

} // namespace qel::office
