#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>

namespace qel::engine {

/// A whole file mapped for reading. The mapping keeps its bytes when the file is replaced on disk. When
/// another program changes the file itself, bytes may change, and those that are gone read as zeros.
class MappedFile {
public:
    MappedFile();
    /// Raises EngineError (FileNotFound) naming the file: absent, a folder or other special file, not
    /// readable.
    explicit MappedFile(const std::filesystem::path& path);
    ~MappedFile();
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::span<const std::byte> Bytes() const { return bytes_; }
    /// False when the file itself was written to or cut short since it was mapped, so that bytes read before
    /// this call may be wrong.
    bool IsUnchanged() const;

private:
    struct Mapping;

    std::unique_ptr<Mapping> mapping_; ///< null for an empty file
    std::span<const std::byte> bytes_;
};

} // namespace qel::engine
