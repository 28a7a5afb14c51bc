// Animated WebP as input.
#include <algorithm>
#include <filesystem>

#include "Clips.h"
#include "Media.h"
#include "VideoInput.h"

namespace {

class WebpTest : public MediaTest {
  protected:
    // Writes the same pictures as `name`.webp and `name`.apng, both without loss.
    void MakePair(const std::string& name, const std::string& source, const std::string& pixels) const {
        Make("-f lavfi -i " + source + " -vsync vfr -pix_fmt " + pixels + " -c:v apng -f apng " + name +
             ".apng");
        Make("-f lavfi -i " + source + " -vsync vfr -pix_fmt bgra -c:v libwebp_anim -lossless 1 -loop 3 " +
             name + ".webp");
    }

    // Milliseconds.
    std::vector<int64_t> TimesOf(const std::string& name) const {
        const host::Notes notes(true);
        const auto input = host::OpenInput(Path(name), {}, notes);
        std::vector<int64_t> times;
        while (auto item = input->Next()) {
            times.push_back(av_rescale_q(item->frame.Time(), input->Stream().timeBase, {1, 1000}));
        }
        return times;
    }

    void ExpectSamePictures(const std::string& a, const std::string& b, double tolerance = 0) const {
        const auto framesOfA = FramesOf(Path(a)), framesOfB = FramesOf(Path(b));
        ASSERT_EQ(framesOfA.size(), framesOfB.size());
        for (size_t i = 0; i < framesOfA.size(); ++i) {
            EXPECT_LE(Difference(framesOfA[i], framesOfB[i]), tolerance) << "frame " << i;
        }
    }

    void ExpectWebpError(const std::string& input, const std::string& part) const {
        ExpectError(Shell("$P apply -e gray-scale " + input + " out.mkv"), 1, part);
        EXPECT_FALSE(Exists("out.mkv"));
    }

    // A file with the headers of an animation and nothing after them.
    static std::string HeadOf(int width, int height) {
        const auto three = [](int n) {
            return std::string{static_cast<char>(n), static_cast<char>(n >> 8), static_cast<char>(n >> 16)};
        };
        return std::string("RIFF\x16\0\0\0WEBPVP8X\x0a\0\0\0\x02\0\0\0", 24) + three(width - 1) +
               three(height - 1);
    }
};

TEST_F(WebpTest, PicturesAndTimesOfAnotherWriter) {
    MakePair("in", "testsrc2=s=95x63:r=25:d=0.4", "rgb24");
    const std::vector<int64_t> times{0, 40, 80, 120, 160, 200, 240, 280, 320, 360};
    EXPECT_EQ(TimesOf("in.webp"), times);
    ExpectSamePictures("in.webp", "in.apng");
    // And through the program.
    for (const std::string name : {"webp", "apng"}) {
        Apply("-q in." + name + " " + name + ".mkv --codec ffv1");
        EXPECT_EQ(CountFrames(name + ".mkv"), 10);
        EXPECT_EQ(Probe(name + ".mkv", "stream=r_frame_rate"), "25/1\n");
    }
    EXPECT_EQ(TimesOf("webp.mkv"), times);
    ExpectSamePictures("webp.mkv", "apng.mkv");
}

TEST_F(WebpTest, PicturesAndTimesThatTheProgramWrote) {
    Make("-f lavfi -i testsrc2=s=96x64:r=30:d=1 -pix_fmt yuv420p -c:v libx264 in.mp4");
    EXPECT_EQ(Apply("in.mp4 a.webp"), "");
    EXPECT_EQ(Apply("in.mp4 a.mkv --codec ffv1"), "");
    const std::vector<int64_t> times = TimesOf("a.webp");
    ASSERT_EQ(times.size(), 30u);
    for (int i = 0; i < 30; ++i) EXPECT_EQ(times[static_cast<size_t>(i)], i * 1000 / 30);
    ExpectSamePictures("a.webp", "a.mkv", 4);  // its encoder loses some
    EXPECT_EQ(Apply("a.webp again.mp4"), "");
    EXPECT_EQ(CountFrames("again.mp4"), 30);
    EXPECT_EQ(Probe("again.mp4", "stream=r_frame_rate"), "30/1\n");
    EXPECT_EQ(Apply("a.webp again.webp"), "");
    EXPECT_EQ(TimesOf("again.webp"), times);
}

TEST_F(WebpTest, AlphaIsTreatedAsInOtherPictures) {
    MakePair("in",
             "testsrc2=s=96x64:r=10:d=0.5,format=rgba,geq=r='r(X\\,Y)':g='g(X\\,Y)':b='b(X\\,Y)':a='64+X'",
             "rgba");
    ExpectSamePictures("in.webp", "in.apng");
}

TEST_F(WebpTest, VaryingDurationsAreKept) {
    MakePair("in", "testsrc2=s=96x64:r=10:d=2,select='lt(n\\,5)+eq(n\\,9)+eq(n\\,16)'", "rgb24");
    EXPECT_EQ(TimesOf("in.webp"), (std::vector<int64_t>{0, 100, 200, 300, 400, 900, 1600}));
}

TEST_F(WebpTest, StartFrameAndSizeCanBeChosen) {
    MakePair("in", "testsrc2=s=96x64:r=25:d=1", "rgb24");
    Apply("in.webp cut.mkv --codec ffv1 --start 0.4 --duration 0.2");
    Apply("in.apng expected.mkv --codec ffv1 --start 0.4 --duration 0.2");
    EXPECT_EQ(CountFrames("cut.mkv"), 5);
    ExpectSamePictures("cut.mkv", "expected.mkv");
    Apply("in.webp small.png --frame 25 --size 48x32");
    EXPECT_EQ(Probe("small.png", "stream=width,height"), "48\n32\n");
    ExpectError(Shell("$P apply -e gray-scale in.webp x.png --frame 26"), 1, "no frame 26, only 25 frames");
    ExpectError(Shell("$P apply -e gray-scale in.webp x.mkv --start 9"), 2, "in.webp ends before 9 seconds");
    ExpectError(Shell("$P apply -e gray-scale in.webp x.png"), 2, "in.webp is a video");
    ExpectError(Shell("$P apply -e gray-scale still:in.webp x.mkv"), 1, "in.webp is a video; still: takes");
}

TEST_F(WebpTest, AStillOneIsAPicture) {
    Make("-f lavfi -i testsrc2=s=96x64:r=1:d=1 -frames:v 1 -pix_fmt bgra -c:v libwebp -lossless 1 in.webp");
    EXPECT_EQ(Apply("in.webp out.png"), "");
    EXPECT_EQ(Probe("out.png", "stream=width,height"), "96\n64\n");
}

TEST_F(WebpTest, CutShortAndDamaged) {
    MakePair("in", "testsrc2=s=96x64:r=25:d=0.4", "rgb24");
    const std::string whole = Read("in.webp");
    for (const size_t size : {size_t{31}, whole.size() / 2, whole.size() - 9}) {
        Write("cut.webp", whole.substr(0, size));
        ExpectWebpError("cut.webp", "cut.webp is not an animated WebP that can be read, or is cut short");
    }
    std::string damaged = whole;
    const size_t frame = damaged.find("VP8L", damaged.size() / 2) + 16;
    std::fill(damaged.begin() + static_cast<std::ptrdiff_t>(frame),
              damaged.begin() + static_cast<std::ptrdiff_t>(frame) + 30, '\xff');
    Write("damaged.webp", damaged);
    ExpectWebpError("damaged.webp", " of 10 cannot be decoded");
}

TEST_F(WebpTest, AbsurdSizesNeedLittleMemory) {
    Write("wide.webp", HeadOf(20000, 20000));
    ExpectWebpError("wide.webp", "wide.webp is 20000x20000; an animated WebP can have up to 64 megapixels");
    Write("huge.webp", HeadOf(1 << 24, 1 << 24));
    ExpectWebpError("huge.webp", "huge.webp ");
    Write("long.webp", HeadOf(96, 64));
    std::filesystem::resize_file(Path("long.webp"), uintmax_t{5} << 30);  // with no blocks on the disk
    ExpectWebpError("long.webp", "long.webp is too large; an animated WebP can have up to 1024 megabytes");
}

}  // namespace
