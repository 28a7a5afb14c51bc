// How a frame passes through a table of source coordinates, in its plain form: the remap primitive into a
// picture that is kept from frame to frame, and the copy back.
#ifndef SPECIALEFFECTS_TESTS_EFFECTS_DISTORTION_REMAP_MODEL_H
#define SPECIALEFFECTS_TESTS_EFFECTS_DISTORTION_REMAP_MODEL_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "effects/distortion/IppDistortion.h"
#include "imaging/Prim.h"
#include "tests/support/SideBySide.h"

using TableMaker = std::function<void(float* xMap, float* yMap, int width, int height)>;

/// Every pixel is its own source.
inline void IdentityTable(float* xMap, float* yMap, int width, int height) {
    for (int i = 0; i < width * height; ++i) {
        xMap[i] = static_cast<float>(i % width);
        yMap[i] = static_cast<float>(i / width);
    }
}

struct Table {
    std::vector<float> x, y;

    Table(int width, int height, float start = 0.0F) : x(static_cast<size_t>(width * height), start), y(x) {}
    bool operator==(const Table&) const = default;
};

inline Table MakeTable(const TableMaker& maker, int width, int height) {
    Table table(width, height);
    if (width > 0 && height > 0) maker(table.x.data(), table.y.data(), width, height);
    return table;
}

/// What slot 19 of the effect fills, called as a host could: through the table of virtual operations.
inline Table TableOf(EffectDriver& effect, int width, int height) {
    Table table(width, height, -77.0F);
    using Slot19 = void (*)(CSpecialEffectFilter*, float*, float*, int32_t, int32_t);
    void* const* const slots = *reinterpret_cast<void* const* const*>(&*effect);
    Slot19 build = nullptr;
    std::memcpy(&build, &slots[19], sizeof build);
    build(&*effect, table.x.data(), table.y.data(), width, height);
    return table;
}

class RemapModel {
  public:
    RemapModel(const TableMaker& maker, int width, int height, int format = kFormatPlanar)
        : width_(width),
          height_(height),
          full_(MakeTable(maker, width, height)),
          half_(MakeTable(maker, width / 2, height / 2)) {
        const int bytes = (((format == kFormatPacked ? 24 : 12) * width + 31) & ~31) / 8 * height;
        scratch_.assign(static_cast<size_t>(bytes), 0);
        if (format == kFormatPlanar) std::fill(scratch_.begin() + width * height, scratch_.end(), 128);
    }

    void Process(TestFrame& frame) {
        uint8_t* const scratch = scratch_.data();
        const int w = width_, h = height_;
        if (frame.format() == kFormatPacked) {
            PrimRemap8uC3(frame.y(), w, h, 3 * w, 0, 0, w, h, full_.x.data(), 4 * w, full_.y.data(), 4 * w,
                          scratch, 3 * w, w, h, kPrimNearest);
            std::memcpy(frame.y(), scratch, static_cast<size_t>(3 * w * h));
            return;
        }
        Plane(frame.y(), frame.image().PlaneSize[0], w, h, full_, scratch);
        Plane(frame.u(), frame.image().PlaneSize[1], w / 2, h / 2, half_, scratch + w * h);
        Plane(frame.v(), frame.image().PlaneSize[2], w / 2, h / 2, half_,
              scratch + w * h + (w / 2) * (h / 2));
    }

  private:
    static void Plane(uint8_t* pixels, int planeSize, int w, int h, const Table& table, uint8_t* scratch) {
        PrimRemap8uC1(pixels, w, h, w, 0, 0, w, h, table.x.data(), 4 * w, table.y.data(), 4 * w, scratch, w,
                      w, h, kPrimNearest);
        std::copy_n(scratch, std::clamp(planeSize, 0, w * h), pixels);
    }

    int width_, height_;
    Table full_, half_;
    std::vector<uint8_t> scratch_;
};

/// The effect's frames against the model's, planar and packed, at sizes even and odd, many frames each.
/// `prepare` is called on both frames first.
inline void ExpectFramesOfTheTable(EffectDriver& effect, const TableMaker& maker,
                                   const std::function<void()>& configured = {},
                                   const std::function<void(TestFrame&)>& prepare = {}) {
    for (const auto& [w, h] :
         {std::pair{320, 240}, {176, 144}, {640, 480}, {177, 143}, {41, 67}, {200, 40}}) {
        for (const int format : {kFormatPlanar, kFormatPacked}) {
            ASSERT_EQ(effect.Configure(w, h, format), kSuccess);
            if (configured) configured();
            RemapModel model(maker, w, h, format);
            for (int i = 0; i < kModelFrames; ++i) {
                TestFrame frame(w, h, format);
                i % 2 == 0 ? frame.DrawScene(i) : frame.Randomize(static_cast<uint64_t>(i));
                TestFrame expected = frame;
                if (prepare) prepare(expected);
                model.Process(expected);
                EXPECT_EQ(effect.Process(frame), kSuccess);
                ASSERT_EQ(FirstDifference(frame, expected), "")
                    << w << " by " << h << ", format " << format << ", frame " << i;
                ASSERT_TRUE(frame.GuardsIntact());
            }
        }
    }
}

#endif
