#include "files/AtomicFile.h"

#include "files/FolderNames.h"
#include "files/TemporaryFile.h"
#include "files/WrittenFile.h"
#include "text/Utf8Path.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace qel {

namespace {

namespace fs = std::filesystem;

/// The name with ".", eight hexadecimal digits and ".tmp" behind it.
bool IsTemporaryOf(const std::string& target, const std::string& name) {
    constexpr std::size_t digits = 8;
    return name.size() == target.size() + digits + 5 && name.starts_with(target + ".") &&
           name.ends_with(".tmp") &&
           name.find_first_not_of("0123456789abcdef", target.size() + 1) == name.size() - 4;
}

void RemoveAbandoned(const fs::path& target) {
    const std::string name = PathToUtf8(target.filename());
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    for (const fs::path& found : NamesInFolder(folder)) {
        if (IsTemporaryOf(name, PathToUtf8(found))) {
            files::RemoveIfAbandoned(folder / found);
        }
    }
}

} // namespace

AtomicFile::AtomicFile(const fs::path& path, Failure failure)
    : path_(files::ResolveLink(path)), failure_(failure) {
    RefuseWhatIsNoFile(path);
    RemoveAbandoned(path_);
    std::error_code unknown;
    const bool isThere = fs::exists(path_, unknown);
    // What replaces a private file is private from the start.
    Require(files::CreateBeside(path_, isThere, temporary_, descriptor_));
    if (isThere) {
        Require(files::TakeOverRights(descriptor_, path_));
    }
}

AtomicFile::~AtomicFile() {
    if (descriptor_ >= 0) {
        files::CloseAndRemove(descriptor_, temporary_);
    }
}

/// Rename would replace a device or a pipe with a regular file.
void AtomicFile::RefuseWhatIsNoFile(const fs::path& named) const {
    std::error_code unknown;
    const auto status = fs::status(path_, unknown);
    if (fs::is_directory(status)) {
        Require(EISDIR);
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        failure_(PathToUtf8(named) + ": cannot be written: it is not a regular file");
    }
}

void AtomicFile::Append(std::span<const std::byte> bytes) { Require(files::WriteAll(descriptor_, bytes)); }

void AtomicFile::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    Require(files::WriteAllAt(descriptor_, offset, bytes));
}

void AtomicFile::Finish() {
    if (!isFinished_) {
        Require(files::Sync(descriptor_));
        isFinished_ = true;
    }
}

void AtomicFile::Commit() {
    Finish();
    Require(files::Move(descriptor_, temporary_, path_));
}

void AtomicFile::Require(int error) const {
    if (error == 0) {
        return;
    }
    failure_(
        fmt::format("{}: cannot be written: {}", PathToUtf8(path_), std::generic_category().message(error)));
    std::abort(); // a failure raises
}

} // namespace qel
