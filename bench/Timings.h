#pragma once

#include "bench/Allocations.h"

#include <chrono>
#include <cstddef>
#include <vector>

namespace qel::bench {

/// Times of the calls of one workload, in microseconds: each call's fastest time over several rounds, because
/// other load only slows it down.
class Timings {
public:
    explicit Timings(std::size_t calls) : best_(calls) {}

    /// Runs and times one call.
    template <class Call>
    auto Measure(std::size_t number, const Call& call) {
        const std::size_t allocations = AllocationsSoFar();
        const auto start = std::chrono::steady_clock::now();
        auto result = call();
        const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - start;
        Take(number, elapsed.count(), AllocationsSoFar() - allocations);
        return result;
    }

    /// `share` 0.5 is the median.
    double Quantile(double share) const;
    double Total() const;
    double CallsPerSecond() const { return static_cast<double>(best_.size()) * 1e6 / Total(); }
    /// The average.
    double AllocationsPerCall() const {
        return static_cast<double>(allocations_) / static_cast<double>(measured_);
    }

private:
    void Take(std::size_t number, double microseconds, std::size_t allocations);

    std::vector<double> best_; ///< 0: not run yet
    std::size_t allocations_ = 0, measured_ = 0;
};

} // namespace qel::bench
