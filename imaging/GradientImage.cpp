#include "imaging/GradientImage.h"

#include <new>
#include <utility>

#include "imaging/Plane8u.h"
#include "imaging/Prim.h"

bool CGradientImage::Allocate(int32_t imageWidth, int32_t imageHeight) {
    Release();
    if (imageWidth < 1 || imageHeight < 1) return false;
    const int64_t count = static_cast<int64_t>(imageWidth) * imageHeight;
    if (count > (int64_t{1} << 30)) return false;
    storage.reset(new (std::nothrow) int16_t[2 * static_cast<size_t>(count)]());
    if (storage == nullptr) return false;
    dx = storage.get();
    dy = dx + count;
    width = imageWidth;
    height = imageHeight;
    return true;
}

void CGradientImage::Release() {
    storage.reset();
    dx = nullptr;
    dy = nullptr;
    width = 0;
    height = 0;
}

void CGradientImage::Swap(CGradientImage& other) noexcept {
    std::swap(dx, other.dx);
    std::swap(dy, other.dy);
    std::swap(width, other.width);
    std::swap(height, other.height);
    std::swap(storage, other.storage);
}

void CGradientImage::ComputeSobel(const CPlane8u& plane) {
    if (plane.Empty() || width < 3 || height < 3 || plane.width < width || plane.height < height) return;
    const uint8_t* const source = plane.Row(1) + 1;
    const ptrdiff_t inner = static_cast<ptrdiff_t>(width) + 1;
    const int32_t step = 2 * width;
    PrimFilterSobelHoriz8u16s(source, plane.width, dx + inner, step, width - 2, height - 2, kPrimMask3x3);
    PrimFilterSobelVert8u16s(source, plane.width, dy + inner, step, width - 2, height - 2, kPrimMask3x3);
}
