#pragma once

#include <cstddef>

namespace qel::bench {

/// The number of heap allocations of this thread, by `new` and everything based on it.
std::size_t AllocationsSoFar();

} // namespace qel::bench
