#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{930E1289-65C0-403E-880A-1902FDCFEA90}";

struct Entry {
    uint8_t y, u, v;
};

Entry Palette(int i) {
    const double t = (i - 64) / 128.0, a = i / 64.0, b = 1 - (i - 192) / 64.0;
    double r = 0, g = 0, bl = 0;
    if (i < 64) {
        r = 255;
        g = 255 * (1 - i / 128.0);
        bl = std::max(255 * (1 - a), g);
    } else if (i < 128) {
        r = 255 * (1 - t * t);
        g = 255 * (1 - i / 128.0);
        bl = std::max(255 * t * t, g);
    } else if (i < 192) {
        r = 255 * (1 - t * t);
        bl = 255 * t * t;
    } else {
        r = 255 * (1 - b * b * b);
        g = 255 * (1 - b * b);
        bl = 255;
    }
    const auto byte = [](double value) {
        return static_cast<uint8_t>(std::clamp(static_cast<int>(value), 0, 255));
    };
    return {byte(0.257 * r + 0.504 * g + 0.098 * bl + 16 + 0.5),
            byte(0.439 * bl - (0.291 * g + 0.148 * r) + 128 + 0.5),
            byte(0.439 * r - 0.368 * g - 0.071 * bl + 128 + 0.5)};
}

void Model(TestFrame& frame) {
    const int w = frame.width(), h = frame.height(), k = 10 * w / 640, mask = 2 * k + 1;
    const PlainPlane y = LumaOf(frame);
    PlainPlane blurred = y;
    if (mask < w && mask < h) {
        for (int r = 0; r < h; ++r) {
            for (int c = 0; c < w; ++c) {
                int sum = 0;
                for (int j = -k; j <= k; ++j) {
                    for (int i = -k; i <= k; ++i) {
                        sum += y.At(std::clamp(c + i, 0, w - 1), std::clamp(r + j, 0, h - 1));
                    }
                }
                blurred(c, r) = static_cast<uint8_t>((sum + mask * mask / 2) / (mask * mask));
            }
        }
    }
    PlainPlane luma = y, fullU = y, fullV = y;
    for (int r = 0; r < h; ++r) {
        for (int c = 0; c < w; ++c) {
            const int even = y.At(c - c % 2, r);
            const int weight = static_cast<int>(1024 * (even / 256.0) * (even / 256.0));
            const Entry e = Palette(((1024 - weight) * y.At(c, r) + weight * blurred.At(c, r)) >> 10);
            luma(c, r) = e.y;
            fullU(c, r) = e.u;
            fullV(c, r) = e.v;
        }
    }
    luma.WriteTo(frame.plane(0));
    PlainPlane u = ChromaOf(frame, 1), v = ChromaOf(frame, 2);
    PlainResize(fullU, u);
    PlainResize(fullV, v);
    u.WriteTo(frame.plane(1));
    v.WriteTo(frame.plane(2));
}

TEST(Fire, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Fire");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect);
}

TEST(Fire, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(
        effect, [](int, int) { return Model; }, [] {}, 6);
}

TEST(Fire, FlatFramesTakeTheirPaletteEntry) {
    EffectDriver effect(kGuid);
    for (const int width : {64, 62}) {
        ASSERT_EQ(effect.Configure(width, 48), kSuccess);
        for (int value = 0; value < 256; ++value) {
            TestFrame frame(width, 48);
            frame.Fill(static_cast<uint8_t>(value), 7, 7);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            const Entry e = Palette(value);
            EXPECT_EQ(frame.y()[100], e.y) << value;
            EXPECT_EQ(frame.u()[30], e.u) << value;
            EXPECT_EQ(frame.v()[30], e.v) << value;
        }
    }
    const auto expect = [&](int value, int y, int u, int v) {
        TestFrame frame(62, 48);
        frame.Fill(static_cast<uint8_t>(value), 7, 7);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(frame.y()[5], y);
        EXPECT_EQ(frame.u()[5], u);
        EXPECT_EQ(frame.v()[5], v);
    };
    expect(0, 235, 128, 128);
    expect(128, 71, 128, 207);
    expect(192, 41, 240, 110);
    expect(255, 235, 128, 128);
}

TEST(Fire, BelowAWidthOf64NothingIsBlurred) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(63, 40), kSuccess);
    TestFrame frame = TestFrame(63, 40).Randomize(8);
    const TestFrame before = frame;
    ASSERT_EQ(effect.Process(frame), kSuccess);
    for (size_t i = 0; i < 63 * 40; ++i) EXPECT_EQ(frame.plane(0)[i], Palette(before.plane(0)[i]).y);
}

}  // namespace
