// Sepia and Comic Book go through packed pixels, whose conversions want chroma of (width + 1) / 2 by
// (height + 1) / 2. At odd sizes each plane may be that large or only width / 2 by height / 2, as its
// PlaneSize says; here both effects meet all combinations, on planes that hold not one byte more than they
// promise.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "tests/support/EffectDriver.h"

namespace {

constexpr const char* kSepia = "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}";
constexpr const char* kComicBook = "{7EA36DF8-6AC3-40AD-A4F3-9B240E651079}";

using PixelOperation = void (*)(int (&pixel)[3]);

void SepiaPixel(int (&pixel)[3]) {
    constexpr float kMatrix[3][4] = {
        {0.393F, 0.769F, 0.189F, 0.0F}, {0.349F, 0.686F, 0.168F, 0.0F}, {0.272F, 0.534F, 0.131F, 1.0F}};
    int twisted[3];
    for (int c = 0; c < 3; ++c) {
        const double value = double{kMatrix[c][0]} * pixel[0] + double{kMatrix[c][1]} * pixel[1] +
                             double{kMatrix[c][2]} * pixel[2] + double{kMatrix[c][3]};
        twisted[c] = static_cast<int>(value + 0.5);
        if (twisted[c] % 2 != 0 && twisted[c] == value + 0.5) --twisted[c];
        twisted[c] = value >= 255 ? 255 : value <= 0 ? 0 : twisted[c];
    }
    std::copy_n(twisted, 3, pixel);
}

void ComicBookPixel(int (&pixel)[3]) {
    for (int& channel : pixel) channel = channel < 128 ? 0 : 255;
}

/// Bytes of exactly the given number, watched on both sides. Under AddressSanitizer they stand alone.
class Watched {
  public:
    Watched(int64_t size, TestRandom& random) : size_(static_cast<size_t>(size)) {
        bytes_.reserve(1);  // an empty plane still has an address
        bytes_.assign(size_ + 2 * kGuard, 0xA5);
        std::generate_n(data(), size_, [&] { return random.Byte(); });
    }
    uint8_t* data() { return bytes_.data() + kGuard; }
    std::vector<uint8_t> Contents() const {
        const auto first = bytes_.begin() + ptrdiff_t{kGuard};
        return {first, first + static_cast<ptrdiff_t>(size_)};
    }
    bool IsIntact() const {
        const auto isGuard = [](uint8_t byte) { return byte == 0xA5; };
        return std::all_of(bytes_.begin(), bytes_.begin() + ptrdiff_t{kGuard}, isGuard) &&
               std::all_of(bytes_.end() - ptrdiff_t{kGuard}, bytes_.end(), isGuard);
    }

  private:
#if defined(__SANITIZE_ADDRESS__)
    static constexpr size_t kGuard = 0;
#else
    static constexpr size_t kGuard = 64;
#endif
    size_t size_;
    std::vector<uint8_t> bytes_;
};

/// What a host's PlaneSize makes of a chroma plane.
struct Chroma {
    Chroma(int width, int height, int32_t planeSize) {
        const int64_t down = int64_t{width / 2} * (height / 2);
        const int64_t up = int64_t{(width + 1) / 2} * ((height + 1) / 2);
        if (planeSize >= up || (planeSize <= 0 && down > 0)) {
            columns = (width + 1) / 2;
            rows = (height + 1) / 2;
        } else if (std::max(planeSize, 0) >= down) {
            columns = width / 2;
            rows = height / 2;
        } else {
            isRefused = true;
        }
        bytes = isRefused ? planeSize : int64_t{columns} * rows;
    }

    int Sample(const std::vector<uint8_t>& plane, int column, int row) const {
        if (columns == 0 || rows == 0) return 128;
        return plane[static_cast<size_t>(std::min(row, rows - 1) * columns + std::min(column, columns - 1))];
    }
    void Store(std::vector<uint8_t>& plane, int column, int row, int value) const {
        if (column < columns && row < rows) {
            plane[static_cast<size_t>(row * columns + column)] = static_cast<uint8_t>(value);
        }
    }

    bool isRefused = false;
    int columns = 0, rows = 0;
    int64_t bytes;
};

/// Widens, changes every pixel, and averages back.
void Model(int width, int height, const Chroma& uShape, const Chroma& vShape, PixelOperation change,
           std::vector<uint8_t> (&planes)[3]) {
    const std::vector<uint8_t> uBefore = planes[1], vBefore = planes[2];
    const auto saturate = [](int value) { return std::clamp(value, 0, 255); };
    for (int row = 0; row < (height + 1) / 2; ++row) {
        for (int column = 0; column < (width + 1) / 2; ++column) {
            const int u = uShape.Sample(uBefore, column, row) - 128;
            const int v = vShape.Sample(vBefore, column, row) - 128;
            int pixels = 0, sum = 0, red = 0, blue = 0;
            for (int y = 2 * row; y < std::min(2 * row + 2, height); ++y) {
                for (int x = 2 * column; x < std::min(2 * column + 2, width); ++x) {
                    uint8_t& luma = planes[0][static_cast<size_t>(y * width + x)];
                    const int wide = luma << 16;
                    int pixel[3] = {saturate((wide + 74711 * v) >> 16),
                                    saturate((wide - 38076 * v - 25821 * u) >> 16),
                                    saturate((wide + 133169 * u) >> 16)};
                    change(pixel);
                    const int weighted = 19595 * pixel[0] + 38470 * pixel[1] + 7471 * pixel[2];
                    luma = static_cast<uint8_t>(weighted >> 16);
                    sum += weighted;
                    red += pixel[0];
                    blue += pixel[2];
                    ++pixels;
                }
            }
            const int term = pixels == 4 ? 0x1FFFF : 0;
            const int shift = pixels == 4 ? 18 : pixels == 2 ? 17 : 16;
            const int blueExcess = ((blue << 16) - sum + term) >> 16;
            const int redExcess = ((red << 16) - sum + term) >> 16;
            uShape.Store(planes[1], column, row, ((blueExcess * 32244) >> shift) - 128);
            vShape.Store(planes[2], column, row, saturate(((redExcess * 57475) >> shift) + 128));
        }
    }
}

class RoundedChroma : public testing::TestWithParam<std::pair<const char*, PixelOperation>> {
  protected:
    void ExpectModel(int width, int height, int32_t uSize, int32_t vSize, TestRandom& random) {
        SCOPED_TRACE(testing::Message()
                     << width << " by " << height << ", PlaneSize " << uSize << " and " << vSize);
        const Chroma u(width, height, uSize), v(width, height, vSize);
        Watched planes[3] = {{width * height, random}, {u.bytes, random}, {v.bytes, random}};
        std::vector<uint8_t> expected[3];
        std::transform(planes, planes + 3, expected, [](const Watched& plane) { return plane.Contents(); });
        const bool isRefused = u.isRefused || v.isRefused;
        if (!isRefused) Model(width, height, u, v, GetParam().second, expected);

        ImageRecord image{kFormatPlanar,
                          {planes[0].data(), planes[1].data(), planes[2].data()},
                          0,
                          {width * height, uSize, vSize}};
        FrameRecord frame{{}, &image};
        ASSERT_EQ(effect->ProcessFrame(&frame), isRefused ? kInvalidArgument : kSuccess);
        for (int p = 0; p < 3; ++p) {
            ASSERT_EQ(planes[p].Contents(), expected[p]) << "plane " << p;
            ASSERT_TRUE(planes[p].IsIntact()) << "plane " << p;
        }
    }

    EffectDriver effect{GetParam().first};
};

TEST_P(RoundedChroma, IsTakenAsPlaneSizeSays) {
    TestRandom random(13);
    for (int height = 1; height <= 7; ++height) {
        for (int width = 1; width <= 7; ++width) {
            if (width % 2 == 0 && height % 2 == 0) continue;
            ASSERT_EQ(effect.Configure(width, height), kSuccess);
            const int32_t down = width / 2 * (height / 2), up = (width + 1) / 2 * ((height + 1) / 2);
            const int32_t sizes[] = {INT32_MIN, -1, 0, 1, down - 1, down, down + 1, up - 1, up, INT32_MAX};
            for (const int32_t uSize : sizes) {
                for (const int32_t vSize : sizes) {
                    ExpectModel(width, height, uSize, vSize, random);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

TEST_P(RoundedChroma, EqualsItsModelOnLargePlanesThatAreRoundedDown) {
    TestRandom random(31);
    for (const auto& [width, height] :
         {std::pair{177, 143}, {640, 31}, {641, 2}, {1, 480}, {641, 1}, {33, 1024}, {2, 9}}) {
        ASSERT_EQ(effect.Configure(width, height), kSuccess);
        for (int i = 0; i < 4; ++i) {
            ExpectModel(width, height, width / 2 * (height / 2), width / 2 * (height / 2), random);
            if (HasFatalFailure()) return;
        }
    }
}

/// At even sizes the format alone determines the planes; PlaneSize has no effect.
TEST_P(RoundedChroma, IsNotLookedAtInEvenSizes) {
    ASSERT_EQ(effect.Configure(4, 2), kSuccess);
    TestFrame expected = TestFrame(4, 2).Randomize(1);
    TestFrame source = expected;
    ASSERT_EQ(effect.Process(expected), kSuccess);
    for (const int32_t size : {INT32_MIN, 0, 1, INT32_MAX}) {
        TestFrame frame = source;
        std::fill_n(frame.image().PlaneSize, 3, size);
        EXPECT_EQ(effect.Process(frame), kSuccess);
        EXPECT_EQ(FirstDifference(frame, expected), "") << size;
        EXPECT_TRUE(frame.GuardsIntact());
    }
}

/// The refusal comes after the null planes and after the missing workspace.
TEST_P(RoundedChroma, IsTestedLast) {
    uint8_t luma[15] = {}, chroma[1] = {};
    ImageRecord image{kFormatPlanar, {luma, chroma, chroma}, 0, {15, 1, 1}};
    FrameRecord frame{{}, &image};
    EXPECT_EQ(effect->ProcessFrame(&frame), kFailure);
    ASSERT_EQ(effect.Configure(5, 3), kSuccess);
    EXPECT_EQ(effect->ProcessFrame(&frame), kInvalidArgument);
    effect->Shutdown();
    EXPECT_EQ(effect->ProcessFrame(&frame), kFailure);
    image.Plane[1] = nullptr;
    EXPECT_EQ(effect->ProcessFrame(&frame), kInvalidArgument);
}

INSTANTIATE_TEST_SUITE_P(Effects, RoundedChroma,
                         testing::Values(std::pair{kSepia, PixelOperation{SepiaPixel}},
                                         std::pair{kComicBook, PixelOperation{ComicBookPixel}}),
                         [](const auto& row) { return row.index == 0 ? "Sepia" : "ComicBook"; });

}  // namespace
