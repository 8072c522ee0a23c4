#include "engine/build/FactStore.h"

#include "engine/build/StoredWidth.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <stdexcept>

namespace qel::engine {

namespace {

constexpr std::size_t blockRows = 16384;
constexpr std::uint8_t leastAmountWidth = 2;

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
    const std::uint8_t width = std::max(ValueWidth(*least, *most), leastAmountWidth);
    out.push_back(std::byte{width});
    width == 2   ? AppendNarrowed<std::int16_t>(amounts, out)
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

/// The bytes of a column of `rows` numbers, and their width; none when it is not well-formed.
std::vector<std::byte> ReadColumn(const ReadBytes& read, std::uint64_t& offset, std::size_t rows,
                                  std::uint8_t& width) {
    std::byte first{};
    read(offset, {&first, 1});
    width = static_cast<std::uint8_t>(first);
    if (width > sizeof(std::int64_t) || !std::has_single_bit(width)) {
        return {};
    }
    std::vector<std::byte> bytes(rows * width);
    read(offset + 1, bytes);
    offset += 1 + bytes.size();
    return bytes;
}

bool ReadNumbers(const ReadBytes& read, std::uint64_t& offset, std::vector<std::uint32_t>& numbers) {
    std::uint8_t width = 0;
    const auto bytes = ReadColumn(read, offset, numbers.size(), width);
    if (bytes.empty() || width > sizeof(std::uint32_t)) {
        return false;
    }
    width == 1   ? Widen<std::uint8_t>(bytes, numbers)
    : width == 2 ? Widen<std::uint16_t>(bytes, numbers)
                 : Widen<std::uint32_t>(bytes, numbers);
    return true;
}

bool ReadAmounts(const ReadBytes& read, std::uint64_t& offset, std::vector<std::int64_t>& amounts) {
    std::uint8_t width = 0;
    const auto bytes = ReadColumn(read, offset, amounts.size(), width);
    if (bytes.empty() || width < leastAmountWidth) {
        return false;
    }
    width == 2   ? Widen<std::int16_t>(bytes, amounts)
    : width == 4 ? Widen<std::int32_t>(bytes, amounts)
                 : Widen<std::int64_t>(bytes, amounts);
    return true;
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

bool ReadFactBlock(const ReadBytes& read, const std::vector<bool>& isSummed, std::uint64_t& offset,
                   FactBlock& block) {
    std::uint32_t rows = 0;
    read(offset, std::as_writable_bytes(std::span(&rows, 1)));
    offset += sizeof rows;
    if (rows == 0 || rows > blockRows) {
        return false;
    }
    block.rows = rows;
    for (auto& column : block.keys) {
        column.resize(rows);
        if (!ReadNumbers(read, offset, column)) {
            return false;
        }
    }
    for (std::size_t i = 0; i < block.values.size(); ++i) {
        block.values[i].resize(isSummed[i] ? rows : 0);
        if (isSummed[i] && !ReadAmounts(read, offset, block.values[i])) {
            return false;
        }
    }
    return true;
}

void FactStore::Visit(const std::function<void(const FactBlock&)>& visit,
                      const std::function<void(std::uint64_t)>& release) const {
    FactBlock block;
    block.keys.resize(counts_.size());
    block.values.resize(isSummed_.size());
    const ReadBytes read = [this](std::uint64_t offset, std::span<std::byte> bytes) {
        stream_.Read(offset, bytes);
    };
    for (std::uint64_t offset = 0; offset < stream_.Size();) {
        if (!ReadFactBlock(read, isSummed_, offset, block)) {
            throw std::logic_error("a block of facts is damaged");
        }
        release(offset);
        visit(block);
    }
}

void FactStore::ForEach(const std::function<void(const FactBlock&)>& visit) const {
    Visit(visit, [](std::uint64_t) {});
}

void FactStore::Consume(const std::function<void(const FactBlock&)>& visit) {
    Visit(visit, [this](std::uint64_t offset) { stream_.ReleaseBefore(offset); });
    stream_.Clear();
}

} // namespace qel::engine
