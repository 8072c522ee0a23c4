#pragma once

#include "engine/storage/Format.h"
#include "engine/storage/MappedSection.h"
#include "engine/storage/PageVerifier.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace qel::engine {

/// The frame of a mapped cube file: header, checksum table and directory, checked; sections by their id.
class FileImage {
public:
    /// Raises EngineError (NotACubeFile, UnsupportedVersion, DamagedFile) naming the file. The bytes must be
    /// aligned to 8 and outlive the image.
    FileImage(std::string fileName, std::span<const std::byte> bytes);

    PageVerifier& Verifier() const { return *verifier_; }
    /// The number of cubes in the file.
    std::uint32_t CubeCount() const;
    /// Raises EngineError (DamagedFile) when there is no such section.
    MappedSection Section(const format::SectionId& id) const;
    /// False when there is no such section, which is right for optional kinds alone.
    bool HasSection(const format::SectionId& id) const;
    /// A section read as an array, its pages checked. Raises DamagedFile, also when the size does not fit.
    template <class T>
    std::span<const T> Array(const format::SectionId& id) const {
        const MappedSection section = Section(id);
        if (section.Size() % sizeof(T) != 0)
            Fail("a section's size is not a whole number of its elements");
        return {reinterpret_cast<const T*>(section.Bytes(0, section.Size())), section.Size() / sizeof(T)};
    }
    [[noreturn]] void Fail(const std::string& fault) const;

private:
    void CheckHeader(const format::Header& header) const;
    void CheckDirectory(std::uint64_t pagesEnd) const;
    /// Null when there is none.
    const format::DirectoryEntry* Find(const format::SectionId& id) const;

    std::string fileName_;
    std::span<const std::byte> bytes_;
    std::span<const format::DirectoryEntry> directory_;
    std::unique_ptr<PageVerifier> verifier_; ///< its address is in every section
};

} // namespace qel::engine
