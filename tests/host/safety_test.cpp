// No file gets lost: neither an input, nor an older output, nor a recording.

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "Clips.h"
#include "Media.h"

namespace {

namespace fs = std::filesystem;

class SafetyTest : public MediaTest {
  protected:
    void MakeIn() const {
        Make("-f lavfi -i testsrc2=s=96x64:r=25:d=0.4 -pix_fmt yuv420p -c:v libx264 in.mp4");
    }

    /// A file that takes long to process.
    void MakeLong() const {
        Make("-f lavfi -i testsrc2=s=64x48:r=25:d=400 -pix_fmt yuv420p -c:v mpeg4 long.mkv");
    }

    Child StartApply(std::vector<std::string> arguments, const RunOptions& options = {}) const {
        arguments.insert(arguments.begin(), {"apply", "-e", "graphic-pen-1"});
        return Start(arguments, options);
    }
};

TEST_F(SafetyTest, AnExistingOutputIsRefusedUnlessAsked) {
    MakeIn();
    for (const std::string name : {"out.mp4", "out.y4m", "out.png"}) {
        SCOPED_TRACE(name);
        Write(name, "precious");
        const std::string frame = name == "out.png" ? " --frame 2" : "";
        ExpectError(Shell("$P apply -e gray-scale in.mp4 " + name + frame), 2,
                    name + " exists; -y overwrites it");
        EXPECT_EQ(Read(name), "precious");
        Apply("-y in.mp4 " + name + frame);
        EXPECT_NE(Read(name), "precious");
    }
}

TEST_F(SafetyTest, AnInputIsNeverTheOutput) {
    MakeIn();
    const std::string before = Read("in.mp4");
    fs::create_symlink("in.mp4", Path("link.mp4"));
    fs::create_hard_link(Path("in.mp4"), Path("hard.mp4"));
    for (const std::string name : {"in.mp4", "./in.mp4", "link.mp4", "hard.mp4"}) {
        SCOPED_TRACE(name);
        ExpectError(Shell("$P apply -y -e gray-scale in.mp4 " + name), 2,
                    name + " is read and would be overwritten");
        ExpectError(Shell("$P apply -y -e gray-scale " + name + " in.mp4"), 2, "in.mp4 is read");
    }
    EXPECT_EQ(Read("in.mp4"), before);
    fs::copy(SE_SOURCE_DIR "/demo/portrait.jpg", Path("me.jpg"));
    ExpectError(Shell("$P apply -y -e gray-scale still:me.jpg me.jpg"), 2, "me.jpg is read");
    Make("-f lavfi -i testsrc=s=32x32:d=0.2 shot%03d.png");
    for (const std::string input : {"shot%03d.png", "./shot%03d.png", "shot003.png"}) {
        ExpectError(Shell("$P apply -y -e gray-scale " + input + " shot%03d.png"), 2,
                    "is read and would be overwritten");
    }
    Write("color.png", "1 2 3\n");
    ExpectError(Shell("$P apply -y -e line-art-1 --settings color.png test: color.png"), 2,
                "color.png is read");
}

TEST_F(SafetyTest, ALinkStaysALink) {
    MakeIn();
    fs::create_directory(Path("folder"));
    fs::create_symlink("folder/real.mkv", Path("out.mkv"));
    Apply("in.mp4 out.mkv");
    Apply("-y in.mp4 out.mkv");
    EXPECT_TRUE(fs::is_symlink(Path("out.mkv")));
    EXPECT_TRUE(fs::is_regular_file(Path("folder/real.mkv")));
    EXPECT_EQ(CountFrames("out.mkv"), 10);
}

TEST_F(SafetyTest, AnInterruptedRunKeepsTheOlderOutput) {
    MakeLong();
    for (const int signal : {SIGINT, SIGTERM}) {
        Write("out.mkv", "precious");
        Child child = StartApply({"-y", "long.mkv", "out.mkv"});
        ASSERT_TRUE(Appears("out.mkv.part"));
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        child.Send(signal);
        ExpectError(child.Wait(), 128 + signal, "interrupted; out.mkv is not written");
        EXPECT_EQ(Read("out.mkv"), "precious");
        EXPECT_FALSE(Exists("out.mkv.part"));
    }
}

TEST_F(SafetyTest, AnInterruptedSceneIsFinished) {
    const Terminal terminal;
    Child child = StartApply({"test:", "out.mkv", "--frames", "1000000", "--size", "96x64"},
                             {.error = terminal.Name(), .environment = {"TERM=xterm"}});
    terminal.Await("frames");
    child.Send(SIGINT);
    ExpectSuccess(child.Wait());
    EXPECT_GT(CountFrames("out.mkv"), 0);
}

TEST_F(SafetyTest, ASecondInterruptLeavesNothing) {
    MakeLong();
    for (const std::string name : {"out.mkv", "out.y4m", "shot%04d.png"}) {
        SCOPED_TRACE(name);
        const std::string part = (name == "shot%04d.png" ? "shot0001.png" : name) + ".part";
        Child child = StartApply({"long.mkv", name});
        ASSERT_TRUE(Appears(part));
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        // Stopped, it finds both signals when it goes on.
        child.Send(SIGSTOP);
        child.Send(SIGINT);
        child.Send(SIGTERM);
        child.Send(SIGCONT);
        const Outcome outcome = child.Wait();
        EXPECT_TRUE(outcome.signal == SIGTERM || outcome.signal == SIGINT)
            << outcome.exitCode << outcome.error;
        for (const auto& entry : fs::directory_iterator(directory_)) {
            EXPECT_EQ(entry.path().string().find(".part"), std::string::npos) << entry.path();
        }
        EXPECT_FALSE(Exists(name));
    }
}

}  // namespace
