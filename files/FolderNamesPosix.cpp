#include "files/FolderNames.h"

#include <dirent.h>
#include <memory>
#include <string_view>

namespace qel {

std::vector<std::filesystem::path> NamesInFolder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), ::closedir);
    while (const dirent* const entry = listing ? ::readdir(listing.get()) : nullptr) {
        if (const std::string_view name = entry->d_name; name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    return names;
}

} // namespace qel
