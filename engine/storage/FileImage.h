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

/// The frame of a mapped cube file: header, checksum table and directory, checked; sections by their id.
/// What is checked once and relied on afterwards is a copy: the bytes of a file that another program writes
/// to can change at any time.
class FileImage {
public:
    /// Raises EngineError (NotACubeFile, UnsupportedVersion, DamagedFile) naming the file. The bytes outlive
    /// the image, and so does `mapping`, which is null when they are not mapped.
    FileImage(std::string fileName, std::span<const std::byte> bytes, const MappedFile* mapping);

    PageVerifier& Verifier() const { return *verifier_; }
    /// The number of cubes in the file.
    std::uint32_t CubeCount() const;
    /// Raises EngineError (DamagedFile) when there is no such section.
    MappedSection Section(const format::SectionId& id) const;
    /// False when there is no such section, which is right for optional kinds alone.
    bool HasSection(const format::SectionId& id) const;
    /// A copy, which the image keeps, of a section as an array, its pages checked. Raises DamagedFile, also
    /// when the size does not fit.
    template <class T>
    std::span<const T> Array(const format::SectionId& id) {
        const MappedSection section = Section(id);
        if (section.Size() % sizeof(T) != 0) {
            Fail("a section's size is not a whole number of its elements");
        }
        return {reinterpret_cast<const T*>(Copy(section)), section.Size() / sizeof(T)};
    }
    [[noreturn]] void Fail(const std::string& fault) const;

private:
    void CheckHeader(const format::Header& header) const;
    void CheckDirectory(std::uint64_t pagesEnd) const;
    const std::byte* Copy(const MappedSection& section);
    /// Null when there is none.
    const format::DirectoryEntry* Find(const format::SectionId& id) const;

    std::string fileName_;
    std::span<const std::byte> bytes_;
    std::vector<std::uint64_t> tail_; ///< from the checksum table to the end of the file
    std::span<const format::DirectoryEntry> directory_;
    std::vector<std::unique_ptr<std::byte[]>> copies_;
    std::unique_ptr<PageVerifier> verifier_; ///< its address is in every section
};

} // namespace qel::engine
