#pragma once

#include <cstddef>

namespace qel::test {

/// While it lives, one allocation of the program fails: the n-th from now on, from 1.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether there were so many.
    static bool HasFailed();
};

/// How many allocations have not been freed.
std::size_t LivingAllocations();

} // namespace qel::test
