// Runs an effect and a plain model of it side by side.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_SIDEBYSIDE_H
#define SPECIALEFFECTS_TESTS_SUPPORT_SIDEBYSIDE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "tests/support/EffectDriver.h"

inline constexpr int kModelFrames = SE_SANITIZED ? 5 : 20;

using FrameSizes = std::vector<std::pair<int32_t, int32_t>>;

/// Two even sizes of a plain shape, one above the width from which some effects work at half size, two odd
/// ones, one higher than wide, and some at which masks and halves run out of pixels.
inline const FrameSizes kModelSizes = {{320, 240}, {176, 144}, {640, 480}, {161, 121}, {515, 67}, {98, 150},
                                       {4, 4},     {5, 3},     {1, 7},     {7, 1},     {2, 2},    {1, 1}};

/// Picture `index` of a stream: a moving scene, with independent random bytes for every fourth frame.
inline TestFrame StreamPicture(int32_t width, int32_t height, int index) {
    TestFrame frame(width, height);
    return index % 4 == 3 ? frame.Randomize(static_cast<uint64_t>(index)) : frame.DrawScene(index);
}

/// Configures `effect` to each of the sizes and compares its frames, byte for byte, with those of the model
/// that `makeModel(width, height)` gives: something that changes a TestFrame when it is called. Both draw
/// from the same random stream, starting with `Configure`, and must leave it in the same state. `set` is
/// called after `Configure`, as a host sets properties that `Configure` resets.
template <class MakeModel, class Set>
void ExpectEqualsModel(EffectDriver& effect, MakeModel makeModel, Set set, int frames = kModelFrames,
                       const FrameSizes& sizes = kModelSizes) {
    constexpr unsigned kSeed = 20240229;
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(::testing::Message() << width << " by " << height);
        std::srand(kSeed);
        ASSERT_EQ(effect.Configure(width, height), kSuccess);
        set();
        std::vector<TestFrame> results;
        for (int i = 0; i < frames; ++i) {
            results.push_back(StreamPicture(width, height, i));
            ASSERT_EQ(effect.Process(results.back()), kSuccess);
            ASSERT_TRUE(results.back().GuardsIntact());
        }
        const int nextDraw = std::rand();

        std::srand(kSeed);
        auto model = makeModel(width, height);
        for (int i = 0; i < frames; ++i) {
            TestFrame expected = StreamPicture(width, height, i);
            model(expected);
            ASSERT_EQ(FirstDifference(results[static_cast<size_t>(i)], expected), "") << "frame " << i;
        }
        EXPECT_EQ(nextDraw, std::rand()) << "draws of rand";
    }
}

template <class MakeModel>
void ExpectEqualsModel(EffectDriver& effect, MakeModel makeModel, const FrameSizes& sizes = kModelSizes) {
    ExpectEqualsModel(
        effect, makeModel, [] {}, kModelFrames, sizes);
}

#endif
