// A table of source coordinates while it is being filled.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_REMAPTABLE_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_REMAPTABLE_H

#include <cstddef>
#include <cstdint>

struct RemapTable {
    float* xMap;
    float* yMap;
    int32_t width, height;

    float* XRow(int32_t y) const { return xMap + static_cast<ptrdiff_t>(y) * width; }
    float* YRow(int32_t y) const { return yMap + static_cast<ptrdiff_t>(y) * width; }

    /// Every pixel is its own source.
    void FillIdentity() const {
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                XRow(y)[x] = static_cast<float>(x);
                YRow(y)[x] = static_cast<float>(y);
            }
        }
    }
};

#endif
