#pragma once

#include "platform/windows/WideText.h"

#include <new>
#include <string_view>
#include <utility>

namespace qel::windows {

/// Owns a BSTR.
class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::wstring_view text)
        : text_(::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {
        if (text_ == nullptr) {
            throw std::bad_alloc();
        }
    }
    explicit Bstr(std::string_view utf8) : Bstr(std::wstring_view(ToWide(utf8))) {}
    ~Bstr() { ::SysFreeString(text_); }
    Bstr(Bstr&& other) noexcept : text_(other.Release()) {}
    Bstr& operator=(Bstr&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR Get() const { return text_; }
    /// For functions that return a text through an out parameter.
    BSTR* Receive() {
        ::SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }
    /// Passes ownership of the text to the caller.
    BSTR Release() { return std::exchange(text_, nullptr); }

private:
    BSTR text_ = nullptr;
};

} // namespace qel::windows
