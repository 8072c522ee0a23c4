#pragma once

#include "engine/storage/Ranges.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qel::engine {

/// The sets of several ranges of codes that aggregates are of, ascending, none twice. An aggregate's key has
/// a range where its set is that range, and {number, 0} where it is the group of that number. A view; what it
/// reads is safe to compare and not safe to index with.
class CodeGroups {
public:
    CodeGroups() = default;
    /// Group n is the ranges from places[n] up to places[n + 1]; places ascend from 0 to the number of
    /// ranges.
    CodeGroups(std::span<const std::uint32_t> places, std::span<const KeyRange> ranges)
        : places_(places), ranges_(ranges) {}

    std::size_t Count() const { return places_.empty() ? 0 : places_.size() - 1; }
    static bool IsGroup(KeyRange codes) { return codes.last == 0; }
    /// The set that a key names, which must outlive the answer; empty for a group that does not exist.
    std::span<const KeyRange> Ranges(const KeyRange& codes) const;
    /// What a key has for this set; nothing when it is no group of these.
    std::optional<KeyRange> Find(std::span<const KeyRange> ranges) const;

private:
    std::span<const KeyRange> At(std::size_t number) const {
        return ranges_.subspan(places_[number], places_[number + 1] - places_[number]);
    }

    std::span<const std::uint32_t> places_;
    std::span<const KeyRange> ranges_;
};

} // namespace qel::engine
