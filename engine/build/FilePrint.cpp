#include "engine/build/FilePrint.h"

#include "engine/build/TextFile.h"

#include <xxhash.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

namespace qel::engine {

namespace {

using HashState = std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)>;

FilePrint PrintOf(const HashState& state, std::uint64_t size) {
    const XXH128_hash_t hash = XXH3_128bits_digest(state.get());
    return {size, hash.high64, hash.low64};
}

std::filesystem::file_time_type TimeOf(const std::filesystem::path& path) {
    std::error_code unknown;
    return std::filesystem::last_write_time(path, unknown);
}

} // namespace

ReadFile TakePrint(const std::filesystem::path& path, std::uint64_t size) {
    constexpr std::uint64_t chunk = 1 << 20;
    ReadFile read;
    read.modified = TimeOf(path);
    std::ifstream file = OpenTextFile(path);
    const HashState state(XXH3_createState(), XXH3_freeState);
    if (!state) {
        throw std::bad_alloc();
    }
    XXH3_128bits_reset(state.get());
    std::vector<char> bytes(chunk);
    for (std::uint64_t done = 0;;) {
        // A chunk ends where the beginning does.
        const std::uint64_t wanted = done < size ? std::min(chunk, size - done) : chunk;
        file.read(bytes.data(), static_cast<std::streamsize>(wanted));
        const auto count = static_cast<std::size_t>(file.gcount());
        XXH3_128bits_update(state.get(), bytes.data(), count);
        done += count;
        if (done == size && count != 0) {
            read.beginning = PrintOf(state, done);
            read.beginsWithLines = bytes[count - 1] == '\n';
        }
        if (count == 0) {
            read.all = PrintOf(state, done);
            return read;
        }
    }
}

bool IsAsRead(const std::filesystem::path& path, const ReadFile& read) {
    std::error_code unknown;
    return std::filesystem::file_size(path, unknown) == read.all.size && TimeOf(path) == read.modified;
}

} // namespace qel::engine
