// The geometric primitives, and operations on slopes and histograms of planes.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

#include "imaging/Cpu.h"
#include "imaging/IndexGather.h"
#include "imaging/Plane8u.h"
#include "tests/check_kernels/Trial.h"
#include "tests/imaging/models/GeometryModels.h"

namespace check {
namespace {

// ---- mirror, borders -------------------------------------------------------------------------------

void Mirror(Trial& t) {
    const int32_t axis = t.Pick("axis", {kPrimMirrorColumns, kPrimMirrorRows, kPrimMirrorBoth});
    const auto data = t.Target<uint8_t>();
    t.Run(PrimMirror8uC1, model::PrimMirror8uC1, [&](auto mirror, Side side) {
        return mirror(data.at(side), data.step(), t.width(), t.height(), axis);
    });
}

/// Widths of the four bands around a picture.
struct Bands {
    int32_t top, left, bottom, right;
};

Bands PickBands(Trial& t) {
    return {t.Any("top", 0, 5, 16), t.Any("left", 0, 40, 16), t.Any("bottom", 0, 5, 16),
            t.Any("right", 0, 40, 16)};
}

void CopyReplicateBorder(Trial& t) {
    const Bands bands = PickBands(t);
    const int32_t width = t.width() + bands.left + bands.right;
    const int32_t height = t.height() + bands.top + bands.bottom;
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>({.width = width, .height = height});
    t.Run(PrimCopyReplicateBorder8uC1, model::PrimCopyReplicateBorder8uC1, [&](auto copy, Side side) {
        return copy(src.at(side), src.step(), t.width(), t.height(), dst.at(side), dst.step(), width, height,
                    bands.top, bands.left);
    });
}

void ReplicateBorderInPlace(Trial& t) {
    const Bands bands = PickBands(t);
    const int32_t width = t.width() + bands.left + bands.right;
    const int32_t height = t.height() + bands.top + bands.bottom;
    const auto data = t.Target<uint8_t>({.width = width, .height = height});
    t.Run(PrimReplicateBorderInPlace8uC1, model::PrimReplicateBorderInPlace8uC1,
          [&](auto replicate, Side side) {
              uint8_t* const inner =
                  data.at(side) + static_cast<ptrdiff_t>(bands.top) * data.step() + bands.left;
              return replicate(inner, data.step(), t.width(), t.height(), width, height, bands.top,
                               bands.left);
          });
}

// ---- remap -----------------------------------------------------------------------------------------

/// Makes the entries of a map for one axis, row after row: a gentle wave around the pixel's own place, or
/// anything in and around the source, whole and half pixels among it.
class MapEntries {
  public:
    enum class Kind { kWave, kAnything };

    MapEntries(Kind kind, bool alongX, int32_t width, int32_t height)
        : kind_(kind), alongX_(alongX), width_(width), length_(alongX ? width : height) {}

    float operator()(Random& random) {
        const int64_t place = next_++;
        if (kind_ == Kind::kWave) {
            const auto x = static_cast<double>(place % width_), y = static_cast<double>(place / width_);
            return static_cast<float>((alongX_ ? x : y) + 9.0 * std::sin((x + 2.0 * y) * 0.02));
        }
        switch (random.Whole(0, 7)) {
            case 0:
                return static_cast<float>(random.Whole(-1, 2 * length_)) * 0.5f;
            case 1:
                return std::nextafter(static_cast<float>(random.Whole(0, 2 * length_)) * 0.5f, 0.0f);
            case 2:
                return random.Whole(0, 1) != 0 ? std::nanf("") : 1e30f;
            default:
                return static_cast<float>(random.Real(-0.5, length_));
        }
    }

  private:
    Kind kind_;
    bool alongX_;
    int32_t width_, length_;
    int64_t next_ = 0;
};

template <int32_t channels, auto& kFast, auto& kModel>
void Remap(Trial& t) {
    const int32_t mode = t.Pick("mode", {kPrimNearest, kPrimLinear, kPrimCubic});
    const bool part = t.Pick("part", {0, 1}) != 0;
    const auto kind =
        t.Pick("anything", {0, 1, 1}) != 0 ? MapEntries::Kind::kAnything : MapEntries::Kind::kWave;
    const int32_t roiX = part ? t.Any("roiX", 0, t.width() - 1, 0) : 0;
    const int32_t roiY = part ? t.Any("roiY", 0, t.height() - 1, 0) : 0;
    const int32_t roiWidth = part ? t.Any("roiWidth", 1, t.width(), 1) : t.width();
    const int32_t roiHeight = part ? t.Any("roiHeight", 1, t.height(), 1) : t.height();
    const auto src = t.Source<uint8_t>({.channels = channels});
    const auto xMap = t.Source<float>({.element = MapEntries(kind, true, t.width(), t.height())});
    const auto yMap = t.Source<float>({.element = MapEntries(kind, false, t.width(), t.height())});
    const auto dst = t.Target<uint8_t>({.channels = channels});
    t.Run(kFast, kModel, [&](auto remap, Side side) {
        return remap(src.at(side), t.width(), t.height(), src.step(), roiX, roiY, roiWidth, roiHeight,
                     xMap.at(side), xMap.step(), yMap.at(side), yMap.step(), dst.at(side), dst.step(),
                     t.width(), t.height(), mode);
    });
}

// ---- resize ----------------------------------------------------------------------------------------

/// Scales a whole picture, or the part of it right of and below a point, to a size of its own.
void ResizeTo(Trial& t, int32_t mode, double xFactor, double yFactor) {
    const int32_t roiX = t.Pick("part", {0, 1}) * t.Any("roiX", 0, t.width() - 1, 0);
    const int32_t roiY = roiX == 0 ? 0 : t.Any("roiY", 0, t.height() - 1, 0);
    const auto scaled = [&](int32_t length, double factor) {
        return std::max(static_cast<int32_t>(length * factor + 1e-7), 1);
    };
    const int32_t width = scaled(t.width() - roiX, xFactor), height = scaled(t.height() - roiY, yFactor);
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>({.width = width, .height = height});
    t.Run(PrimResize8uC1, model::PrimResize8uC1, [&](auto resize, Side side) {
        return resize(src.at(side), t.width(), t.height(), src.step(), roiX, roiY, t.width(), t.height(),
                      dst.at(side), dst.step(), width, height, xFactor, yFactor, mode);
    });
}

template <int32_t mode>
void ResizeDown(Trial& t) {
    const double xFactor = t.Pick("xFactor", {0.5, 0.9, 1 / 1.12, 0.74, 0.3, 0.2, 0.07});
    const double yFactor = t.Pick("other", {0, 1}) != 0 ? t.Any("percent", 5, 100, 50) / 100.0 : xFactor;
    ResizeTo(t, mode, xFactor, yFactor);
}

template <int32_t mode>
void ResizeUp(Trial& t) {
    const double xFactor = t.Pick("xFactor", {2.0, 1.0, 1.0 + 1e-9, 1.1, 3.3});
    const double yFactor = t.Pick("other", {0, 1}) != 0 ? t.Any("percent", 100, 300, 200) / 100.0 : xFactor;
    ResizeTo(t, mode, xFactor, yFactor);
}

// ---- rotate ----------------------------------------------------------------------------------------

void Rotate(Trial& t) {
    const uint32_t mode = t.Pick("mode", {0x80000004u, 0x80000001u, 1u, 2u, 4u, 0x80000002u});
    const double angle = t.Pick("angle", {30.0, 0.0, 90.0, 180.0, 270.0, 359.9, 137.0});
    const int32_t width = t.Any("dstWidth", 1, t.width() + 9, t.width());
    const int32_t height = t.Any("dstHeight", 1, t.height() + 9, t.height());
    const int32_t roiX = t.Any("dstX", 0, width - 1, 0), roiY = t.Any("dstY", 0, height - 1, 0);
    const double part = t.Pick("quarters", {0, 1}) / 4.0;
    double xShift = 0.0, yShift = 0.0;
    PrimGetRotateShift(t.width() / 2, t.height() / 2, angle, &xShift, &yShift);
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>({.width = width, .height = height});
    t.Run(PrimRotate8uC1, model::PrimRotate8uC1, [&](auto rotate, Side side) {
        return rotate(src.at(side), t.width(), t.height(), src.step(), 0, 0, t.width(), t.height(),
                      dst.at(side), dst.step(), roiX, roiY, width - roiX, height - roiY, angle, xShift + part,
                      yShift, mode);
    });
}

// ---- planes ----------------------------------------------------------------------------------------

/// The functions on planes take what their models take.
CPlane8u PlaneOver(const uint8_t* data, int32_t width, int32_t height) {
    return CPlane8u::Over(const_cast<uint8_t*>(data), width, height);
}

int EqualizeFast(uint8_t* data, int32_t width, int32_t height) {
    CPlane8u plane = PlaneOver(data, width, height);
    EqualizeHistogram(plane);
    return 0;
}

int EqualizeModel(uint8_t* data, int32_t width, int32_t height) {
    model::EqualizeHistogram(data, int64_t{width} * height);
    return 0;
}

void Equalize(Trial& t) {
    const auto data = t.Target<uint8_t>({.packed = true});
    t.Run(EqualizeFast, EqualizeModel,
          [&](auto equalize, Side side) { return equalize(data.at(side), t.width(), t.height()); });
}

/// Heights of a bumpy ground: gentle, with drops on a flat one, or wild.
class Bumps {
  public:
    Bumps(int32_t kind, int32_t width) : kind_(kind), width_(width) {}

    uint8_t operator()(Random& random) {
        const int64_t place = next_++;
        const auto x = static_cast<double>(place % width_), y = static_cast<double>(place / width_);
        if (kind_ == 0) {
            return static_cast<uint8_t>(128 + 60 * std::sin(x * 0.05) + 60 * std::cos(y * 0.04 + x * 0.01));
        }
        if (kind_ == 1) {
            const double dx = std::remainder(x, 48.0), dy = std::remainder(y, 48.0);
            return static_cast<uint8_t>(100 + std::max(0.0, 120.0 - dx * dx - dy * dy));
        }
        return static_cast<uint8_t>(random.Bits() >> 40);
    }

  private:
    int32_t kind_;
    int32_t width_;
    int64_t next_ = 0;
};

int DisplaceFast(const uint8_t* bump, const uint8_t* src, uint8_t* dst, int32_t width, int32_t height) {
    CPlane8u target = PlaneOver(dst, width, height);
    DisplaceByGradient(PlaneOver(bump, width, height), PlaneOver(src, width, height), target);
    return 0;
}

int DisplaceModel(const uint8_t* bump, const uint8_t* src, uint8_t* dst, int32_t width, int32_t height) {
    model::DisplaceByGradient(bump, src, dst, width, height);
    return 0;
}

void Displace(Trial& t) {
    const int32_t kind = t.Pick("bumps", {0, 1, 2});
    const auto bump = t.Source<uint8_t>({.packed = true, .element = Bumps(kind, t.width())});
    const auto src = t.Source<uint8_t>({.packed = true});
    const auto dst = t.Target<uint8_t>({.packed = true});
    t.Run(DisplaceFast, DisplaceModel, [&](auto displace, Side side) {
        return displace(bump.at(side), src.at(side), dst.at(side), t.width(), t.height());
    });
}

int ShadeFast(const uint8_t* src, uint8_t* dst, int32_t width, int32_t height, int32_t bias) {
    CPlane8u target = PlaneOver(dst, width, height);
    ShadeByGradient(PlaneOver(src, width, height), target, bias);
    return 0;
}

int ShadeModel(const uint8_t* src, uint8_t* dst, int32_t width, int32_t height, int32_t bias) {
    model::ShadeByGradient(src, dst, width, height, bias);
    return 0;
}

void Shade(Trial& t) {
    const int32_t bias = t.Pick("bias", {45, 0, -45, 128, 300, -300, 382, 383, -383, 1 << 30, -(1 << 30)});
    const int32_t kind = t.Pick("heights", {0, 1, 2});
    const auto src = t.Source<uint8_t>({.packed = true, .element = Bumps(kind, t.width())});
    const auto dst = t.Target<uint8_t>({.packed = true});
    t.Run(ShadeFast, ShadeModel, [&](auto shade, Side side) {
        return shade(src.at(side), dst.at(side), t.width(), t.height(), bias);
    });
}

// ---- gather ----------------------------------------------------------------------------------------

enum MapKind { kTurned, kShrunk, kMirrored, kInPlace, kAnywhere };

/// Where each pixel of a picture comes from: mostly from the picture's other pixels, occasionally from
/// none.
std::vector<uint32_t> MakeMap(MapKind kind, bool holes, int32_t width, int32_t height, Random& random) {
    std::vector<uint32_t> map;
    const double angle = random.Real(0.0, 6.28), c = std::cos(angle), s = std::sin(angle);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const double dx = x - width / 2, dy = y - height / 2;
            double sx = x, sy = y;
            if (kind == kTurned) {
                sx = dx * c - dy * s + width / 2;
                sy = dx * s + dy * c + height / 2;
            } else if (kind == kShrunk) {
                sx = 2.7 * dx + width / 2;
                sy = 2.7 * dy + height / 2;
            } else if (kind == kMirrored) {
                sx = width - 1 - x;
            } else if (kind == kAnywhere) {
                sx = random.Whole(0, width - 1);
                sy = random.Whole(0, height - 1);
            }
            const auto column = static_cast<int64_t>(std::floor(sx)),
                       row = static_cast<int64_t>(std::floor(sy));
            const bool outside = column < 0 || row < 0 || column >= width || row >= height;
            const bool hole = holes && random.Whole(0, 99) == 0;
            map.push_back(hole ? GatherMap::kKeep - static_cast<uint32_t>(random.Whole(0, 1000))
                               : static_cast<uint32_t>(outside ? y * width + x : row * width + column));
        }
    }
    return map;
}

/// The map is built once a level; of many times the first, which holds the building, is never the best.
template <int32_t pixelBytes>
void Gather(Trial& t) {
    const auto kind =
        static_cast<MapKind>(t.Pick("kind", {kTurned, kShrunk, kMirrored, kInPlace, kAnywhere}));
    const bool holes = t.Pick("holes", {0, 1}) != 0;
    const std::vector<uint32_t> index = MakeMap(kind, holes, t.width(), t.height(), t.random());
    const auto pixels = static_cast<size_t>(t.width()) * static_cast<size_t>(t.height());
    GatherMap map;
    std::optional<cpu::Level> built;
    const auto src = t.Source<uint8_t>({.channels = pixelBytes, .packed = true});
    const auto dst = t.Target<uint8_t>({.channels = pixelBytes, .packed = true});
    t.Run(0, 1, [&](int plain, Side side) {
        if (plain == 0) {
            if (built != cpu::Current()) {
                built = cpu::Current();
                map.Build(index, t.width(), pixels, pixelBytes);
            }
            map.Apply(src.at(side), dst.at(side));
        } else {
            model::GatherPixels(src.at(side), pixels, index.data(), dst.at(side), pixels, pixelBytes);
        }
        return 0;
    });
}

const Register kernels("geometry", {
                                       {"PrimMirror8uC1", Mirror},
                                       {"PrimCopyReplicateBorder8uC1", CopyReplicateBorder},
                                       {"PrimReplicateBorderInPlace8uC1", ReplicateBorderInPlace},
                                       {"PrimRemap8uC1", Remap<1, PrimRemap8uC1, model::PrimRemap8uC1>},
                                       {"PrimRemap8uC3", Remap<3, PrimRemap8uC3, model::PrimRemap8uC3>, 3},
                                       {"PrimResize8uC1 linear down", ResizeDown<kPrimLinear>},
                                       {"PrimResize8uC1 linear up", ResizeUp<kPrimLinear>, 4},
                                       {"PrimResize8uC1 nearest down", ResizeDown<kPrimNearest>},
                                       {"PrimResize8uC1 nearest up", ResizeUp<kPrimNearest>, 4},
                                       {"PrimResize8uC1 Lanczos down", ResizeDown<kPrimLanczos>},
                                       {"PrimResize8uC1 Lanczos up", ResizeUp<kPrimLanczos>, 4},
                                       {"PrimRotate8uC1", Rotate},
                                       {"EqualizeHistogram", Equalize},
                                       {"DisplaceByGradient", Displace},
                                       {"ShadeByGradient", Shade},
                                       {"GatherMap", Gather<1>},
                                       {"GatherMap, 3 bytes", Gather<3>, 3},
                                   });

}  // namespace
}  // namespace check
