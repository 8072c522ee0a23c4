#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qel::engine {

/// Writes a cube's description: little-endian numbers, texts preceded by their length.
class ByteWriter {
public:
    template <class Number>
    void Put(Number value) {
        static_assert(std::is_integral_v<Number>);
        const auto* const first = reinterpret_cast<const std::byte*>(&value);
        bytes_.insert(bytes_.end(), first, first + sizeof value);
    }
    void PutText(std::string_view text) {
        Put(static_cast<std::uint32_t>(text.size()));
        const auto* const first = reinterpret_cast<const std::byte*>(text.data());
        bytes_.insert(bytes_.end(), first, first + text.size());
    }
    std::span<const std::byte> Bytes() const { return bytes_; }

private:
    std::vector<std::byte> bytes_;
};

/// Reads what ByteWriter wrote. Past the end every value is zero or empty and Failed() stays true.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::byte> bytes) : rest_(bytes) {}

    template <class Number>
    Number Get() {
        static_assert(std::is_integral_v<Number>);
        Number value = 0;
        if (Has(sizeof value)) {
            std::memcpy(&value, rest_.data(), sizeof value);
            rest_ = rest_.subspan(sizeof value);
        }
        return value;
    }
    std::string GetText() {
        const auto size = Get<std::uint32_t>();
        if (!Has(size)) {
            return {};
        }
        std::string text(reinterpret_cast<const char*>(rest_.data()), size);
        rest_ = rest_.subspan(size);
        return text;
    }
    /// The count of elements that follow, at least `smallest` bytes each. Fails when the remaining bytes
    /// cannot hold them, so a damaged count never causes a large allocation.
    std::uint32_t GetCount(std::size_t smallest) {
        const auto count = Get<std::uint32_t>();
        return Has(std::size_t{count} * smallest) ? count : 0;
    }
    bool AtEnd() const { return rest_.empty(); }
    bool Failed() const { return failed_; }

private:
    bool Has(std::size_t size) {
        failed_ = failed_ || rest_.size() < size;
        return !failed_;
    }

    std::span<const std::byte> rest_;
    bool failed_ = false;
};

} // namespace qel::engine
