#include "bench/Timings.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace qel::bench {

double Timings::Quantile(double share) const {
    if (microseconds_.empty()) {
        throw std::logic_error("Nothing was measured.");
    }
    std::vector<double> sorted = microseconds_;
    std::sort(sorted.begin(), sorted.end());
    const auto index = static_cast<std::size_t>(share * static_cast<double>(sorted.size()));
    return sorted[std::min(index, sorted.size() - 1)];
}

double Timings::CallsPerSecond() const {
    const double total = std::accumulate(microseconds_.begin(), microseconds_.end(), 0.0);
    return static_cast<double>(microseconds_.size()) * 1e6 / total;
}

} // namespace qel::bench
