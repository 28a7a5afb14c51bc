// Fetching pixels from places that were worked out beforehand: the frame's part of every effect that bends
// the picture with a fixed map.
#ifndef SPECIALEFFECTS_IMAGING_INDEXGATHER_H
#define SPECIALEFFECTS_IMAGING_INDEXGATHER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A fixed map, compiled for speed: neighbouring pixels mostly come from a few neighbourhoods, so that
/// a few loads and byte shuffles fetch sixteen of them.
///
/// Building takes about 5 ns and 2 to 4 bytes a pixel, and throws std::bad_alloc when memory runs out.
/// Several threads may apply one map at a time.
class GatherMap {
  public:
    /// An index that leaves its pixel as it is. Every index past the source does so.
    static constexpr uint32_t kKeep = 0xFFFFFFFF;

    /// A map without pixels.
    GatherMap() = default;

    /// Replaces the map. `index` has one entry for each pixel of the destination, row after row of `width`
    /// pixels: which pixel of the source it takes. The source has `srcPixels` pixels in packed rows of any
    /// length; pixels have 1 byte or 3.
    void Build(std::span<const uint32_t> index, int32_t width, size_t srcPixels, int32_t pixelBytes = 1);

    /// Frees everything; the map has no pixels afterwards.
    void Release();

    bool Empty() const { return runs_.empty(); }

    /// Fetches the pixels. `src` and `dst` have the sizes that `Build` was given and do not overlap.
    void Apply(const uint8_t* src, uint8_t* dst) const;

  private:
    friend class GatherCompiler;

    /// A number of blocks of one kind, whose words follow each other in `words_`.
    struct Run {
        uint32_t kind;
        uint32_t count;
    };

    int32_t width_ = 0;
    std::vector<Run> runs_;
    std::vector<uint32_t> words_;
};

#endif
