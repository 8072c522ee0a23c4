#include "platform/data/embedded/OpenCubeFiles.h"

#include "platform/data/embedded/CubeSource.h"
#include "platform/data/embedded/ProviderErrors.h"
#include "text/Utf8Path.h"

#include <algorithm>
#include <fstream>
#include <system_error>

namespace qel {

namespace {

/// Enough for a workbook that compares the cubes of a few years. Each open file keeps its metadata in memory.
constexpr std::size_t filesKept = 8;

/// A file that is cut short or grows meanwhile is recognised by its checksums.
std::vector<std::byte> BytesOf(const std::filesystem::path& path) {
    std::error_code failed;
    const auto size = std::filesystem::file_size(path, failed);
    std::vector<std::byte> bytes(failed ? 0 : static_cast<std::size_t>(size));
    std::ifstream file(path, std::ios::binary);
    if (failed ||
        !file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()))) {
        throw engine::EngineError(engine::ErrorKind::FileNotFound, PathToUtf8(path) + ": cannot be read");
    }
    return bytes;
}

} // namespace

std::shared_ptr<const engine::CubeFile> OpenCubeFiles::Open(const std::string& path) {
    const auto identity = IdentifyFile(PathFromSetting(path));
    if (identity) {
        const std::lock_guard lock(mutex_);
        if (auto file = Find(path, *identity)) {
            return file;
        }
    }
    RequireCubeFile(path);
    auto file = TranslatingErrors([&] { return OpenNew(path); });
    // The identity is read before the file is opened. If the file is replaced in between, the next call sees
    // another identity and opens it again.
    if (identity) {
        const std::lock_guard lock(mutex_);
        Keep({path, *identity, file, std::make_shared<engine::PlanCache>()});
    }
    return file;
}

std::shared_ptr<const engine::CubeFile> OpenCubeFiles::OpenNew(const std::string& path) const {
    const auto file = PathFromSetting(path);
    return isIntoMemory_ ? engine::CubeFile::FromMemory(file, BytesOf(file)) : engine::CubeFile::Open(file);
}

std::shared_ptr<engine::PlanCache>
OpenCubeFiles::PlansOf(const std::shared_ptr<const engine::CubeFile>& file) {
    const std::lock_guard lock(mutex_);
    for (const Entry& entry : entries_) {
        if (entry.file == file) {
            return entry.plans;
        }
    }
    return std::make_shared<engine::PlanCache>(); // evicted from the cache
}

std::shared_ptr<const engine::CubeFile> OpenCubeFiles::Find(const std::string& path,
                                                            const FileIdentity& identity) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return entry.path == path; });
    if (found == entries_.end() || found->identity != identity) {
        return nullptr;
    }
    std::rotate(entries_.begin(), found, found + 1);
    return entries_.front().file;
}

void OpenCubeFiles::Keep(Entry entry) {
    std::erase_if(entries_, [&](const Entry& old) { return old.path == entry.path; });
    entries_.insert(entries_.begin(), std::move(entry));
    if (entries_.size() > filesKept) {
        entries_.pop_back();
    }
}

} // namespace qel
