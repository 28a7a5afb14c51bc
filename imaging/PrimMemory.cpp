// Aligned blocks.
#include <cstddef>
#include <limits>
#include <new>

#include "imaging/Prim.h"

namespace {

constexpr std::align_val_t kAlignment{32};

void* Allocate(size_t size) {
    return ::operator new(size, kAlignment, std::nothrow);
}

}  // namespace

void* PrimAllocBuffer(int32_t size) {
    return size < 1 ? nullptr : Allocate(static_cast<size_t>(size));
}

void PrimFreeBuffer(void* buffer) {
    ::operator delete(buffer, kAlignment);
}

uint8_t* PrimMalloc8uC1(int32_t width, int32_t height, int32_t* step) {
    if (step == nullptr) {
        return nullptr;
    }
    *step = 0;
    if (width < 1 || height < 1 || width > std::numeric_limits<int32_t>::max() - 31) {
        return nullptr;
    }
    const int32_t rowStep = (width + 31) & ~31;
    auto* image = static_cast<uint8_t*>(Allocate(static_cast<size_t>(rowStep) * static_cast<size_t>(height)));
    if (image != nullptr) {
        *step = rowStep;
    }
    return image;
}

void PrimFree(void* image) {
    PrimFreeBuffer(image);
}
