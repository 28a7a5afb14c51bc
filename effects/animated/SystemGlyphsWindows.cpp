#define NOMINMAX
#include <windows.h>

#include <type_traits>
#include <vector>

#include "effects/animated/SystemGlyphs.h"

namespace {

struct Delete {
    void operator()(HDC context) const { DeleteDC(context); }
    void operator()(HGDIOBJ object) const { DeleteObject(object); }
};
template <class Handle>
using Owned = std::unique_ptr<std::remove_pointer_t<Handle>, Delete>;

/// Selects an object into a device context for the length of a scope.
class Selection {
  public:
    Selection(HDC context, HGDIOBJ object) : context_(context), before_(SelectObject(context, object)) {}
    ~Selection() { SelectObject(context_, before_); }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;
    bool Done() const { return before_ != nullptr && before_ != HGDI_ERROR; }

  private:
    HDC context_;
    HGDIOBJ before_;
};

constexpr int kSemiBold = 600;

}  // namespace

struct SystemGlyphs::Objects {
    int32_t width, height;
    Owned<HDC> context{CreateCompatibleDC(nullptr)};
    Owned<HBITMAP> bitmap{CreateCompatibleBitmap(context.get(), width, height)};
    Owned<HBRUSH> brush{CreateSolidBrush(RGB(255, 255, 255))};
    Owned<HFONT> font{CreateFontA(height, 0, 0, 0, kSemiBold, FALSE, FALSE, FALSE, ANSI_CHARSET,
                                  OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH,
                                  "Courier New")};
    // Rows of 24-bit pixels, from the bottom up, padded to 4 bytes.
    size_t rowBytes{(static_cast<size_t>(width) * 24 + 31) / 32 * 4};
    std::vector<uint8_t> pixels = std::vector<uint8_t>(rowBytes * static_cast<size_t>(height));

    bool Paint(char character) {
        if (context == nullptr || bitmap == nullptr || brush == nullptr || font == nullptr) return false;
        {
            const Selection bitmapHere(context.get(), bitmap.get());
            const Selection brushHere(context.get(), brush.get());
            const Selection fontHere(context.get(), font.get());
            RECT cell = {0, 0, width - 1, height - 1};
            if (!bitmapHere.Done() || !brushHere.Done() || !fontHere.Done() ||
                !PatBlt(context.get(), 0, 0, width, height, WHITENESS) ||
                DrawTextA(context.get(), &character, 1, &cell, DT_CENTER | DT_VCENTER | DT_SINGLELINE) == 0) {
                return false;
            }
        }
        // The bitmap is read when no device context holds it any more.
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 24;
        info.bmiHeader.biCompression = BI_RGB;
        return GetDIBits(context.get(), bitmap.get(), 0, static_cast<UINT>(height), pixels.data(), &info,
                         DIB_RGB_COLORS) == height;
    }
};

SystemGlyphs::SystemGlyphs(int32_t width, int32_t height)
    : objects_(std::make_unique<Objects>(Objects{width, height})) {}
SystemGlyphs::~SystemGlyphs() = default;

bool SystemGlyphs::Draw(char character, CPlane8u& cell) const {
    if (cell.width != objects_->width || cell.height != objects_->height || !objects_->Paint(character))
        return false;
    for (int32_t y = 0; y < cell.height; ++y) {
        const uint8_t* const row =
            objects_->pixels.data() + static_cast<size_t>(cell.height - 1 - y) * objects_->rowBytes;
        for (int32_t x = 0; x < cell.width; ++x) cell.Row(y)[x] = row[3 * x];
    }
    return true;
}
