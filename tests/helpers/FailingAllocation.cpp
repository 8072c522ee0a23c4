#include "tests/helpers/FailingAllocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

// Replaces the global operators; a sanitizer's other forms would not call these. Not to be compiled together
// with others: GCC must not know the replacement where it compiles calls.

static std::atomic<std::size_t> living = 0, left = 0;

// NOLINTBEGIN(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory): operator new is the lowest layer

void* operator new(std::size_t size) {
    std::size_t before = left;
    while (before > 0 && !left.compare_exchange_weak(before, before - 1)) {
    }
    void* const memory = before == 1 ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    ++living;
    return memory;
}
void operator delete(void* memory) noexcept {
    living -= memory == nullptr ? 0U : 1U;
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { operator delete(memory); }
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { operator delete(memory); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
// NOLINTEND(cppcoreguidelines-no-malloc, cppcoreguidelines-owning-memory)

namespace qel::test {

FailingAllocation::FailingAllocation(std::size_t number) { left = number; }
FailingAllocation::~FailingAllocation() { left = 0; }
bool FailingAllocation::HasFailed() { return left == 0; }
std::size_t LivingAllocations() { return living; }

} // namespace qel::test
