#pragma once

#include <cstddef>
#include <functional>
#include <pthread.h>
#include <system_error>

namespace qel::test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(NDEBUG)
#define QEL_STACK_IS_WIDENED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QEL_STACK_IS_WIDENED
#endif
#endif

#ifdef QEL_STACK_IS_WIDENED // frames of a sanitizer or a debugger are up to ten times as large
inline constexpr std::size_t smallStackBytes = std::size_t{4} << 20U;
#else
inline constexpr std::size_t smallStackBytes = std::size_t{256} << 10U;
#endif

/// Runs the function in a thread with a stack as small as those of a spreadsheet's threads may be. It raises
/// nothing.
inline void RunOnSmallStack(const std::function<void()>& function) {
    const auto check = [](int error) {
        if (error != 0) {
            throw std::system_error(error, std::generic_category());
        }
    };
    pthread_attr_t attributes;
    check(pthread_attr_init(&attributes));
    check(pthread_attr_setstacksize(&attributes, smallStackBytes));
    pthread_t thread{};
    const auto run = [](void* context) -> void* {
        (*static_cast<const std::function<void()>*>(context))();
        return nullptr;
    };
    check(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&function)));
    check(pthread_join(thread, nullptr));
    check(pthread_attr_destroy(&attributes));
}

} // namespace qel::test
