#include "files/TemporaryFile.h"

#include "files/WrittenFile.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <random>
#include <system_error>

namespace qel {

namespace fs = std::filesystem;

int files::CreateBeside(const fs::path& target, bool isPrivate, fs::path& temporary, int& descriptor) {
    std::random_device random;
    constexpr int attempts = 100;
    int error = EEXIST;
    for (int attempt = 0; attempt < attempts && error == EEXIST; ++attempt) {
        temporary = target;
        temporary += fmt::format(".{:08x}.tmp", random());
        error = CreateLocked(temporary, isPrivate, descriptor);
    }
    return error;
}

TemporaryFile::TemporaryFile(const fs::path& target, AtomicFile::Failure failure)
    : path_(target), failure_(failure) {
    Require(files::CreateBeside(files::ResolveLink(target), true, path_, descriptor_), "created");
}

TemporaryFile::~TemporaryFile() { files::CloseAndRemove(descriptor_, path_); }

void TemporaryFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    Require(files::WriteAllAt(descriptor_, offset, bytes), "written");
}

void TemporaryFile::ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const {
    Require(files::ReadAllAt(descriptor_, offset, bytes), "read");
}

void TemporaryFile::Require(int error, const char* what) const {
    if (error == 0) {
        return;
    }
    failure_(
        fmt::format("{}: cannot be {}: {}", PathToUtf8(path_), what, std::generic_category().message(error)));
    std::abort(); // a failure raises
}

} // namespace qel
