#include "engine/build/RecordSorter.h"

#include "engine/build/Distribution.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qel::engine {

namespace {

/// Records that are sorted by comparing; more are distributed by some bits of their key first.
constexpr unsigned fewBits = 12;
constexpr std::size_t few = std::size_t{1} << fewBits;
constexpr unsigned mostKeyBits = 64 - fewBits; // beside a record's number
constexpr unsigned digitBits = 9;

/// The next lower bits of a key, of which `bits` are left.
struct Digit {
    unsigned bits = 0, shift = 0;

    Digit(unsigned left, std::uint64_t records) {
        while (bits < left && bits < digitBits && (std::uint64_t{1} << bits) < records) {
            ++bits;
        }
        shift = left - bits;
    }
    std::size_t Count() const { return std::size_t{1} << bits; }
    std::size_t Of(std::uint64_t key) const { return static_cast<std::size_t>(key >> shift) & (Count() - 1); }
};

} // namespace

RecordSorter::RecordSorter(const CubeModel& model, const RecordLayout& layout, SpillStore& store)
    : model_(model), layout_(layout), store_(store),
      mostBytes_(std::max<std::uint64_t>(store.Memory() / 14, 2 * layout.size)), places_(few) {}

/// The last columns first: what does not fit into one number is sorted before, as all sorting is stable.
std::vector<RecordSorter::SortKey> RecordSorter::SortKeys(std::span<const std::uint16_t> keyColumns) const {
    std::vector<SortKey> keys(1);
    for (auto column = keyColumns.rbegin(); column != keyColumns.rend(); ++column) {
        const unsigned bits = model_.keyColumns[*column].Bits();
        if (keys.back().bits + bits > mostKeyBits) {
            keys.emplace_back();
        }
        keys.back().parts.push_back({layout_.keys[*column], keys.back().bits});
        keys.back().bits += bits;
    }
    return keys;
}

void RecordSorter::Sort(const RecordSource& source, std::span<const std::uint16_t> keyColumns,
                        const Sink& sink) {
    const std::vector<SortKey> keys = SortKeys(keyColumns);
    if (keys.size() == 1) {
        SortBy(keys.front(), keys.front().bits, source, sink);
        return;
    }
    ByteStream sorted(store_);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        ByteStream next(store_);
        const Sink toNext = [&next](std::span<const std::byte> records) { next.Append(records); };
        SortBy(keys[i], keys[i].bits, i == 0 ? source : RecordSource(sorted),
               i + 1 == keys.size() ? sink : toNext);
        next.Finish();
        sorted = std::move(next);
    }
}

void RecordSorter::SortBy(const SortKey& key, unsigned bits, const RecordSource& source, const Sink& sink) {
    if (source.Bytes() <= mostBytes_) {
        const auto bytes = static_cast<std::size_t>(source.Bytes());
        records_.resize(std::max(records_.size(), bytes));
        spare_.resize(records_.size());
        const auto records = std::span(records_).first(bytes);
        RecordSource::Reader(source).Next(records);
        SortInMemory(key, bits, records, std::span(spare_).first(bytes), sink);
        return;
    }
    if (bits == 0) {
        source.ForEach(layout_.size, sink);
        return;
    }
    const Digit digit(bits, mostBytes_ / layout_.size);
    const Distribution parts(source, layout_.size, digit.Count(), mostBytes_, store_,
                             [&](const std::byte* record) { return digit.Of(key.Of(record)); });
    for (std::size_t i = 0; i < digit.Count(); ++i) {
        SortBy(key, digit.shift, parts.Group(i), sink);
    }
}

void RecordSorter::SortInMemory(const SortKey& key, unsigned bits, std::span<std::byte> records,
                                std::span<std::byte> spare, const Sink& sink) {
    const std::size_t count = records.size() / layout_.size;
    if (bits == 0 || count < 2) {
        sink(records);
        return;
    }
    if (count <= few) {
        SortFew(key, bits, records, spare, sink);
        return;
    }
    const Digit digit(bits, count);
    std::vector<std::size_t> starts(digit.Count() + 1);
    DistributeInMemory(
        records, layout_.size, [&](const std::byte* record) { return digit.Of(key.Of(record)); }, starts,
        spare.data());
    for (std::size_t i = 0; i < digit.Count(); ++i) {
        const std::size_t first = starts[i] * layout_.size, bytes = starts[i + 1] * layout_.size - first;
        SortInMemory(key, digit.shift, spare.subspan(first, bytes), records.subspan(first, bytes), sink);
    }
}

void RecordSorter::SortFew(const SortKey& key, unsigned bits, std::span<const std::byte> records,
                           std::span<std::byte> spare, const Sink& sink) {
    const std::size_t count = records.size() / layout_.size;
    const std::uint64_t mask = (std::uint64_t{1} << bits) - 1;
    for (std::size_t i = 0; i < count; ++i) {
        places_[i] = (key.Of(&records[i * layout_.size]) & mask) << fewBits | i;
    }
    std::sort(places_.begin(), places_.begin() + static_cast<std::ptrdiff_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(&spare[i * layout_.size], &records[(places_[i] & (few - 1)) * layout_.size],
                    layout_.size);
    }
    sink(spare);
}

} // namespace qel::engine
