// Planes from bitmap files.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "imaging/Plane8u.h"
#include "tests/imaging/TestPlanes.h"

namespace {

class PlaneBitmap : public testing::Test {
  protected:
    /// A file of 3 by 2 pixels of 8 bits, bottom row first: 4 5 6 above 1 2 3.
    static Bytes GoodFile() {
        Bytes file(14 + 40 + 1024, 0);
        file[0] = 'B';
        file[1] = 'M';
        file[14] = 40;
        Put(file, 18, 3);
        Put(file, 22, 2);
        file[28] = 8;
        for (uint8_t i = 1; i <= 6; ++i) file.push_back(i);
        return file;
    }

    static void Put(Bytes& file, size_t at, int32_t value) {
        for (size_t i = 0; i < 4; ++i) {
            file[at + i] = static_cast<uint8_t>(static_cast<uint32_t>(value) >> (8 * i));
        }
    }

    std::string Write(const Bytes& file) {
        std::ofstream out(path_, std::ios::binary);
        out.write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
        return path_.string();
    }

    void ExpectRefused(const Bytes& file, const char* what) {
        CPlane8u plane = RandomPlane(2, 2, 1);
        const Bytes before = BytesOf(plane);
        const uint8_t* const block = plane.data;
        EXPECT_FALSE(plane.LoadBmp(Write(file).c_str())) << what;
        EXPECT_EQ(plane.data, block) << what;
        EXPECT_EQ(BytesOf(plane), before) << what;
    }

    void TearDown() override { std::filesystem::remove(path_); }

    // A name of its own: builds of several kinds may be tested at the same time.
    const std::filesystem::path path_ = std::filesystem::path(testing::TempDir()) /
                                        ("plane_" + std::to_string(std::random_device()()) + ".bmp");
};

TEST_F(PlaneBitmap, LastRowOfTheFileComesFirst) {
    CPlane8u plane(9, 9);
    EXPECT_TRUE(plane.LoadBmp(Write(GoodFile()).c_str()));
    EXPECT_EQ(plane.width, 3);
    EXPECT_EQ(plane.height, 2);
    EXPECT_TRUE(plane.owned);
    EXPECT_EQ(BytesOf(plane), (Bytes{4, 5, 6, 1, 2, 3}));
}

TEST_F(PlaneBitmap, ReusesAPlaneOfTheRightSize) {
    Bytes foreign(6, 0);
    CPlane8u plane = CPlane8u::Over(foreign.data(), 3, 2);
    EXPECT_TRUE(plane.LoadBmp(Write(GoodFile()).c_str()));
    EXPECT_FALSE(plane.owned);
    EXPECT_EQ(foreign, (Bytes{4, 5, 6, 1, 2, 3}));
}

TEST_F(PlaneBitmap, RefusesWhatIsNoBitmapOfEightBits) {
    const Bytes good = GoodFile();
    Bytes other = good;
    other[1] = 'A';
    ExpectRefused(other, "signature");
    other = good;
    other[28] = 24;
    ExpectRefused(other, "24 bits");
    other = good;
    other[29] = 1;
    ExpectRefused(other, "264 bits");
    for (size_t length = 0; length < good.size(); length += length < 60 ? 1 : 97) {
        ExpectRefused(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(length)), "cut short");
    }
    ExpectRefused(Bytes(good.begin(), good.end() - 1), "one byte short");
    for (const int32_t side : {0, -1, -3, 16385, kHuge, -kHuge - 1}) {
        for (const size_t at : {size_t{18}, size_t{22}}) {
            other = good;
            Put(other, at, side);
            ExpectRefused(other, "side");
        }
    }
    other = good;
    Put(other, 18, 16384);
    Put(other, 22, 16384);
    ExpectRefused(other, "far more pixels than bytes");
}

TEST_F(PlaneBitmap, RefusesWhatIsNoFile) {
    CPlane8u plane;
    EXPECT_FALSE(plane.LoadBmp(nullptr));
    EXPECT_FALSE(plane.LoadBmp(""));
    EXPECT_FALSE(plane.LoadBmp("no/such/file.bmp"));
    EXPECT_FALSE(plane.LoadBmp(testing::TempDir().c_str()));
#if defined(__linux__)
    EXPECT_FALSE(plane.LoadBmp("/dev/zero"));
#endif
    EXPECT_TRUE(plane.Empty());
}

}  // namespace
