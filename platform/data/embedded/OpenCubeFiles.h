#pragma once

#include "platform/data/embedded/FileIdentity.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/PlanCache.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace qel {

/// Caches the cube files opened last, so that a sheet of formulas opens its cube once. A file replaced on
/// disk is opened again; holders of the old one keep it. Thread-safe.
class OpenCubeFiles {
public:
    /// From now on files are read into memory when they are opened, so that no other program can change what
    /// is read. Otherwise they are mapped.
    void ReadIntoMemory() { isIntoMemory_ = true; }

    /// The open file of a path. A relative path is resolved against the current folder. Raises
    /// AutomationError.
    std::shared_ptr<const engine::CubeFile> Open(const std::string& path);
    /// The plan cache of the file, shared by everyone who has it open.
    std::shared_ptr<engine::PlanCache> PlansOf(const std::shared_ptr<const engine::CubeFile>& file);

private:
    struct Entry {
        std::string path;
        FileIdentity identity;
        std::shared_ptr<const engine::CubeFile> file;
        std::shared_ptr<engine::PlanCache> plans;
    };

    std::shared_ptr<const engine::CubeFile> Find(const std::string& path, const FileIdentity& identity);
    void Keep(Entry entry);

    std::shared_ptr<const engine::CubeFile> OpenNew(const std::string& path) const;

    std::atomic<bool> isIntoMemory_ = false;
    std::mutex mutex_;
    std::vector<Entry> entries_; ///< the last used first
};

} // namespace qel
