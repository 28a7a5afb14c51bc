// A caller's picture as effects see it: planar YUV 4:2:0 of even size, without gaps between rows.
#ifndef SPECIALEFFECTS_SFX_WORKFRAME_H
#define SPECIALEFFECTS_SFX_WORKFRAME_H

#include <cstdint>
#include <vector>

#include "sfx/Picture.h"
#include "sfx/RowLoops.h"

namespace sfx {

/// Sides as effects see them.
constexpr int32_t EvenSide(int32_t side) {
    return side + side % 2;
}

/// Planes that already have the form are the caller's own; the others are copies. Keeps its memory from frame
/// to frame, as much as the last picture needed.
class WorkFrame {
  public:
    struct Planes {
        uint8_t *y, *u, *v;
        int32_t width, height;  ///< even

        size_t LumaSize() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
        size_t ChromaSize() const { return LumaSize() / 4; }
    };

    /// The picture's pixels. The picture has to stay where it is until `Store`. Throws std::bad_alloc.
    Planes Load(const Picture& picture);

    /// Brings the planes that `Load` gave, changed or not, back to the same picture.
    void Store(const Picture& picture);

  private:
    struct Channels {
        uint8_t* bytes[4];
    };

    void TakeMemory(const Picture& picture);
    void LoadPlanar(const Picture& picture);
    void LoadPackedYuv(const Picture& picture);
    void LoadRgb(const Picture& picture);
    void StorePlanar(const Picture& picture);
    void StorePackedYuv(const Picture& picture);
    void StoreRgb(const Picture& picture);

    void LoadLuma(const Picture& picture);
    void LoadChroma(const Picture& picture, int plane, uint8_t* samples);
    void StoreChroma(const Picture& picture, int plane, const uint8_t* samples);
    bool ChromaChanged() const;

    uint8_t* Scratch(size_t row) { return scratch_.data() + row * static_cast<size_t>(planes_.width); }
    Channels SplitRgbRow(const Picture& picture, int32_t y, size_t scratchRow);
    void JoinRgbRow(const Picture& picture, int32_t y, const Channels& channels);
    size_t Width() const { return static_cast<size_t>(planes_.width); }
    size_t Columns() const { return Width() / 2; }
    int32_t Lines() const { return planes_.height / 2; }
    uint8_t* LumaRow(int32_t y) const { return planes_.y + Width() * static_cast<size_t>(y); }
    size_t ChromaAt(int32_t line) const { return Columns() * static_cast<size_t>(line); }

    Planes planes_{};
    bool ownLuma_ = false, ownChroma_ = false;
    bool keepsChroma_ = false;  ///< the picture has more chroma samples than `chroma_`
    std::vector<uint8_t> luma_, chroma_, chromaBefore_, scratch_;
};

}  // namespace sfx

#endif
