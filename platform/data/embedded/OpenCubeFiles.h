#pragma once

#include "platform/data/embedded/FileIdentity.h"
#include "qel/engine/CubeFile.h"
#include "qel/engine/PlanCache.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace qel {

/// The cube files that were opened last, so that a sheet full of formulas opens its cube once. A file that
/// was replaced on disk is opened anew; those who hold the old one keep it. Safe for any number of threads.
class OpenCubeFiles {
public:
    /// The open file of that path, relative ones being taken from the current folder. Raises AutomationError.
    std::shared_ptr<const engine::CubeFile> Open(const std::string& path);
    /// The plans of statements over this file, shared by all who have it open.
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

    std::mutex mutex_;
    std::vector<Entry> entries_; ///< the last used first
};

} // namespace qel
