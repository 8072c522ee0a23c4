#pragma once

#include <cstddef>

namespace qel::bench {

/// How often this thread has taken memory from the heap, by `new` and all that is built on it.
std::size_t AllocationsSoFar();

} // namespace qel::bench
