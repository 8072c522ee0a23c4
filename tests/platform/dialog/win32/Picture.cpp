#include "tests/platform/dialog/win32/Picture.h"

#include "platform/dialog/win32/CarriedPointer.h"

#include <algorithm>

namespace qel::test {

/// A white bitmap to draw on.
class Canvas {
public:
    Canvas(int width, int height, HWND window)
        : picture_(width, height), bitmap_(::CreateBitmap(width, height, 1, 32, nullptr)),
          bitmapBefore_(::SelectObject(Device, bitmap_)),
          fontBefore_(::SelectObject(
              Device, windows::CarriedPointer<void>(::SendMessageW(window, WM_GETFONT, 0, 0)))) {
        const RECT all = {0, 0, width, height};
        ::FillRect(Device, &all, static_cast<HBRUSH>(::GetStockObject(WHITE_BRUSH)));
    }
    ~Canvas() {
        ::SelectObject(Device, fontBefore_);
        ::SelectObject(Device, bitmapBefore_);
        ::DeleteObject(bitmap_);
        ::DeleteDC(Device);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    Picture Taken() {
        for (int y = 0; y < picture_.height_; ++y) {
            for (int x = 0; x < picture_.width_; ++x) {
                const COLORREF colour = ::GetPixel(Device, x, y);
                picture_.dark_.push_back(GetRValue(colour) < 128);
            }
        }
        return picture_;
    }

    const HDC Device = ::CreateCompatibleDC(nullptr);

private:
    Picture picture_;
    HBITMAP bitmap_;
    HGDIOBJ bitmapBefore_, fontBefore_;
};

Picture Picture::OfWindow(HWND window) {
    RECT inside = {};
    ::GetClientRect(window, &inside);
    Canvas canvas(inside.right, inside.bottom, window);
    ::SendMessageW(window, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(canvas.Device),
                   PRF_CLIENT | PRF_ERASEBKGND);
    return canvas.Taken();
}

Picture Picture::OfText(HWND window, const std::wstring& text) {
    Canvas canvas(300, 40, window);
    ::TextOutW(canvas.Device, 10, 10, text.c_str(), static_cast<int>(text.size()));
    return canvas.Taken().Trimmed();
}

int Picture::DarkInRow(int y) const {
    int dark = 0;
    for (int x = 0; x < width_; ++x) {
        dark += IsDark(x, y) ? 1 : 0;
    }
    return dark;
}

Picture Picture::Trimmed() const {
    RECT ink = {width_, height_, 0, 0};
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            if (IsDark(x, y)) {
                ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y),
                       std::max<LONG>(ink.right, x + 1), std::max<LONG>(ink.bottom, y + 1)};
            }
        }
    }
    Picture trimmed(ink.right - ink.left, ink.bottom - ink.top);
    for (int y = ink.top; y < ink.bottom; ++y) {
        for (int x = ink.left; x < ink.right; ++x) {
            trimmed.dark_.push_back(IsDark(x, y));
        }
    }
    return trimmed;
}

bool Picture::Has(const Picture& part, int left, int top) const {
    for (int y = 0; y < part.height_; ++y) {
        for (int x = 0; x < part.width_; ++x) {
            if (IsDark(left + x, top + y) != part.IsDark(x, y)) {
                return false;
            }
        }
    }
    return true;
}

std::optional<int> Picture::Find(const Picture& part, int top, int bottom) const {
    for (int y = top; y + part.height_ <= bottom; ++y) {
        for (int x = 0; x + part.width_ <= width_; ++x) {
            if (Has(part, x, y)) {
                return x;
            }
        }
    }
    return std::nullopt;
}

} // namespace qel::test
