#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace qel::engine {

class PageVerifier;

/// A section of a mapped cube file. A page is checked against its checksum when first read, so opening a file
/// does not read its facts.
class MappedSection {
public:
    MappedSection() = default;
    MappedSection(const std::byte* data, std::uint64_t offsetInFile, std::uint64_t size,
                  PageVerifier* verifier)
        : data_(data), offsetInFile_(offsetInFile), size_(size), verifier_(verifier) {}

    std::uint64_t Size() const { return size_; }
    /// The bytes from `offset` on, with the pages of the first `length` bytes checked. Raises EngineError
    /// (DamagedFile), also when they do not lie within the section.
    const std::byte* Bytes(std::uint64_t offset, std::uint64_t length) const;

private:
    const std::byte* data_ = nullptr;
    std::uint64_t offsetInFile_ = 0;
    std::uint64_t size_ = 0;
    PageVerifier* verifier_ = nullptr; ///< owned by the file
};

} // namespace qel::engine
