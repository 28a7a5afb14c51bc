#include "imaging/Plane8u.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "imaging/Files.h"
#include "imaging/Prim.h"

namespace {

constexpr std::align_val_t kAlignment{64};  // a cache line, and the widest vector

// ---- bitmap files ----------------------------------------------------------------------------------

constexpr size_t kFileHeaderSize = 14;
constexpr size_t kInfoHeaderSize = 40;
constexpr size_t kPaletteSize = 256 * 4;
constexpr int32_t kMaxBitmapSide = 16384;

uint32_t LittleEndian(const uint8_t* bytes, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value |= static_cast<uint32_t>(bytes[i]) << (8 * i);
    return value;
}

// ---- copies ----------------------------------------------------------------------------------------

/// Copies `src` to (x, y) of `dst`, clipped to `dst`.
void CopyClipped(const CPlane8u& src, CPlane8u& dst, int64_t x, int64_t y) {
    if (src.Empty() || dst.Empty()) return;
    const int64_t left = std::max<int64_t>(x, 0);
    const int64_t top = std::max<int64_t>(y, 0);
    const int64_t right = std::min<int64_t>(x + src.width, dst.width);
    const int64_t bottom = std::min<int64_t>(y + src.height, dst.height);
    if (right <= left || bottom <= top) return;
    PrimCopy8uC1(src.data + (top - y) * src.width + (left - x), src.width, dst.data + top * dst.width + left,
                 dst.width, static_cast<int32_t>(right - left), static_cast<int32_t>(bottom - top));
}

}  // namespace

CPlane8u::CPlane8u(const CPlane8u& other) {
    if (other.Empty()) return;
    Require(AllocateUninitialized(other.width, other.height));
    CopyPixels(other);
}

void CPlane8u::Attach(uint8_t* planeData, int32_t planeWidth, int32_t planeHeight) {
    Release();
    data = planeData;
    width = planeWidth;
    height = planeHeight;
}

bool CPlane8u::Allocate(int32_t planeWidth, int32_t planeHeight) {
    if (!AllocateUninitialized(planeWidth, planeHeight)) return false;
    std::memset(data, 0, Size());
    return true;
}

bool CPlane8u::AllocateUninitialized(int32_t planeWidth, int32_t planeHeight) {
    if (owned) ::operator delete(data, kAlignment);
    data = nullptr;
    if (planeWidth < 1 || planeHeight < 1) return false;
    const int64_t size = static_cast<int64_t>(planeWidth) * planeHeight;
    if (size > std::numeric_limits<int32_t>::max()) return false;
    void* const block = ::operator new(static_cast<size_t>(size), kAlignment, std::nothrow);
    if (block == nullptr) return false;
    data = static_cast<uint8_t*>(block);
    width = planeWidth;
    height = planeHeight;
    owned = true;
    return true;
}

void CPlane8u::Release() {
    if (owned) ::operator delete(data, kAlignment);
    data = nullptr;
    width = 0;
    height = 0;
    owned = false;
}

void CPlane8u::Swap(CPlane8u& other) noexcept {
    std::swap(data, other.data);
    std::swap(width, other.width);
    std::swap(height, other.height);
    std::swap(owned, other.owned);
}

void CPlane8u::Fill(uint8_t value) {
    PrimSet8uC1(value, data, width, width, height);
}

void CPlane8u::CopyPixels(const CPlane8u& src) {
    const size_t count = std::min(Size(), src.Size());
    if (count > 0) std::memmove(data, src.data, count);
}

void CPlane8u::Paste(const CPlane8u& src, int32_t x, int32_t y) {
    CopyClipped(src, *this, x, y);
}

void CPlane8u::FillBorder(int32_t thickness, uint8_t value) {
    if (Empty() || thickness < 1) return;
    const int32_t rows = std::min(thickness, height);
    const int32_t columns = std::min(thickness, width);
    const int32_t between = height - 2 * rows;
    PrimSet8uC1(value, data, width, width, rows);
    PrimSet8uC1(value, Row(height - rows), width, width, rows);
    if (between < 1) return;
    PrimSet8uC1(value, Row(rows), width, columns, between);
    PrimSet8uC1(value, Row(rows) + (width - columns), width, columns, between);
}

uint8_t CPlane8u::MeanByte() const {
    double mean = 0.0;
    PrimMean8uC1(data, width, width, height, &mean);
    return static_cast<uint8_t>(mean);
}

void CPlane8u::CopyWithBorder(const CPlane8u& src, int32_t border) {
    PrimCopyReplicateBorder8uC1(src.data, src.width, src.width, src.height, data, width, width, height,
                                border, border);
}

void CPlane8u::CopyRegion(const CPlane8u& src, int32_t x, int32_t y) {
    CopyClipped(src, *this, -static_cast<int64_t>(x), -static_cast<int64_t>(y));
}

void CPlane8u::ResizeRegion(const CPlane8u& src, int32_t regionWidth, int32_t regionHeight, int32_t x,
                            int32_t y) {
    Require(PrimResize8uC1(src.data, src.width, src.height, src.width, x, y, regionWidth, regionHeight, data,
                           width, width, height, static_cast<double>(width) / regionWidth,
                           static_cast<double>(height) / regionHeight, kPrimLinear) != kPrimMemoryError);
}

void CPlane8u::ReplicateBorder(int32_t border) {
    if (Empty() || border < 1 || border > (std::min(width, height) - 1) / 2) return;
    PrimReplicateBorderInPlace8uC1(Row(border) + border, width, width - 2 * border, height - 2 * border,
                                   width, height, border, border);
}

CPlane8u& CPlane8u::SubtractBoost(const CPlane8u& src) {
    if (src.width == width && src.height == height) {
        PrimSubSfs8uC1(src.data, src.width, data, width, width, height, -4);
    }
    return *this;
}

void CPlane8u::Invert() {
    PrimNot8uC1(data, width, width, height);
}

void CPlane8u::Mirror(int32_t axis) {
    PrimMirror8uC1(data, width, width, height, axis);
}

bool CPlane8u::LoadBmp(const char* path) {
    if (path == nullptr) return false;
    const std::optional<uint64_t> fileSize = files::RegularFileSize(path);
    const files::File file = files::OpenToRead(path);
    std::array<uint8_t, kFileHeaderSize> fileHeader{};
    std::array<uint8_t, kInfoHeaderSize> info{};
    std::array<uint8_t, kPaletteSize> palette{};
    if (!files::Read(file, fileHeader.data(), fileHeader.size())) return false;
    if (LittleEndian(fileHeader.data(), 2) != 19778) return false;  // "BM"
    if (!files::Read(file, info.data(), info.size())) return false;
    if (LittleEndian(&info[14], 2) != 8) return false;  // bits a pixel
    if (!files::Read(file, palette.data(), palette.size())) return false;

    const auto fileWidth = static_cast<int32_t>(LittleEndian(&info[4], 4));
    const auto fileHeight = static_cast<int32_t>(LittleEndian(&info[8], 4));
    if (fileWidth < 1 || fileHeight < 1 || fileWidth > kMaxBitmapSide || fileHeight > kMaxBitmapSide) {
        return false;
    }
    const size_t count = static_cast<size_t>(fileWidth) * static_cast<size_t>(fileHeight);
    if (!fileSize || *fileSize < kFileHeaderSize + kInfoHeaderSize + kPaletteSize + count) return false;

    // Read into a temporary first: a failed read must not change this plane.
    CPlane8u bottomUp = NewPlane(fileWidth, fileHeight);
    if (!files::Read(file, bottomUp.data, count)) return false;
    if (data == nullptr || width != fileWidth || height != fileHeight) {
        *this = NewPlane(fileWidth, fileHeight);
    }
    for (int32_t y = 0; y < height; ++y) {
        std::memcpy(Row(y), bottomUp.Row(height - 1 - y), static_cast<size_t>(width));
    }
    return true;
}

CPlane8u NewPlane(int32_t width, int32_t height) {
    CPlane8u plane;
    if (width >= 1 && height >= 1) Require(plane.Allocate(width, height));
    return plane;
}

void Require(bool allocated) {
    if (!allocated) throw std::bad_alloc();
}
