// Moving pictures to time effects on.
#ifndef SPECIALEFFECTS_BENCH_SCENES_H
#define SPECIALEFFECTS_BENCH_SCENES_H

#include <cstdint>
#include <span>
#include <vector>

namespace bench {

/// The planes of an I420 frame, one behind the other.
using Frame = std::vector<uint8_t>;

struct Scene {
    const char* name;
    const char* about;
    /// Draws the luma, `width` by `height`, of picture `index` of a clip.
    void (*drawLuma)(uint8_t* luma, int32_t width, int32_t height, int32_t index);
};

/// All scenes; the first is the usual one.
std::span<const Scene> Scenes();

/// Pictures of a scene that, shown over and over, run to and fro. Throws std::runtime_error when the portrait
/// that the scene needs cannot be read.
std::vector<Frame> DrawClip(const Scene& scene, int32_t width, int32_t height);

}  // namespace bench

#endif
