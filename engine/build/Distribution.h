#pragma once

#include "engine/build/Records.h"
#include "engine/build/SpillStore.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <span>
#include <vector>

namespace qel::engine {

/// Moves records to where their group's begin, in order. starts[g] is the number of the first record of group
/// g, one more than there are groups; from the last start on nothing is moved.
template <class GroupOf>
void DistributeInMemory(std::span<const std::byte> records, std::size_t size, const GroupOf& groupOf,
                        std::vector<std::size_t>& starts, std::byte* target) {
    const std::size_t groups = starts.size() - 1;
    const std::byte* const end = records.data() + records.size();
    starts.assign(groups + 1, 0);
    for (const std::byte* record = records.data(); record != end; record += size) {
        const std::size_t group = groupOf(record);
        if (group < groups) {
            ++starts[group + 1];
        }
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<std::size_t> next(starts.begin(), starts.end() - 1);
    for (const std::byte* record = records.data(); record != end; record += size) {
        const std::size_t group = groupOf(record);
        if (group < groups) {
            std::memcpy(target + next[group]++ * size, record, size);
        }
    }
}

/// Records grouped by a number, in their order within each group: in memory when they fit in `most` bytes,
/// otherwise in a stream.
class Distribution {
public:
    /// groupOf(record) is the group's number; records of others, with higher numbers, are left out.
    template <class GroupOf>
    Distribution(const RecordSource& source, std::size_t recordSize, std::size_t groups, std::uint64_t most,
                 SpillStore& store, const GroupOf& groupOf)
        : size_(recordSize), groups_(groups), stream_(store) {
        const std::uint64_t bytes = source.Bytes();
        const bool fits = bytes <= most;
        const auto atOnce = static_cast<std::size_t>(
            std::max<std::uint64_t>(1, std::min(bytes, most) / recordSize) * recordSize);
        std::vector<std::byte> from(atOnce), to(atOnce);
        RecordSource::Reader reader(source);
        for (auto records = reader.Next(from); !records.empty(); records = reader.Next(from)) {
            std::vector<std::size_t>& starts = starts_.emplace_back(groups + 1);
            DistributeInMemory(records, recordSize, groupOf, starts, to.data());
            chunkOffsets_.push_back(stream_.Size());
            if (!fits) {
                stream_.Append(std::span(to).first(starts.back() * recordSize));
            }
        }
        if (fits) {
            memory_ = std::move(to);
        }
        stream_.Finish();
    }
    /// The records of one group. Valid as long as this is.
    RecordSource Group(std::size_t group) const;
    /// The records of all groups, one after another.
    RecordSource All() const;

private:
    void AddParts(std::size_t group, std::vector<RecordSource::Part>& parts) const;

    std::size_t size_, groups_;
    std::vector<std::byte> memory_;
    ByteStream stream_;
    std::vector<std::vector<std::size_t>> starts_; ///< by chunk of the source
    std::vector<std::uint64_t> chunkOffsets_;      ///< in the stream
};

} // namespace qel::engine
