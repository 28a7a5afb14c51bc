#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "tests/support/PlainPlane.h"
#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "{692E6627-95B1-462D-B120-114CFBA72188}";

class Model {
  public:
    Model(int width, int height) : width_(width), noise_(static_cast<size_t>(2 * width * height)) {
        for (int& n : noise_) n = std::rand() % 16;
        for (size_t i = 0; i < static_cast<size_t>(width * height / 2); ++i) half_.push_back(noise_[4 * i]);
    }

    void operator()(TestFrame& frame) {
        for (int p = 0; p < 3; ++p) {
            Step(p == 0 ? LumaOf(frame) : ChromaOf(frame, p), history_[p], frame.plane(p));
        }
        first_ = false;
    }

  private:
    void Step(const PlainPlane& p, std::vector<PlainPlane>& history, std::span<uint8_t> out) {
        const size_t n = p.pixels.size();
        if (n == 0) return;
        const size_t offset = static_cast<size_t>(counter_) % n;
        const std::vector<int>& noise = p.width == width_ ? noise_ : half_;
        if (p.width == width_) ++counter_;
        if (first_) history.assign(16, p);
        history[static_cast<size_t>(counter_ % 16)] = p;
        for (size_t i = 0; i < n; ++i) out[i] = history[static_cast<size_t>(noise[offset + i])].pixels[i];
    }

    int width_, counter_ = 0;
    bool first_ = true;
    std::vector<int> noise_, half_;
    std::vector<PlainPlane> history_[3];
};

TEST(Quark, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "Quark");
    EXPECT_EQ(effect->GetInternalInfo()->GetPropCount(), 0);
    ExpectContract(effect);
}

TEST(Quark, EqualsItsModel) {
    EffectDriver effect(kGuid);
    ExpectEqualsModel(effect, [](int w, int h) { return Model(w, h); });
}

TEST(Quark, EqualsItsModelWhileTheWindowsWrap) {
    // On small planes the windows return: luma after 60 frames, chroma after 15.
    EffectDriver effect(kGuid);
    std::srand(7);
    ASSERT_EQ(effect.Configure(10, 6), kSuccess);
    std::srand(7);
    Model model(10, 6);
    for (int i = 0; i < 150; ++i) {
        TestFrame frame = TestFrame(10, 6).Randomize(static_cast<uint64_t>(i)), expected = frame;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        model(expected);
        ASSERT_EQ(FirstDifference(frame, expected), "") << i;
    }
}

TEST(Quark, AStillPictureComesThrough) {
    EffectDriver effect(kGuid);
    ASSERT_EQ(effect.Configure(64, 48), kSuccess);
    const TestFrame still = TestFrame(64, 48).Randomize(2);
    for (int i = 0; i < 40; ++i) {
        TestFrame frame = still;
        ASSERT_EQ(effect.Process(frame), kSuccess);
        ASSERT_EQ(FirstDifference(frame, still), "") << i;
    }
}

TEST(Quark, DrawsAtConfigureAndNotAfterwards) {
    EffectDriver effect(kGuid);
    std::srand(3);
    for (int i = 0; i < 2 * 20 * 10; ++i) std::rand();
    const int expected = std::rand();
    std::srand(3);
    ASSERT_EQ(effect.Configure(20, 10), kSuccess);
    for (int i = 0; i < 5; ++i) {
        TestFrame frame(20, 10);
        ASSERT_EQ(effect.Process(frame), kSuccess);
    }
    EXPECT_EQ(std::rand(), expected);
    std::srand(3);
    const int first = std::rand();
    std::srand(3);
    ASSERT_EQ(effect.Configure(20, 10, kFormatPacked), kSuccess);
    EXPECT_EQ(std::rand(), first);
}

}  // namespace
