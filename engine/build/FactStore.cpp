#include "engine/build/FactStore.h"

#include "engine/build/StoredWidth.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace qel::engine {

namespace {

constexpr std::size_t blockRows = 16384;

template <class Stored, class Number>
void AppendNarrowed(const std::vector<Number>& numbers, std::vector<std::byte>& out) {
    const std::size_t start = out.size();
    out.resize(start + numbers.size() * sizeof(Stored));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto stored = static_cast<Stored>(numbers[i]);
        std::memcpy(&out[start + i * sizeof stored], &stored, sizeof stored);
    }
}

/// A byte with the width, and the numbers in that width.
void AppendColumn(const std::vector<std::uint32_t>& numbers, std::vector<std::byte>& out) {
    const std::uint32_t most = numbers.empty() ? 0 : *std::max_element(numbers.begin(), numbers.end());
    const std::uint8_t width = most <= UINT8_MAX ? 1 : most <= UINT16_MAX ? 2 : 4;
    out.push_back(std::byte{width});
    width == 1   ? AppendNarrowed<std::uint8_t>(numbers, out)
    : width == 2 ? AppendNarrowed<std::uint16_t>(numbers, out)
                 : AppendNarrowed<std::uint32_t>(numbers, out);
}

void AppendColumn(const std::vector<std::int64_t>& amounts, std::vector<std::byte>& out) {
    const auto [least, most] = std::minmax_element(amounts.begin(), amounts.end());
    const std::uint8_t width = ValueWidth(*least, *most);
    out.push_back(std::byte{width});
    width == 1   ? AppendNarrowed<std::int8_t>(amounts, out)
    : width == 2 ? AppendNarrowed<std::int16_t>(amounts, out)
    : width == 4 ? AppendNarrowed<std::int32_t>(amounts, out)
                 : AppendNarrowed<std::int64_t>(amounts, out);
}

template <class Stored, class Number>
void Widen(const std::vector<std::byte>& bytes, std::vector<Number>& numbers) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        Stored stored = 0;
        std::memcpy(&stored, &bytes[i * sizeof stored], sizeof stored);
        numbers[i] = stored;
    }
}

/// Reads a column of `rows` numbers.
std::vector<std::byte> ReadColumn(const ByteStream& stream, std::uint64_t& offset, std::size_t rows,
                                  std::uint8_t& width) {
    std::byte first{};
    stream.Read(offset, {&first, 1});
    width = static_cast<std::uint8_t>(first);
    std::vector<std::byte> bytes(rows * width);
    stream.Read(offset + 1, bytes);
    offset += 1 + bytes.size();
    return bytes;
}

} // namespace

void AmountRange::Add(std::int64_t amount, bool isFirst) {
    least = isFirst ? amount : std::min(least, amount);
    most = isFirst ? amount : std::max(most, amount);
    unit = unit == 1 ? 1 : std::gcd(unit, amount);
    sum += static_cast<std::uint64_t>(amount);
    const std::int64_t magnitude = amount < 0 ? -amount : amount; // cannot overflow: amounts have 63 bits
    isSummable = isSummable && magnitude <= rest_;
    rest_ -= isSummable ? magnitude : 0;
}

void FactStore::SetColumns(std::size_t keyColumns, const std::vector<bool>& isSummed) {
    block_.keys.resize(keyColumns);
    block_.values.resize(isSummed.size());
    isSummed_ = isSummed;
    counts_.resize(keyColumns);
    amounts_.resize(isSummed.size());
}

void FactStore::Add(std::span<const std::uint32_t> numbers, std::span<const std::int64_t> amounts) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        block_.keys[i].push_back(numbers[i]);
        if (counts_[i].size() <= numbers[i]) {
            counts_[i].resize(std::size_t{numbers[i]} + 1);
        }
        ++counts_[i][numbers[i]];
    }
    for (std::size_t i = 0; i < amounts.size(); ++i) {
        if (isSummed_[i]) {
            block_.values[i].push_back(amounts[i]);
            amounts_[i].Add(amounts[i], rowCount_ == 0);
        }
    }
    ++rowCount_;
    if (++block_.rows == blockRows) {
        StoreBlock();
    }
}

void FactStore::StoreBlock() {
    std::vector<std::byte> bytes;
    const auto rows = static_cast<std::uint32_t>(block_.rows);
    const auto rowBytes = std::as_bytes(std::span(&rows, 1));
    bytes.insert(bytes.end(), rowBytes.begin(), rowBytes.end());
    for (auto& column : block_.keys) {
        AppendColumn(column, bytes);
        column.clear();
    }
    for (auto& column : block_.values) {
        if (!column.empty()) {
            AppendColumn(column, bytes);
        }
        column.clear();
    }
    block_.rows = 0;
    stream_.Append(bytes);
}

void FactStore::Finish() {
    if (block_.rows != 0) {
        StoreBlock();
    }
    stream_.Finish();
    block_ = {};
}

std::vector<std::uint64_t> FactStore::Sums() const {
    std::vector<std::uint64_t> sums;
    for (std::size_t i = 0; i < isSummed_.size(); ++i) {
        sums.push_back(isSummed_[i] ? amounts_[i].sum : rowCount_);
    }
    return sums;
}

void FactStore::ReadBlock(std::uint64_t& offset, FactBlock& block) const {
    std::uint32_t rows = 0;
    stream_.Read(offset, std::as_writable_bytes(std::span(&rows, 1)));
    offset += sizeof rows;
    block.rows = rows;
    block.keys.resize(counts_.size());
    block.values.resize(isSummed_.size());
    std::uint8_t width = 0;
    for (auto& column : block.keys) {
        column.resize(rows);
        const auto bytes = ReadColumn(stream_, offset, rows, width);
        width == 1   ? Widen<std::uint8_t>(bytes, column)
        : width == 2 ? Widen<std::uint16_t>(bytes, column)
                     : Widen<std::uint32_t>(bytes, column);
    }
    for (std::size_t i = 0; i < block.values.size(); ++i) {
        if (!isSummed_[i]) {
            continue;
        }
        block.values[i].resize(rows);
        const auto bytes = ReadColumn(stream_, offset, rows, width);
        width == 1   ? Widen<std::int8_t>(bytes, block.values[i])
        : width == 2 ? Widen<std::int16_t>(bytes, block.values[i])
        : width == 4 ? Widen<std::int32_t>(bytes, block.values[i])
                     : Widen<std::int64_t>(bytes, block.values[i]);
    }
}

void FactStore::ForEach(const std::function<void(const FactBlock&)>& visit) const {
    FactBlock block;
    for (std::uint64_t offset = 0; offset < stream_.Size();) {
        ReadBlock(offset, block);
        visit(block);
    }
}

void FactStore::Consume(const std::function<void(const FactBlock&)>& visit) {
    FactBlock block;
    for (std::uint64_t offset = 0; offset < stream_.Size();) {
        ReadBlock(offset, block);
        stream_.ReleaseBefore(offset);
        visit(block);
    }
    stream_.Clear();
}

} // namespace qel::engine
