#include "engine/build/FactStore.h"
#include "engine/build/KeptFacts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <vector>

// Reads any bytes as the description of the facts that a cube file keeps, and as a block of facts.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace qel::engine;
    const auto bytes = std::as_bytes(std::span(data, size));
    if (const auto kept = KeptFacts::Parse(bytes)) {
        const auto again = kept->Describe();
        if (!std::equal(again.Bytes().begin(), again.Bytes().end(), bytes.begin(), bytes.end()) &&
            !KeptFacts::Parse(again.Bytes())) {
            std::abort(); // what was read can be written and read again
        }
    }
    FactBlock block;
    block.keys.resize(2);
    block.values.resize(2);
    std::uint64_t offset = 0;
    try {
        ReadFactBlock(
            [bytes](std::uint64_t from, std::span<std::byte> to) {
                if (from > bytes.size() || to.size() > bytes.size() - from) {
                    throw std::out_of_range("the bytes end");
                }
                std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(from), to.size(), to.begin());
            },
            {true, false}, offset, block);
    } catch (const std::out_of_range&) {
        return 0; // an expected error
    }
    return 0;
}
