#pragma once

#include <chrono>
#include <vector>

namespace qel::bench {

/// How long single calls took, in microseconds.
class Timings {
public:
    /// Runs and times one call.
    template <class Call>
    auto Measure(const Call& call) {
        const auto start = std::chrono::steady_clock::now();
        auto result = call();
        const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - start;
        microseconds_.push_back(elapsed.count());
        return result;
    }

    /// `share` 0.5 is the median. Raises std::logic_error when nothing was measured.
    double Quantile(double share) const;
    double CallsPerSecond() const;

private:
    std::vector<double> microseconds_;
};

} // namespace qel::bench
