#include "files/FolderNames.h"

#include <memory>
#include <string_view>
#include <windows.h>

namespace qel {

std::vector<std::filesystem::path> NamesInFolder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> names;
    WIN32_FIND_DATAW entry = {};
    const HANDLE first = ::FindFirstFileW((folder / L"*").c_str(), &entry);
    if (first == INVALID_HANDLE_VALUE) {
        return names;
    }
    const std::unique_ptr<void, BOOL(WINAPI*)(HANDLE)> search(first, ::FindClose);
    do {
        if (const std::wstring_view name = entry.cFileName; name != L"." && name != L"..") {
            names.emplace_back(name);
        }
    } while (::FindNextFileW(search.get(), &entry) != FALSE);
    return names;
}

} // namespace qel
