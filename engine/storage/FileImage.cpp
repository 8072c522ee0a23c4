#include "engine/storage/FileImage.h"

#include "engine/storage/MappedFile.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>
#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace qel::engine {

namespace {

/// The section kinds that this version knows; all of them are required where they apply.
bool IsKnown(std::uint32_t kind) {
    using format::SectionKind;
    const auto between = [kind](SectionKind first, SectionKind last) {
        return kind >= static_cast<std::uint32_t>(first) && kind <= static_cast<std::uint32_t>(last);
    };
    return between(SectionKind::CubeDescription, SectionKind::CubeDescription) ||
           between(SectionKind::MemberNames, SectionKind::MemberFlags) ||
           between(SectionKind::LeadRows, SectionKind::FactValues);
}

} // namespace

FileImage::FileImage(std::string fileName, std::span<const std::byte> bytes, const MappedFile* mapping)
    : fileName_(std::move(fileName)), bytes_(bytes) {
    const auto load = [mapping](std::uint64_t offset, std::uint64_t length) {
        if (mapping != nullptr) {
            mapping->Load(offset, length);
        }
    };
    load(0, std::min(bytes.size(), sizeof(format::Header)));
    if (bytes.size() < format::signature.size() ||
        std::memcmp(bytes.data(), format::signature.data(), format::signature.size()) != 0) {
        throw EngineError(ErrorKind::NotACubeFile,
                          fileName_ + ": not a cube file (it does not begin with a cube file's signature)");
    }
    format::Header header = {};
    if (bytes.size() < sizeof header) {
        Fail(fmt::format("it ends after {} bytes, within the header", bytes.size()));
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    CheckHeader(header);

    load(header.checksumTableOffset, bytes.size() - header.checksumTableOffset);
    const auto pages = bytes.first(header.checksumTableOffset);
    const auto tail = bytes.subspan(header.checksumTableOffset);
    tail_.resize(tail.size() / sizeof(std::uint64_t));
    std::memcpy(tail_.data(), tail.data(), tail.size());
    if (XXH3_64bits(tail_.data(), tail.size()) != header.tailChecksum) {
        Fail("the directory is not as it was written (wrong checksum)");
    }
    const std::size_t pageCount = (pages.size() + format::pageSize - 1) / format::pageSize;
    directory_ = {reinterpret_cast<const format::DirectoryEntry*>(tail_.data() + pageCount),
                  header.directoryEntries};
    CheckDirectory(pages.size());
    verifier_ = std::make_unique<PageVerifier>(fileName_, pages, std::span(tail_).first(pageCount), mapping);
}

void FileImage::CheckHeader(const format::Header& header) const {
    // Check the version first: other versions may lay out the header differently.
    if (header.version != format::version) {
        throw EngineError(
            ErrorKind::UnsupportedVersion,
            fmt::format("{}: a cube file of format version {}; this program reads version {}; {}", fileName_,
                        header.version, format::version,
                        header.version < format::version ? "build the file again with qel cube build"
                                                         : "install a newer version of the program"));
    }
    if (XXH3_64bits(bytes_.data(), format::headerChecksumOffset) != header.headerChecksum) {
        Fail("the header is not as it was written (wrong checksum)");
    }
    if (header.fileSize != bytes_.size()) {
        Fail(fmt::format("it has {} bytes instead of {}", bytes_.size(), header.fileSize));
    }
    const std::uint64_t pagesEnd = header.checksumTableOffset;
    if (header.pageSize != format::pageSize || pagesEnd < sizeof header || pagesEnd > bytes_.size() ||
        pagesEnd % format::sectionAlignment != 0) {
        Fail("the header's places are out of range");
    }
    const std::uint64_t tableSize = (pagesEnd + format::pageSize - 1) / format::pageSize * 8;
    const std::uint64_t directorySize =
        std::uint64_t{header.directoryEntries} * sizeof(format::DirectoryEntry);
    if (header.directoryOffset != pagesEnd + tableSize ||
        bytes_.size() != header.directoryOffset + directorySize) {
        Fail("the header's places are out of range");
    }
}

void FileImage::CheckDirectory(std::uint64_t pagesEnd) const {
    const format::DirectoryEntry* previous = nullptr;
    for (const format::DirectoryEntry& entry : directory_) {
        if (entry.id.kind < format::firstOptionalKind && !IsKnown(entry.id.kind)) {
            throw EngineError(ErrorKind::UnsupportedVersion,
                              fmt::format("{}: has sections of kind {}, which a newer version writes",
                                          fileName_, entry.id.kind));
        }
        if (previous != nullptr && !(previous->id < entry.id)) {
            Fail("the directory is not in order");
        }
        if (entry.offset % format::sectionAlignment != 0 || entry.offset < sizeof(format::Header) ||
            entry.offset > pagesEnd || entry.size > pagesEnd - entry.offset) {
            Fail("a section lies outside the file");
        }
        previous = &entry;
    }
    CheckNoSectionsOverlap();
}

/// So what is copied out of sections never exceeds the file.
void FileImage::CheckNoSectionsOverlap() const {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> sections; // offset, end
    for (const format::DirectoryEntry& entry : directory_) {
        if (entry.size > 0) {
            sections.emplace_back(entry.offset, entry.offset + entry.size);
        }
    }
    std::sort(sections.begin(), sections.end());
    for (std::size_t i = 1; i < sections.size(); ++i) {
        if (sections[i].first < sections[i - 1].second) {
            Fail("two sections overlap");
        }
    }
}

std::uint32_t FileImage::CubeCount() const {
    std::uint32_t count = 0;
    for (const format::DirectoryEntry& entry : directory_) {
        if (entry.id.kind == static_cast<std::uint32_t>(format::SectionKind::CubeDescription)) {
            ++count;
        }
    }
    return count;
}

const format::DirectoryEntry* FileImage::Find(const format::SectionId& id) const {
    const auto found =
        std::lower_bound(directory_.begin(), directory_.end(), id,
                         [](const auto& entry, const auto& wanted) { return entry.id < wanted; });
    return found == directory_.end() || found->id != id ? nullptr : &*found;
}

bool FileImage::HasSection(const format::SectionId& id) const { return Find(id) != nullptr; }

MappedSection FileImage::Section(const format::SectionId& id) const {
    const format::DirectoryEntry* const entry = Find(id);
    if (entry == nullptr) {
        Fail(fmt::format("section {} of cube {} is missing", id.kind, id.cube));
    }
    return {bytes_.data() + entry->offset, entry->offset, entry->size, verifier_.get()};
}

const std::byte* FileImage::Copy(const MappedSection& section) {
    const std::byte* const bytes = section.Bytes(0, section.Size());
    copies_.push_back(std::make_unique_for_overwrite<std::byte[]>(section.Size()));
    std::memcpy(copies_.back().get(), bytes, section.Size());
    return copies_.back().get();
}

void FileImage::TakeImplied(std::uint64_t bytes) {
    impliedBytes_ += bytes;
    if (impliedBytes_ > format::mostImpliedBytes) {
        Fail("its names or its orders of facts take too much memory");
    }
}

void FileImage::Fail(const std::string& fault) const {
    throw EngineError(ErrorKind::DamagedFile, fmt::format("{}: damaged cube file: {}", fileName_, fault));
}

} // namespace qel::engine
