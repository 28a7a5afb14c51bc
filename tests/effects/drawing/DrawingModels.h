// What the models of the drawing effects share: filters as their definitions say, and what several of the
// effects are expected to do.
#ifndef SPECIALEFFECTS_TESTS_EFFECTS_DRAWING_DRAWINGMODELS_H
#define SPECIALEFFECTS_TESTS_EFFECTS_DRAWING_DRAWINGMODELS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <utility>
#include <vector>

#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace drawing_model {

/// Calls op(x, y) for the pixels that have `r` neighbours on each side.
template <class Op>
void ForInterior(const PlainPlane& plane, int r, Op op) {
    for (int y = r; y < plane.height - r; ++y) {
        for (int x = r; x < plane.width - r; ++x) op(x, y);
    }
}

/// Sum over the window of `size` by `size` pixels whose corner is (left, top), each times weight(i, j).
template <class Weight>
int WindowSum(const PlainPlane& src, int left, int top, int size, Weight weight) {
    int sum = 0;
    for (int j = 0; j < size; ++j) {
        for (int i = 0; i < size; ++i) sum += weight(i, j) * src(left + i, top + j);
    }
    return sum;
}

inline void Gauss5(const PlainPlane& src, PlainPlane& dst) {
    static constexpr int kWeights[5][5] = {
        {2, 7, 12, 7, 2}, {7, 31, 52, 31, 7}, {12, 52, 127, 52, 12}, {7, 31, 52, 31, 7}, {2, 7, 12, 7, 2}};
    ForInterior(src, 2, [&](int x, int y) {
        const int s = WindowSum(src, x - 2, y - 2, 5, [](int i, int j) { return kWeights[j][i]; });
        dst(x, y) = static_cast<uint8_t>((static_cast<uint32_t>(s + 286) * 29382U) >> 24);
    });
}

inline int One(int, int) {
    return 1;
}

inline void Lowpass3(const PlainPlane& src, PlainPlane& dst) {
    ForInterior(src, 1, [&](int x, int y) {
        dst(x, y) = static_cast<uint8_t>(((WindowSum(src, x - 1, y - 1, 3, One) + 5) * 455) >> 12);
    });
}

inline void Lowpass5(const PlainPlane& src, PlainPlane& dst) {
    ForInterior(src, 2, [&](int x, int y) {
        dst(x, y) = static_cast<uint8_t>(((WindowSum(src, x - 2, y - 2, 5, One) + 13) * 10485) >> 18);
    });
}

/// The median of 25 is the largest value with no more than 12 of them below it. It is found bit by bit.
inline void Median5(const PlainPlane& src, PlainPlane& dst) {
    ForInterior(src, 2, [&](int x, int y) {
        std::array<uint8_t, 25> window;
        for (int i = 0; i < 25; ++i) {
            window[static_cast<size_t>(i)] = static_cast<uint8_t>(src(x - 2 + i % 5, y - 2 + i / 5));
        }
        int median = 0;
        for (int bit = 128; bit > 0; bit /= 2) {
            int below = 0;
            for (const uint8_t pixel : window) below += pixel < median + bit ? 1 : 0;
            if (below <= 12) median += bit;
        }
        dst(x, y) = static_cast<uint8_t>(median);
    });
}

/// |dx| + |dy| of the 3 by 3 Sobel pair at each pixel, 0 on the outermost ones.
inline std::vector<int> EdgeStrengths(const PlainPlane& src) {
    std::vector<int> strengths(src.pixels.size());
    ForInterior(src, 1, [&](int x, int y) {
        const auto below = [](int i, int j) { return (j - 1) * (i == 1 ? 2 : 1); };
        const auto left = [](int i, int j) { return (1 - i) * (j == 1 ? 2 : 1); };
        strengths[static_cast<size_t>(y * src.width + x)] = std::abs(WindowSum(src, x - 1, y - 1, 3, below)) +
                                                            std::abs(WindowSum(src, x - 1, y - 1, 3, left));
    });
    return strengths;
}

/// Overwrites the outermost pixels with their nearest inner neighbours.
inline void ReplicateRing(PlainPlane& plane) {
    if (plane.width < 3 || plane.height < 3) return;
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            plane(x, y) = static_cast<uint8_t>(
                std::as_const(plane)(std::clamp(x, 1, plane.width - 2), std::clamp(y, 1, plane.height - 2)));
        }
    }
}

/// The name that all variants have, and the contract that all effects keep.
inline void ExpectEffect(const char* guid, const char* displayName, const ContractTraits& traits = {}) {
    EffectDriver effect(guid);
    EXPECT_EQ(effect.Name(), displayName);
    ExpectContract(effect, traits);
}

/// One property, without a range, and no other name.
inline void ExpectOnlyProperty(const char* guid, PropTypeSet type, const char* name,
                               const char* defaultText) {
    EffectDriver effect(guid);
    CInternalInfo& info = *effect->GetInternalInfo();
    EXPECT_EQ(info.GetPropCount(), 1);
    char nameText[32], text[32], range[32];
    EXPECT_EQ(info.GetPropTypeInfo(0, nameText, 32, text, 32, range, 32), type);
    EXPECT_STREQ(nameText, name);
    EXPECT_STREQ(text, defaultText);
    EXPECT_STREQ(range, "");
    EXPECT_EQ(info.GetPropTypeInfo(1, nameText, 32, text, 32, range, 32), PropTypeSet::None);
    EXPECT_EQ(effect.Set("Anything", "TRUE"), kInvalidArgument);
    EXPECT_EQ(effect.Get("Anything"), "?80070057");
    EXPECT_EQ(effect->SetProperty(static_cast<PropertyRecord*>(nullptr)), kInvalidArgument);
}

/// A uniform frame of any grey with the chroma 90, 170 becomes this uniform frame.
inline void ExpectUniformFramesBecome(const char* guid, uint8_t y, uint8_t u, uint8_t v) {
    EffectDriver effect(guid);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    for (const uint8_t grey : {uint8_t{0}, uint8_t{77}, uint8_t{255}}) {
        TestFrame frame(64, 48);
        frame.Fill(grey, 90, 170);
        ASSERT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, TestFrame(64, 48).Fill(y, u, v)), "") << int{grey};
    }
}

/// For models without a memory: a function of the frame alone.
template <class Model>
auto EveryFrame(Model model) {
    return [model](int, int) { return model; };
}

}  // namespace drawing_model

#endif
