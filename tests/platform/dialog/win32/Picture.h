#pragma once

#include "platform/windows/WindowsApi.h"

#include <optional>
#include <string>
#include <vector>

namespace qel::test {

/// What a window of this process draws, in two colours.
class Picture {
public:
    static Picture OfWindow(HWND window);
    /// A text's letters in the window's font, without a margin.
    static Picture OfText(HWND window, const std::wstring& text);

    int Width() const { return width_; }
    bool IsDark(int x, int y) const {
        return dark_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                     static_cast<std::size_t>(x)];
    }
    /// How many pixels of the row are dark.
    int DarkInRow(int y) const;
    /// The left edge of the first place from `top` to `bottom` where the part is found.
    std::optional<int> Find(const Picture& part, int top, int bottom) const;
    std::optional<int> Find(const Picture& part) const { return Find(part, 0, height_); }

private:
    Picture(int width, int height) : width_(width), height_(height) {}
    bool Has(const Picture& part, int left, int top) const;
    Picture Trimmed() const;

    int width_, height_;
    std::vector<bool> dark_;

    friend class Canvas;
};

} // namespace qel::test
