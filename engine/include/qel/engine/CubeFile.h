#pragma once

#include "qel/engine/Cube.h"
#include "qel/engine/SourceTotals.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace qel::engine {

/// A cube file, mapped for reading. Immutable and thread-safe. The file may be replaced on disk at any time;
/// open readers keep the version they opened. docs/cub-format.md describes the bytes.
class CubeFile : public std::enable_shared_from_this<CubeFile> {
public:
    /// Maps the file, then reads and checks its metadata; pages of facts are checked when first read. Raises
    /// EngineError (FileNotFound, NotACubeFile, UnsupportedVersion or DamagedFile) naming the file.
    static std::shared_ptr<const CubeFile> Open(const std::filesystem::path& path);

    /// Opens a file that is already in memory; `name` is used in messages.
    static std::shared_ptr<const CubeFile> FromMemory(const std::filesystem::path& name,
                                                      std::vector<std::byte> bytes);

    /// Whether the file starts with a cube file's signature. False when the file cannot be read.
    static bool HasSignature(const std::filesystem::path& path);

    ~CubeFile();
    CubeFile(const CubeFile&) = delete;
    CubeFile& operator=(const CubeFile&) = delete;

    const std::filesystem::path& Path() const;
    std::uint64_t Size() const;
    const std::vector<Cube>& Cubes() const;
    /// The cube of that name (any letter case), sharing ownership of the file. Raises EngineError
    /// (UnknownCube) naming the file and its cubes.
    std::shared_ptr<const Cube> FindCube(std::string_view name) const;

    /// What cube number `cube` took from its fact files when it was built; empty for a file that was built
    /// before this was kept.
    std::span<const SourceTotals> Sources(std::size_t cube) const;

    /// Reads the whole file and checks all page checksums, that every sort order holds the same facts, sorted
    /// and with valid codes, and that every aggregate agrees with its facts. `progress` (may be empty) is
    /// called with the share done, 0 to 1. Raises EngineError (DamagedFile) at the first fault.
    void Verify(const std::function<void(double)>& progress) const;

private:
    struct Contents;
    explicit CubeFile(std::unique_ptr<Contents> contents);

    std::unique_ptr<Contents> contents_;
};

} // namespace qel::engine
