#include "Media.h"

#include <cstdlib>
#include <sstream>

Outcome MediaTest::Shell(const std::string& line) const {
    return Child({"/bin/bash", "-c", "P='" SE_PROGRAM "'; " + line}, directory_).Wait();
}

void MediaTest::Make(const std::string& arguments) const {
    const Outcome outcome = Shell("ffmpeg -v error -nostdin -y " + arguments);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
}

std::string MediaTest::Apply(const std::string& arguments) const {
    const Outcome outcome = Shell("$P apply -e gray-scale " + arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    return outcome.error;
}

std::string MediaTest::Probe(const std::string& name, const std::string& entries,
                             const std::string& select) const {
    const Outcome outcome = Shell("ffprobe -v error -select_streams " + select + " -show_entries " + entries +
                                  " -of default=noprint_wrappers=1:nokey=1 " + name);
    EXPECT_EQ(outcome.error, "");
    // The streams of a transport stream are shown twice: in their program and by themselves.
    return name.ends_with(".ts") ? outcome.out.substr(0, outcome.out.size() / 2) : outcome.out;
}

std::string MediaTest::ProbeFormat(const std::string& name, const std::string& entries) const {
    return Shell("ffprobe -v error -show_entries " + entries + " -of default=noprint_wrappers=1:nokey=1 " +
                 name)
        .out;
}

int MediaTest::CountFrames(const std::string& name) const {
    const Outcome outcome = Shell(
        "ffprobe -v error -count_frames -select_streams v:0 -show_entries stream=nb_read_frames "
        "-of default=noprint_wrappers=1:nokey=1 " +
        name);
    return std::atoi(outcome.out.c_str());
}

void MediaTest::ExpectMiddlePixel(const std::string& name, const std::vector<int>& expected,
                                  int tolerance) const {
    const Outcome outcome = Shell("ffmpeg -v error -nostdin -i " + name +
                                  " -frames:v 1 -vf crop=2:2,format=rgb24 -f rawvideo - | od -An -tu1 -N3");
    std::istringstream parts(outcome.out);
    for (const int part : expected) {
        int shown = -1;
        parts >> shown;
        EXPECT_NEAR(shown, part, tolerance) << name << ": " << outcome.out;
    }
}
