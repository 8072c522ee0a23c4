#pragma once

#include "engine/storage/Format.h"
#include "engine/storage/MappedSection.h"
#include "engine/storage/PageVerifier.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qel::engine {

class MappedFile;

/// The checked frame of a mapped cube file (header, checksum table, directory) and its sections by id.
/// Whatever is checked once and relied on later is copied: another program may write to the mapped file at
/// any time.
class FileImage {
public:
    /// Raises EngineError (NotACubeFile, UnsupportedVersion, DamagedFile) naming the file. The bytes must
    /// outlive the image, and so must `mapping`, which is null when the bytes are not mapped.
    FileImage(std::string fileName, std::span<const std::byte> bytes, const MappedFile* mapping);

    PageVerifier& Verifier() const { return *verifier_; }
    /// The number of cubes in the file.
    std::uint32_t CubeCount() const;
    /// Raises EngineError (DamagedFile) when the section is missing.
    MappedSection Section(const format::SectionId& id) const;
    /// Whether the section exists. Only optional kinds may be missing.
    bool HasSection(const format::SectionId& id) const;
    /// A section as an array, with its pages checked. The image keeps the copy that is returned. Raises
    /// EngineError (DamagedFile), also when the size does not fit the element type.
    template <class T>
    std::span<const T> Array(const format::SectionId& id) {
        const MappedSection section = Section(id);
        if (section.Size() % sizeof(T) != 0) {
            Fail("a section's size is not a whole number of its elements");
        }
        return {reinterpret_cast<const T*>(Copy(section)), section.Size() / sizeof(T)};
    }
    /// Counts memory that is taken for what the file does not store. Raises EngineError (DamagedFile) beyond
    /// format::mostImpliedBytes: products of counts would let a small file take all memory.
    void TakeImplied(std::uint64_t bytes);
    [[noreturn]] void Fail(const std::string& fault) const;

private:
    void CheckHeader(const format::Header& header) const;
    void CheckDirectory(std::uint64_t pagesEnd) const;
    void CheckNoSectionsOverlap() const;
    const std::byte* Copy(const MappedSection& section);
    /// Null when there is none.
    const format::DirectoryEntry* Find(const format::SectionId& id) const;

    std::string fileName_;
    std::span<const std::byte> bytes_;
    std::vector<std::uint64_t> tail_; ///< from the checksum table to the end of the file
    std::span<const format::DirectoryEntry> directory_;
    std::vector<std::unique_ptr<std::byte[]>> copies_;
    std::uint64_t impliedBytes_ = 0;
    std::unique_ptr<PageVerifier> verifier_; ///< sections hold its address
};

} // namespace qel::engine
