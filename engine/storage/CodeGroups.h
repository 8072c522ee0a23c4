#pragma once

#include "engine/storage/Ranges.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qel::engine {

/// The sets of codes that consist of several ranges ("groups"), ascending and distinct. In an aggregate's key
/// a single range stands for itself, and {number, 0} stands for the group of that number. This is a view of
/// file data: safe to compare, not to be used as an index unchecked.
class CodeGroups {
public:
    CodeGroups() = default;
    /// Group n is the ranges from starts[n] up to starts[n + 1]; starts ascend from 0 to the number of
    /// ranges.
    CodeGroups(std::span<const std::uint32_t> starts, std::span<const KeyRange> ranges)
        : starts_(starts), ranges_(ranges) {}

    std::size_t Count() const { return starts_.empty() ? 0 : starts_.size() - 1; }
    static bool IsGroup(KeyRange codes) { return codes.last == 0; }
    /// The set that `codes` stands for, valid as long as `codes` is; empty for a group that does not exist.
    std::span<const KeyRange> Ranges(const KeyRange& codes) const;
    /// The group of exactly these ranges in key form; nothing when there is none.
    std::optional<KeyRange> Find(std::span<const KeyRange> ranges) const;

private:
    std::span<const KeyRange> At(std::size_t number) const {
        return ranges_.subspan(starts_[number], starts_[number + 1] - starts_[number]);
    }

    std::span<const std::uint32_t> starts_;
    std::span<const KeyRange> ranges_;
};

} // namespace qel::engine
