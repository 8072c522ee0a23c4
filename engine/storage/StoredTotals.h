#pragma once

#include <xxhash.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <unordered_map>
#include <vector>

namespace qel::engine {

/// What an aggregate stores by packed key and time bucket, from which its facts are taken away. Sums wrap
/// around on overflow.
class StoredTotals {
public:
    explicit StoredTotals(std::size_t measures) : sums_(measures) {}

    void Reserve(std::size_t count) { places_.reserve(count); }
    /// Adds a packed key and bucket with zeros. Returns its index.
    std::size_t Add(std::uint32_t key, std::uint32_t bucket) {
        places_.emplace(PlaceOf(key, bucket), facts_.size());
        facts_.push_back(0);
        rows_.push_back(0);
        for (std::vector<std::uint64_t>& sums : sums_) {
            sums.push_back(0);
        }
        return facts_.size() - 1;
    }
    void AddRows(std::size_t index, std::uint64_t rows) { rows_[index] += rows; }
    void AddValue(std::size_t index, std::size_t measure, std::uint64_t value) {
        sums_[measure][index] += value;
    }

    /// The index of a packed key and bucket, counted as having facts; nullopt when they are not stored.
    std::optional<std::size_t> Take(std::uint32_t key, std::uint32_t bucket, std::uint64_t rows) {
        const auto found = places_.find(PlaceOf(key, bucket));
        if (found == places_.end()) {
            return std::nullopt;
        }
        ++facts_[found->second];
        rows_[found->second] -= rows;
        return found->second;
    }
    void TakeValue(std::size_t index, std::size_t measure, std::uint64_t value) {
        sums_[measure][index] -= value;
    }
    /// Takes away finer totals, whose packed keys are masked. False when one is not stored.
    bool TakeAll(const StoredTotals& finer, std::uint32_t kept) {
        return std::all_of(finer.places_.begin(), finer.places_.end(), [&](const auto& place) {
            const auto index = Take(static_cast<std::uint32_t>(place.first >> 32U) & kept,
                                    static_cast<std::uint32_t>(place.first), finer.rows_[place.second]);
            for (std::size_t measure = 0; index && measure < sums_.size(); ++measure) {
                TakeValue(*index, measure, finer.sums_[measure][place.second]);
            }
            return index.has_value();
        });
    }
    /// Whether everything had facts and nothing is left.
    bool IsUsedUp(bool withRows) const {
        const auto areZero = [](const std::vector<std::uint64_t>& numbers) {
            return std::all_of(numbers.begin(), numbers.end(), [](std::uint64_t left) { return left == 0; });
        };
        return std::find(facts_.begin(), facts_.end(), 0U) == facts_.end() && (!withRows || areZero(rows_)) &&
               std::all_of(sums_.begin(), sums_.end(), areZero);
    }

private:
    /// A forged file could choose its places so that they share a hash which it knows.
    struct SeededHash {
        std::size_t operator()(std::uint64_t place) const {
            static const std::uint64_t seed = std::random_device()();
            return static_cast<std::size_t>(XXH3_64bits_withSeed(&place, sizeof place, seed));
        }
    };

    static std::uint64_t PlaceOf(std::uint32_t key, std::uint32_t bucket) {
        return std::uint64_t{key} << 32U | bucket;
    }

    std::unordered_map<std::uint64_t, std::size_t, SeededHash> places_;
    std::vector<std::uint64_t> facts_, rows_;
    std::vector<std::vector<std::uint64_t>> sums_; ///< by measure
};

} // namespace qel::engine
