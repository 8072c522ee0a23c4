#include "tests/helpers/FailingAllocation.h"

#include <optional>

// Linked to the server's objects: the tests let an allocation of that DLL fail, and none of their own.

namespace {

std::optional<qel::test::FailingAllocation>& Failing() {
    static std::optional<qel::test::FailingAllocation> failing;
    return failing;
}

} // namespace

extern "C" {

__declspec(dllexport) void FailAllocation(std::size_t number) { Failing().emplace(number); }
__declspec(dllexport) void EndFailing() { Failing().reset(); }
__declspec(dllexport) bool HasAllocationFailed() { return qel::test::FailingAllocation::HasFailed(); }
__declspec(dllexport) std::size_t CountLivingAllocations() { return qel::test::LivingAllocations(); }
}
