#include "engine/storage/AggregateTable.h"

#include <algorithm>
#include <utility>

namespace qel::engine {

namespace {

/// `count` elements starting at `first`.
template <class T>
const T* Elements(const MappedSection& section, std::uint64_t first, std::uint64_t count) {
    return reinterpret_cast<const T*>(section.Bytes(first * sizeof(T), count * sizeof(T)));
}

} // namespace

void AggregateKey::Add(std::uint16_t column, KeyRange codes) {
    if (firstColumn == noColumn) {
        firstColumn = column;
        first = codes;
        return;
    }
    secondColumn = column;
    second = codes;
    if (secondColumn < firstColumn) {
        std::swap(firstColumn, secondColumn);
        std::swap(first, second);
    }
}

std::uint64_t AggregateKey::Hash() const {
    constexpr std::uint64_t spread = 0x9E3779B97F4A7C15U;
    const auto mix = [](std::uint64_t hash, std::uint64_t value) {
        hash = (hash ^ value) * spread;
        return hash ^ (hash >> 29U);
    };
    const auto bits = [](KeyRange range) { return std::uint64_t{range.first} << 32U | range.last; };
    std::uint64_t hash = mix(0, std::uint64_t{firstColumn} << 16U | secondColumn);
    hash = mix(hash, bits(first));
    return mix(hash, bits(second));
}

const Aggregate* AggregateTable::Find(const AggregateKey& key) const {
    // The table is half empty: a search that takes longer is in a forged one, and the facts have the answer,
    // too.
    constexpr std::uint64_t longestSearch = 4096;
    const std::uint64_t slots = lookup_.Size() / sizeof(std::uint32_t); // a power of two, or 0
    std::uint64_t slot = key.Hash();
    for (std::uint64_t tried = 0; tried < std::min(slots, longestSearch); ++tried, ++slot) {
        const std::uint32_t numberPlusOne = *Elements<std::uint32_t>(lookup_, slot & (slots - 1), 1);
        if (numberPlusOne == 0) {
            return nullptr;
        }
        const Aggregate& aggregate = At(numberPlusOne - 1);
        if (aggregate.key == key) {
            return &aggregate;
        }
    }
    return nullptr;
}

const Aggregate& AggregateTable::At(std::uint64_t index) const {
    return *Elements<Aggregate>(records_, index, 1);
}

AggregateTable::PrefixIndex AggregateTable::PrefixIndexOf(std::uint64_t first, std::uint64_t count) const {
    return {Elements<std::uint32_t>(packedKeys_, first, count),
            Elements<std::uint64_t>(bucketMasks_, first, count),
            Elements<std::uint32_t>(prefixStarts_, first, count + 1)};
}

const std::byte* AggregateTable::Sums(std::size_t measure, std::uint64_t first, std::uint64_t count) const {
    const std::uint64_t width = sumWidths_[measure];
    return sums_[measure].Bytes(first * width, count * width);
}

const std::uint32_t* AggregateTable::Counts(std::uint64_t first, std::uint64_t count) const {
    return Elements<std::uint32_t>(counts_, first, count);
}

} // namespace qel::engine
