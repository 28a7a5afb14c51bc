// The command line, read.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CommandLine.h"
#include "Errors.h"

namespace {

using namespace host;

TEST(Size, IsTwoNumbers) {
    EXPECT_EQ(ParseSize("640x480"), (Size{640, 480}));
    EXPECT_EQ(ParseSize("2x16384"), (Size{2, 16384}));
    for (const char* text : {"", "640", "640x", "x480", "640x480x2", "640*480", "1x480", "640x0", "-640x480",
                             "16385x480", "99999999999x480", "640 x480"}) {
        EXPECT_THROW(ParseSize(text), UsageError) << text;
    }
}

// Runs the parser over words; the program's name is added.
Command CommandOf(std::vector<const char*> words) {
    words.insert(words.begin(), "specialeffects");
    return ParseCommandLine(static_cast<int>(words.size()), words.data());
}

TEST(CommandLine, ReadsApply) {
    const auto command = CommandOf({"apply", "-e", "a:B=1,C=2", "-e", "d", "in.mp4", "out.mp4", "--frames",
                                    "5", "--size", "64x48", "--seed", "9", "--quiet"});
    const auto& apply = std::get<ApplyOptions>(command);
    EXPECT_EQ(apply.effects, (std::vector<std::string>{"a:B=1,C=2", "d"}));
    EXPECT_EQ(apply.input, "in.mp4");
    EXPECT_EQ(apply.output, "out.mp4");
    EXPECT_EQ(apply.frames, 5);
    EXPECT_EQ(apply.from.size, (Size{64, 48}));
    EXPECT_EQ(apply.seed, 9u);
    EXPECT_TRUE(apply.quiet);
    EXPECT_FALSE(apply.frame);
    EXPECT_FALSE(apply.settings);
}

TEST(CommandLine, ReadsTimesAndRates) {
    EXPECT_EQ(ParseSeconds("90"), 90);
    EXPECT_EQ(ParseSeconds("1:30"), 90);
    EXPECT_EQ(ParseSeconds("0:01:30.5"), 90.5);
    EXPECT_EQ(av_cmp_q(ParseRate("30"), {30, 1}), 0);
    EXPECT_EQ(av_cmp_q(ParseRate("30000/1001"), {30000, 1001}), 0);
    EXPECT_EQ(av_cmp_q(ParseRate("12.5"), {25, 2}), 0);
    for (const char* text : {"", "soon", "1:2:3:4", "-3"})
        EXPECT_THROW(ParseSeconds(text), UsageError) << text;
    for (const char* text : {"", "0", "x", "1/0", "2000"}) EXPECT_THROW(ParseRate(text), UsageError) << text;
}

TEST(CommandLine, TakesADashAndOptionsInAnyPlace) {
    const auto command = CommandOf({"apply", "--frames", "5", "-", "-", "-e", "a"});
    const auto& apply = std::get<ApplyOptions>(command);
    EXPECT_EQ(apply.input, "-");
    EXPECT_EQ(apply.output, "-");
}

TEST(CommandLine, RefusesWhatIsNotThere) {
    EXPECT_THROW(CommandOf({}), UsageError);
    EXPECT_THROW(CommandOf({"frobnicate"}), UsageError);
    EXPECT_THROW(CommandOf({"apply", "-e", "a", "in"}), UsageError);
    EXPECT_THROW(CommandOf({"apply", "in", "out"}), UsageError);
    EXPECT_THROW(CommandOf({"apply", "-e", "a", "in", "out", "more"}), UsageError);
    EXPECT_THROW(CommandOf({"apply", "-e", "a", "in", "out", "--frames", "0"}), UsageError);
    EXPECT_THROW(CommandOf({"apply", "-e", "a", "in", "out", "--frames", "x"}), UsageError);
    EXPECT_THROW(CommandOf({"info"}), UsageError);
    EXPECT_THROW(CommandOf({"list", "--nonsense"}), UsageError);
}

}  // namespace
