#pragma once

#include <cstddef>
#include <span>

namespace qel::engine {

struct WatchedMapping;

/// While it lives, bytes of a mapping that the file no longer has (it was truncated, or the network or disk
/// failed) read as zeros instead of ending the process with SIGBUS.
class MappingWatch {
public:
    /// `mapping` is page-aligned, not empty, and outlives the watch.
    explicit MappingWatch(std::span<const std::byte> mapping);
    ~MappingWatch();
    MappingWatch(const MappingWatch&) = delete;
    MappingWatch& operator=(const MappingWatch&) = delete;

    /// True once such a byte was read.
    bool HasLostBytes() const;

private:
    WatchedMapping* mapping_; ///< never null; lives as long as the process
};

} // namespace qel::engine
