#pragma once

#include <com/sun/star/sheet/XVolatileResult.hpp>
#include <cppuhelper/implbase1.hxx>
#include <functional>
#include <mutex>
#include <vector>

namespace qel::calc {

/// A result that comes later, as Calc takes it: Calc listens to it in place of the cells that show it. Safe
/// for any number of threads.
class AsyncResult : public cppu::WeakImplHelper1<com::sun::star::sheet::XVolatileResult> {
public:
    using Any = com::sun::star::uno::Any;
    using Listener = com::sun::star::uno::Reference<com::sun::star::sheet::XResultListener>;

    /// `onNoListener` is told when the last listener has left.
    explicit AsyncResult(std::function<void()> onNoListener) : onNoListener_(std::move(onNoListener)) {}

    void SAL_CALL addResultListener(const Listener& listener) override;
    void SAL_CALL removeResultListener(const Listener& listener) override;

    bool HasListeners() const;
    /// Tells the value to every listener that does not have it already. Called on the office's main thread,
    /// with no lock held: the cells may ask again while they are told.
    void Tell(const Any& value);

private:
    struct Told {
        Listener listener;
        Any value; ///< void before the first one
    };

    std::function<void()> onNoListener_;
    mutable std::mutex mutex_;
    std::vector<Told> listeners_;
};

/// What a cell shows as #VALUE!.
com::sun::star::uno::Any NoValue();

} // namespace qel::calc
