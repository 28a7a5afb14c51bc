// `apply` when all goes well.
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <thread>

#include "Clips.h"
#include "Program.h"
#include "TestScene.h"

namespace {

using host::Frame;

const std::string kPortrait = SE_SOURCE_DIR "/demo/portrait.jpg";

class ApplyTest : public ProgramTest {
  protected:
    /// Runs a line of shell in which $P is the program and $M and $F are the real and the fake module.
    Outcome Shell(const std::string& line) {
        const std::string settings =
            "P='" SE_PROGRAM "'; M='--module " SE_MODULE "'; F='--module " SE_FAKE_MODULE "'; ";
        return Child({"/bin/bash", "-c", settings + line}, directory_).Wait();
    }

    std::vector<Frame> Frames(const std::string& name) const { return FramesOf(Path(name)); }
};

Frame SceneFrame(int64_t number, int width, int height) {
    Frame frame(width, height, kFormatPlanar);
    host::DrawTestScene(number, frame);
    return frame;
}

// ---- outputs ----

TEST_F(ApplyTest, WritesEachContainer) {
    for (const std::string name : {"out.mp4", "out.mkv", "out.webm", "OUT.MP4", "OUT.Y4M"}) {
        const Outcome outcome =
            RunFake({"apply", "-e", "fire:Level=7", "test:", name, "--frames", "12", "--size", "96x64"});
        ExpectSuccess(outcome);
        EXPECT_EQ(outcome.error, "");
        EXPECT_EQ(outcome.out, "");
        const auto frames = Frames(name);
        ASSERT_EQ(frames.size(), 12u) << name;
        for (const Frame& frame : frames) EXPECT_NEAR(MeanOf(frame, 0), 70, 1.5) << name;
    }
    const AVCodecID codec = VideoCodecOf(Path("out.mp4"));
    EXPECT_TRUE(codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_MPEG4);
    const AVCodecID webmCodec = VideoCodecOf(Path("out.webm"));
    EXPECT_TRUE(webmCodec == AV_CODEC_ID_VP9 || webmCodec == AV_CODEC_ID_VP8);
}

TEST_F(ApplyTest, WritesPictures) {
    for (const std::string name : {"out.png", "out.jpg", "out.JPEG"}) {
        ExpectSuccess(RunFake({"apply", "-e", "sepia", "test:", name, "--size", "96x64"}));
        Frame expected = SceneFrame(0, 96, 64);
        for (size_t i = 0; i < expected.Size(); ++i) expected.Plane(0)[i] ^= 255;
        EXPECT_LT(Difference(FirstFrameOf(Path(name)), expected), 6) << name;
    }
}

TEST_F(ApplyTest, WritesFrameNOfAVideo) {
    MakeClip(Path("in.mp4"), {});
    const auto frames = Frames("in.mp4");
    ASSERT_EQ(frames.size(), 30u);
    for (const size_t number : {1u, 17u, 30u}) {
        ExpectSuccess(RunFake(
            {"apply", "-e", "sepia", "-e", "sepia", "in.mp4", "out.png", "--frame", std::to_string(number)}));
        EXPECT_LT(Difference(FirstFrameOf(Path("out.png")), frames[number - 1]), 3) << number;
    }
}

TEST_F(ApplyTest, RunsAllFramesUpToTheOneThatIsWritten) {
    // The effect's random numbers tell how many frames it has seen.
    ExpectSuccess(RunFake(
        {"apply", "-e", "fire", "test:", "all.y4m", "--frames", "9", "--seed", "3", "--size", "96x64"}));
    ExpectSuccess(RunFake(
        {"apply", "-e", "fire", "test:", "one.png", "--frame", "9", "--seed", "3", "--size", "96x64"}));
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "-e", "sepia", "all.y4m", "ninth.png", "--frame", "9"}));
    EXPECT_EQ(Read("one.png"), Read("ninth.png"));
}

TEST_F(ApplyTest, WritesOverItsOwnInput) {
    MakeClip(Path("clip.mkv"), {});
    ExpectSuccess(RunFake({"apply", "-e", "fire:Level=9", "clip.mkv", "clip.mkv"}));
    const auto frames = Frames("clip.mkv");
    ASSERT_EQ(frames.size(), 30u);
    EXPECT_NEAR(MeanOf(frames[29], 0), 90, 1.5);
}

TEST_F(ApplyTest, TakesNamesWithColonsAndPatterns) {
    MakeClip(Path("a:b%03d*.mkv"), {});
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "a:b%03d*.mkv", "c:d%02d.mp4"}));
    EXPECT_EQ(Frames("c:d%02d.mp4").size(), 30u);
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "a:b%03d*.mkv", "e%02d.png", "--frame", "2"}));
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "e%02d.png", "f.png"}));
}

// ---- inputs ----

TEST_F(ApplyTest, RunsAPictureThroughAnEffect) {
    ExpectSuccess(Run({"apply", "-e", "gray-scale", kPortrait, "out.png"}));
    const Frame picture = FirstFrameOf(kPortrait), gray = FirstFrameOf(Path("out.png"));
    ASSERT_EQ(gray.Width(), 640);
    ASSERT_EQ(gray.Height(), 480);
    EXPECT_NEAR(MeanOf(gray, 0), MeanOf(picture, 0), 3);
    EXPECT_NEAR(MeanOf(gray, 1), 128, 1);
    EXPECT_GT(std::abs(MeanOf(picture, 2) - 128), 1);
}

TEST_F(ApplyTest, MakesAVideoOfAPicture) {
    ExpectSuccess(RunFake({"apply", "-e", "fire", kPortrait, "out.mp4", "--frames", "5", "--size", "96x64"}));
    EXPECT_EQ(Frames("out.mp4").size(), 5u);
    ExpectSuccess(RunFake({"apply", "-e", "fire", kPortrait, "long.y4m", "--size", "16x16"}));
    EXPECT_EQ(Frames("long.y4m").size(), 300u) << "ten seconds when nobody says how long";
}

TEST_F(ApplyTest, HoldsAPictureLikeACameraInAHand) {
    const std::vector<std::string> command = {"apply", "-e", "sepia", "-e", "sepia", "still:" + kPortrait};
    auto first = command, again = command;
    first.insert(first.end(), {"a.y4m", "--frames", "20"});
    again.insert(again.end(), {"b.y4m", "--frames", "20"});
    ExpectSuccess(RunFake(first));
    ExpectSuccess(RunFake(again));
    EXPECT_EQ(Read("a.y4m"), Read("b.y4m")) << "the hand trembles in the same way every time";
    const auto frames = Frames("a.y4m");
    ASSERT_EQ(frames.size(), 20u);
    EXPECT_EQ(frames[0].Width(), 640);
    EXPECT_GT(Difference(frames[0], frames[19]), 3) << "it moves";
    EXPECT_GT(Difference(frames[0], frames[1]), 1) << "it has noise";
}

TEST_F(ApplyTest, KeepsEveryByteThroughPipes) {
    ExpectSuccess(
        Shell("$P apply $F -e sepia test: - --frames 6 --size 96x64 | $P apply $F -e sepia - - |"
              "$P apply $F -e sepia -e sepia - out.y4m"));
    const auto frames = Frames("out.y4m");
    ASSERT_EQ(frames.size(), 6u);
    for (size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(Difference(frames[i], SceneFrame(static_cast<int64_t>(i), 96, 64)), 0) << i;
    }
}

TEST_F(ApplyTest, ReadsOtherVideoFromAPipe) {
    MakeClip(Path("in.mkv"), {});
    ExpectSuccess(Shell("cat in.mkv | $P apply $F -e sepia - out.mkv"));
    EXPECT_EQ(Frames("out.mkv").size(), 30u);
}

TEST_F(ApplyTest, EndsQuietlyWhenTheReaderGoes) {
    const Outcome outcome =
        Shell("$P apply $F -e sepia test: - --size 96x64 | head -c 100000 > some; exit ${PIPESTATUS[0]}");
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "");
}

TEST_F(ApplyTest, EndsQuietlyWhenTheReaderIsGoneFromTheBeginning) {
    const Outcome outcome =
        Shell("(sleep 0.3; exec $P apply $F -e sepia test: - --size 96x64) | true; exit ${PIPESTATUS[0]}");
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "");
}

TEST_F(ApplyTest, TurnsWhatACameraHeldSidewaysTook) {
    MakeClip(Path("upright.mp4"), {});
    MakeClip(Path("turned.mp4"), {.rotation = 90});
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "-e", "sepia", "turned.mp4", "out.y4m", "--frames", "1"}));
    const Frame upright = FirstFrameOf(Path("upright.mp4")), out = FirstFrameOf(Path("out.y4m"));
    ASSERT_EQ(out.Width(), 64);
    ASSERT_EQ(out.Height(), 96);
    // The upper left corner has become the upper right one.
    EXPECT_EQ(out.Plane(0)[63], upright.Plane(0)[0]);
    EXPECT_EQ(out.Plane(0)[0], upright.Plane(0)[63 * 96]);
}

// ---- sizes ----

TEST_F(ApplyTest, ScalesOddSizesToEvenOnes) {
    MakeClip(Path("odd.mkv"), {.width = 97, .height = 65});
    const Outcome outcome = RunFake({"apply", "-e", "sepia", "odd.mkv", "out.mkv", "--frames", "2"});
    ExpectSuccess(outcome);
    EXPECT_NE(outcome.error.find("note: 97x65 becomes 96x64"), std::string::npos) << outcome.error;
    EXPECT_EQ(FirstFrameOf(Path("out.mkv")).Width(), 96);
    EXPECT_EQ(FirstFrameOf(Path("out.mkv")).Height(), 64);
    EXPECT_EQ(RunFake({"apply", "-e", "sepia", "odd.mkv", "out.mkv", "--quiet"}).error, "");
}

TEST_F(ApplyTest, ScalesToTheSizeAskedFor) {
    MakeClip(Path("in.mkv"), {});
    for (const std::string& input :
         {std::string("in.mkv"), std::string("test:"), kPortrait, "still:" + kPortrait}) {
        const Outcome outcome =
            RunFake({"apply", "-e", "sepia", input, "out.y4m", "--frames", "2", "--size", "51x33"});
        ExpectSuccess(outcome);
        EXPECT_EQ(outcome.error, "specialeffects: note: 51x33 becomes 50x32: sides have to be even\n");
        const Frame frame = FirstFrameOf(Path("out.y4m"));
        EXPECT_EQ(frame.Width(), 50);
        EXPECT_EQ(frame.Height(), 32);
    }
}

// ---- effects and their properties ----

TEST_F(ApplyTest, SetsPropertiesBeforeAndAfterConfigure) {
    ExpectSuccess(RunFake({"apply", "-e", "fire:Level=2,Tint=7,8,9,Two Words=5", "test:", "out.y4m",
                           "--frames", "1", "--size", "64x48"}));
    EXPECT_EQ(Read("diary.txt"),
              "SetProperty Level=2\nSetProperty Tint=7,8,9\nSetProperty Two Words=5\n"
              "Configure 64x48\n"
              "SetProperty Level=2\nSetProperty Tint=7,8,9\nSetProperty Two Words=5\n");
    const Frame frame = FirstFrameOf(Path("out.y4m"));
    EXPECT_EQ(MeanOf(frame, 0), 20);
    EXPECT_EQ(MeanOf(frame, 2), 7);
}

TEST_F(ApplyTest, TellsWhatAValueWasClampedTo) {
    const Outcome outcome = RunFake({"apply", "-e", "fire:level=99", "test:", "out.png"});
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "specialeffects: note: Fire: Level=99 is out of range, clamped to 10\n");
    EXPECT_EQ(RunFake({"apply", "-e", "fire:level=99", "test:", "out.png", "--quiet"}).error, "");
    EXPECT_EQ(RunFake({"apply", "-e", "fire:level=10", "test:", "out.png"}).error, "");
    EXPECT_NE(Run({"apply", "-e", "liquefy-1:Intensity=99", "test:", "out.png"}).error.find("clamped to 24"),
              std::string::npos);
}

TEST_F(ApplyTest, RunsAChainInOrder) {
    ExpectSuccess(RunFake({"apply", "-e", "fire:Level=2", "-e", "sepia", "test:", "a.y4m", "--frames", "1"}));
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "-e", "fire:Level=2", "test:", "b.y4m", "--frames", "1"}));
    EXPECT_EQ(MeanOf(FirstFrameOf(Path("a.y4m")), 0), 235);
    EXPECT_EQ(MeanOf(FirstFrameOf(Path("b.y4m")), 0), 20);
}

TEST_F(ApplyTest, HandsSettingsToTheEffectsThatTakeThem) {
    Write("settings.txt", "77\n");
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "-e", "fire:Level=2", "test:", "out.png", "--settings",
                           "settings.txt", "--size", "64x48"}));
    EXPECT_EQ(Read("diary.txt"), "SetProperty Level=2\nConfigure 64x48\nLoadSettings\nSetProperty Level=2\n");

    Write("color.txt", "200 30 40\n");
    ExpectSuccess(
        Run({"apply", "-e", "line-art-1", "test:", "a.y4m", "--frames", "1", "--settings", "color.txt"}));
    ExpectSuccess(
        Run({"apply", "-e", "line-art-1:BackgroundColor=200,30,40", "test:", "b.y4m", "--frames", "1"}));
    EXPECT_EQ(Read("a.y4m"), Read("b.y4m"));
}

TEST_F(ApplyTest, RepeatsWithASeed) {
    const auto run = [this](const std::string& name, const std::string& seed) {
        ExpectSuccess(RunFake({"apply", "-e", "fire", "test:", name, "--frames", "8", "--seed", seed}));
        return Read(name);
    };
    const std::string first = run("a.y4m", "5");
    EXPECT_EQ(run("b.y4m", "5"), first);
    EXPECT_NE(run("c.y4m", "6"), first);

    const auto runRain = [this](const std::string& name) {
        ExpectSuccess(Run({"apply", "-e", "rain", "-e", "quark", "-e", "camera-flashes-9", "test:", name,
                           "--frames", "10", "--seed", "42", "--size", "160x120"}));
        return Read(name);
    };
    EXPECT_EQ(runRain("d.y4m"), runRain("e.y4m"));
}

TEST_F(ApplyTest, HandsPackedFramesOver) {
    ExpectSuccess(RunFake(
        {"apply", "--packed", "-e", "sepia", "test:", "packed.y4m", "--frames", "2", "--size", "96x64"}));
    ExpectSuccess(RunFake({"apply", "--packed", "-e", "sepia", "-e", "sepia", "test:", "twice.y4m",
                           "--frames", "2", "--size", "96x64"}));
    const Frame scene = SceneFrame(1, 96, 64);
    EXPECT_LT(Difference(Frames("twice.y4m").at(1), scene), 4);
    EXPECT_GT(Difference(Frames("packed.y4m").at(1), scene), 20);
}

TEST_F(ApplyTest, HandsRedFirst) {
    // With red and blue exchanged the brown of Sepia would be blue.
    ExpectSuccess(Run({"apply", "--packed", "-e", "sepia", kPortrait, "packed.y4m", "--frames", "1"}));
    ExpectSuccess(Run({"apply", "-e", "sepia", kPortrait, "planar.y4m", "--frames", "1"}));
    const Frame packed = FirstFrameOf(Path("packed.y4m")), planar = FirstFrameOf(Path("planar.y4m"));
    EXPECT_LT(Difference(packed, planar), 5);
    EXPECT_GT(MeanOf(packed, 2), 130);
    EXPECT_LT(MeanOf(packed, 1), 126);
}

TEST_F(ApplyTest, TellsWhenPictureMeHasNoCascade) {
    const Outcome outcome = Run({"apply", "-e", "picture-me", "test:", "out.png"});
    ExpectSuccess(outcome);
    // The program may have come with one.
    EXPECT_TRUE(outcome.error.empty() || outcome.error.find("haar.txt") != std::string::npos);
}

// ---- sound ----

class SoundTest : public ApplyTest {};

TEST_F(SoundTest, IsCarriedAlongUnchanged) {
    MakeClip(Path("in.mkv"), {.sound = AV_CODEC_ID_AAC});
    const Sound before = SoundOf(Path("in.mkv"));
    ASSERT_EQ(before.codec, AV_CODEC_ID_AAC);
    for (const std::string name : {"out.mp4", "out.mkv"}) {
        const Outcome outcome = RunFake({"apply", "-e", "sepia", "in.mkv", name});
        ExpectSuccess(outcome);
        EXPECT_EQ(outcome.error, "");
        const Sound after = SoundOf(Path(name));
        EXPECT_EQ(after.codec, before.codec);
        EXPECT_TRUE(after.bytes == before.bytes) << name;
        EXPECT_NEAR(after.lastSecond - after.firstSecond, before.lastSecond - before.firstSecond, 0.01);
        EXPECT_EQ(Frames(name).size(), 30u);
    }
}

TEST_F(SoundTest, IsLeftOutWithANoteWhereTheContainerDoesNotTakeIt) {
    MakeClip(Path("in.mkv"), {.frames = 10, .sound = AV_CODEC_ID_AAC});
    const Outcome outcome = RunFake({"apply", "-e", "sepia", "in.mkv", "out.webm"});
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "specialeffects: note: the sound is left out: webm does not take aac\n");
    EXPECT_EQ(SoundOf(Path("out.webm")).codec, AV_CODEC_ID_NONE);
    EXPECT_EQ(Frames("out.webm").size(), 10u);
}

TEST_F(SoundTest, EndsWithTheVideo) {
    MakeClip(Path("in.mkv"), {.frames = 60, .sound = AV_CODEC_ID_PCM_S16LE});
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "in.mkv", "out.mkv", "--frames", "30"}));
    const Sound sound = SoundOf(Path("out.mkv"));
    EXPECT_LT(sound.lastSecond, 1.0);
    EXPECT_GT(sound.lastSecond, 0.95);
    EXPECT_EQ(Frames("out.mkv").size(), 30u);
}

TEST_F(SoundTest, IsNothingToAPictureOrAPipe) {
    MakeClip(Path("in.mkv"), {.frames = 10, .sound = AV_CODEC_ID_AAC});
    EXPECT_EQ(RunFake({"apply", "-e", "sepia", "in.mkv", "out.png", "--frame", "3"}).error, "");
    EXPECT_EQ(RunFake({"apply", "-e", "sepia", "in.mkv", "out.y4m"}).error, "");
}

// ---- the end by a signal ----

class InterruptTest : public ApplyTest {
  protected:
    /// Waits until the program has opened the file. False when it never does.
    bool Started(const std::string& name) const {
        for (int i = 0; i < 600; ++i) {
            if (Exists(name)) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return false;
    }
    static std::vector<std::string> Command(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), SE_PROGRAM);
        arguments.insert(arguments.end(), {"--module", SE_FAKE_MODULE});
        return arguments;
    }
};

TEST_F(InterruptTest, FinishesTheFile) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const std::string name = signal == SIGINT ? "int.mp4" : signal == SIGTERM ? "term.mkv" : "hup.webm";
        Child child(
            Command({"apply", "-e", "sepia", "test:", name, "--frames", "1000000", "--size", "96x64"}),
            directory_);
        ASSERT_TRUE(Started(name + ".part"));
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        child.Send(signal);
        const Outcome outcome = child.Wait();
        ExpectSuccess(outcome);
        EXPECT_GT(Frames(name).size(), 0u);
    }
}

TEST_F(InterruptTest, DoesNotMindAClosedTerminalUnderNohup) {
    const Outcome outcome = Shell(
        "nohup $P apply $F -e sepia test: out.y4m --frames 2000 --size 96x64 2> error.txt & "
        "while [ ! -e out.y4m.part ]; do sleep 0.02; done; kill -HUP $!; wait $!");
    ExpectSuccess(outcome);
    EXPECT_EQ(Frames("out.y4m").size(), 2000u);
}

TEST_F(InterruptTest, EndsAWaitForInput) {
    ExpectSuccess(RunFake({"apply", "-e", "sepia", "test:", "in.y4m", "--frames", "10", "--size", "96x64"}));
    int ends[2] = {};
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const std::string readEnd = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(ends[0]);
    Child child(Command({"apply", "-e", "sepia", "-", "out.mkv"}), directory_, {.input = readEnd});
    const std::string stream = Read("in.y4m");
    for (size_t sent = 0; sent < stream.size();) {
        const ssize_t count = write(ends[1], stream.data() + sent, stream.size() - sent);
        ASSERT_GT(count, 0);
        sent += static_cast<size_t>(count);
    }
    ASSERT_TRUE(Started("out.mkv.part"));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
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
    Child child(Command({"apply", "-e", "sepia", "test:", "-"}), directory_, {.output = writeEnd});
    std::array<char, 16> header{};
    ASSERT_EQ(read(ends[0], header.data(), header.size()), 16);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    child.Send(SIGINT);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    child.Send(SIGINT);
    EXPECT_EQ(child.Wait().signal, SIGINT);
    close(ends[0]);
    close(ends[1]);
}

// ---- the progress bar ----

TEST_F(ApplyTest, ShowsProgressOnATerminal) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(grantpt(terminal), 0);
    ASSERT_EQ(unlockpt(terminal), 0);
    std::array<char, 64> name{};
    ASSERT_EQ(ptsname_r(terminal, name.data(), name.size()), 0);
    const int keptOpen = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const auto shown = [&](const std::vector<std::string>& more) {
        std::vector<std::string> command = {SE_PROGRAM, "apply",   "-e",       "sepia",
                                            "test:",    "out.y4m", "--frames", "20",
                                            "--size",   "96x64",   "--module", SE_FAKE_MODULE};
        command.insert(command.end(), more.begin(), more.end());
        ExpectSuccess(Child(command, directory_, {.error = name.data()}).Wait());
        std::string text;
        std::array<char, 4096> buffer{};
        fcntl(terminal, F_SETFL, O_NONBLOCK);
        for (ssize_t count = 0; (count = read(terminal, buffer.data(), buffer.size())) > 0;) {
            text.append(buffer.data(), static_cast<size_t>(count));
        }
        return text;
    };
    const std::string progress = shown({});
    EXPECT_NE(progress.find("20/20 frames"), std::string::npos) << progress;
    EXPECT_NE(progress.find("fps"), std::string::npos);
    EXPECT_NE(progress.find("left"), std::string::npos);
    EXPECT_EQ(shown({"--quiet"}), "");
    close(keptOpen);
    close(terminal);
}

}  // namespace
