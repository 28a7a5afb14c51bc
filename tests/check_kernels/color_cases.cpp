// The colour operations. Their time is compared with a memcpy of an I420 frame.
#include <array>

#include "tests/check_kernels/Trial.h"
#include "tests/imaging/models/ColorModels.h"

namespace check {
namespace {

using Matrix = std::array<float, 12>;

constexpr Matrix kSepia = {0.393f, 0.769f, 0.189f, 0, 0.349f, 0.686f, 0.168f, 0, 0.272f, 0.534f, 0.131f, 1};
/// Every sum ends on a half.
constexpr Matrix kTies = {0.5f, 0, 0, 0, 0.25f, 0.25f, 0, 0.5f, 0, -1, 0, 254.5f};
constexpr Matrix kHuge = {1e30f, -1e30f, 3e38f, 0, 1e-30f, 1, 0, 0, 40000, -40000, 1, 0};

void Twist(Trial& t) {
    const int32_t kind = t.Pick("matrix", {0, 1, 2, 3, 4, 5});
    Matrix matrix = kind == 0 ? kSepia : kind == 1 ? kTies : kind == 2 ? kHuge : Matrix{};
    if (kind > 2) {
        for (float& m : matrix) {
            m = static_cast<float>(t.random().Real(-2, 2)) * (kind == 3 ? 1.0f : kind == 4 ? 10.0f : 0.5f);
        }
        for (const size_t i : {3u, 7u, 11u}) {
            matrix[i] *= 64;
        }
    }
    const auto numbers = t.Source<float>(
        {.width = 12, .height = 1, .element = [next = matrix.begin()](Random&) mutable { return *next++; }});
    const auto data = t.Target<uint8_t>({.channels = 3});
    t.Run(PrimColorTwist8uC3, model::PrimColorTwist8uC3, [&](auto twist, Side side) {
        return twist(data.at(side), data.step(), t.width(), t.height(), numbers.at(side));
    });
}

void RgbToYuv(Trial& t) {
    const int32_t chromaWidth = (t.width() + 1) / 2;
    const int32_t chromaHeight = (t.height() + 1) / 2;
    const auto src = t.Source<uint8_t>({.channels = 3, .packed = true});
    const auto y = t.Target<uint8_t>({.packed = true});
    const auto u = t.Target<uint8_t>({.width = chromaWidth, .height = chromaHeight, .packed = true});
    const auto v = t.Target<uint8_t>({.width = chromaWidth, .height = chromaHeight, .packed = true});
    t.Run(PrimRgbToYuv420, model::PrimRgbToYuv420, [&](auto convert, Side side) {
        uint8_t* const planes[3] = {y.at(side), u.at(side), v.at(side)};
        return convert(src.at(side), planes, t.width(), t.height());
    });
}

void YuvToRgb(Trial& t) {
    const int32_t chromaWidth = (t.width() + 1) / 2;
    const int32_t chromaHeight = (t.height() + 1) / 2;
    const auto y = t.Source<uint8_t>({.packed = true});
    const auto u = t.Source<uint8_t>({.width = chromaWidth, .height = chromaHeight, .packed = true});
    const auto v = t.Source<uint8_t>({.width = chromaWidth, .height = chromaHeight, .packed = true});
    const auto dst = t.Target<uint8_t>({.channels = 3, .packed = true});
    t.Run(PrimYuv420ToRgb, model::PrimYuv420ToRgb, [&](auto convert, Side side) {
        const uint8_t* const planes[3] = {y.at(side), u.at(side), v.at(side)};
        return convert(planes, dst.at(side), t.width(), t.height());
    });
}

const Register kernels("color", {
                                    {"PrimColorTwist8uC3", Twist, 1.5},
                                    {"PrimRgbToYuv420", RgbToYuv, 1.5},
                                    {"PrimYuv420ToRgb", YuvToRgb, 1.5},
                                });

}  // namespace
}  // namespace check
