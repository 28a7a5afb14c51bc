// Pictures of every format to the planes that effects work on, and back, against plain definitions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/Cpu.h"
#include "sfx/WorkFrame.h"
#include "tests/sfx/PlainPicture.h"
#include "tests/support/TestFrame.h"

namespace {

struct Samples {
    Samples(int32_t w, int32_t h)
        : width(w), height(h), y(static_cast<size_t>(w * h)), u(y.size() / 4), v(y.size() / 4) {}
    explicit Samples(const sfx::WorkFrame::Planes& planes) : Samples(planes.width, planes.height) {
        std::copy_n(planes.y, y.size(), y.begin());
        std::copy_n(planes.u, u.size(), u.begin());
        std::copy_n(planes.v, v.size(), v.begin());
    }
    void WriteTo(const sfx::WorkFrame::Planes& planes) const {
        std::copy(y.begin(), y.end(), planes.y);
        std::copy(u.begin(), u.end(), planes.u);
        std::copy(v.begin(), v.end(), planes.v);
    }
    uint8_t& Luma(int32_t x, int32_t row) { return y[static_cast<size_t>(row * width + x)]; }
    uint8_t& Chroma(int component, int32_t x, int32_t row) {
        return (component == 1 ? u : v)[static_cast<size_t>(row * (width / 2) + x)];
    }

    int32_t width, height;
    std::vector<uint8_t> y, u, v;
};

struct Rgb {
    double r, g, b;
};
struct Yuv {
    double y, u, v;
};

// ITU-R BT.601, BT.709 and BT.2020, in floating point.
struct ColorModel {
    ColorModel(int32_t matrix, int32_t range)
        : kr(matrix == SFX_BT601   ? 0.299
             : matrix == SFX_BT709 ? 0.2126
                                   : 0.2627),
          kb(matrix == SFX_BT601   ? 0.114
             : matrix == SFX_BT709 ? 0.0722
                                   : 0.0593),
          black(range == SFX_FULL ? 0 : 16),
          lumaScale(range == SFX_FULL ? 1 : 219.0 / 255),
          chromaScale(range == SFX_FULL ? 1 : 224.0 / 255) {}

    Yuv FromRgb(const Rgb& c) const {
        const double y = kr * c.r + (1 - kr - kb) * c.g + kb * c.b;
        return {black + lumaScale * y, 128 + chromaScale * (c.b - y) / (2 * (1 - kb)),
                128 + chromaScale * (c.r - y) / (2 * (1 - kr))};
    }
    Rgb ToRgb(const Yuv& c) const {
        const double y = (c.y - black) / lumaScale;
        const double b = y + 2 * (1 - kb) * (c.u - 128) / chromaScale;
        const double r = y + 2 * (1 - kr) * (c.v - 128) / chromaScale;
        const double g = (y - kr * r - kb * b) / (1 - kr - kb);
        const auto clip = [](double x) { return std::clamp(x, 0.0, 255.0); };
        return {clip(r), clip(g), clip(b)};
    }

    double kr, kb, black, lumaScale, chromaScale;
};

Rgb PixelOf(const PlainPicture& picture, int32_t x, int32_t y) {
    return {double(*picture.Sample(0, x, y)), double(*picture.Sample(1, x, y)),
            double(*picture.Sample(2, x, y))};
}

sfx::Picture Checked(PlainPicture& picture) {
    sfx::Picture checked{};
    EXPECT_EQ(sfx::CheckPicture(&picture.record(), checked), SFX_OK) << sfx_message();
    return checked;
}

/// The mean of one component over the pixels that chroma sample (cx, cy) of 4:2:0 stands for, where pixels
/// past the edge repeat the last; halves up in integers.
int MeanSample(const PlainPicture& picture, int component, int32_t cx, int32_t cy) {
    int sum = 0;
    for (const int32_t j : {0, 1}) {
        for (const int32_t i : {0, 1}) {
            sum += *picture.Sample(component, std::min(2 * cx + i, picture.width() - 1),
                                   std::min(2 * cy + j, picture.height() - 1));
        }
    }
    return (sum + 2) / 4;
}

class Conversion : public testing::TestWithParam<std::tuple<int, Rows>> {
  protected:
    sfx_format Format() const { return static_cast<sfx_format>(std::get<0>(GetParam())); }
    Rows RowKind() const { return std::get<1>(GetParam()); }
    void TearDown() override { cpu::Limit(cpu::Levels().back()); }
};

const std::vector<std::pair<int32_t, int32_t>> kSizes = {
    {1, 1}, {2, 2}, {1, 7}, {7, 1}, {2, 5}, {5, 3}, {16, 4}, {33, 18}, {64, 6}, {67, 9}, {130, 5}, {131, 4}};

TEST_P(Conversion, LoadsWhatTheDefinitionSays) {
    for (const auto& [width, height] : kSizes) {
        for (const int32_t matrix : {SFX_BT601, SFX_BT709, SFX_BT2020}) {
            for (const int32_t range : {SFX_LIMITED, SFX_FULL}) {
                SCOPED_TRACE(testing::Message() << width << "x" << height << " " << matrix << " " << range);
                PlainPicture picture(Format(), width, height, RowKind());
                picture.record().matrix = matrix;
                picture.record().range = range;
                picture.Randomize(static_cast<uint64_t>(width * 100 + height));
                const std::vector<uint8_t> before = picture.Bytes();
                sfx::WorkFrame work;
                Samples seen(work.Load(Checked(picture)));
                ASSERT_EQ(picture.Bytes(), before);
                ASSERT_EQ(seen.width, (width + 1) / 2 * 2);
                ASSERT_EQ(seen.height, (height + 1) / 2 * 2);
                const ColorModel model(matrix, range);
                for (int32_t y = 0; y < seen.height; ++y) {
                    for (int32_t x = 0; x < seen.width; ++x) {
                        const int32_t px = std::min(x, width - 1), py = std::min(y, height - 1);
                        if (picture.IsRgb()) {
                            ASSERT_NEAR(seen.Luma(x, y), model.FromRgb(PixelOf(picture, px, py)).y, 0.57);
                        } else {
                            ASSERT_EQ(seen.Luma(x, y), *picture.Sample(0, px, py));
                        }
                    }
                }
                for (int32_t y = 0; y < seen.height / 2; ++y) {
                    for (int32_t x = 0; x < seen.width / 2; ++x) {
                        if (picture.IsRgb()) {
                            const Rgb mean{double(MeanSample(picture, 0, x, y)),
                                           double(MeanSample(picture, 1, x, y)),
                                           double(MeanSample(picture, 2, x, y))};
                            ASSERT_NEAR(seen.Chroma(1, x, y), model.FromRgb(mean).u, 0.57);
                            ASSERT_NEAR(seen.Chroma(2, x, y), model.FromRgb(mean).v, 0.57);
                        } else {
                            ASSERT_EQ(seen.Chroma(1, x, y), MeanSample(picture, 1, x, y));
                            ASSERT_EQ(seen.Chroma(2, x, y), MeanSample(picture, 2, x, y));
                        }
                    }
                }
                if (!picture.IsRgb()) {
                    break;
                }
            }
        }
    }
}

TEST_P(Conversion, AnUntouchedPictureComesBackAsItWas) {
    for (const auto& [width, height] : kSizes) {
        SCOPED_TRACE(testing::Message() << width << "x" << height);
        PlainPicture picture(Format(), width, height, RowKind());
        picture.Randomize(5);
        const std::vector<uint8_t> before = picture.Bytes();
        const sfx::Picture checked = Checked(picture);
        sfx::WorkFrame work;
        work.Load(checked);
        work.Store(checked);
        EXPECT_EQ(picture.Bytes(), before);
        EXPECT_TRUE(picture.GuardsIntact());
    }
}

TEST_P(Conversion, StoresWhatTheDefinitionSays) {
    for (const auto& [width, height] : kSizes) {
        for (const int32_t matrix : {SFX_BT601, SFX_BT709, SFX_BT2020}) {
            for (const int32_t range : {SFX_LIMITED, SFX_FULL}) {
                SCOPED_TRACE(testing::Message() << width << "x" << height << " " << matrix << " " << range);
                PlainPicture picture(Format(), width, height, RowKind()),
                    original(Format(), width, height, RowKind());
                picture.record().matrix = matrix;
                picture.record().range = range;
                picture.Randomize(8);
                original.Randomize(8);
                const sfx::Picture checked = Checked(picture);
                sfx::WorkFrame work;
                const sfx::WorkFrame::Planes planes = work.Load(checked);
                Samples result(planes);
                TestRandom random(static_cast<uint64_t>(width + 1000 * height));
                for (auto* plane : {&result.y, &result.u, &result.v}) {
                    std::generate(plane->begin(), plane->end(), [&] { return random.Byte(); });
                }
                // The chroma is changed for certain.
                result.Chroma(1, 0, 0) = static_cast<uint8_t>(planes.u[0] ^ 1);
                result.WriteTo(planes);
                work.Store(checked);
                EXPECT_TRUE(picture.GuardsIntact());
                const ColorModel model(matrix, range);
                for (int32_t y = 0; y < height; ++y) {
                    for (int32_t x = 0; x < width; ++x) {
                        const int u = result.Chroma(1, x / 2, y / 2), v = result.Chroma(2, x / 2, y / 2);
                        if (picture.IsRgb()) {
                            const Rgb wanted = model.ToRgb({double(result.Luma(x, y)), double(u), double(v)});
                            ASSERT_NEAR(*picture.Sample(0, x, y), wanted.r, 0.6);
                            ASSERT_NEAR(*picture.Sample(1, x, y), wanted.g, 0.6);
                            ASSERT_NEAR(*picture.Sample(2, x, y), wanted.b, 0.6);
                            if (picture.Sample(3, x, y) != nullptr) {
                                ASSERT_EQ(*picture.Sample(3, x, y), *original.Sample(3, x, y));
                            }
                        } else {
                            ASSERT_EQ(*picture.Sample(0, x, y), result.Luma(x, y));
                            ASSERT_EQ(*picture.Sample(1, x, y), u);
                            ASSERT_EQ(*picture.Sample(2, x, y), v);
                        }
                    }
                }
                if (!picture.IsRgb()) {
                    break;
                }
            }
        }
    }
}

// The second luma sample of the last group of an odd packed row is not the picture's.
TEST_P(Conversion, LeavesBytesThatArePaddingAlone) {
    if (Format() != SFX_YUY2 && Format() != SFX_UYVY) {
        return;
    }
    PlainPicture picture(Format(), 5, 2, RowKind());
    picture.Randomize(8);
    const uint8_t* const padding = picture.Sample(0, 4, 1) + 2;
    const uint8_t before = *padding;
    const sfx::Picture checked = Checked(picture);
    sfx::WorkFrame work;
    const sfx::WorkFrame::Planes planes = work.Load(checked);
    std::fill_n(planes.y, planes.LumaSize(), static_cast<uint8_t>(before + 1));
    std::fill_n(planes.u, planes.ChromaSize(), static_cast<uint8_t>(1));
    work.Store(checked);
    EXPECT_EQ(*padding, before);
}

// An effect that draws in luma alone leaves chroma of full resolution, and the colour of RGB pixels, alone.
TEST_P(Conversion, KeepsColourWhereOnlyLumaChanges) {
    for (const int32_t range : {SFX_LIMITED, SFX_FULL}) {
        PlainPicture picture(Format(), 33, 19, RowKind()), original(Format(), 33, 19, RowKind());
        picture.record().range = range;
        picture.Smooth(3);
        original.Smooth(3);
        const sfx::Picture checked = Checked(picture);
        sfx::WorkFrame work;
        const sfx::WorkFrame::Planes planes = work.Load(checked);
        const Samples before(planes);
        for (size_t i = 0; i < planes.LumaSize(); ++i) {
            planes.y[i] = static_cast<uint8_t>(i % 3 == 0 ? planes.y[i] : planes.y[i] / 2 + 60);
        }
        Samples after(planes);
        work.Store(checked);
        for (int32_t y = 0; y < 19; ++y) {
            for (int32_t x = 0; x < 33; ++x) {
                const int change = after.Luma(x, y) - before.y[static_cast<size_t>(y * before.width + x)];
                const double change8 = range == SFX_FULL ? change : change * 255.0 / 219.0;
                for (int component = 0; component < 3; ++component) {
                    const int was = *original.Sample(component, x, y), is = *picture.Sample(component, x, y);
                    if (picture.IsRgb()) {
                        ASSERT_NEAR(is, std::clamp(was + change8, 0.0, 255.0), 0.6);
                        if (change == 0) {
                            ASSERT_EQ(is, was);
                        }
                    } else if (component > 0) {
                        ASSERT_EQ(is, was);
                    } else {
                        ASSERT_EQ(is, after.Luma(x, y));
                    }
                }
            }
        }
    }
}

TEST_P(Conversion, IsTheSameAtEveryProcessorLevel) {
    std::vector<std::vector<uint8_t>> results;
    for (const cpu::Level level : cpu::Levels()) {
        cpu::Limit(level);
        std::vector<uint8_t> result;
        for (const bool chroma : {false, true}) {
            PlainPicture picture(Format(), 517, 23, RowKind());
            picture.Randomize(21);
            const sfx::Picture checked = Checked(picture);
            sfx::WorkFrame work;
            const sfx::WorkFrame::Planes planes = work.Load(checked);
            for (size_t i = 0; i < planes.LumaSize(); ++i) {
                planes.y[i] = static_cast<uint8_t>(planes.y[i] * 7 + 3);
            }
            for (size_t i = 0; chroma && i < planes.ChromaSize(); ++i) {
                planes.u[i] = static_cast<uint8_t>(255 - planes.u[i]);
                planes.v[i] = static_cast<uint8_t>(planes.v[i] * 3);
            }
            work.Store(checked);
            const std::vector<uint8_t> bytes = picture.Bytes();
            result.insert(result.end(), bytes.begin(), bytes.end());
        }
        results.push_back(std::move(result));
    }
    for (const auto& result : results) {
        EXPECT_EQ(result, results.front());
    }
}

std::string CaseName(const testing::TestParamInfo<std::tuple<int, Rows>>& info) {
    constexpr const char* kKinds[] = {"Tight", "Gaps", "BottomUp"};
    return std::string(sfx_format_name(std::get<0>(info.param))) +
           kKinds[static_cast<int>(std::get<1>(info.param))];
}
INSTANTIATE_TEST_SUITE_P(Formats, Conversion,
                         testing::Combine(testing::Range(0, SFX_FORMAT_COUNT),
                                          testing::Values(Rows::kTight, Rows::kGaps, Rows::kBottomUp)),
                         CaseName);

TEST(ConversionOnce, EveryGrayComesBackFromRgb) {
    for (const int32_t matrix : {SFX_BT601, SFX_BT709, SFX_BT2020}) {
        for (const int32_t range : {SFX_LIMITED, SFX_FULL}) {
            PlainPicture picture(SFX_RGBA, 256, 2);
            picture.record().matrix = matrix;
            picture.record().range = range;
            for (int32_t x = 0; x < 256; ++x) {
                for (const int32_t y : {0, 1}) {
                    for (const int component : {0, 1, 2}) {
                        *picture.Sample(component, x, y) = static_cast<uint8_t>(x);
                    }
                }
            }
            const sfx::Picture checked = Checked(picture);
            sfx::WorkFrame work;
            const sfx::WorkFrame::Planes planes = work.Load(checked);
            EXPECT_EQ(planes.y[0], range == SFX_FULL ? 0 : 16);
            EXPECT_EQ(planes.y[255], range == SFX_FULL ? 255 : 235);
            EXPECT_TRUE(
                std::all_of(planes.u, planes.u + planes.ChromaSize(), [](uint8_t c) { return c == 128; }));
            EXPECT_TRUE(
                std::all_of(planes.v, planes.v + planes.ChromaSize(), [](uint8_t c) { return c == 128; }));
        }
    }
}

// The planes of a picture that has the form already are its own.
TEST(ConversionOnce, CopiesNothingThatHasTheForm) {
    for (const sfx_format format : {SFX_I420, SFX_YV12}) {
        PlainPicture picture(format, 64, 32);
        sfx::WorkFrame work;
        const sfx::WorkFrame::Planes planes = work.Load(Checked(picture));
        EXPECT_EQ(planes.y, picture.record().planes[0]);
        EXPECT_EQ(planes.u, picture.record().planes[format == SFX_I420 ? 1 : 2]);
        EXPECT_EQ(planes.v, picture.record().planes[format == SFX_I420 ? 2 : 1]);
    }
    PlainPicture picture(SFX_NV12, 64, 32);
    sfx::WorkFrame work;
    EXPECT_EQ(work.Load(Checked(picture)).y, picture.record().planes[0]);
}

}  // namespace
