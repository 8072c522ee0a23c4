#include "platform/dialog/win32/OpenFileQuestion.h"

#include "platform/windows/WideText.h"

#include <algorithm>
#include <vector>

namespace qel::windows {

namespace {

constexpr std::size_t longestPath = 32768;

/// Description and pattern, each null-terminated, followed by another null.
std::wstring FilterOf(const std::string& filter) {
    std::wstring list = ToWide(filter);
    std::replace(list.begin(), list.end(), L'|', L'\0');
    list.append(2, L'\0');
    return list;
}

} // namespace

std::string AskForFileToOpen(HWND owner, const FileQuestion& question) {
    const std::wstring title = ToWide(question.title);
    const std::wstring filter = FilterOf(question.filter);
    const std::wstring folder = ToWide(question.startFolder);
    std::vector<wchar_t> path(longestPath);
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrTitle = title.c_str();
    dialog.lpstrFilter = filter.c_str();
    dialog.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    dialog.lpstrFile = path.data();
    dialog.nMaxFile = longestPath;
    dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    return ::GetOpenFileNameW(&dialog) != FALSE ? ToUtf8(path.data()) : std::string();
}

} // namespace qel::windows
