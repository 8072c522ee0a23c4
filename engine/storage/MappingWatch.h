#pragma once

#include <cstddef>
#include <span>

namespace qel::engine {

struct WatchedMapping;

/// While it lives, bytes of a mapping that its file no longer has (another program cut it short, the network
/// or the disk failed) read as zeros instead of ending the process with a bus error.
class MappingWatch {
public:
    /// `mapping` starts at a page of memory, is not empty and outlives the watch.
    explicit MappingWatch(std::span<const std::byte> mapping);
    ~MappingWatch();
    MappingWatch(const MappingWatch&) = delete;
    MappingWatch& operator=(const MappingWatch&) = delete;

    /// True from the first such byte that was read.
    bool HasLostBytes() const;

private:
    WatchedMapping* mapping_; ///< never null; belongs to the process
};

} // namespace qel::engine
