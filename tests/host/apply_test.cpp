// `apply` when all goes well.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "Clips.h"
#include "Media.h"
#include "TestScene.h"

namespace {

using host::Frame;

const std::string kPortrait = SE_SOURCE_DIR "/demo/portrait.jpg";

class ApplyTest : public MediaTest {
  protected:
    std::vector<Frame> Frames(const std::string& name) const { return FramesOf(Path(name)); }
};

// Frame `number` of the built-in scene as Gray Scale leaves it.
Frame GrayScene(int64_t number, int width, int height) {
    Frame frame(width, height);
    host::DrawTestScene(number, frame);
    for (int plane = 1; plane < Frame::kPlanes; ++plane) {
        std::fill_n(frame.Plane(plane), frame.RowBytes(plane) * frame.Rows(plane), uint8_t{128});
    }
    return frame;
}

// ---- outputs ----

TEST_F(ApplyTest, WritesPictures) {
    for (const std::string name : {"out.png", "out.jpg", "out2.JPEG"}) {
        EXPECT_EQ(Apply("test: " + name + " --size 96x64"), "");
        EXPECT_LT(Difference(FirstFrameOf(Path(name)), GrayScene(0, 96, 64)), 6) << name;
    }
}

TEST_F(ApplyTest, WritesFrameNOfAVideo) {
    MakeClip(Path("in.mp4"), {});
    Apply("in.mp4 gray.y4m");
    const auto frames = Frames("gray.y4m");
    ASSERT_EQ(frames.size(), 30u);
    for (const size_t number : {1u, 17u, 30u}) {
        Apply("-y in.mp4 out.png --frame " + std::to_string(number));
        EXPECT_LT(Difference(FirstFrameOf(Path("out.png")), frames[number - 1]), 3) << number;
    }
}

TEST_F(ApplyTest, RunsAllFramesUpToTheOneThatIsWritten) {
    // A ghost depends on all earlier frames.
    ASSERT_EQ(Shell("$P apply -e motion-blur-0 test: all.y4m --frames 9 --size 96x64").exitCode, 0);
    ASSERT_EQ(Shell("$P apply -e motion-blur-0 test: one.png --frame 9 --size 96x64").exitCode, 0);
    EXPECT_LT(Difference(FirstFrameOf(Path("one.png")), Frames("all.y4m").at(8)), 3);
    EXPECT_GT(Difference(FirstFrameOf(Path("one.png")), GrayScene(8, 96, 64)), 3);
}

TEST_F(ApplyTest, TakesNamesWithColonsAndPatterns) {
    MakeClip(Path("a:b%03d*.mkv"), {});
    Apply("'a:b%03d*.mkv' c:d%02d.mp4");
    EXPECT_EQ(Frames("c:d%02d.mp4").size(), 30u);
    Apply("'a:b%03d*.mkv' e%02d.png --frame 2");
    EXPECT_TRUE(Exists("e%02d.png"));
    Apply("e%02d.png f.png");
}

// ---- inputs ----

TEST_F(ApplyTest, RunsAPictureThroughAnEffect) {
    Apply(kPortrait + " out.png");
    const Frame picture = FirstFrameOf(kPortrait), gray = FirstFrameOf(Path("out.png"));
    ASSERT_EQ(gray.Width(), 640);
    ASSERT_EQ(gray.Height(), 480);
    EXPECT_NEAR(MeanOf(gray, 1), 128, 1);
    EXPECT_GT(std::abs(MeanOf(picture, 2) - 128), 1);
}

TEST_F(ApplyTest, KeepsOddSidesOfPictures) {
    Make("-f lavfi -i testsrc=s=97x65 -frames:v 1 in.png");
    EXPECT_EQ(Apply("in.png out.png"), "");
    EXPECT_EQ(Probe("out.png", "stream=width,height"), "97\n65\n");
    EXPECT_EQ(Apply("in.png out.jpg"), "");
    EXPECT_EQ(Probe("out.jpg", "stream=width,height"), "97\n65\n");
}

TEST_F(ApplyTest, MakesAVideoOfAPicture) {
    Apply(kPortrait + " out.mp4 --frames 5 --size 96x64");
    EXPECT_EQ(Frames("out.mp4").size(), 5u);
    Apply(kPortrait + " long.y4m --size 16x16");
    EXPECT_EQ(Frames("long.y4m").size(), 300u) << "ten seconds when nobody says how long";
}

TEST_F(ApplyTest, HoldsAPictureLikeACameraInAHand) {
    Apply("still:" + kPortrait + " a.y4m --frames 20");
    Apply("still:" + kPortrait + " b.y4m --frames 20");
    EXPECT_EQ(Read("a.y4m"), Read("b.y4m")) << "the hand trembles in the same way every time";
    const auto frames = Frames("a.y4m");
    ASSERT_EQ(frames.size(), 20u);
    EXPECT_EQ(frames[0].Width(), 640);
    EXPECT_GT(Difference(frames[0], frames[19]), 2) << "it moves";
    EXPECT_GT(Difference(frames[0], frames[1]), 0.7) << "it has noise";
}

TEST_F(ApplyTest, KeepsEveryByteThroughPipes) {
    const std::string apply = "$P apply -e gray-scale ";
    ExpectSuccess(
        Shell(apply + "test: - --frames 6 --size 96x64 | " + apply + "- - | " + apply + "- out.y4m"));
    const auto frames = Frames("out.y4m");
    ASSERT_EQ(frames.size(), 6u);
    for (size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(Difference(frames[i], GrayScene(static_cast<int64_t>(i), 96, 64)), 0) << i;
    }
}

TEST_F(ApplyTest, ReadsOtherVideoFromAPipe) {
    MakeClip(Path("in.mkv"), {});
    ExpectSuccess(Shell("cat in.mkv | $P apply -e sepia - out.mkv"));
    EXPECT_EQ(Frames("out.mkv").size(), 30u);
}

TEST_F(ApplyTest, EndsQuietlyWhenTheReaderGoes) {
    for (const std::string rest :
         {"test: - --size 96x64 | head -c 100000 > some", "test: - --size 96x64 | true"}) {
        const Outcome outcome = Shell("$P apply -e sepia " + rest + "; exit ${PIPESTATUS[0]}");
        ExpectSuccess(outcome);
        EXPECT_EQ(outcome.error, "");
    }
}

TEST_F(ApplyTest, TurnsWhatACameraHeldSidewaysTook) {
    MakeClip(Path("upright.mp4"), {});
    MakeClip(Path("turned.mp4"), {.rotation = 90});
    Apply("upright.mp4 upright.y4m --frames 1");
    Apply("turned.mp4 out.y4m --frames 1");
    const Frame upright = FirstFrameOf(Path("upright.y4m")), out = FirstFrameOf(Path("out.y4m"));
    ASSERT_EQ(out.Width(), 64);
    ASSERT_EQ(out.Height(), 96);
    // The upper left corner has become the upper right one.
    EXPECT_EQ(out.Plane(0)[63], upright.Plane(0)[0]);
    EXPECT_EQ(out.Plane(0)[0], upright.Plane(0)[63 * 96]);
}

// ---- sizes ----

TEST_F(ApplyTest, ScalesOddSizesOfVideoToEvenOnes) {
    MakeClip(Path("odd.mkv"), {.width = 97, .height = 65});
    EXPECT_EQ(Apply("odd.mkv out.mkv --frames 2"),
              "specialeffects: note: 97x65 becomes 96x64: sides have to be even\n");
    EXPECT_EQ(FirstFrameOf(Path("out.mkv")).Width(), 96);
    EXPECT_EQ(FirstFrameOf(Path("out.mkv")).Height(), 64);
    EXPECT_EQ(Apply("-y odd.mkv out.mkv --quiet"), "");
}

TEST_F(ApplyTest, ScalesToTheSizeAskedFor) {
    MakeClip(Path("in.mkv"), {});
    for (const std::string& input :
         {std::string("in.mkv"), std::string("test:"), kPortrait, "still:" + kPortrait}) {
        EXPECT_EQ(Apply("-y " + input + " out.y4m --frames 2 --size 51x33"),
                  "specialeffects: note: 51x33 becomes 50x32: sides have to be even\n");
        const Frame frame = FirstFrameOf(Path("out.y4m"));
        EXPECT_EQ(frame.Width(), 50);
        EXPECT_EQ(frame.Height(), 32);
    }
}

// ---- effects and their properties ----

TEST_F(ApplyTest, TakesPropertiesByIdAndByTheModulesName) {
    ASSERT_EQ(Shell("$P apply -e rain:drop-size=9 --seed 1 test: a.y4m --frames 9 --size 96x64").exitCode, 0);
    ASSERT_EQ(Shell("$P apply -e RAIN:DROPSIZE=9 --seed 1 test: b.y4m --frames 9 --size 96x64").exitCode, 0);
    ASSERT_EQ(Shell("$P apply -e rain --seed 1 test: c.y4m --frames 9 --size 96x64").exitCode, 0);
    EXPECT_EQ(Read("a.y4m"), Read("b.y4m"));
    EXPECT_NE(Read("a.y4m"), Read("c.y4m"));
}

TEST_F(ApplyTest, RunsAChainInOrder) {
    const std::string rest = " test: out.y4m --frames 1 --size 96x64";
    const auto run = [&](const std::string& effects) {
        EXPECT_EQ(Shell("$P apply -y " + effects + rest).exitCode, 0);
        return FirstFrameOf(Path("out.y4m"));
    };
    const Frame gray = run("-e sepia -e gray-scale"), brown = run("-e gray-scale -e sepia");
    EXPECT_EQ(MeanOf(gray, 1), 128);
    EXPECT_NE(MeanOf(brown, 1), 128);
    EXPECT_EQ(Difference(run("-e gray-scale+sepia"), brown), 0);
}

TEST_F(ApplyTest, HandsSettingsToTheEffectsThatTakeThem) {
    Write("color.txt", "200 30 40\n");
    ASSERT_EQ(Shell("$P apply -e line-art-1 test: a.y4m --frames 1 --settings color.txt").exitCode, 0);
    ASSERT_EQ(Shell("$P apply -e line-art-1:background-color=200,30,40 test: b.y4m --frames 1").exitCode, 0);
    EXPECT_EQ(Read("a.y4m"), Read("b.y4m"));
}

TEST_F(ApplyTest, RepeatsWithASeed) {
    const auto run = [this](const std::string& name, const std::string& seed) {
        EXPECT_EQ(Shell("$P apply -e rain -e quark -e camera-flashes-9 test: " + name +
                        " --frames 10 --size 160x120 --seed " + seed)
                      .exitCode,
                  0);
        return Read(name);
    };
    const std::string first = run("a.y4m", "42");
    EXPECT_EQ(run("b.y4m", "42"), first);
    EXPECT_NE(run("c.y4m", "43"), first);
}

TEST_F(ApplyTest, GivesTheSameFramesAtAnySpeed) {
    // The effect reads the clock; the frames' times drive it.
    Make("-f lavfi -i testsrc2=s=96x64:r=10:d=1 -c:v ffv1 in.mkv");
    ASSERT_EQ(Shell("$P apply -e motion-detector in.mkv a.y4m").exitCode, 0);
    ASSERT_EQ(Shell("cat in.mkv | { head -c 20000; sleep 0.7; cat; } | $P apply -e motion-detector - b.y4m")
                  .exitCode,
              0);
    EXPECT_EQ(Read("a.y4m"), Read("b.y4m"));
}

TEST_F(ApplyTest, WritesNothingIntoTheCurrentDirectory) {
    ASSERT_EQ(Shell("$P apply -e logo-animation -e picture-me test: out.png --frame 3").exitCode, 0);
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory_)) {
        if (!entry.path().filename().string().starts_with('.')) ++files;
    }
    EXPECT_EQ(files, 1u);
}

TEST_F(ApplyTest, EndsSoundWithTheVideo) {
    MakeClip(Path("in.mkv"), {.frames = 60, .sound = AV_CODEC_ID_PCM_S16LE});
    Apply("in.mkv out.mkv --frames 30");
    const Sound sound = SoundOf(Path("out.mkv"));
    EXPECT_LT(sound.lastSecond, 1.0);
    EXPECT_GT(sound.lastSecond, 0.95);
    EXPECT_EQ(Frames("out.mkv").size(), 30u);
}

// ---- the end by a signal ----

class InterruptTest : public ApplyTest {};

TEST_F(InterruptTest, FinishesTheFile) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const std::string name = signal == SIGINT ? "int.mp4" : signal == SIGTERM ? "term.mkv" : "hup.webm";
        const Terminal terminal;
        Child child = Start({"apply", "-e", "sepia", "test:", name, "--frames", "1000000", "--size", "96x64"},
                            {.error = terminal.Name(), .environment = {"TERM=xterm"}});
        terminal.Await("frames");
        child.Send(signal);
        const Outcome outcome = child.Wait();
        ExpectSuccess(outcome);
        EXPECT_GT(Frames(name).size(), 0u);
    }
}

TEST_F(InterruptTest, DoesNotMindAClosedTerminalUnderNohup) {
    Apply("test: in.y4m --frames 20 --size 96x64");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    // The program waits for the second half of its input when the signal comes.
    const Outcome outcome = Shell(
        "nohup $P apply -e sepia - out.y4m < pipe 2> error.txt & exec 3> pipe; head -c 100000 in.y4m >&3; "
        "while [ ! -e out.y4m.part ] && kill -0 $! 2> /dev/null; do sleep 0.02; done; "
        "kill -HUP $!; tail -c +100001 in.y4m >&3; exec 3>&-; wait $!");
    ExpectSuccess(outcome);
    EXPECT_EQ(Frames("out.y4m").size(), 20u);
}

TEST_F(InterruptTest, EndsAWaitForInput) {
    Apply("test: in.y4m --frames 10 --size 96x64");
    int ends[2] = {};
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const std::string readEnd = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(ends[0]);
    const Terminal terminal;
    Child child = Start({"apply", "-e", "sepia", "-", "out.mkv"},
                        {.input = readEnd, .error = terminal.Name(), .environment = {"TERM=xterm"}});
    const std::string stream = Read("in.y4m");
    for (size_t sent = 0; sent < stream.size();) {
        const ssize_t count = write(ends[1], stream.data() + sent, stream.size() - sent);
        ASSERT_GT(count, 0);
        sent += static_cast<size_t>(count);
    }
    terminal.Await("frames");
    child.Send(SIGINT);
    ExpectSuccess(child.Wait());
    EXPECT_GE(Frames("out.mkv").size(), 1u);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(InterruptTest, TheSecondSignalEndsAtOnce) {
    int ends[2] = {};
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const std::string writeEnd = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(ends[1]);
    // Nobody reads: the program waits for room in the pipe.
    const Terminal terminal;
    Child child = Start({"apply", "-e", "sepia", "test:", "-"},
                        {.output = writeEnd, .error = terminal.Name(), .environment = {"TERM=xterm"}});
    std::array<char, 16> header{};
    ASSERT_EQ(read(ends[0], header.data(), header.size()), 16);
    pollfd room{.fd = ends[1], .events = POLLOUT, .revents = 0};
    while (poll(&room, 1, 0) > 0) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    child.Send(SIGINT);
    terminal.Await("stopping");
    child.Send(SIGINT);
    EXPECT_EQ(child.Wait().signal, SIGINT);
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
