// The pieces that need no program around them.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <numeric>

#include "Clips.h"
#include "Errors.h"
#include "Frame.h"
#include "Intake.h"
#include "Libav.h"
#include "OutputFile.h"
#include "PixelNoise.h"
#include "Program.h"
#include "Progress.h"
#include "Scaler.h"
#include "TestScene.h"
#include "Y4m.h"

namespace {

using namespace host;
namespace fs = std::filesystem;

TEST(Frame, HasTightPlanes) {
    const Frame frame(6, 4);
    EXPECT_EQ(frame.Plane(1) - frame.Plane(0), 24);
    EXPECT_EQ(frame.Plane(2) - frame.Plane(1), 6);
    const Frame odd(5, 3);
    EXPECT_EQ(odd.RowBytes(1), 3);
    EXPECT_EQ(odd.Rows(1), 2);
    EXPECT_EQ(odd.Plane(2) - odd.Plane(1), 6);
}

TEST(Frame, SharesItsPixels) {
    Frame frame(6, 4);
    EXPECT_TRUE(IsFrameLayout(frame.Picture()));
    const Frame other = frame.Share();
    EXPECT_EQ(other.Plane(0), frame.Plane(0));
    EXPECT_FALSE(IsFrameLayout(frame.Picture())) << "nobody writes to what another one holds";
}

TEST(FramePool, UsesMemoryAgain) {
    const FramePool pool(64, 48);
    Frame first = pool.Take();
    const uint8_t* memory = first.Plane(0);
    const Frame second = pool.Take();
    EXPECT_NE(second.Plane(0), memory);
    first = Frame();
    EXPECT_EQ(pool.Take().Plane(0), memory);
}

// Rows of the turned first plane of the numbers 0 to 7 in four columns.
std::vector<int> Turned(int quarterTurns) {
    Frame source(4, 2);
    std::iota(source.Plane(0), source.Plane(0) + 8, uint8_t{0});
    Frame target(quarterTurns % 2 == 0 ? 4 : 2, quarterTurns % 2 == 0 ? 2 : 4);
    CopyTurned(source.Picture(), quarterTurns, target.Picture());
    return {target.Plane(0), target.Plane(0) + 8};
}

TEST(CopyTurned, TurnsClockwise) {
    EXPECT_EQ(Turned(0), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(Turned(1), (std::vector<int>{4, 0, 5, 1, 6, 2, 7, 3}));
    EXPECT_EQ(Turned(2), (std::vector<int>{7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(Turned(3), (std::vector<int>{3, 7, 2, 6, 1, 5, 0, 4}));
}

AVFramePtr FlatPicture(uint8_t luma) {
    AVFramePtr picture = NewAVFrame(16, 16, AV_PIX_FMT_YUV420P);
    for (int i = 0; i < 3; ++i) {
        std::fill_n(picture->data[i], picture->linesize[i] * (i == 0 ? 16 : 8), i == 0 ? luma : uint8_t{128});
    }
    return picture;
}

TEST(Intake, TakesWhatIsRightAlreadyWithoutACopy) {
    Intake intake(16, 16, 0, {});
    Frame frame(16, 16);
    const uint8_t* pixels = frame.Plane(0);
    AVFramePtr picture(av_frame_clone(&frame.Picture()));
    frame = Frame();
    EXPECT_EQ(intake.Take(std::move(picture)).Plane(0), pixels);
    // What the decoder still refers to is copied.
    AVFramePtr held = FlatPicture(77);
    const AVFramePtr reference(av_frame_clone(held.get()));
    const Frame copy = intake.Take(std::move(held));
    EXPECT_NE(copy.Plane(0), reference->data[0]);
    EXPECT_EQ(copy.Plane(0)[255], 77);
}

TEST(NewAVFrame, TellsASizeThatIsTooLargeFromAShortageOfMemory) {
    EXPECT_THROW(NewAVFrame(16384, 16384, AV_PIX_FMT_RGB24), Failure);
    EXPECT_EQ(NewAVFrame(16384, 2, AV_PIX_FMT_RGB24)->width, 16384);
}

uint8_t ConvertedLuma(uint8_t luma, AVColorRange from, AVPixelFormat to) {
    const AVFramePtr picture = FlatPicture(luma), result = NewAVFrame(16, 16, to);
    picture->color_range = from;
    Scaler().Convert(*picture, *result);
    return result->data[0][0];
}

TEST(Scaler, KnowsTheRangesOfLuma) {
    EXPECT_LE(ConvertedLuma(16, AVCOL_RANGE_MPEG, AV_PIX_FMT_RGB24), 1);
    EXPECT_GE(ConvertedLuma(235, AVCOL_RANGE_UNSPECIFIED, AV_PIX_FMT_RGB24), 254);
    EXPECT_GE(ConvertedLuma(235, AVCOL_RANGE_MPEG, AV_PIX_FMT_YUVJ420P), 254);
    EXPECT_NEAR(ConvertedLuma(235, AVCOL_RANGE_JPEG, AV_PIX_FMT_RGB24), 235, 1);
    EXPECT_NEAR(ConvertedLuma(255, AVCOL_RANGE_JPEG, AV_PIX_FMT_YUV420P), 235, 1);
    EXPECT_EQ(ConvertedLuma(16, AVCOL_RANGE_JPEG, AV_PIX_FMT_YUVJ420P), 16);
}

TEST(PixelNoise, HasTheDeviationAskedFor) {
    PixelNoise noise(1, 0, 0);
    double sum = 0, squares = 0;
    constexpr int kCount = 20000;
    for (int i = 0; i < kCount; ++i) {
        const int sample = noise.Sample(4);
        sum += sample;
        squares += sample * sample;
    }
    EXPECT_NEAR(sum / kCount, 0, 0.15);
    EXPECT_NEAR(std::sqrt(squares / kCount), 4, 0.2);
}

TEST(TestScene, IsTheSameEveryTimeAndMoves) {
    Frame first(160, 120), again(160, 120), later(160, 120);
    DrawTestScene(7, first);
    DrawTestScene(7, again);
    DrawTestScene(12, later);
    EXPECT_EQ(Difference(first, again), 0);
    EXPECT_GT(Difference(first, later), 2);
}

TEST(TestScene, FillsFramesOfAnySize) {
    for (const int side : {2, 4, 30, 502}) {
        Frame wide(side, 2), high(2, side);
        DrawTestScene(1, wide);
        DrawTestScene(1, high);
        EXPECT_GT(MeanOf(wide, 0) + MeanOf(high, 0), 0);
    }
}

TEST(ProgressLine, ShowsFramesRateAndTimeLeft) {
    EXPECT_EQ(ProgressLine(60, 120, 2),
              "[###############...............] 60/120 frames, 30.0 fps, 0:02 left");
    EXPECT_EQ(ProgressLine(120, 120, 2),
              "[##############################] 120/120 frames, 60.0 fps, 0:00 left");
    EXPECT_EQ(ProgressLine(10, 3010, 1),
              "[..............................] 10/3010 frames, 10.0 fps, 5:00 left");
    EXPECT_EQ(ProgressLine(130, 120, 2),
              "[##############################] 130/120 frames, 65.0 fps, 0:00 left");
    EXPECT_EQ(ProgressLine(60, 0, 2), "60 frames, 30.0 fps");
    EXPECT_EQ(ProgressLine(0, 120, 0), "[..............................] 0/120 frames, 0.0 fps");
}

TEST(ProgressLine, FitsIntoTheTerminal) {
    const std::string whole = ProgressLine(60, 120, 2);
    EXPECT_EQ(ProgressLine(60, 120, 2, whole.size()), whole);
    EXPECT_EQ(ProgressLine(60, 120, 2, whole.size() - 1), "60/120 frames, 30.0 fps, 0:02 left");
    EXPECT_EQ(ProgressLine(60, 120, 2, 13), "60/120 frames");
    EXPECT_EQ(ProgressLine(60, 0, 2, 9), "60 frames");
}

TEST(Y4m, BeginsWithTheStream) {
    StreamInfo stream;
    stream.size = {320, 240};
    stream.frameRate = {30000, 1001};
    EXPECT_EQ(Y4mHeader(stream), "YUV4MPEG2 W320 H240 F30000:1001 Ip A1:1 C420jpeg XCOLORRANGE=LIMITED\n");
}

TEST(EvenSize, RoundsDownButNotToNothing) {
    EXPECT_EQ(EvenSize({641, 480}, Notes(true)), (Size{640, 480}));
    EXPECT_EQ(EvenSize({1, 3}, Notes(true)), (Size{2, 2}));
}

class OutputFileTest : public ProgramTest {};

TEST_F(OutputFileTest, GetsItsNameAtTheEnd) {
    const std::string path = Path("out.bin");
    {
        OutputFile file(path, false);
        file.Write("abc", 3);
        EXPECT_FALSE(fs::exists(path));
        EXPECT_TRUE(fs::exists(path + ".part"));
        file.Commit();
    }
    EXPECT_EQ(Read("out.bin"), "abc");
    EXPECT_FALSE(fs::exists(path + ".part"));
}

TEST_F(OutputFileTest, LeavesNothingBehindWhenItIsNotFinished) {
    Write("out.bin", "before");
    {
        OutputFile file(Path("out.bin"), true);
        file.Write("abc", 3);
    }
    EXPECT_EQ(Read("out.bin"), "before") << "an older file stays as it is";
    EXPECT_FALSE(Exists("out.bin.part"));
}

TEST_F(OutputFileTest, RefusesWhatIsNoFile) {
    EXPECT_THROW(OutputFile(directory_.string(), true), Failure);
    EXPECT_THROW(OutputFile(Path("missing/out.bin"), true), Failure);
    EXPECT_THROW(OutputFile("/dev/null", true), Failure);
}

TEST_F(OutputFileTest, ReplacesNothingUnasked) {
    Write("out.bin", "before");
    EXPECT_THROW(OutputFile(Path("out.bin"), false), UsageError);
    {
        // It may also come into being while the file is written.
        OutputFile file(Path("later.bin"), false);
        Write("later.bin", "somebody's");
        EXPECT_THROW(file.Commit(), Failure);
    }
    EXPECT_EQ(Read("later.bin"), "somebody's");
    EXPECT_FALSE(Exists("later.bin.part"));
}

TEST_F(OutputFileTest, WritesWhereALinkLeads) {
    fs::create_directory(Path("folder"));
    fs::create_symlink("folder/target.bin", Path("link.bin"));
    for (const std::string text : {"first", "second"}) {
        OutputFile file(Path("link.bin"), true);
        file.Write(text.data(), text.size());
        file.Commit();
        EXPECT_TRUE(fs::is_symlink(Path("link.bin")));
        EXPECT_EQ(Read("folder/target.bin"), text);
    }
}

TEST(WriteAll, ReportsAFullDisk) {
    const int descriptor = open("/dev/full", O_WRONLY);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(WriteAll(descriptor, "abc", 3), ENOSPC);
    close(descriptor);
}

}  // namespace
