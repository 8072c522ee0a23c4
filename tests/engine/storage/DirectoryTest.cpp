#include "engine/storage/Format.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/EngineError.h"
#include "tests/engine/storage/SmallCube.h"
#include "tests/helpers/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <xxhash.h>

#include <cstring>
#include <functional>
#include <span>

namespace qel::engine {
namespace {

using test::TemporaryFolder;

/// A small cube's bytes with a changed directory and checksums that fit it.
std::vector<std::byte> WithDirectory(const std::function<void(std::span<format::DirectoryEntry>)>& change) {
    const TemporaryFolder folder;
    SmallCube().Write(folder.Path("a.cub"));
    const std::string text = folder.Read("a.cub");
    std::vector<std::byte> bytes(text.size());
    std::memcpy(bytes.data(), text.data(), text.size());

    format::Header header = {};
    std::memcpy(&header, bytes.data(), sizeof header);
    std::vector<format::DirectoryEntry> entries(header.directoryEntries);
    std::byte* const directory = bytes.data() + header.directoryOffset;
    std::memcpy(entries.data(), directory, entries.size() * sizeof entries[0]);
    change(entries);
    std::memcpy(directory, entries.data(), entries.size() * sizeof entries[0]);
    header.tailChecksum =
        XXH3_64bits(bytes.data() + header.checksumTableOffset, bytes.size() - header.checksumTableOffset);
    header.headerChecksum = XXH3_64bits(&header, format::headerChecksumOffset);
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

TEST(Directory, SectionsThatOverlapAreRefused) {
    EXPECT_NO_THROW(CubeFile::FromMemory("same.cub", WithDirectory([](auto) {})));
    const auto overlapping = WithDirectory([](auto entries) {
        auto first = entries.begin();
        while (first->size < 16) {
            ++first;
        }
        auto second = first + 1;
        second->offset = first->offset;
        second->size = first->size;
    });
    try {
        CubeFile::FromMemory("shared.cub", overlapping);
        ADD_FAILURE() << "opened";
    } catch (const EngineError& error) {
        EXPECT_STREQ(error.what(), "shared.cub: damaged cube file: two sections overlap");
    }
}

} // namespace
} // namespace qel::engine
