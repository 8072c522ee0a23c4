#include "engine/build/Distribution.h"

#include <utility>

namespace qel::engine {

/// Where the group's records lie in the memory or the stream.
void Distribution::AddParts(std::size_t group, std::vector<RecordSource::Part>& parts) const {
    for (std::size_t chunk = 0; chunk < starts_.size(); ++chunk) {
        const std::size_t first = starts_[chunk][group], last = starts_[chunk][group + 1];
        if (first != last) {
            parts.push_back({chunkOffsets_[chunk] + first * size_, (last - first) * size_});
        }
    }
}

RecordSource Distribution::Group(std::size_t group) const {
    std::vector<RecordSource::Part> parts;
    AddParts(group, parts);
    if (memory_.empty() || parts.empty()) {
        return {stream_, std::move(parts)};
    }
    return RecordSource(std::span(memory_).subspan(static_cast<std::size_t>(parts.front().offset),
                                                   static_cast<std::size_t>(parts.front().size)));
}

RecordSource Distribution::All() const {
    if (!memory_.empty()) {
        return RecordSource(std::span(memory_).first(starts_.empty() ? 0 : starts_.front().back() * size_));
    }
    std::vector<RecordSource::Part> parts;
    for (std::size_t group = 0; group < groups_; ++group) {
        AddParts(group, parts);
    }
    return {stream_, std::move(parts)};
}

} // namespace qel::engine
