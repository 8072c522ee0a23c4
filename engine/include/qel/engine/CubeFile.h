#pragma once

#include "qel/engine/Cube.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A cube file, mapped for reading. Immutable and safe for any number of threads; the file may be replaced on
/// disk meanwhile, readers keep the one they opened. docs/cub-format.md describes the bytes.
class CubeFile : public std::enable_shared_from_this<CubeFile> {
public:
    /// Maps the file and reads and checks its metadata; facts are checked as they are read.
    /// Raises EngineError: FileNotFound, NotACubeFile, UnsupportedVersion or DamagedFile, naming the file.
    static std::shared_ptr<const CubeFile> Open(const std::filesystem::path& path);

    /// The same from the bytes of a file that are in memory; `name` is for messages.
    static std::shared_ptr<const CubeFile> FromMemory(const std::filesystem::path& name,
                                                      std::vector<std::byte> bytes);

    /// True when the file starts with a cube file's signature. False for anything else, unreadable files
    /// included.
    static bool HasSignature(const std::filesystem::path& path);

    ~CubeFile();
    CubeFile(const CubeFile&) = delete;
    CubeFile& operator=(const CubeFile&) = delete;

    const std::filesystem::path& Path() const;
    std::uint64_t Size() const;
    const std::vector<Cube>& Cubes() const;
    /// The cube of that name (any letter case), sharing ownership of the file. Raises EngineError
    /// (UnknownCube) naming the file and the cubes that it holds.
    std::shared_ptr<const Cube> FindCube(std::string_view name) const;

    /// Reads every byte: all page checksums, and that every projection holds the same facts in its declared
    /// order with codes in range, and each aggregate the same as its facts. `progress` (may be empty) is
    /// called with a share from 0 to 1. Raises EngineError (DamagedFile) at the first fault.
    void Verify(const std::function<void(double)>& progress) const;

private:
    struct Contents;
    explicit CubeFile(std::unique_ptr<Contents> contents);

    std::unique_ptr<Contents> contents_;
};

} // namespace qel::engine
