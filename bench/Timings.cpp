#include "bench/Timings.h"

#include <algorithm>
#include <numeric>

namespace qel::bench {

void Timings::Take(std::size_t number, double microseconds, std::size_t allocations) {
    double& best = best_.at(number);
    best = best == 0 ? microseconds : std::min(best, microseconds);
    allocations_ += allocations;
    ++measured_;
}

double Timings::Quantile(double share) const {
    std::vector<double> sorted = best_;
    std::sort(sorted.begin(), sorted.end());
    const auto index = static_cast<std::size_t>(share * static_cast<double>(sorted.size()));
    return sorted.at(std::min(index, sorted.size() - 1));
}

double Timings::Total() const { return std::accumulate(best_.begin(), best_.end(), 0.0); }

} // namespace qel::bench
