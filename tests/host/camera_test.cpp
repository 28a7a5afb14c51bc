// Cameras, on a virtual one that a preloaded library makes of system calls.
#include <csignal>

#include "Media.h"

namespace {

class CameraTest : public MediaTest {
  protected:
    void SetUp() override {
        MediaTest::SetUp();
        if (std::string(SE_VIRTUAL_CAMERA).empty()) GTEST_SKIP() << "no library can be put in front here";
    }

    const RunOptions options_{.environment = {"LD_PRELOAD=" SE_VIRTUAL_CAMERA}};
};

TEST_F(CameraTest, AreListedWithFormats) {
    const Outcome outcome = Run({"cameras"}, options_);
    ExpectSuccess(outcome);
    EXPECT_NE(outcome.out.find("/dev/video7  Virtual Camera\n"
                               "    yuyv422          64x48  30, 15 fps\n"
                               "    yuyv422          96x64  30, 15 fps\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("/dev/video8  Permission denied"), std::string::npos) << outcome.out;
    EXPECT_NE(Run({"cameras", "--json"}, options_).out.find("\"format\": \"yuyv422\""), std::string::npos);
}

TEST_F(CameraTest, AreRecorded) {
    ExpectSuccess(Run({"apply", "-e", "gray-scale", "/dev/video7", "out.mkv", "--frames", "10"}, options_));
    EXPECT_EQ(CountFrames("out.mkv"), 10);
    EXPECT_EQ(Probe("out.mkv", "stream=width,height"), "64\n48\n");
    ExpectSuccess(Run({"apply", "-y", "-e", "gray-scale", "/dev/video7", "out.mkv", "--frames", "6", "--size",
                       "96x64", "--fps", "15", "--camera-format", "yuyv422"},
                      options_));
    EXPECT_EQ(Probe("out.mkv", "stream=width,height"), "96\n64\n");
    EXPECT_EQ(CountFrames("out.mkv"), 6);
}

TEST_F(CameraTest, ARecordingEndsWithAnInterrupt) {
    const Terminal terminal;
    RunOptions options = options_;
    options.error = terminal.Name();
    options.environment.emplace_back("TERM=xterm");
    Child child = Start({"apply", "-e", "gray-scale", "/dev/video7", "out.mkv"}, options);
    terminal.Await("frames");
    child.Send(SIGINT);
    ExpectSuccess(child.Wait());
    EXPECT_GT(CountFrames("out.mkv"), 0);
}

TEST_F(CameraTest, ErrorsSayWhatToDo) {
    ExpectError(Run({"apply", "-e", "gray-scale", "/dev/video8", "out.mkv"}, options_), 1,
                "cannot open the camera /dev/video8: Permission denied; the group \"video\" may use it");
    ExpectError(
        Run({"apply", "-e", "gray-scale", "/dev/video9", "out.mkv"}, options_), 1,
        "\"specialeffects cameras\" lists those there are, and a virtual one needs the module v4l2loopback");
    ExpectError(Run({"apply", "-e", "gray-scale", "test:", "/dev/video9"}), 1, "sudo modprobe v4l2loopback");
    ExpectError(
        Run({"apply", "-e", "gray-scale", "/dev/video7", "out.mkv", "--camera-format", "mjpeg"}, options_), 1,
        "\"specialeffects cameras\" lists the formats");
    ExpectError(Run({"apply", "-e", "gray-scale", "/dev/video7", "out.mkv", "--start", "3"}, options_), 2,
                "--start does not go with a camera");
    EXPECT_FALSE(Exists("out.mkv"));
}

}  // namespace
