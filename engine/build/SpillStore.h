#pragma once

#include "files/TemporaryFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

namespace qel::engine {

/// Holds the byte streams of a build: in memory up to a limit, the rest in a temporary file beside the
/// output. Its streams may be used on several threads, each stream by one writer or by any number of readers.
class SpillStore {
public:
    /// `memory` is the limit of the whole build, of which the streams get a part.
    SpillStore(std::filesystem::path output, std::uint64_t memory);

    /// The limit of the whole build.
    std::uint64_t Memory() const { return memory_; }

private:
    friend class ByteStream;

    bool TakeMemory(std::uint64_t bytes);
    void GiveMemory(std::uint64_t bytes);
    /// A place in the file for one chunk.
    std::uint64_t TakePlace();
    void GivePlace(std::uint64_t place);
    TemporaryFile& File();

    std::filesystem::path output_;
    std::uint64_t memory_, left_;
    std::size_t chunkBytes_;
    std::mutex mutex_;
    std::unique_ptr<TemporaryFile> file_; ///< created when the memory is used up
    std::uint64_t fileEnd_ = 0;
    std::vector<std::uint64_t> freePlaces_;
};

/// Bytes that are appended first and read afterwards.
class ByteStream {
public:
    explicit ByteStream(SpillStore& store) : store_(&store) {}
    ~ByteStream() { Clear(); }
    ByteStream(ByteStream&& other) noexcept;
    ByteStream& operator=(ByteStream&& other) noexcept;
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;

    void Append(std::span<const std::byte> bytes);
    /// Ends the appending: gives back what memory it does not need.
    void Finish();
    std::uint64_t Size() const { return size_; }
    void Read(std::uint64_t offset, std::span<std::byte> bytes) const;
    /// Gives back the chunks that lie before `offset`, which are not read again.
    void ReleaseBefore(std::uint64_t offset);
    void Clear();

private:
    /// In memory, or at a place of the file.
    struct Chunk {
        std::vector<std::byte> bytes;
        std::uint64_t place = 0;
        bool isReleased = false;
    };

    void Keep(std::vector<std::byte>& bytes);
    void Release(Chunk& chunk);

    SpillStore* store_;
    std::uint64_t size_ = 0;
    std::vector<Chunk> chunks_;
    std::vector<std::byte> last_; ///< is not a chunk yet
};

} // namespace qel::engine
