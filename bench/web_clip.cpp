// The pictures that bench_effects times, as functions of a WebAssembly module for bench/web.mjs.
#include <cstdint>
#include <vector>

#include "bench/Scenes.h"

namespace {

std::vector<bench::Frame> clip;

}  // namespace

extern "C" {

/// Draws the usual scene, and returns the number of its pictures.
int bench_draw(int32_t width, int32_t height) {
    clip = bench::DrawClip(bench::Scenes().front(), width, height);
    return static_cast<int>(clip.size());
}

/// The planes of an I420 picture, one behind the other.
const uint8_t* bench_picture(int index) {
    return clip[static_cast<size_t>(index)].data();
}

}  // extern "C"
