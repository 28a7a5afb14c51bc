// The geometric primitives: statuses, stated properties, and comparison with the plain models.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "imaging/Prim.h"
#include "tests/imaging/TestPlanes.h"
#include "tests/imaging/models/GeometryModels.h"

namespace {

/// A picture with packed rows.
struct Picture {
    int32_t width, height;
    Bytes bytes;

    Picture(int32_t w, int32_t h, uint64_t seed)
        : width(w), height(h), bytes(RandomBytes(static_cast<size_t>(w) * static_cast<size_t>(h), seed)) {}
    uint8_t* data() { return bytes.data(); }
    const uint8_t* data() const { return bytes.data(); }
    uint8_t at(int32_t x, int32_t y) const { return bytes[static_cast<size_t>(y * width + x)]; }
};

PrimStatus ResizeWhole(const Picture& src, Picture& dst, double xFactor, double yFactor, int32_t mode) {
    return PrimResize8uC1(src.data(), src.width, src.height, src.width, 0, 0, src.width, src.height,
                          dst.data(), dst.width, dst.width, dst.height, xFactor, yFactor, mode);
}

PrimStatus ResizeModel(const Picture& src, Picture& dst, double xFactor, double yFactor, int32_t mode) {
    return model::PrimResize8uC1(src.data(), src.width, src.height, src.width, 0, 0, src.width, src.height,
                                 dst.data(), dst.width, dst.width, dst.height, xFactor, yFactor, mode);
}

// ---- statuses --------------------------------------------------------------------------------------

struct BadCall {
    std::string what;
    PrimStatus expected;
    std::function<PrimStatus()> call;
};

/// Every call is refused with its code, and nothing that a call could write changes.
void ExpectRefused(const std::vector<BadCall>& calls, const std::vector<Bytes*>& outputs) {
    std::vector<Bytes> before;
    before.reserve(outputs.size());
    for (const Bytes* output : outputs) before.push_back(*output);
    for (const BadCall& bad : calls) {
        EXPECT_EQ(bad.call(), bad.expected) << bad.what;
        for (size_t i = 0; i < outputs.size(); ++i) EXPECT_EQ(*outputs[i], before[i]) << bad.what;
    }
}

TEST(PrimMirror, RefusesBadCallsInOrder) {
    Bytes image = RandomBytes(64, 1);
    uint8_t* const p = image.data();
    ExpectRefused(
        {{"null before all else", kPrimNullError, [=] { return PrimMirror8uC1(nullptr, 0, 0, 0, 9); }},
         {"width before step", kPrimSizeError, [=] { return PrimMirror8uC1(p, 0, 0, 8, 9); }},
         {"height before step", kPrimSizeError, [=] { return PrimMirror8uC1(p, 0, 8, -1, 9); }},
         {"step of 0", kPrimStepError, [=] { return PrimMirror8uC1(p, 0, 8, 8, 9); }},
         {"step below width", kPrimStepError, [=] { return PrimMirror8uC1(p, 7, 8, 8, 9); }},
         {"axis 3", kPrimAxisError, [=] { return PrimMirror8uC1(p, 8, 8, 8, 3); }},
         {"axis -1", kPrimAxisError, [=] { return PrimMirror8uC1(p, 8, 8, 8, -1); }}},
        {&image});
}

TEST(PrimCopyReplicateBorder, RefusesBadCallsInOrder) {
    Bytes source = RandomBytes(16, 1), target = RandomBytes(64, 2);
    const uint8_t* const s = source.data();
    uint8_t* const d = target.data();
    const auto copy = [](const uint8_t* src, int32_t srcStep, int32_t srcWidth, int32_t srcHeight,
                         uint8_t* dst, int32_t dstStep, int32_t dstWidth, int32_t dstHeight, int32_t top,
                         int32_t left) {
        return [=] {
            return PrimCopyReplicateBorder8uC1(src, srcStep, srcWidth, srcHeight, dst, dstStep, dstWidth,
                                               dstHeight, top, left);
        };
    };
    ExpectRefused({{"null source", kPrimNullError, copy(nullptr, 0, 0, 0, d, 0, 0, 0, -1, -1)},
                   {"null destination", kPrimNullError, copy(s, 0, 0, 0, nullptr, 0, 0, 0, -1, -1)},
                   {"source width", kPrimSizeError, copy(s, 0, 0, 4, d, 0, 8, 8, 2, 2)},
                   {"source height", kPrimSizeError, copy(s, 0, 4, 0, d, 0, 8, 8, 2, 2)},
                   {"top border", kPrimSizeError, copy(s, 0, 4, 4, d, 0, 8, 8, -1, 2)},
                   {"left border", kPrimSizeError, copy(s, 0, 4, 4, d, 0, 8, 8, 2, -1)},
                   {"too narrow", kPrimSizeError, copy(s, 0, 4, 4, d, 0, 5, 8, 2, 2)},
                   {"too low", kPrimSizeError, copy(s, 0, 4, 4, d, 0, 8, 5, 2, 2)},
                   {"huge border", kPrimSizeError, copy(s, 4, 4, 4, d, 8, 8, 8, kHuge, kHuge)},
                   {"source step", kPrimStepError, copy(s, 3, 4, 4, d, 8, 8, 8, 2, 2)},
                   {"destination step", kPrimStepError, copy(s, 4, 4, 4, d, 7, 8, 8, 2, 2)}},
                  {&target});
}

TEST(PrimReplicateBorderInPlace, RefusesBadCallsInOrder) {
    Bytes image = RandomBytes(64, 2);
    uint8_t* const inner = image.data() + 2 * 8 + 2;
    const auto replicate = [](uint8_t* data, int32_t step, int32_t width, int32_t height, int32_t fullWidth,
                              int32_t fullHeight, int32_t top, int32_t left) {
        return [=] {
            return PrimReplicateBorderInPlace8uC1(data, step, width, height, fullWidth, fullHeight, top,
                                                  left);
        };
    };
    ExpectRefused({{"null", kPrimNullError, replicate(nullptr, 0, 0, 0, 0, 0, -1, -1)},
                   {"inner width", kPrimSizeError, replicate(inner, 0, 0, 4, 8, 8, 2, 2)},
                   {"inner height", kPrimSizeError, replicate(inner, 0, 4, 0, 8, 8, 2, 2)},
                   {"negative border", kPrimSizeError, replicate(inner, 8, 4, 4, 8, 8, -1, 2)},
                   {"full width", kPrimSizeError, replicate(inner, 8, 4, 4, 5, 8, 2, 2)},
                   {"full height", kPrimSizeError, replicate(inner, 8, 4, 4, 8, 5, 2, 2)},
                   {"step below full width", kPrimStepError, replicate(inner, 7, 4, 4, 8, 8, 2, 2)}},
                  {&image});
}

struct RemapCall {
    const uint8_t* src;
    int32_t srcWidth = 4, srcHeight = 4, srcStep = 12;
    int32_t roiX = 0, roiY = 0, roiWidth = 4, roiHeight = 4;
    const float* xMap;
    int32_t xMapStep = 16;
    const float* yMap;
    int32_t yMapStep = 16;
    uint8_t* dst;
    int32_t dstStep = 12, dstWidth = 4, dstHeight = 4, mode = 1;

    template <class Remap>
    PrimStatus operator()(Remap remap) const {
        return remap(src, srcWidth, srcHeight, srcStep, roiX, roiY, roiWidth, roiHeight, xMap, xMapStep, yMap,
                     yMapStep, dst, dstStep, dstWidth, dstHeight, mode);
    }
};

TEST(PrimRemap, RefusesBadCallsInOrder) {
    Bytes source = RandomBytes(48, 1), target = RandomBytes(48, 2);
    const std::vector<float> map(16, 1.0f);
    const auto with = [&](auto change) {
        RemapCall call{.src = source.data(), .xMap = map.data(), .yMap = map.data(), .dst = target.data()};
        change(call);
        return call;
    };
    // Errors are reported in this order; later errors show only when no earlier one applies.
    struct {
        std::string what;
        PrimStatus expected;
        RemapCall call;
    } const table[] = {
        {"src", kPrimNullError, with([](auto& c) { c.src = nullptr, c.srcWidth = 0, c.mode = 9; })},
        {"xMap", kPrimNullError, with([](auto& c) { c.xMap = nullptr, c.dstWidth = 0; })},
        {"yMap", kPrimNullError, with([](auto& c) { c.yMap = nullptr, c.dstStep = 0; })},
        {"dst", kPrimNullError, with([](auto& c) { c.dst = nullptr, c.roiX = 9; })},
        {"srcWidth", kPrimSizeError, with([](auto& c) { c.srcWidth = 0, c.mode = 9; })},
        {"srcHeight", kPrimSizeError, with([](auto& c) { c.srcHeight = -4, c.mode = 9; })},
        {"dstWidth", kPrimSizeError, with([](auto& c) { c.dstWidth = 0, c.mode = 9; })},
        {"dstHeight", kPrimSizeError, with([](auto& c) { c.dstHeight = 0, c.mode = 9; })},
        {"roiWidth", kPrimSizeError, with([](auto& c) { c.roiWidth = 0, c.mode = 9; })},
        {"roiHeight", kPrimSizeError, with([](auto& c) { c.roiHeight = 0, c.mode = 9; })},
        {"negative roi", kPrimSizeError, with([](auto& c) { c.roiX = -1, c.mode = 9; })},
        {"mode 3", kPrimInterpolationError, with([](auto& c) { c.mode = 3, c.srcStep = 0; })},
        {"mode 0", kPrimInterpolationError, with([](auto& c) { c.mode = 0, c.dstStep = 0; })},
        {"mode 16", kPrimInterpolationError, with([](auto& c) { c.mode = 16, c.roiX = 9; })},
        {"srcStep", kPrimStepError, with([](auto& c) { c.srcStep = 3, c.roiX = 9; })},
        {"dstStep", kPrimStepError, with([](auto& c) { c.dstStep = 3, c.xMapStep = 17; })},
        {"xMapStep", kPrimStepError, with([](auto& c) { c.xMapStep = 15, c.yMapStep = 17; })},
        {"yMapStep", kPrimStepError, with([](auto& c) { c.yMapStep = 12, c.roiX = 9; })},
        {"odd xMapStep", kPrimAlignmentError, with([](auto& c) { c.xMapStep = 17, c.roiX = 9; })},
        {"odd yMapStep", kPrimAlignmentError, with([](auto& c) { c.yMapStep = 18, c.roiY = 9; })},
        {"roiX past", kPrimOutsideSource, with([](auto& c) { c.roiX = 4; })},
        {"roiY past", kPrimOutsideSource, with([](auto& c) { c.roiY = 4; })},
    };
    std::vector<BadCall> calls;
    for (const auto& row : table) {
        calls.push_back({row.what, row.expected, [&row] { return row.call(PrimRemap8uC1); }});
        calls.push_back({row.what + ", C3", row.expected, [&row] { return row.call(PrimRemap8uC3); }});
    }
    const RemapCall narrow = with([](auto& c) { c.srcStep = 11; });
    calls.push_back({"C3 srcStep", kPrimStepError, [&] { return narrow(PrimRemap8uC3); }});
    ExpectRefused(calls, {&target});
}

TEST(PrimResize, RefusesBadCallsInOrder) {
    Bytes source = RandomBytes(16, 1), target = RandomBytes(64, 2);
    struct Call {
        const uint8_t* src;
        int32_t srcWidth = 4, srcHeight = 4, srcStep = 4, roiX = 0, roiY = 0, roiWidth = 4, roiHeight = 4;
        uint8_t* dst;
        int32_t dstStep = 8, dstWidth = 8, dstHeight = 8;
        double xFactor = 2, yFactor = 2;
        int32_t mode = 2;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto refused = [&](const char* what, PrimStatus expected, auto change) {
        Call c{.src = source.data(), .dst = target.data()};
        change(c);
        return BadCall{what, expected, [c] {
                           return PrimResize8uC1(c.src, c.srcWidth, c.srcHeight, c.srcStep, c.roiX, c.roiY,
                                                 c.roiWidth, c.roiHeight, c.dst, c.dstStep, c.dstWidth,
                                                 c.dstHeight, c.xFactor, c.yFactor, c.mode);
                       }};
    };
    ExpectRefused(
        {refused("src", kPrimNullError, [](auto& c) { c.src = nullptr, c.srcWidth = 0; }),
         refused("dst", kPrimNullError, [](auto& c) { c.dst = nullptr, c.roiX = 4; }),
         refused("srcWidth", kPrimSizeError, [](auto& c) { c.srcWidth = 0, c.roiX = 4; }),
         refused("srcHeight", kPrimSizeError, [](auto& c) { c.srcHeight = 0, c.roiX = 4; }),
         refused("roiWidth", kPrimSizeError, [](auto& c) { c.roiWidth = 0, c.roiX = 4; }),
         refused("roiHeight", kPrimSizeError, [](auto& c) { c.roiHeight = -1, c.roiX = 4; }),
         refused("roiX", kPrimSizeError, [](auto& c) { c.roiX = -1, c.mode = 9; }),
         refused("roiY", kPrimSizeError, [](auto& c) { c.roiY = -1, c.roiX = 4; }),
         refused("roiX past", kPrimOutsideSource, [](auto& c) { c.roiX = 4, c.dstWidth = 0; }),
         refused("roiY past", kPrimOutsideSource, [](auto& c) { c.roiY = 5, c.mode = 9; }),
         refused("dstWidth", kPrimSizeError, [](auto& c) { c.dstWidth = 0, c.srcStep = 0; }),
         refused("dstHeight", kPrimSizeError, [](auto& c) { c.dstHeight = 0, c.mode = 9; }),
         refused("srcStep", kPrimStepError, [](auto& c) { c.srcStep = 3, c.xFactor = 0; }),
         refused("dstStep", kPrimStepError, [](auto& c) { c.dstStep = 7, c.mode = 9; }),
         refused("xFactor 0", kPrimSizeError, [](auto& c) { c.xFactor = 0, c.mode = 9; }),
         refused("yFactor below 0", kPrimSizeError, [](auto& c) { c.yFactor = -1, c.mode = 9; }),
         refused("factor not a number", kPrimSizeError, [=](auto& c) { c.yFactor = nan, c.mode = 9; }),
         refused("mode 0", kPrimInterpolationError, [](auto& c) { c.mode = 0; }),
         refused("mode 3", kPrimInterpolationError, [](auto& c) { c.mode = 3; }),
         refused("mode 32", kPrimInterpolationError, [](auto& c) { c.mode = 32; })},
        {&target});
}

TEST(PrimRotate, RefusesBadCallsInOrder) {
    Bytes source = RandomBytes(16, 1), target = RandomBytes(64, 2);
    struct Call {
        const uint8_t* src;
        int32_t srcWidth = 4, srcHeight = 4, srcStep = 4, roiX = 0, roiY = 0, roiWidth = 4, roiHeight = 4;
        uint8_t* dst;
        int32_t dstStep = 8, dstX = 0, dstY = 0, dstWidth = 8, dstHeight = 8;
        uint32_t mode = 1;
    };
    const auto refused = [&](const char* what, PrimStatus expected, auto change) {
        Call c{.src = source.data(), .dst = target.data()};
        change(c);
        return BadCall{what, expected, [c] {
                           return PrimRotate8uC1(c.src, c.srcWidth, c.srcHeight, c.srcStep, c.roiX, c.roiY,
                                                 c.roiWidth, c.roiHeight, c.dst, c.dstStep, c.dstX, c.dstY,
                                                 c.dstWidth, c.dstHeight, 30.0, 1.0, 1.0, c.mode);
                       }};
    };
    ExpectRefused({refused("src", kPrimNullError, [](auto& c) { c.src = nullptr, c.srcWidth = 0; }),
                   refused("dst", kPrimNullError, [](auto& c) { c.dst = nullptr, c.dstStep = 0; }),
                   refused("srcWidth", kPrimSizeError, [](auto& c) { c.srcWidth = 0, c.srcStep = 0; }),
                   refused("roiHeight", kPrimSizeError, [](auto& c) { c.roiHeight = 0, c.srcStep = 0; }),
                   refused("roiX", kPrimSizeError, [](auto& c) { c.roiX = -1, c.srcStep = 0; }),
                   refused("dstX", kPrimSizeError, [](auto& c) { c.dstX = -1, c.srcStep = 0; }),
                   refused("dstWidth", kPrimSizeError, [](auto& c) { c.dstWidth = 0, c.srcStep = 0; }),
                   refused("srcStep", kPrimStepError, [](auto& c) { c.srcStep = 3, c.mode = 0; }),
                   refused("dstStep", kPrimStepError, [](auto& c) { c.dstX = 1, c.mode = 0; }),
                   refused("mode 0", kPrimInterpolationError, [](auto& c) { c.mode = 0, c.roiX = 4; }),
                   refused("mode 8", kPrimInterpolationError, [](auto& c) { c.mode = 8, c.roiX = 4; }),
                   refused("soft mode 3", kPrimInterpolationError, [](auto& c) { c.mode = 0x80000003u; }),
                   refused("unknown bit", kPrimInterpolationError, [](auto& c) { c.mode = 0x40000001u; }),
                   refused("roiX past", kPrimOutsideSource, [](auto& c) { c.roiX = 4; }),
                   refused("roiY past", kPrimOutsideSource, [](auto& c) { c.roiY = 7; })},
                  {&target});
}

// ---- remap -----------------------------------------------------------------------------------------

TEST(PrimRemap, TakesTheLastColumnAndNothingBeyond) {
    const Bytes source{10, 20, 30, 40};
    const std::vector<float> xs{3.0f, 3.001f, -0.001f, 2.5f, 2.4999f, std::nanf("")};
    const std::vector<float> ys(xs.size(), 0.0f);
    Bytes target(xs.size(), 99);
    const auto count = static_cast<int32_t>(xs.size());
    ASSERT_EQ(PrimRemap8uC1(source.data(), 4, 1, 4, 0, 0, 4, 1, xs.data(), 4 * count, ys.data(), 4 * count,
                            target.data(), count, count, 1, kPrimNearest),
              kPrimOk);
    EXPECT_EQ(target, (Bytes{40, 99, 99, 40, 30, 99}));
}

TEST(PrimRemap, RoundsExactlyBelowOneHalf) {
    // The largest float below one half: adding one half in single precision would give 1.
    const Bytes source{10, 20};
    const float below = std::nextafter(0.5f, 0.0f);
    const std::vector<float> xs(16, below), ys(16, 0.0f);
    Bytes target(16, 99);
    PrimRemap8uC1(source.data(), 2, 1, 2, 0, 0, 2, 1, xs.data(), 64, ys.data(), 64, target.data(), 16, 16, 1,
                  kPrimNearest);
    EXPECT_EQ(target, Bytes(16, 10));
}

TEST(PrimRemap, ForcesNearestOnASourceOneWideOrHigh) {
    const Bytes source{10, 20, 30, 40};
    const std::vector<float> along{0.4f, 1.6f}, across{0.0f, 0.0f};
    Bytes target(2, 0);
    PrimRemap8uC1(source.data(), 4, 1, 4, 0, 0, 4, 1, along.data(), 8, across.data(), 8, target.data(), 2, 2,
                  1, kPrimLinear);
    EXPECT_EQ(target, (Bytes{10, 30}));
    PrimRemap8uC1(source.data(), 1, 4, 1, 0, 0, 1, 4, across.data(), 8, along.data(), 8, target.data(), 2, 2,
                  1, kPrimLinear);
    EXPECT_EQ(target, (Bytes{10, 30}));
}

TEST(PrimRemap, FindsTheNearestPixelInRowsBeyondSinglePrecision) {
    constexpr int32_t kLong = (1 << 24) + 3;
    Bytes source(kLong, 10);
    source[1] = 20;
    source[kLong - 3] = 30;
    const std::vector<float> xs{0.0f, 0.75f, 1.25f, 1 << 24, -1.0f};
    const std::vector<float> ys(xs.size(), 0.0f);
    Bytes target(xs.size(), 99);
    const auto count = static_cast<int32_t>(xs.size());
    ASSERT_EQ(PrimRemap8uC1(source.data(), kLong, 1, kLong, 0, 0, kLong, 1, xs.data(), 4 * count, ys.data(),
                            4 * count, target.data(), count, count, 1, kPrimNearest),
              kPrimOk);
    EXPECT_EQ(target, (Bytes{10, 20, 20, 30, 99}));
}

TEST(PrimRemap, ClipsTheRegionToTheSource) {
    const Picture source(5, 5, 3);
    std::vector<float> xs, ys;
    for (int32_t i = 0; i < 25; ++i) {
        xs.push_back(static_cast<float>(i % 5));
        ys.push_back(static_cast<float>(i / 5));
    }
    Bytes target(25, 7);
    PrimRemap8uC1(source.data(), 5, 5, 5, 2, 3, 1 << 30, std::numeric_limits<int32_t>::max(), xs.data(), 20,
                  ys.data(), 20, target.data(), 5, 5, 5, kPrimNearest);
    for (int32_t y = 0; y < 5; ++y) {
        for (int32_t x = 0; x < 5; ++x) {
            EXPECT_EQ(target[static_cast<size_t>(5 * y + x)], x >= 2 && y >= 3 ? source.at(x, y) : 7);
        }
    }
}

TEST(PrimRemap, LinearOnARegionOnePixelWide) {
    const Picture source(4, 4, 5);
    const std::vector<float> xs{0.0f}, ys{1.5f};
    Bytes target(1, 0);
    PrimRemap8uC1(source.data(), 4, 4, 4, 0, 0, 1, 4, xs.data(), 4, ys.data(), 4, target.data(), 1, 1, 1,
                  kPrimLinear);
    EXPECT_EQ(target[0], static_cast<uint8_t>(0.5 + (source.at(0, 1) + source.at(0, 2)) / 2.0));
}

// ---- resize ----------------------------------------------------------------------------------------

TEST(PrimResize, DoublingEndsOnTheLastSample) {
    Picture source(320, 4, 1), target(640, 8, 2);
    ASSERT_EQ(ResizeWhole(source, target, 2.0, 2.0, kPrimLinear), kPrimOk);
    EXPECT_EQ(target.at(0, 0), source.at(0, 0));
    EXPECT_EQ(target.at(639, 0), source.at(319, 0));
    EXPECT_EQ(target.at(639, 7), source.at(319, 3));
    // The step is 319 / 639: sample 2 lies at 0.99843 of source pixel 1.
    const auto weight = static_cast<int32_t>(2.0 * 319 / 639 * 16384 + 0.5);
    const int32_t along = ((16384 - weight) * source.at(0, 0) + weight * source.at(1, 0) + 128) >> 8;
    EXPECT_EQ(target.at(2, 0), (along * 16384 + 0x80000) >> 20);
}

TEST(PrimResize, LeavesWhatTheFactorDoesNotReach) {
    // 5 * 1.3 is 6.5: six of eight columns.
    for (const int32_t mode : {kPrimNearest, kPrimLinear, kPrimLanczos}) {
        Picture source(5, 5, 1), target(8, 8, 2);
        const Picture before = target;
        ASSERT_EQ(ResizeWhole(source, target, 1.3, 1.3, mode), kPrimOk);
        for (int32_t i = 0; i < 8; ++i) {
            for (const int32_t beyond : {6, 7}) {
                EXPECT_EQ(target.at(beyond, i), before.at(beyond, i));
                EXPECT_EQ(target.at(i, beyond), before.at(i, beyond));
            }
        }
    }
}

TEST(PrimResize, WritesOnePixelFromHalfAPixelOn) {
    Picture source(4, 4, 1);
    for (const int32_t mode : {kPrimNearest, kPrimLinear}) {
        Picture target(2, 2, 2);
        const Picture before = target;
        EXPECT_EQ(ResizeWhole(source, target, 0.124, 0.124, mode), kPrimOk);
        EXPECT_EQ(target.bytes, before.bytes);
        EXPECT_EQ(ResizeWhole(source, target, 0.125, 0.125, mode), kPrimOk);
        EXPECT_EQ(target.at(0, 0), mode == kPrimNearest ? source.at(3, 3) : source.at(0, 0));
        EXPECT_EQ(target.at(1, 0), before.at(1, 0));
    }
}

TEST(PrimResize, EndlessFactorsRepeatTheFirstSample) {
    Picture source(9, 9, 1);
    for (const double factor : {1e300, std::numeric_limits<double>::infinity()}) {
        for (const int32_t mode : {kPrimNearest, kPrimLinear, kPrimLanczos}) {
            Picture target(40, 3, 2);
            EXPECT_EQ(ResizeWhole(source, target, factor, factor, mode), kPrimOk);
            EXPECT_EQ(target.bytes, Bytes(120, source.at(0, 0)));
        }
    }
    Picture target(40, 3, 2);
    EXPECT_EQ(ResizeWhole(source, target, 5e-324, 5e-324, kPrimLinear), kPrimOk);
}

TEST(PrimResize, EqualSizesCopy) {
    for (const int32_t mode : {kPrimNearest, kPrimLinear, kPrimLanczos, kPrimCubic, kPrimArea}) {
        Picture source(37, 21, 1), target(37, 21, 2);
        ASSERT_EQ(ResizeWhole(source, target, 1.0, 1.0, mode), kPrimOk);
        EXPECT_EQ(target.bytes, source.bytes) << mode;
    }
}

TEST(PrimResize, MatchesTheModelAtSmallSizes) {
    for (int32_t from = 1; from <= 40; ++from) {
        for (int32_t to = 1; to <= 40; ++to) {
            for (const int32_t mode : {kPrimNearest, kPrimLinear, kPrimLanczos}) {
                const int32_t rows = 41 - from;
                Picture source(from, rows, static_cast<uint64_t>(from));
                Picture fast(to, to, 3), plain = fast;
                const double xFactor = static_cast<double>(to) / from;
                const double yFactor = static_cast<double>(to) / rows;
                ASSERT_EQ(ResizeWhole(source, fast, xFactor, yFactor, mode), kPrimOk);
                ResizeModel(source, plain, xFactor, yFactor, mode);
                ASSERT_EQ(fast.bytes, plain.bytes)
                    << from << "x" << rows << " to " << to << ", mode " << mode;
            }
        }
    }
}

TEST(PrimResize, MatchesTheModelAtManyRatios) {
    for (const int32_t from : {16, 17, 31, 100, 641}) {
        for (const double factor : {0.01, 0.05,  0.2,   0.24, 0.25, 0.26, 0.33, 0.49, 0.5, 0.51, 0.7,
                                    0.9,  0.999, 1.001, 1.1,  1.5,  1.99, 2.0,  2.01, 3.7, 11.0}) {
            for (const int32_t mode : {kPrimNearest, kPrimLinear, kPrimLanczos}) {
                const Picture source(from, 12, 1);
                const int32_t width = std::max(static_cast<int32_t>(from * factor), 1);
                Picture fast(width, 9, 3), plain = fast;
                ASSERT_EQ(ResizeWhole(source, fast, factor, 0.8, mode), kPrimOk);
                ResizeModel(source, plain, factor, 0.8, mode);
                ASSERT_EQ(fast.bytes, plain.bytes) << from << " by " << factor << ", mode " << mode;
            }
        }
    }
}

TEST(PrimResize, ReadsOnlyTheClippedRegion) {
    // The source's last row ends with the memory.
    Picture source(40, 30, 1);
    for (const int32_t mode : {kPrimNearest, kPrimLinear, kPrimLanczos}) {
        for (const int32_t x : {0, 1, 23, 24, 39}) {
            for (const int32_t y : {0, 13, 29}) {
                Picture fast(50, 50, 3), plain = fast;
                ASSERT_EQ(PrimResize8uC1(source.data(), 40, 30, 40, x, y, 1000, 1000, fast.data(), 50, 50, 50,
                                         1.7, 1.2, mode),
                          kPrimOk);
                model::PrimResize8uC1(source.data(), 40, 30, 40, x, y, 1000, 1000, plain.data(), 50, 50, 50,
                                      1.7, 1.2, mode);
                ASSERT_EQ(fast.bytes, plain.bytes) << x << ", " << y << ", mode " << mode;
            }
        }
    }
}

// ---- rotate ----------------------------------------------------------------------------------------

TEST(PrimRotate, RightAnglesPermutePixels) {
    const Picture source(5, 3, 1);
    for (const double angle : {0.0, 90.0, 180.0, 270.0, 360.0, -90.0, 450.0, -720.0}) {
        for (const uint32_t mode : {1u, 2u, 4u, 0x80000001u, 0x80000004u}) {
            Picture target(16, 16, 2);
            const Picture before = target;
            ASSERT_EQ(PrimRotate8uC1(source.data(), 5, 3, 5, 0, 0, 5, 3, target.data(), 16, 0, 0, 16, 16,
                                     angle, 8, 9, mode),
                      kPrimOk);
            Picture expected = before;
            const int32_t quarter = static_cast<int32_t>(std::lround(angle / 90.0)) & 3;
            const int32_t c = quarter == 0 ? 1 : quarter == 2 ? -1 : 0;
            const int32_t s = quarter == 1 ? 1 : quarter == 3 ? -1 : 0;
            for (int32_t y = 0; y < 3; ++y) {
                for (int32_t x = 0; x < 5; ++x) {
                    expected.bytes[static_cast<size_t>(16 * (-x * s + y * c + 9) + x * c + y * s + 8)] =
                        source.at(x, y);
                }
            }
            EXPECT_EQ(target.bytes, expected.bytes) << angle << " " << mode;
        }
    }
}

TEST(PrimRotate, StaysInBothRegions) {
    const Picture source(20, 20, 1);
    for (const double angle : {0.0, 30.0, 45.0, 90.0, 133.7}) {
        Picture target(30, 30, 2);
        const Picture before = target;
        double xShift = 0, yShift = 0;
        PrimGetRotateShift(7.0, 8.5, angle, &xShift, &yShift);
        PrimRotate8uC1(source.data(), 20, 20, 20, 4, 5, 6, 7, target.data(), 30, 3, 4, 6, 5, angle,
                       xShift + 1.5, yShift + 0.25, kPrimCubic);
        int changed = 0;
        for (int32_t y = 0; y < 30; ++y) {
            for (int32_t x = 0; x < 30; ++x) {
                const bool inside = x >= 3 && x < 9 && y >= 4 && y < 9;
                changed += target.at(x, y) != before.at(x, y);
                if (!inside) {
                    EXPECT_EQ(target.at(x, y), before.at(x, y));
                }
            }
        }
        EXPECT_GT(changed, 0) << angle;
    }
}

TEST(PrimRotate, MatchesTheModel) {
    TestRandom random(5);
    for (int trial = 0; trial < 400; ++trial) {
        const int32_t width = 1 + random.Below(24), height = 1 + random.Below(24);
        const Picture source(width, height, static_cast<uint64_t>(trial));
        const int32_t x = random.Below(width), y = random.Below(height);
        const int32_t roiWidth = 1 + random.Below(width), roiHeight = 1 + random.Below(2 * height);
        Picture fast(40, 36, 2), plain = fast;
        const double angle = trial % 8 == 0 ? 90.0 * (trial / 8 % 4) : random.Below(36000) / 100.0;
        const double xShift = random.Below(4000) / 100.0, yShift = random.Below(4000) / 100.0;
        for (const uint32_t mode : {1u, 2u, 4u, 0x80000001u, 0x80000002u, 0x80000004u}) {
            const auto run = [&](auto rotate, Picture& target) {
                return rotate(source.data(), width, height, width, x, y, roiWidth, roiHeight, target.data(),
                              40, 2, 1, 37, 33, angle, xShift, yShift, mode);
            };
            run(PrimRotate8uC1, fast);
            run(model::PrimRotate8uC1, plain);
            ASSERT_EQ(fast.bytes, plain.bytes) << trial << " angle " << angle << " mode " << mode;
        }
        const auto whole = [&](auto rotate, Picture& target) {
            return rotate(source.data(), width, height, width, 0, 0, width, height, target.data(), 40, 0, 0,
                          40, 36, angle, xShift, yShift, 0x80000004u);
        };
        whole(PrimRotate8uC1, fast);
        whole(model::PrimRotate8uC1, plain);
        ASSERT_EQ(fast.bytes, plain.bytes) << trial;
    }
}

TEST(PrimRotate, SoftEdgeFadesToWhatLiesUnderIt) {
    const Bytes white(20 * 20, 255);
    Bytes target(60 * 60, 0);
    PrimRotate8uC1(white.data(), 20, 20, 20, 0, 0, 20, 20, target.data(), 60, 0, 0, 60, 60, 30, 20, 30,
                   kPrimCubic | kPrimSmoothEdge);
    int between = 0, full = 0;
    for (const uint8_t value : target) {
        between += value > 0 && value < 255;
        full += value == 255;
    }
    EXPECT_GT(between, 40);
    EXPECT_GT(full, 200);
}

TEST(PrimRotate, SurvivesSenselessNumbers) {
    const Picture source(8, 8, 1);
    const double inf = std::numeric_limits<double>::infinity();
    for (const double angle : {0.0, 30.0, 1e300, inf, std::nan("")}) {
        for (const double shift : {0.0, 1e300, -1e300, 1e18, inf, std::nan("")}) {
            Picture target(16, 16, 2);
            EXPECT_EQ(PrimRotate8uC1(source.data(), 8, 8, 8, 0, 0, 8, 8, target.data(), 16, 0, 0, 16, 16,
                                     angle, shift, shift, kPrimCubic),
                      kPrimOk);
        }
    }
}

TEST(PrimGetRotateShift, ExactAtRightAngles) {
    double x = -1, y = -1;
    EXPECT_EQ(PrimGetRotateShift(3, 5, 90, nullptr, &y), kPrimNullError);
    EXPECT_EQ(PrimGetRotateShift(3, 5, 90, &x, nullptr), kPrimNullError);
    EXPECT_EQ(x, -1);
    EXPECT_EQ(y, -1);
    struct {
        double angle, x, y;
    } const table[] = {{0, 0, 0},   {90, -2, 8},  {180, 6, 10},  {270, 8, 2},  {-90, 8, 2},
                       {360, 0, 0}, {450, -2, 8}, {-180, 6, 10}, {-720, 0, 0}, {3690, -2, 8}};
    for (const auto& row : table) {
        EXPECT_EQ(PrimGetRotateShift(3, 5, row.angle, &x, &y), kPrimOk);
        EXPECT_EQ(x, row.x) << row.angle;
        EXPECT_EQ(y, row.y) << row.angle;
    }
}

TEST(PrimGetRotateShift, KeepsTheCentre) {
    for (int step = -55; step < 55; ++step) {
        const double angle = 7.3 * step;
        double xShift = 0, yShift = 0;
        PrimGetRotateShift(12.5, -3.25, angle, &xShift, &yShift);
        const double a = angle * 3.14159265358979323846 / 180.0;
        EXPECT_NEAR(12.5 * std::cos(a) - 3.25 * std::sin(a) + xShift, 12.5, 1e-9);
        EXPECT_NEAR(-12.5 * std::sin(a) - 3.25 * std::cos(a) + yShift, -3.25, 1e-9);
    }
}

// ---- mirror, borders -------------------------------------------------------------------------------

TEST(PrimMirror, OneRowOnAxis0StaysAsItIs) {
    Bytes row{1, 2, 3, 4, 5};
    EXPECT_EQ(PrimMirror8uC1(row.data(), 5, 5, 1, kPrimMirrorRows), kPrimOk);
    EXPECT_EQ(row, (Bytes{1, 2, 3, 4, 5}));
    PrimMirror8uC1(row.data(), 5, 5, 1, kPrimMirrorColumns);
    EXPECT_EQ(row, (Bytes{5, 4, 3, 2, 1}));
    PrimMirror8uC1(row.data(), 5, 5, 1, kPrimMirrorBoth);
    EXPECT_EQ(row, (Bytes{1, 2, 3, 4, 5}));
}

TEST(PrimMirror, MatchesTheModel) {
    for (const int32_t axis : {0, 1, 2}) {
        for (int32_t height = 1; height <= 5; ++height) {
            for (int32_t width = 1; width <= 140; ++width) {
                Picture fast(width, height, 1), plain = fast;
                PrimMirror8uC1(fast.data(), width, width, height, axis);
                model::PrimMirror8uC1(plain.data(), width, width, height, axis);
                ASSERT_EQ(fast.bytes, plain.bytes) << width << "x" << height << " axis " << axis;
            }
        }
    }
}

TEST(PrimBorders, MatchTheModels) {
    for (int32_t width = 1; width <= 6; ++width) {
        for (int32_t height = 1; height <= 6; ++height) {
            for (int32_t left = 0; left <= 3; ++left) {
                for (int32_t top = 0; top <= 3; ++top) {
                    for (int32_t more = 0; more <= 2; ++more) {
                        const int32_t fullWidth = width + left + more, fullHeight = height + top + 2 - more;
                        const Picture source(width, height, 1);
                        Picture fast(fullWidth, fullHeight, 2), plain = fast;
                        PrimCopyReplicateBorder8uC1(source.data(), width, width, height, fast.data(),
                                                    fullWidth, fullWidth, fullHeight, top, left);
                        model::PrimCopyReplicateBorder8uC1(source.data(), width, width, height, plain.data(),
                                                           fullWidth, fullWidth, fullHeight, top, left);
                        ASSERT_EQ(fast.bytes, plain.bytes);

                        Picture inPlace(fullWidth, fullHeight, 3), plainInPlace = inPlace;
                        const int32_t inner = top * fullWidth + left;
                        PrimReplicateBorderInPlace8uC1(inPlace.data() + inner, fullWidth, width, height,
                                                       fullWidth, fullHeight, top, left);
                        model::PrimReplicateBorderInPlace8uC1(plainInPlace.data() + inner, fullWidth, width,
                                                              height, fullWidth, fullHeight, top, left);
                        ASSERT_EQ(inPlace.bytes, plainInPlace.bytes);
                    }
                }
            }
        }
    }
}

}  // namespace
