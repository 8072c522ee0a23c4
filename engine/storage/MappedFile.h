#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace qel::engine {

/// A whole file mapped for reading. The mapping keeps its bytes when the file is replaced on disk.
class MappedFile {
public:
    MappedFile() = default;
    /// Raises EngineError (FileNotFound) naming the file: absent, a folder or other special file, not
    /// readable.
    explicit MappedFile(const std::filesystem::path& path);
    ~MappedFile();
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::span<const std::byte> Bytes() const { return bytes_; }

private:
    std::span<const std::byte> bytes_;
};

} // namespace qel::engine
