#pragma once

#include "files/AtomicFile.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace qel {

namespace files {

/// Creates a file in the folder of `target` under a name by which AtomicFile knows what an ended program left
/// there. Returns an error number.
int CreateBeside(const std::filesystem::path& target, bool isPrivate, std::filesystem::path& temporary,
                 int& descriptor);

} // namespace files

/// A file for what does not fit into memory, which only this program's user can read; removed at the end.
/// Several threads may write and read other places of it.
class TemporaryFile {
public:
    /// In the folder of `target`.
    TemporaryFile(const std::filesystem::path& target, AtomicFile::Failure failure);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes);
    void ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const;

private:
    void Require(int error, const char* what) const;

    std::filesystem::path path_;
    AtomicFile::Failure failure_;
    int descriptor_ = -1;
};

} // namespace qel
