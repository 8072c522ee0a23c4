#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace qel::engine {

class MappedFile;

/// The page checksums of a mapped cube file; each page is checked when it is first touched. Safe for any
/// number of threads (two may check the same page at once, and find the same).
class PageVerifier {
public:
    /// `file` starts at the file's first byte and ends where its pages do; `checksums` has one for each page.
    /// `mapping`, null when the bytes are not mapped, outlives the verifier as the bytes do.
    PageVerifier(std::string fileName, std::span<const std::byte> file,
                 std::span<const std::uint64_t> checksums, const MappedFile* mapping);

    std::size_t PageCount() const { return checksums_.size(); }
    /// Raises EngineError (DamagedFile) when a page that the run touches is not as it was written. The run
    /// must lie within the file's pages.
    void Check(std::uint64_t offset, std::uint64_t length);
    /// Raises EngineError (DamagedFile) when the file was changed on disk since it was opened: what was read
    /// until now may be wrong.
    void CheckUnchanged() const;
    [[noreturn]] void Fail(const std::string& fault) const;

private:
    void CheckPage(std::uint64_t page);

    std::string fileName_;
    std::span<const std::byte> file_;
    std::span<const std::uint64_t> checksums_;
    const MappedFile* mapping_;
    std::unique_ptr<std::atomic<std::uint8_t>[]> isChecked_;
};

/// The checksum of page `page` of a file whose pages end with `file`. The header's bytes do not count: it is
/// written last and has a checksum of its own.
std::uint64_t PageChecksum(std::span<const std::byte> file, std::uint64_t page);

} // namespace qel::engine
