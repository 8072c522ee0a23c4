#include "platform/windows/Clipboard.h"

#include "platform/windows/ProviderFailure.h"
#include "platform/windows/WideText.h"
#include "platform/windows/WindowsApi.h"
#include "text/Text.h"

#include <cstring>
#include <memory>

namespace qel::windows {

namespace {

constexpr const char* clipboardName = "Clipboard";

void Require(bool isDone) {
    if (!isDone) {
        throw FailureOf(HRESULT_FROM_WIN32(::GetLastError()), clipboardName);
    }
}

struct MemoryFree {
    void operator()(void* memory) const { ::GlobalFree(memory); }
};
using Memory = std::unique_ptr<void, MemoryFree>;

/// The text as the clipboard takes it.
Memory MemoryOf(const std::wstring& text) {
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    Memory memory(::GlobalAlloc(GMEM_MOVEABLE, bytes));
    Require(memory != nullptr);
    std::memcpy(::GlobalLock(memory.get()), text.c_str(), bytes);
    ::GlobalUnlock(memory.get());
    return memory;
}

/// Open while it lives.
class OpenClipboard {
public:
    OpenClipboard() { Require(::OpenClipboard(nullptr) != FALSE); }
    ~OpenClipboard() { ::CloseClipboard(); }
    OpenClipboard(const OpenClipboard&) = delete;
    OpenClipboard& operator=(const OpenClipboard&) = delete;
};

} // namespace

void CopyText(const std::string& text) {
    Memory memory = MemoryOf(ToWide(ReplaceAll(text, "\n", "\r\n")));
    const OpenClipboard clipboard;
    Require(::EmptyClipboard() != FALSE);
    Require(::SetClipboardData(CF_UNICODETEXT, memory.get()) != nullptr);
    static_cast<void>(memory.release()); // the clipboard's now
}

} // namespace qel::windows
