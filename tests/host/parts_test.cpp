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
#include "Libav.h"
#include "Module.h"
#include "OutputFile.h"
#include "PixelNoise.h"
#include "Program.h"
#include "Progress.h"
#include "ScratchDirectory.h"
#include "TestScene.h"
#include "Y4m.h"

namespace {

using namespace host;
namespace fs = std::filesystem;

TEST(Frame, HasTightPlanes) {
    Frame planar(6, 4, kFormatPlanar);
    const ImageRecord image = planar.Record();
    EXPECT_EQ(image.Format, kFormatPlanar);
    EXPECT_EQ(planar.Size(), 36u);
    EXPECT_EQ(image.Plane[1] - image.Plane[0], 24);
    EXPECT_EQ(image.Plane[2] - image.Plane[1], 6);
    EXPECT_EQ(image.PlaneSize[0], 24);
    EXPECT_EQ(image.PlaneSize[1], 6);
    EXPECT_EQ(image.PlaneSize[2], 6);

    Frame packed(6, 4, kFormatPacked);
    EXPECT_EQ(packed.Size(), 72u);
    EXPECT_EQ(packed.RowBytes(0), 18);
    EXPECT_EQ(packed.Record().PlaneSize[0], 72);
    EXPECT_EQ(packed.Record().Plane[1], nullptr);
}

// Rows of the turned first plane of the numbers 0 to 7 in four columns.
std::vector<int> Turned(int quarterTurns) {
    Frame source(4, 2, kFormatPlanar);
    std::iota(source.Plane(0), source.Plane(0) + 8, uint8_t{0});
    Frame target(quarterTurns % 2 == 0 ? 4 : 2, quarterTurns % 2 == 0 ? 2 : 4, kFormatPlanar);
    CopyTurned(*ViewOf(source), quarterTurns, target);
    return {target.Plane(0), target.Plane(0) + 8};
}

TEST(CopyTurned, TurnsClockwise) {
    EXPECT_EQ(Turned(0), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(Turned(1), (std::vector<int>{4, 0, 5, 1, 6, 2, 7, 3}));
    EXPECT_EQ(Turned(2), (std::vector<int>{7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(Turned(3), (std::vector<int>{3, 7, 2, 6, 1, 5, 0, 4}));
}

TEST(CopyTurned, TurnsPackedPixelsWhole) {
    Frame source(2, 2, kFormatPacked), target(2, 2, kFormatPacked);
    std::iota(source.Plane(0), source.Plane(0) + 12, uint8_t{0});
    CopyTurned(*ViewOf(source), 1, target);
    const std::vector<int> pixels(target.Plane(0), target.Plane(0) + 12);
    EXPECT_EQ(pixels, (std::vector<int>{6, 7, 8, 0, 1, 2, 9, 10, 11, 3, 4, 5}));
}

TEST(Converter, HandsBackWhatIsRightAlready) {
    const Frame frame(16, 16, kFormatPlanar);
    const AVFramePtr view = ViewOf(frame);
    Converter converter;
    EXPECT_EQ(&converter.Convert(*view, 16, 16, AV_PIX_FMT_YUV420P), view.get());
    EXPECT_NE(&converter.Convert(*view, 16, 16, AV_PIX_FMT_RGB24), view.get());
}

TEST(NewAVFrame, TellsASizeThatIsTooLargeFromAShortageOfMemory) {
    EXPECT_THROW(NewAVFrame(16384, 16384, AV_PIX_FMT_RGB24), Failure);
    EXPECT_EQ(NewAVFrame(16384, 2, AV_PIX_FMT_RGB24)->width, 16384);
}

TEST(Converter, KnowsTheRangesOfLuma) {
    Frame frame(16, 16, kFormatPlanar);
    std::fill_n(frame.Plane(0), 256, uint8_t{16});
    std::fill_n(frame.Plane(1), 128, uint8_t{128});
    Converter converter;
    EXPECT_LE(converter.Convert(*ViewOf(frame), 16, 16, AV_PIX_FMT_RGB24).data[0][0], 1);
    std::fill_n(frame.Plane(0), 256, uint8_t{235});
    EXPECT_GE(converter.Convert(*ViewOf(frame), 16, 16, AV_PIX_FMT_RGB24).data[0][0], 254);
    EXPECT_GE(converter.Convert(*ViewOf(frame), 16, 16, AV_PIX_FMT_YUVJ420P).data[0][0], 254);
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
    Frame first(160, 120, kFormatPlanar), again(160, 120, kFormatPlanar), later(160, 120, kFormatPlanar);
    DrawTestScene(7, first);
    DrawTestScene(7, again);
    DrawTestScene(12, later);
    EXPECT_EQ(Difference(first, again), 0);
    EXPECT_GT(Difference(first, later), 2);
}

TEST(TestScene, FillsFramesOfAnySize) {
    for (const int side : {2, 4, 30, 502}) {
        Frame wide(side, 2, kFormatPlanar), high(2, side, kFormatPlanar);
        DrawTestScene(1, wide);
        DrawTestScene(1, high);
        EXPECT_GT(MeanOf(wide, 0) + MeanOf(high, 0), 0);
    }
}

TEST(ProgressLine, TellsFramesRateAndTimeLeft) {
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
        OutputFile file(path);
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
        OutputFile file(Path("out.bin"));
        file.Write("abc", 3);
    }
    EXPECT_EQ(Read("out.bin"), "before") << "an older file stays as it is";
    EXPECT_FALSE(Exists("out.bin.part"));
}

TEST_F(OutputFileTest, RefusesWhatIsNoFile) {
    EXPECT_THROW(OutputFile(directory_.string()), Failure);
    EXPECT_THROW(OutputFile(Path("missing/out.bin")), Failure);
    EXPECT_THROW(OutputFile("/dev/null"), Failure);
}

TEST(WriteAll, ReportsAFullDisk) {
    const int descriptor = open("/dev/full", O_WRONLY);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(WriteAll(descriptor, "abc", 3), ENOSPC);
    close(descriptor);
}

class ScratchDirectoryTest : public ProgramTest {};

TEST_F(ScratchDirectoryTest, KeepsTheUsersDirectoryClean) {
    const fs::path before = fs::current_path();
    fs::current_path(directory_);
    Write("logo3.bmp", "a logo");
    fs::path scratchPath;
    {
        const ScratchDirectory scratch;
        scratch.LeaveEmptyNoiseFile();
        scratchPath = fs::current_path();
        EXPECT_NE(scratchPath, directory_);
        EXPECT_TRUE(fs::exists("perlin.dat"));
        EXPECT_TRUE(fs::exists("logo3.bmp")) << "what the user has is found";
        EXPECT_FALSE(fs::exists("haar.txt"));
        std::ofstream("made.txt") << "by an effect";
    }
    EXPECT_EQ(fs::current_path(), directory_);
    EXPECT_FALSE(fs::exists(scratchPath));
    EXPECT_FALSE(Exists("perlin.dat"));
    EXPECT_EQ(Read("logo3.bmp"), "a logo");
    fs::current_path(before);
}

TEST(Module, RefusesWhatIsNone) {
    EXPECT_THROW(Module("/nowhere/libspecialeffects.so"), Failure);
    EXPECT_THROW(Module("/etc/passwd"), Failure);
    EXPECT_THROW(Module("/"), Failure);
}

TEST(Module, GivesEffectsThatKnowTheirProperties) {
    const Module module(SE_FAKE_MODULE);
    const EffectHandle effect =
        module.Create({0x930E1289, 0x65C0, 0x403E, {0x88, 0x0A, 0x19, 2, 0xFD, 0xCF, 0xEA, 0x90}});
    ASSERT_TRUE(effect);
    EXPECT_EQ(NameOf(*effect), "Fake");
    const auto properties = PropertiesOf(*effect);
    ASSERT_EQ(properties.size(), 4u);
    EXPECT_EQ(properties[0].name, "Level");
    EXPECT_EQ(properties[0].range, "1,10");
    EXPECT_EQ(properties[1].type, PropTypeSet::Color);
    EXPECT_EQ(GetProperty(*effect, "Level"), "3");
    EXPECT_EQ(GetProperty(*effect, "Nothing"), "");
    EXPECT_FALSE(module.Create({}));
    EXPECT_EQ(module.Listing().size(), 3u);
}

}  // namespace
