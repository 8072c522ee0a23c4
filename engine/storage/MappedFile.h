#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>

namespace qel::engine {

/// A whole file mapped for reading. The mapping keeps its bytes when the file is replaced on disk. When
/// another program modifies the file in place, the bytes may change; bytes that are cut off read as zeros.
class MappedFile {
public:
    MappedFile();
    /// Raises EngineError (FileNotFound) naming the file when it is absent, not readable, a folder or a
    /// special file.
    explicit MappedFile(const std::filesystem::path& path);
    ~MappedFile();
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::span<const std::byte> Bytes() const { return bytes_; }
    /// False when the file was modified or truncated in place since it was mapped; bytes read before this
    /// call may then be wrong.
    bool IsUnchanged() const;

private:
    struct Mapping;

    std::unique_ptr<Mapping> mapping_; ///< null for an empty file
    std::span<const std::byte> bytes_;
};

} // namespace qel::engine
