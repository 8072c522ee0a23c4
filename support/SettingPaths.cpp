#include "support/SettingPaths.h"

#include "files/FolderNames.h"
#include "support/Wildcard.h"
#include "text/CaseFold.h"
#include "text/Text.h"
#include "text/Utf8Path.h"

#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

namespace qel {

namespace {

namespace fs = std::filesystem;

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

/// A file name folded for comparison with patterns.
std::string NameOf(const fs::path& path) {
    const std::u8string name = path.filename().u8string();
    std::string text(name.begin(), name.end());
#ifdef _WIN32
    return FoldCase(text); // Windows file systems ignore letter case
#else
    return text;
#endif
}

std::vector<fs::path> FilesMatching(const fs::path& pattern) {
    std::vector<fs::path> found;
    const fs::path folder = pattern.has_parent_path() ? pattern.parent_path() : fs::path(".");
    const std::string namePattern = NameOf(pattern);
    for (const fs::path& name : NamesInFolder(folder)) {
        std::error_code ignored;
        if (MatchesWildcard(NameOf(name), namePattern) && fs::is_regular_file(folder / name, ignored)) {
            found.push_back(folder / name);
        }
    }
    return found;
}

/// Runs an operation; any failure means false.
template <class Operation>
bool Trapped(Operation operation) {
    try {
        return operation();
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

void AddBackslash(std::string& path) {
    path.erase(path.find_last_not_of(' ') + 1);
    if (path.empty() || !IsSeparator(path.back())) {
        path += '\\';
    }
}

std::string StripQuotes(std::string_view text) {
    std::string_view stripped = Trimmed(text);
    if (stripped.size() >= 2 && stripped.front() == '"' && stripped.back() == '"') {
        stripped = stripped.substr(1, stripped.size() - 2);
    }
    return std::string(stripped);
}

bool FileExists(std::string_view path) {
    return Trapped([&] {
        std::string text = StripQuotes(path);
        if (!text.empty() && text.back() == '\\') {
            text.pop_back();
        }
        const fs::path file = PathFromSetting(text);
        return !fs::is_directory(file) && std::ifstream(file, std::ios::binary).is_open();
    });
}

bool DirExists(std::string_view path) {
    return Trapped([&] {
        std::string text(path);
        AddBackslash(text);
        return fs::is_directory(PathFromSetting(text));
    });
}

void DeleteFiles(std::string_view pattern) {
    Trapped([&] {
        for (const fs::path& file : FilesMatching(PathFromSetting(pattern))) {
            std::error_code ignored;
            fs::remove(file, ignored);
        }
        return true;
    });
}

} // namespace qel
