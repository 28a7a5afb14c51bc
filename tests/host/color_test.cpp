// Colour on its way from the input to the output.
#include <cmath>

#include "Clips.h"
#include "Media.h"

namespace {

class ColorTest : public MediaTest {
  protected:
    static constexpr const char* kEntries =
        "stream=color_range,color_space,color_transfer,color_primaries,chroma_location";
};

TEST_F(ColorTest, TagsAreCarried) {
    struct Case {
        const char* tags;
        const char* expected;  // range, matrix, transfer, primaries, chroma position
    };
    const Case cases[] = {
        {"-color_range tv -colorspace bt709 -color_trc bt709 -color_primaries bt709",
         "tv\nbt709\nbt709\nbt709\nleft\n"},
        {"-color_range pc -colorspace bt470bg -color_trc gamma28 -color_primaries bt470bg "
         "-chroma_sample_location center",
         "pc\nbt470bg\nbt470bg\nbt470bg\ncenter\n"},
        {"-color_range tv -colorspace bt2020nc -color_trc bt2020-10 -color_primaries bt2020 "
         "-chroma_sample_location topleft",
         "tv\nbt2020nc\nbt2020-10\nbt2020\ntopleft\n"},
        {"-color_range tv -colorspace smpte170m -color_trc smpte170m -color_primaries smpte170m",
         "tv\nsmpte170m\nsmpte170m\nsmpte170m\nleft\n"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.tags);
        Make(std::string("-f lavfi -i testsrc2=s=128x96:d=0.2 -pix_fmt yuv420p -c:v libx264 ") + each.tags +
             " in.mkv");
        for (const std::string output : {"out.mp4", "out.mkv", "out.mov", "out.ts"}) {
            Apply("-y in.mkv " + output);
            EXPECT_EQ(Probe(output, kEntries), each.expected) << output;
        }
    }
}

TEST_F(ColorTest, SamplesOfFullRangeStayAsTheyAre) {
    Make(
        "-f lavfi -i color=white:s=64x48:d=0.2,scale=out_range=pc -pix_fmt yuv420p -color_range pc "
        "-c:v ffv1 in.mkv");
    Apply("in.mkv out.y4m");
    EXPECT_NEAR(MeanOf(FirstFrameOf(Path("out.y4m")), 0), 255, 1);
    EXPECT_EQ(Probe("out.y4m", "stream=color_range"), "pc\n");
}

TEST_F(ColorTest, RangeIsConvertedWhereItCannotBeStated) {
    Make(
        "-f lavfi -i color=white:s=64x48:d=0.2,scale=out_range=pc -pix_fmt yuv420p -color_range pc "
        "-c:v ffv1 in.mkv");
    Apply("in.mkv out.avi");
    EXPECT_NEAR(MeanOf(FirstFrameOf(Path("out.avi")), 0), 235, 2);
}

TEST_F(ColorTest, RgbIsConvertedByTheMatrixOfItsHeight) {
    struct Case {
        const char* size;
        const char* matrix;
    };
    for (const Case& each : {Case{"320x240", "smpte170m\n"}, Case{"1280x720", "bt709\n"}}) {
        SCOPED_TRACE(each.size);
        Make(std::string("-f lavfi -i color=0x20e040:s=") + each.size +
             ":d=0.2,format=gbrp -c:v ffv1 -pix_fmt gbrp in.mkv");
        // An effect that leaves a flat picture alone: the output shows the conversions there and back.
        ASSERT_EQ(Shell("$P apply -y -e fish-eye in.mkv out.mp4").exitCode, 0);
        EXPECT_EQ(Probe("out.mp4", "stream=color_space"), each.matrix);
        ExpectMiddlePixel("out.mp4", {0x20, 0xe0, 0x40}, 6);
    }
}

TEST_F(ColorTest, PicturesUseTheMatrixOfTheVideo) {
    Make(
        "-f lavfi -i color=0x20e040:s=320x240:d=0.2,format=gbrp,scale=out_color_matrix=bt709,format=yuv444p "
        "-colorspace bt709 -c:v ffv1 in.mkv");
    ASSERT_EQ(Shell("$P apply -e fish-eye in.mkv --frame 1 out.png").exitCode, 0);
    ExpectMiddlePixel("out.png", {0x20, 0xe0, 0x40}, 4);
}

TEST_F(ColorTest, AnUnstatedMatrixIsStatedWhenTheSizeWouldChangeIt) {
    Make("-f lavfi -i testsrc2=s=1280x720:d=0.1 -pix_fmt yuv420p -c:v libx264 in.mkv");
    Apply("in.mkv same.mp4");
    EXPECT_EQ(Probe("same.mp4", "stream=color_space"), "unknown\n");
    Apply("in.mkv small.mp4 --size 320x180");
    EXPECT_EQ(Probe("small.mp4", "stream=color_space"), "bt709\n");
}

TEST_F(ColorTest, HighDynamicRangeIsToneMapped) {
    for (const std::string transfer : {"smpte2084", "arib-std-b67"}) {
        SCOPED_TRACE(transfer);
        // Mid-grey of standard range, with white at 100 nits.
        Make(
            "-f lavfi -i color=gray:s=128x96:d=0.2 -vf "
            "zscale=tin=bt709:pin=bt709:min=bt709:rin=tv:t=linear:p=bt709:m=gbr:npl=100,format=gbrpf32le,"
            "zscale=tin=linear:pin=bt709:t=" +
            transfer +
            ":p=bt2020:m=bt2020nc:r=tv:npl=100,"
            "format=yuv420p10le -c:v libx265 -x265-params log-level=none -color_primaries bt2020 "
            "-color_trc " +
            transfer + " -colorspace bt2020nc in.mkv");
        Apply("-y in.mkv out.mp4");
        EXPECT_EQ(Probe("out.mp4", kEntries), "tv\nbt709\nbt709\nbt709\nleft\n");
        // Neither the flat grey of unconverted samples nor black.
        const double luma = MeanOf(FirstFrameOf(Path("out.mp4")), 0);
        EXPECT_GT(luma, 70);
        EXPECT_LT(luma, 160);
    }
}

}  // namespace
