#include "calc/AsyncResult.h"

#include <bit>
#include <com/sun/star/uno/RuntimeException.hpp>
#include <cstdint>
#include <rtl/ref.hxx>

namespace qel::calc {

namespace uno = com::sun::star::uno;

namespace {

/// Calc stores an error's number in the low bits of a NaN.
constexpr std::uint64_t notANumber = 0x7FF8'0000'0000'0000;
constexpr std::uint64_t errorNoValue = 519;

bool IsSame(const uno::Any& left, const uno::Any& right) {
    double leftNumber = 0, rightNumber = 0;
    if ((left >>= leftNumber) && (right >>= rightNumber)) {
        return std::bit_cast<std::uint64_t>(leftNumber) == std::bit_cast<std::uint64_t>(rightNumber);
    }
    return left == right;
}

} // namespace

uno::Any NoValue() { return uno::Any(std::bit_cast<double>(notANumber | errorNoValue)); }

void AsyncResult::addResultListener(const Listener& listener) {
    const std::scoped_lock lock(mutex_);
    listeners_.push_back({listener, {}});
}

void AsyncResult::removeResultListener(const Listener& listener) {
    const rtl::Reference<AsyncResult> itself(this); // the last listener may be its last owner
    bool isLast = false;
    {
        const std::scoped_lock lock(mutex_);
        isLast = std::erase_if(listeners_, [&](const Told& told) { return told.listener == listener; }) > 0 &&
                 listeners_.empty();
    }
    if (isLast) {
        onNoListener_();
    }
}

bool AsyncResult::HasListeners() const {
    const std::scoped_lock lock(mutex_);
    return !listeners_.empty();
}

void AsyncResult::Tell(const Any& value) {
    std::vector<Listener> toTell;
    {
        const std::scoped_lock lock(mutex_);
        for (Told& told : listeners_) {
            if (IsSame(told.value, value)) {
                continue;
            }
            told.value = value;
            toTell.push_back(told.listener);
        }
    }
    com::sun::star::sheet::ResultEvent event;
    event.Source = static_cast<com::sun::star::sheet::XVolatileResult*>(this);
    event.Value = value;
    for (const Listener& listener : toTell) {
        try {
            listener->modified(event);
        } catch (const uno::RuntimeException&) { // NOLINT(bugprone-empty-catch): its document is gone
        }
    }
}

} // namespace qel::calc
