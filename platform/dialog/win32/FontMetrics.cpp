#include "platform/dialog/win32/FontMetrics.h"

#include "platform/windows/WideText.h"

#include <cmath>

namespace qel::windows {

namespace {

constexpr std::wstring_view letters = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

/// The screen's device context with a font selected.
class ScreenWithFont {
public:
    explicit ScreenWithFont(HFONT font) : before_(::SelectObject(screen_, font)) {}
    ~ScreenWithFont() {
        ::SelectObject(screen_, before_);
        ::ReleaseDC(nullptr, screen_);
    }
    ScreenWithFont(const ScreenWithFont&) = delete;
    ScreenWithFont& operator=(const ScreenWithFont&) = delete;

    SIZE ExtentOf(std::wstring_view text) const {
        SIZE extent = {};
        ::GetTextExtentPoint32W(screen_, text.data(), static_cast<int>(text.size()), &extent);
        return extent;
    }

private:
    HDC screen_ = ::GetDC(nullptr);
    HGDIOBJ before_;
};

} // namespace

FontMetrics::FontMetrics(const DialogFont& font, UINT dotsPerInch) {
    constexpr double pointsPerInch = 72;
    LOGFONTW wanted = {};
    wanted.lfHeight = -static_cast<LONG>(std::lround(font.size * dotsPerInch / pointsPerInch));
    wanted.lfWeight = FW_NORMAL;
    wanted.lfCharSet = DEFAULT_CHARSET;
    wanted.lfQuality = CLEARTYPE_QUALITY;
    const std::wstring name = ToWide(font.name);
    name.copy(wanted.lfFaceName, LF_FACESIZE - 1);
    font_.reset(::CreateFontIndirectW(&wanted));

    const SIZE extent = ScreenWithFont(font_.get()).ExtentOf(letters);
    const auto half = static_cast<int>(letters.size() / 2);
    unit_ = {(extent.cx / half + 1) / 2,
             extent.cy}; // the average width, rounded as in the system's own dialogs
}

RECT FontMetrics::PixelsOf(const Place& place) const {
    const auto across = [&](int units) { return ::MulDiv(units, unit_.cx, 4); };
    const auto down = [&](int units) { return ::MulDiv(units, unit_.cy, 8); };
    return {across(place.left), down(place.top), across(place.left + place.width),
            down(place.top + place.height)};
}

int FontMetrics::WidthOf(const std::wstring& text) const {
    return ScreenWithFont(font_.get()).ExtentOf(text).cx;
}

UINT DotsPerInchOf(HWND window) {
    // Windows 7 and 8 have one resolution for all screens and lack this function.
    using Function = UINT(WINAPI*)(HWND);
    static const auto function = reinterpret_cast<Function>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (function != nullptr) {
        if (const UINT dotsPerInch = function(window); dotsPerInch != 0) {
            return dotsPerInch;
        }
    }
    const HDC screen = ::GetDC(nullptr);
    const int dotsPerInch = ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    return static_cast<UINT>(dotsPerInch);
}

} // namespace qel::windows
