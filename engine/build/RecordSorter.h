#pragma once

#include "engine/build/Records.h"
#include "engine/build/SpillStore.h"
#include "engine/storage/CubeModel.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace qel::engine {

/// Sorts records by key columns, stably, in a part of the build's memory.
class RecordSorter {
public:
    /// Receives sorted records, some after another.
    using Sink = std::function<void(std::span<const std::byte> records)>;

    RecordSorter(const CubeModel& model, const RecordLayout& layout, SpillStore& store);

    void Sort(const RecordSource& source, std::span<const std::uint16_t> keyColumns, const Sink& sink);

private:
    /// Key columns joined to one number, the first one in the highest bits.
    struct SortKey {
        struct Part {
            RecordLayout::KeyField key;
            unsigned shift = 0;
        };
        std::vector<Part> parts;
        unsigned bits = 0;

        std::uint64_t Of(const std::byte* record) const {
            std::uint64_t number = 0;
            for (const Part& part : parts) {
                number |= std::uint64_t{part.key.Code(record)} << part.shift;
            }
            return number;
        }
    };

    std::vector<SortKey> SortKeys(std::span<const std::uint16_t> keyColumns) const;
    void SortBy(const SortKey& key, unsigned bits, const RecordSource& source, const Sink& sink);
    void SortInMemory(const SortKey& key, unsigned bits, std::span<std::byte> records,
                      std::span<std::byte> spare, const Sink& sink);
    void SortFew(const SortKey& key, unsigned bits, std::span<const std::byte> records,
                 std::span<std::byte> spare, const Sink& sink);

    const CubeModel& model_;
    const RecordLayout& layout_;
    SpillStore& store_;
    std::uint64_t mostBytes_;                ///< that are sorted in memory
    std::vector<std::byte> records_, spare_; ///< kept from one part to the next
    std::vector<std::uint64_t> places_;
};

} // namespace qel::engine
