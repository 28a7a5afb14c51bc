// `apply` when something is wrong: one line that says what, the right exit code, no file left behind.
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <optional>

#include "Clips.h"
#include "Media.h"
#include "OutputFile.h"

namespace {

class BadInputTest : public MediaTest {
  protected:
    /// Applies an effect to `input`, a failure that is explained by `part`.
    void ExpectInputError(const std::string& input, const std::string& part) {
        ExpectError(Run({"apply", "-e", "sepia", input, "out.mp4"}), 1, part);
        EXPECT_FALSE(Exists("out.mp4"));
    }
    void ExpectOutputError(const std::string& output, int exitCode, const std::string& part) {
        ExpectError(Run({"apply", "-e", "sepia", "test:", output, "--frames", "3"}), exitCode, part);
    }
    void Cut(const std::string& from, const std::string& to, double share) const {
        const std::string content = Read(from);
        Write(to, content.substr(0, static_cast<size_t>(static_cast<double>(content.size()) * share)));
    }
};

TEST_F(BadInputTest, MissingFile) {
    ExpectInputError("nothing.mp4", "cannot open nothing.mp4: No such file");
}

TEST_F(BadInputTest, Directory) {
    ExpectInputError(".", ". is a directory, not a video or picture");
    ExpectInputError("still:.", ". is a directory");
}

TEST_F(BadInputTest, EmptyFile) {
    Write("empty.mp4", "");
    ExpectInputError("empty.mp4", "empty.mp4 is empty");
}

TEST_F(BadInputTest, TextFile) {
    std::string text;
    for (int i = 0; i < 200; ++i) text += "This is a line of text and not a video.\n";
    for (const std::string name : {"text.txt", "text.mp4", "text.nfo", "text.png", "text.y4m", "text"}) {
        Write(name, text);
        ExpectInputError(name, name + " ");
    }
    ExpectError(Run({"apply", "-e", "sepia", "-", "out.mp4"}, {.input = Path("text.txt")}), 1,
                "standard input is not a video");
}

TEST_F(BadInputTest, BrokenPictures) {
    Write("text.jpg", "This is no picture.\n");
    ExpectInputError("text.jpg", "text.jpg");
    ExpectSuccess(Run({"apply", "-e", "sepia", "test:", "whole.png"}));
    Cut("whole.png", "cut.png", 0.3);
    ExpectInputError("cut.png", "cut.png cannot be decoded; it may be cut short");
}

TEST_F(BadInputTest, SoundWithoutVideo) {
    // One second of silence: 8000 bytes a second, one channel, 8 bits.
    const std::string header(
        "RIFF\x64\x1f\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x40\x1f\0\0\1\0\x08\0data\x40\x1f\0\0", 44);
    Write("sound.wav", header + std::string(8000, '\x80'));
    ExpectInputError("sound.wav", "sound.wav has no video");
}

TEST_F(BadInputTest, Cameras) {
    ExpectInputError("/dev/video99", "cannot open the camera /dev/video99");
    ExpectInputError("/dev/null", "cannot open the camera /dev/null");
    ExpectOutputError("/dev/video99", 1, "cannot open /dev/video99");
    ExpectOutputError("/dev/null", 1, "cannot open /dev/null as a virtual camera");
}

TEST_F(BadInputTest, VideoCutShort) {
    MakeClip(Path("in.mkv"), {.frames = 60});
    MakeClip(Path("in.mp4"), {.frames = 60});
    Cut("in.mkv", "cut.mkv", 0.5);
    Cut("in.mp4", "cut.mp4", 0.5);
    // The part that exists is used, and a note says what is missing.
    const Outcome outcome = Run({"apply", "-y", "-e", "sepia", "cut.mkv", "out.mp4"});
    ExpectSuccess(outcome);
    EXPECT_NE(outcome.error.find("note: cut.mkv: cut short, "), std::string::npos) << outcome.error;
    const size_t count = FramesOf(Path("out.mp4")).size();
    EXPECT_GT(count, 15u);
    EXPECT_LT(count, 60u);
    // With sound the streams may differ in length.
    MakeClip(Path("sound.mkv"), {.frames = 60, .sound = AV_CODEC_ID_AAC});
    EXPECT_EQ(Run({"apply", "-y", "-e", "sepia", "sound.mkv", "out.mp4"}).error, "");
    Cut("sound.mkv", "cut.mkv", 0.5);
    const Outcome withSound = Run({"apply", "-y", "-e", "sepia", "cut.mkv", "out.mp4"});
    ExpectSuccess(withSound);
    EXPECT_NE(withSound.error.find("note: cut.mkv: cut short, 1."), std::string::npos) << withSound.error;
    // The index of this one stood at its end.
    std::filesystem::remove(Path("out.mp4"));
    ExpectInputError("cut.mp4", "cut.mp4 is not a video or picture that can be read, or is cut short");

    // With the index in front, as this program writes it, frames are missing.
    ExpectSuccess(Run({"apply", "-y", "-e", "sepia", "in.mkv", "front.mp4"}));
    Cut("front.mp4", "cut.mp4", 0.7);
    const Outcome second = Run({"apply", "-y", "-e", "sepia", "cut.mp4", "out.mkv"});
    ExpectSuccess(second);
    EXPECT_NE(second.error.find("of 60 frames are there"), std::string::npos) << second.error;
}

TEST_F(BadInputTest, DamagedVideo) {
    MakeClip(Path("in.mkv"), {.frames = 60});
    std::string content = Read("in.mkv");
    for (size_t i = content.size() / 3; i < content.size() / 2; ++i) content[i] = static_cast<char>(i * 37);
    Write("damaged.mkv", content);
    const Outcome outcome = Run({"apply", "-e", "sepia", "damaged.mkv", "out.mkv"});
    ExpectSuccess(outcome);
    EXPECT_GT(FramesOf(Path("out.mkv")).size(), 5u);
}

TEST_F(BadInputTest, FrameThatIsNotThere) {
    MakeClip(Path("in.mkv"), {.frames = 10});
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.png", "--frame", "11"}), 1,
                "in.mkv has no frame 11, only 10 frames");
    EXPECT_FALSE(Exists("out.png"));
}

// ---- outputs ----

TEST_F(BadInputTest, UnwritableOutput) {
    ExpectOutputError("missing/out.mp4", 1, "cannot write missing/out.mp4: No such file or directory");
    ExpectError(Run({"apply", "-e", "sepia", "test:", "missing/out.png"}), 1,
                "cannot write missing/out.png: No such file or directory");
    ExpectOutputError("/proc/out.mkv", 1, "cannot write /proc/out.mkv");
    std::filesystem::create_directory(Path("folder.mp4"));
    ExpectOutputError("folder.mp4", 1, "cannot write folder.mp4: it is a directory");
    ASSERT_EQ(mkfifo(Path("fifo.mp4").c_str(), 0600), 0);
    ExpectOutputError("fifo.mp4", 1, "cannot write fifo.mp4: it is not a regular file");
    if (geteuid() == 0) return;  // root is denied nothing
    std::filesystem::create_directory(Path("closed"));
    std::filesystem::permissions(Path("closed"), std::filesystem::perms::owner_read);
    ExpectOutputError("closed/out.mp4", 1, "cannot write closed/out.mp4: Permission denied");
}

TEST_F(BadInputTest, UnknownKindOfOutput) {
    for (const std::string name : {"out", "out.xyz", ".", "folder/"}) {
        ExpectOutputError(name, 2, name + " is not an output: take a name ending in .mp4");
    }
}

TEST_F(BadInputTest, OlderOutputSurvivesAFailure) {
    Write("out.mp4", "precious");
    MakeClip(Path("in.mkv"), {.frames = 10});
    ExpectError(
        Run({"apply", "-y", "-e", "sepia", "in.mkv", "out.mp4", "--codec", "libx264", "--preset", "x"}), 2,
        "has no preset");
    EXPECT_EQ(Read("out.mp4"), "precious");
    ExpectError(
        Run({"apply", "-y", "-e", "sepia", "test:", "out.mp4", "--frames", "40"}, {.fileSizeLimit = 20000}),
        1, "cannot write out.mp4");
    EXPECT_EQ(Read("out.mp4"), "precious");
}

TEST_F(BadInputTest, AFileThatOnlyLooksHalfWrittenIsLeftAlone) {
    Write("out.mp4.part", "precious");
    ExpectSuccess(Run({"apply", "-e", "sepia", "test:", "out.mp4", "--frames", "3"}));
    EXPECT_EQ(Read("out.mp4.part"), "precious");
    EXPECT_EQ(FramesOf(Path("out.mp4")).size(), 3u);
    std::filesystem::remove(Path("out.mp4.part"));
}

TEST_F(BadInputTest, AnInputThatSomebodyWouldHaveToType) {
    const Terminal terminal;
    ExpectError(Run({"apply", "-e", "sepia", "-", "out.mp4"}, {.input = terminal.Name()}), 2,
                "standard input is a terminal; pipe a video into it, or name a file");
}

// ---- no room ----

TEST_F(BadInputTest, FileThatMayNotGrow) {
    for (const std::string name : {"out.mp4", "out.mkv", "out.webm", "out.gif", "out.y4m", "out.png"}) {
        std::vector<std::string> command = {"apply", "-e", "sepia", "test:", name};
        if (name != "out.png") command.insert(command.end(), {"--frames", "40", "--size", "320x240"});
        ExpectError(Run(command, {.fileSizeLimit = 20000}), 1, "cannot write " + name + ": File too large");
        EXPECT_FALSE(Exists(name));
    }
}

TEST_F(BadInputTest, FullPipe) {
    ExpectError(Run({"apply", "-e", "sepia", "test:", "-"}, {.output = "/dev/full"}), 1,
                "cannot write to standard output: No space left on device");
    for (const std::vector<std::string>& command : {std::vector<std::string>{"list"},
                                                    {"list", "--json"},
                                                    {"info", "sepia"},
                                                    {"info", "sepia", "--json"},
                                                    {"bench", "sepia", "--size", "64x48"}}) {
        ExpectError(Run(command, {.output = "/dev/full"}), 1,
                    "cannot write to standard output: No space left on device");
    }
}

// Whether the current directory takes some bytes, but not a hundred kilobytes.
bool HasLittleRoom() {
    constexpr const char* kProbe = "probe";
    const std::string bytes(100 * 1024, 'x');
    const int descriptor = open(kProbe, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) return false;
    const bool some = host::WriteAll(descriptor, bytes.data(), 1) == 0;
    const bool all = host::WriteAll(descriptor, bytes.data(), bytes.size()) == 0;
    close(descriptor);
    return unlink(kProbe) == 0 && some && !all;
}

// Runs the program in a file system of 64 kilobytes that only it sees. Next to the mount point it leaves the
// files `error` (what it printed) and `left` (what it left on the disk). The result is its exit code, or
// nothing where such a file system cannot be mounted.
std::optional<int> RunOnSmallDisk(const std::string& mountPoint, const std::string& outputAndOptions) {
    constexpr int kNoSmallDisk = 99;
    const pid_t pid = fork();
    if (pid == 0) {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=64k") != 0 ||
            chdir(mountPoint.c_str()) != 0 || !HasLittleRoom()) {
            _exit(kNoSmallDisk);
        }
        const std::string line =
            "'" SE_PROGRAM "' apply -e sepia test: " + outputAndOptions +
            " --quiet --size 400x300 < /dev/null 2> ../error; code=$?; ls -A > ../left; exit $code";
        execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
        _exit(kNoSmallDisk);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (!WIFEXITED(status)) return -1;
    if (WEXITSTATUS(status) == kNoSmallDisk) return std::nullopt;
    return WEXITSTATUS(status);
}

TEST_F(BadInputTest, FullDisk) {
    for (const std::string name : {"out.mp4", "out.mkv", "out.webm", "out.y4m", "out.png"}) {
        SCOPED_TRACE(name);
        std::filesystem::create_directory(Path("disk"));
        const std::optional<int> exitCode =
            RunOnSmallDisk(Path("disk"), name == "out.png" ? name : name + " --frames 40");
        if (!exitCode) GTEST_SKIP() << "no small file system can be had here";
        ExpectError({*exitCode, 0, "", Read("error")}, 1,
                    "cannot write " + name + ": No space left on device");
        EXPECT_EQ(Read("left"), "") << "nothing is left on the disk";
    }
}

// ---- effects ----

TEST_F(BadInputTest, UnknownEffect) {
    ExpectError(Run({"apply", "-e", "sepai", "test:", "out.mp4"}), 2,
                "there is no effect \"sepai\"; did you mean sepia?");
    ExpectError(Run({"apply", "-e", "", "test:", "out.mp4"}), 2, "an effect's name is missing");
    ExpectError(Run({"apply", "-e", "{8AAE654A-D222-4D8A-968F-937591B1B696}", "test:", "out.mp4"}), 2,
                "there is no effect");
}

TEST_F(BadInputTest, UnknownProperty) {
    ExpectError(Run({"apply", "-e", "liquefy-1:Speed=3", "test:", "out.mp4"}), 2,
                "liquefy-1 has no property \"Speed\"; it has change-speed, intensity");
    ExpectError(Run({"apply", "-e", "sepia:Tone=3", "test:", "out.mp4"}), 2,
                "sepia has no property \"Tone\"; it has none");
    ExpectError(Run({"apply", "-e", "liquefy-1:Intensity=much", "test:", "out.mp4"}), 2,
                "intensity takes a whole number, not \"much\"");
    EXPECT_FALSE(Exists("out.mp4"));
}

TEST_F(BadInputTest, LongAndOddTexts) {
    const std::string longText(10000, 'x');
    EXPECT_EQ(Run({"apply", "-e", longText, "test:", "out.mp4"}).exitCode, 2);
    EXPECT_EQ(Run({"apply", "-e", "sepia:" + longText + "=1", "test:", "out.mp4"}).exitCode, 2);
    EXPECT_EQ(Run({"apply", "-e", "liquefy-1:Intensity=" + longText, "test:", "out.mp4"}).exitCode, 2);
    EXPECT_EQ(
        Run({"apply", "-e", "liquefy-1:Intensity=" + std::string(10000, '9'), "test:", "out.png"}).exitCode,
        0);
    EXPECT_EQ(Run({"apply", "-e", "\xff\xfe\x80", "test:", "out.mp4"}).exitCode, 2);
    EXPECT_EQ(Run({"apply", "-e", "sepia", longText, "out.mp4"}).exitCode, 1);
    EXPECT_EQ(Run({"apply", "-e", "sepia", "test:", longText + ".mp4"}).exitCode, 1);
}

TEST_F(BadInputTest, Settings) {
    ExpectError(Run({"apply", "-e", "line-art-1", "test:", "out.mp4", "--settings", "nothing.txt"}), 1,
                "the settings file cannot be used: ");
    ExpectError(Run({"apply", "-e", "line-art-1", "test:", "out.mp4", "--settings", "."}), 1,
                "the settings file cannot be used: ");
    Write("settings.txt", "");
    ExpectError(Run({"apply", "-e", "sepia", "test:", "out.mp4", "--settings", "settings.txt"}), 2,
                "no effect of the chain takes a settings file");
    ExpectError(Run({"apply", "-e", "sepia", "test:", "out.mp4", "--data", "nowhere"}), 2,
                "nowhere is not a directory");
}

// ---- the command line ----

TEST_F(BadInputTest, OptionsThatDoNotGoTogether) {
    MakeClip(Path("in.mkv"), {.frames = 3});
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.png"}), 2,
                "in.mkv is a video and out.png a picture: --frame N");
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.mp4", "--frame", "2"}), 2,
                "--frame writes a picture");
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.png", "--frames", "2"}), 2,
                "--frames does not go with a picture");
    ExpectError(Run({"apply", "-e", "sepia", "still:in.mkv", "out.mp4"}), 1,
                "in.mkv is a video; still: takes a picture");
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.mp4", "--size", "huge"}), 2,
                "\"huge\" is not a size; it is written as 640x480");
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.mp4", "--size", "20000x20"}), 2,
                "out of range; sides go from 2 to 16384");
    for (const std::string number : {"0", "-3", "2.5", "many", "99999999999999999999"}) {
        ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.mp4", "--frames", number}), 2,
                    "--frames: a whole number from 1 to 1000000000 is wanted, not \"" + number + "\"");
    }
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.mp4", "--seed", "-1"}), 2,
                "--seed: a whole number from 0 to 4294967295 is wanted, not \"-1\"");
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv"}), 2, "OUTPUT is required");
    ExpectError(Run({"apply", "-e", "sepia", "in.mkv", "out.mkv", "out2.mkv"}), 2,
                "argument was not expected: out2.mkv");
    ExpectError(Run({"aply", "in.mkv", "out.mkv"}), 2,
                "there is no command \"aply\"; there are list, info, apply, bench, cameras and help");
    ExpectError(Run({}), 2, "a command is missing; there are list");
}

TEST_F(BadInputTest, NoEffect) {
    const std::string advice =
        "no effect is named; it goes behind -e, as in \"specialeffects apply -e sepia INPUT OUTPUT\"";
    ExpectError(Run({"apply", "test:", "out.mkv"}), 2, advice);
    ExpectError(Run({"apply", "sepia", "test:", "out.mkv"}), 2, advice);
    EXPECT_FALSE(Exists("out.mkv"));
}

}  // namespace
