#pragma once

#include "platform/dialog/DialogToolkit.h"
#include "platform/windows/WindowsApi.h"

#include <memory>
#include <type_traits>

namespace qel::windows {

/// A font at a screen's resolution, and the size of its dialog units.
class FontMetrics {
public:
    FontMetrics(const DialogFont& font, UINT dotsPerInch);

    HFONT Font() const { return font_.get(); }
    /// In pixels.
    RECT PixelsOf(const Place& place) const;
    /// The width of a text in pixels.
    int WidthOf(const std::wstring& text) const;

private:
    struct Delete {
        void operator()(HFONT font) const { ::DeleteObject(font); }
    };

    std::unique_ptr<std::remove_pointer_t<HFONT>, Delete> font_;
    SIZE unit_ = {}; ///< of an average character
};

/// The resolution of a window's screen.
UINT DotsPerInchOf(HWND window);

} // namespace qel::windows
