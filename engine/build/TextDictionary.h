#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::engine {

/// Distinct texts, numbered in the order they are added.
class TextDictionary {
public:
    TextDictionary() : slots_(16) {}

    /// The text's number; a new text gets the next one.
    std::uint32_t Add(std::string_view text);
    std::optional<std::uint32_t> Find(std::string_view text) const;
    std::string_view Text(std::uint32_t number) const {
        return std::string_view(bytes_).substr(offsets_[number], offsets_[number + 1] - offsets_[number]);
    }
    /// The length of all texts together.
    std::uint64_t Bytes() const { return offsets_.back(); }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(offsets_.size() - 1); }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t numberPlusOne = 0; ///< 0: free
    };

    /// The slot that holds the text, or the free slot for it.
    std::size_t SlotOf(std::string_view text, std::uint32_t hash) const;
    void Grow();

    std::string bytes_;
    std::vector<std::uint64_t> offsets_{0};
    std::vector<Slot> slots_;
};

} // namespace qel::engine
