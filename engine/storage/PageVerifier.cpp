#include "engine/storage/PageVerifier.h"

#include "engine/storage/Format.h"
#include "engine/storage/MappedFile.h"
#include "engine/storage/MappedSection.h"
#include "qel/engine/EngineError.h"

#include <fmt/format.h>
#include <xxhash.h>

#include <algorithm>
#include <utility>

namespace qel::engine {

std::uint64_t PageChecksum(std::span<const std::byte> file, std::uint64_t page) {
    const std::uint64_t first = page == 0 ? sizeof(format::Header) : page * format::pageSize;
    const std::uint64_t last = std::min<std::uint64_t>((page + 1) * format::pageSize, file.size());
    return XXH3_64bits(file.data() + first, last - first);
}

PageVerifier::PageVerifier(std::string fileName, std::span<const std::byte> file,
                           std::span<const std::uint64_t> checksums, const MappedFile* mapping)
    : fileName_(std::move(fileName)), file_(file), checksums_(checksums), mapping_(mapping),
      isChecked_(std::make_unique<std::atomic<std::uint8_t>[]>(checksums.size())) {}

void PageVerifier::Check(std::uint64_t offset, std::uint64_t length) {
    if (length == 0) {
        return;
    }
    const std::uint64_t last = (offset + length - 1) / format::pageSize;
    for (std::uint64_t page = offset / format::pageSize; page <= last; ++page) {
        if (isChecked_[page].load(std::memory_order_acquire) == 0) {
            CheckPage(page);
        }
    }
}

void PageVerifier::CheckPage(std::uint64_t page) {
    if (mapping_ != nullptr) {
        const std::uint64_t first = page * format::pageSize;
        mapping_->Load(first, std::min<std::uint64_t>(format::pageSize, file_.size() - first));
    }
    if (PageChecksum(file_, page) != checksums_[page]) {
        CheckUnchanged();
        Fail(fmt::format("the bytes from {} on are not as they were written (wrong checksum of page {})",
                         page * format::pageSize, page));
    }
    isChecked_[page].store(1, std::memory_order_release);
}

void PageVerifier::CheckUnchanged() const {
    if (mapping_ != nullptr && !mapping_->IsUnchanged([this] { return AreCheckedPagesIntact(); })) {
        throw EngineError(ErrorKind::DamagedFile,
                          fmt::format("{}: the file was changed or cut short while it was open; it has to be "
                                      "opened again (a new file belongs in its place, not into it)",
                                      fileName_));
    }
}

bool PageVerifier::AreCheckedPagesIntact() const {
    for (std::size_t page = 0; page < checksums_.size(); ++page) {
        if (isChecked_[page].load(std::memory_order_acquire) != 0 &&
            PageChecksum(file_, page) != checksums_[page]) {
            return false;
        }
    }
    return true;
}

void PageVerifier::Fail(const std::string& fault) const {
    throw EngineError(ErrorKind::DamagedFile, fmt::format("{}: damaged cube file: {}", fileName_, fault));
}

const std::byte* MappedSection::Bytes(std::uint64_t offset, std::uint64_t length) const {
    if (offset > size_ || length > size_ - offset) {
        throw EngineError(ErrorKind::DamagedFile,
                          fmt::format("cube file: {} bytes at {} lie outside a section of {} bytes", length,
                                      offset, size_));
    }
    if (verifier_ != nullptr) {
        verifier_->Check(offsetInFile_ + offset, length);
    }
    return data_ + offset;
}

} // namespace qel::engine
