#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <future>

namespace qel::engine {

/// Calls work(i) for every i below `count`, on this thread and another one; `progress` on this thread, with
/// the share done. What either raises ends the work and reaches the caller.
inline void RunOnTwoThreads(std::size_t count, const std::function<void(std::size_t)>& work,
                            const std::function<void(double)>& progress) {
    std::atomic<std::size_t> next = 0;
    const auto run = [&](bool isCaller) {
        try {
            for (std::size_t i = next++; i < count; i = next++) {
                if (isCaller) {
                    progress(static_cast<double>(i) / static_cast<double>(count));
                }
                work(i);
            }
        } catch (...) {
            next = count;
            throw;
        }
    };
    std::future<void> other = std::async(std::launch::async, run, false);
    run(true);
    other.get();
}

} // namespace qel::engine
