#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace qel::engine {

class MappedFile;

/// Checks each page of a mapped cube file against its checksum when first read. Thread-safe: two threads may
/// check the same page and reach the same result.
class PageVerifier {
public:
    /// `file` runs from the file's first byte to the end of its pages; `checksums` has one entry per page.
    /// `mapping` (null when the bytes are not mapped) must outlive the verifier, as must the bytes.
    PageVerifier(std::string fileName, std::span<const std::byte> file,
                 std::span<const std::uint64_t> checksums, const MappedFile* mapping);

    std::size_t PageCount() const { return checksums_.size(); }
    /// Raises EngineError (DamagedFile) when a page of the run fails its checksum. The run must lie within
    /// the pages.
    void Check(std::uint64_t offset, std::uint64_t length);
    /// Raises EngineError (DamagedFile) when the file was modified on disk since it was opened; whatever was
    /// read until now may be wrong.
    void CheckUnchanged() const;
    [[noreturn]] void Fail(const std::string& fault) const;

private:
    void CheckPage(std::uint64_t page);
    bool AreCheckedPagesIntact() const;

    std::string fileName_;
    std::span<const std::byte> file_;
    std::span<const std::uint64_t> checksums_;
    const MappedFile* mapping_;
    std::unique_ptr<std::atomic<std::uint8_t>[]> isChecked_;
};

/// The checksum of one page. Page 0 leaves out the header, which is written last and has its own checksum.
std::uint64_t PageChecksum(std::span<const std::byte> file, std::uint64_t page);

} // namespace qel::engine
