#include "platform/dialog/win32/ReadingDirection.h"

#include "platform/windows/WindowsApi.h"

#include <algorithm>
#include <vector>

namespace qel::windows {

namespace {

constexpr wchar_t leftToRightEmbedding = L'\u202A';
constexpr wchar_t rightToLeftEmbedding = L'\u202B';

} // namespace

bool BeginsRightToLeft(const std::wstring& text) {
    std::vector<WORD> directions(text.size());
    ::GetStringTypeW(CT_CTYPE2, text.c_str(), static_cast<int>(text.size()), directions.data());
    const auto letter = std::find_if(directions.begin(), directions.end(), [](WORD direction) {
        return direction == C2_LEFTTORIGHT || direction == C2_RIGHTTOLEFT;
    });
    return letter != directions.end() && *letter == C2_RIGHTTOLEFT;
}

std::wstring AsRead(const std::wstring& text, bool isMirrored) {
    if (!isMirrored || text.empty()) {
        return text;
    }
    return (BeginsRightToLeft(text) ? rightToLeftEmbedding : leftToRightEmbedding) + text;
}

} // namespace qel::windows
