#pragma once

#include <cstdint>

namespace qel::ledger {

/// A small random generator (SplitMix64) that gives the same numbers on every machine; the standard library's
/// distributions differ between implementations.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Next() {
        state_ += 0x9E3779B97F4A7C15ULL;
        std::uint64_t bits = state_;
        bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9ULL;
        bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBULL;
        return bits ^ (bits >> 31U);
    }

    /// From 0 to `count` - 1, for a `count` of at least 1.
    std::uint64_t Below(std::uint64_t count) { return Next() % count; }

    /// From `low` to `high`, inclusive.
    std::int64_t Between(std::int64_t low, std::int64_t high) {
        return low + static_cast<std::int64_t>(Below(static_cast<std::uint64_t>(high - low) + 1));
    }

private:
    std::uint64_t state_;
};

} // namespace qel::ledger
