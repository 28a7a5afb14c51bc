// What the models of the drawing effects share: planes as plain arrays, filters as their definitions say, and
// the comparison of an effect with its model.
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

#include "tests/support/EffectDriver.h"

namespace drawing_model {

/// A plane of packed rows, by coordinates.
struct Plane {
    Plane(int w, int h, uint8_t value = 0) : width(w), height(h), pixels(Count(), value) {}
    Plane(int w, int h, std::span<const uint8_t> bytes)
        : width(w), height(h), pixels(bytes.begin(), bytes.end()) {}

    size_t At(int x, int y) const { return static_cast<size_t>(y * width + x); }
    uint8_t& operator()(int x, int y) { return pixels[At(x, y)]; }
    int operator()(int x, int y) const { return pixels[At(x, y)]; }

    void WriteTo(std::span<uint8_t> bytes) const { std::copy(pixels.begin(), pixels.end(), bytes.begin()); }

    int width, height;
    std::vector<uint8_t> pixels;

  private:
    size_t Count() const { return static_cast<size_t>(std::max(width, 0) * std::max(height, 0)); }
};

/// Calls op(x, y) for the pixels that have `r` neighbours on each side.
template <class Op>
void ForInterior(const Plane& plane, int r, Op op) {
    for (int y = r; y < plane.height - r; ++y) {
        for (int x = r; x < plane.width - r; ++x) op(x, y);
    }
}

/// Sum over the window of `size` by `size` pixels whose corner is (left, top), each times weight(i, j).
template <class Weight>
int WindowSum(const Plane& src, int left, int top, int size, Weight weight) {
    int sum = 0;
    for (int j = 0; j < size; ++j) {
        for (int i = 0; i < size; ++i) sum += weight(i, j) * src(left + i, top + j);
    }
    return sum;
}

inline void Gauss3(const Plane& src, Plane& dst) {
    ForInterior(src, 1, [&](int x, int y) {
        const int weights[3] = {1, 2, 1};
        const int s = WindowSum(src, x - 1, y - 1, 3, [&](int i, int j) { return weights[i] * weights[j]; });
        dst(x, y) = static_cast<uint8_t>((s + ((s >> 4) & 1) + 7) >> 4);
    });
}

inline void Gauss5(const Plane& src, Plane& dst) {
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

inline void Lowpass3(const Plane& src, Plane& dst) {
    ForInterior(src, 1, [&](int x, int y) {
        dst(x, y) = static_cast<uint8_t>(((WindowSum(src, x - 1, y - 1, 3, One) + 5) * 455) >> 12);
    });
}

inline void Lowpass5(const Plane& src, Plane& dst) {
    ForInterior(src, 2, [&](int x, int y) {
        dst(x, y) = static_cast<uint8_t>(((WindowSum(src, x - 2, y - 2, 5, One) + 13) * 10485) >> 18);
    });
}

/// The median of 25 is the largest value that no more than 12 of them lie below: found bit by bit.
inline void Median5(const Plane& src, Plane& dst) {
    ForInterior(src, 2, [&](int x, int y) {
        std::array<uint8_t, 25> window;
        for (int j = 0; j < 5; ++j)
            std::copy_n(&src.pixels[src.At(x - 2, y - 2 + j)], 5, &window[static_cast<size_t>(5 * j)]);
        int median = 0;
        for (int bit = 128; bit > 0; bit /= 2) {
            int below = 0;
            for (const uint8_t pixel : window) below += pixel < median + bit ? 1 : 0;
            if (below <= 12) median += bit;
        }
        dst(x, y) = static_cast<uint8_t>(median);
    });
}

/// Mean of `size` by `size`, left alone unless the filtered part is larger than the mask. Column sums first,
/// since the masks can be large.
inline void Box(Plane& plane, int size) {
    const int r = size / 2;
    if (plane.width - 2 * r <= size || plane.height - 2 * r <= size) return;
    const Plane src = plane;
    for (int y = r; y < plane.height - r; ++y) {
        std::vector<int> columns(static_cast<size_t>(plane.width));
        for (int x = 0; x < plane.width; ++x) {
            for (int j = 0; j < size; ++j) columns[static_cast<size_t>(x)] += src(x, y - r + j);
        }
        for (int x = r; x < plane.width - r; ++x) {
            int sum = 0;
            for (int i = 0; i < size; ++i) sum += columns[static_cast<size_t>(x - r + i)];
            plane(x, y) = static_cast<uint8_t>((sum + size * size / 2) / (size * size));
        }
    }
}

/// |dx| + |dy| of the 3 by 3 Sobel pair at each pixel, 0 on the outermost ones.
inline std::vector<int> EdgeStrengths(const Plane& src) {
    std::vector<int> strengths(src.pixels.size());
    ForInterior(src, 1, [&](int x, int y) {
        const auto below = [](int i, int j) { return (j - 1) * (i == 1 ? 2 : 1); };
        const auto left = [](int i, int j) { return (1 - i) * (j == 1 ? 2 : 1); };
        strengths[src.At(x, y)] = std::abs(WindowSum(src, x - 1, y - 1, 3, below)) +
                                  std::abs(WindowSum(src, x - 1, y - 1, 3, left));
    });
    return strengths;
}

/// Overwrites the outermost pixels with their nearest inner neighbours.
inline void ReplicateRing(Plane& plane) {
    if (plane.width < 3 || plane.height < 3) return;
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            plane(x, y) = static_cast<uint8_t>(
                std::as_const(plane)(std::clamp(x, 1, plane.width - 2), std::clamp(y, 1, plane.height - 2)));
        }
    }
}

/// The luma of a frame.
inline Plane Luma(TestFrame& frame) {
    return {frame.width(), frame.height(), frame.plane(0)};
}
/// A chroma plane of a frame.
inline Plane Chroma(TestFrame& frame, int index) {
    return {frame.width() / 2, frame.height() / 2, frame.plane(index)};
}

/// The name that all variants have, and the contract that all effects keep.
inline void ExpectEffect(const char* guid, const char* displayName, const ContractTraits& traits = {}) {
    EffectDriver effect(guid);
    EXPECT_EQ(effect.Name(), displayName);
    ExpectContract(effect, traits);
}

inline void ExpectNoProperties(const char* guid) {
    EffectDriver effect(guid);
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    EXPECT_EQ(effect.Set("Anything", "TRUE"), kSuccess);
    EXPECT_EQ(effect->SetProperty(static_cast<PropertyRecord*>(nullptr)), kSuccess);
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

/// A frame of one grey, whatever grey, with the chroma 90, 170 becomes this uniform one.
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

#if defined(__SANITIZE_ADDRESS__)
inline constexpr int kComparedFrames = 3;
#else
inline constexpr int kComparedFrames = 20;
#endif

/// Runs the effect, then a model, over the same frames of several sizes, from the same seed, and compares the
/// pictures and where the generator stands afterwards. `makeModel(width, height)` stands for `Configure`;
/// what it returns changes a frame in place. `frames` and `sizes` may say less for slow models.
template <class MakeModel>
void ExpectEqualsModel(EffectDriver& effect, MakeModel makeModel,
                       std::vector<std::pair<int, int>> sizes = {
                           {320, 240}, {176, 144}, {640, 480}, {161, 121}}) {
    const auto draw = [](TestFrame& frame, int i) {
        i % 3 != 1 ? frame.DrawScene(i) : frame.Randomize(static_cast<uint64_t>(i));
    };
    for (const auto& [w, h] : sizes) {
        constexpr unsigned kSeed = 20;
        std::srand(kSeed);
        ASSERT_EQ(effect.Configure(w, h), kSuccess);
        std::vector<TestFrame> results(kComparedFrames, TestFrame(w, h));
        for (int i = 0; i < kComparedFrames; ++i) {
            TestFrame& frame = results[static_cast<size_t>(i)];
            draw(frame, i);
            ASSERT_EQ(effect.Process(frame), kSuccess);
            ASSERT_TRUE(frame.GuardsIntact());
        }
        const int next = std::rand();

        std::srand(kSeed);
        auto model = makeModel(w, h);
        for (int i = 0; i < kComparedFrames; ++i) {
            TestFrame frame(w, h);
            draw(frame, i);
            model(frame);
            ASSERT_EQ(FirstDifference(results[static_cast<size_t>(i)], frame), "")
                << w << " by " << h << ", frame " << i;
        }
        EXPECT_EQ(std::rand(), next) << w << " by " << h;
    }
}

/// For models without a memory: a function of the frame alone.
template <class Model>
auto EveryFrame(Model model) {
    return [model](int, int) { return model; };
}

}  // namespace drawing_model

#endif
