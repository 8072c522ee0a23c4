#pragma once

#include "engine/build/FactStore.h"
#include "engine/build/KeyColumnBuilder.h"
#include "engine/build/SpillStore.h"
#include "engine/storage/CubeModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace qel::engine {

/// A fact in `size` bytes, as all sort orders store it: the packed columns, then the values.
struct RecordLayout {
    struct Field {
        std::uint32_t offset = 0;
        std::uint8_t width = 0; ///< 0 for a count

        /// The unsigned number there.
        std::uint64_t Load(const std::byte* record) const {
            std::uint64_t number = 0;
            const std::byte* const from = record + offset;
            switch (width) {
            case 1:
                std::memcpy(&number, from, 1);
                break;
            case 2:
                std::memcpy(&number, from, 2);
                break;
            case 4:
                std::memcpy(&number, from, 4);
                break;
            default:
                std::memcpy(&number, from, 8);
                break;
            }
            return number;
        }
        std::int64_t LoadSigned(const std::byte* record) const {
            const unsigned unused = 64U - width * 8U;
            return static_cast<std::int64_t>(Load(record) << unused) >> unused;
        }
    };
    struct KeyField {
        Field field;
        std::uint32_t mask = 0;
        std::uint8_t shift = 0;

        std::uint32_t Code(const std::byte* record) const {
            return (static_cast<std::uint32_t>(field.Load(record)) & mask) >> shift;
        }
    };

    std::size_t size = 0;
    std::vector<Field> packedColumns, values; ///< values by measure
    std::optional<Field> factNumber;          ///< when details are kept
    std::vector<KeyField> keys;               ///< by key column

    explicit RecordLayout(const CubeModel& model);
    /// The same with room for other bytes before it.
    RecordLayout MovedBy(std::uint32_t bytes) const;
};

/// Records one after another: those of a stream, of parts of it, or in memory.
class RecordSource {
public:
    struct Part {
        std::uint64_t offset = 0, size = 0; ///< in bytes
    };

    RecordSource(const ByteStream& stream, std::vector<Part> parts)
        : stream_(&stream), parts_(std::move(parts)) {}
    explicit RecordSource(const ByteStream& stream) : RecordSource(stream, {{0, stream.Size()}}) {}
    explicit RecordSource(std::span<const std::byte> memory) : memory_(memory) {}

    std::uint64_t Bytes() const;
    bool IsInMemory() const { return stream_ == nullptr; }
    /// Calls visit(bytes) for some records after another, all in order.
    template <class Visit>
    void ForEach(std::size_t recordSize, const Visit& visit) const {
        if (stream_ == nullptr) {
            visit(memory_);
            return;
        }
        constexpr std::size_t recordsAtOnce = 4096;
        std::vector<std::byte> buffer(
            static_cast<std::size_t>(std::min<std::uint64_t>(Bytes(), recordSize * recordsAtOnce)));
        Reader reader(*this);
        for (auto bytes = reader.Next(buffer); !bytes.empty(); bytes = reader.Next(buffer)) {
            visit(std::span<const std::byte>(bytes));
        }
    }

    /// Reads the records in larger parts.
    class Reader {
    public:
        explicit Reader(const RecordSource& source) : source_(source) {}
        /// Fills the buffer, unless the records end before.
        std::span<std::byte> Next(std::span<std::byte> buffer);

    private:
        const RecordSource& source_;
        std::size_t part_ = 0;
        std::uint64_t done_ = 0; ///< of the part, or of the memory
    };

private:
    const ByteStream* stream_ = nullptr;
    std::vector<Part> parts_;
    std::span<const std::byte> memory_;
};

/// Writes the facts as records, and empties the store unless it `keeps`. The model must have its key columns
/// and measures.
ByteStream MakeRecords(const CubeModel& model, const RecordLayout& layout,
                       const std::vector<KeyColumnBuilder>& keyColumns, FactStore& facts, bool keeps,
                       SpillStore& store);

} // namespace qel::engine
