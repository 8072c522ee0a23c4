#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>

namespace qel::engine {

/// A whole file mapped for reading. The mapping keeps its bytes when the file is replaced on disk. When
/// another program modifies the file in place, the bytes may change; bytes that are cut off read as zeros.
/// On Windows, bytes are read into memory when they are loaded, and other programs cannot open the file for
/// writing. Copies share the mapping.
class MappedFile {
public:
    MappedFile() = default;
    /// Raises EngineError (FileNotFound) naming the file when it is absent, not readable, a folder or a
    /// special file.
    explicit MappedFile(const std::filesystem::path& path);

    /// To be loaded before they are read.
    std::span<const std::byte> Bytes() const { return mapping_ ? bytes_ : std::span<const std::byte>(); }
    /// Makes bytes readable. Raises EngineError (DamagedFile) when they cannot be read.
    void Load(std::size_t offset, std::size_t length) const;
    /// False when the file was modified or truncated in place since it was mapped, or perhaps was; bytes read
    /// before this call may then be wrong. When another file has taken its place, which looks like a change
    /// too, `hasContent` decides: whether the bytes that were read are still there.
    bool IsUnchanged(const std::function<bool()>& hasContent) const;

private:
    struct Mapping;

    std::shared_ptr<const Mapping> mapping_; ///< null without a file
    std::span<const std::byte> bytes_;
};

} // namespace qel::engine
