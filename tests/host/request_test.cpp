#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CommandLine.h"
#include "EffectRequest.h"
#include "Errors.h"

namespace {

using namespace host;

const std::vector<PropertyInfo> kTable = {
    {PropTypeSet::Integer, "BlurDelay", "50", "1,100"},
    {PropTypeSet::Color, "BlurColor", "0,0,192", ""},
    {PropTypeSet::Boolean, "On", "TRUE", ""},
    {PropTypeSet::Integer, "Two Words", "7", "0,100"},
};

// "NAME=VALUE;" for each assignment; the message when it is refused.
std::string Parsed(const std::string& text, const std::vector<PropertyInfo>& table = kTable) {
    try {
        std::string result;
        for (const Assignment& a : ParseAssignments(text, table, "Effect"))
            result += a.name + "=" + a.value + ";";
        return result;
    } catch (const UsageError& error) {
        return error.what();
    }
}

TEST(EffectText, IsSplitAtTheFirstColon) {
    EXPECT_EQ(SplitEffectText("sepia").effect, "sepia");
    EXPECT_EQ(SplitEffectText("sepia").assignments, "");
    EXPECT_EQ(SplitEffectText("a:B=1:2").effect, "a");
    EXPECT_EQ(SplitEffectText("a:B=1:2").assignments, "B=1:2");
}

TEST(Assignments, AreSplitAtTheCommasBeforeNames) {
    EXPECT_EQ(Parsed(""), "");
    EXPECT_EQ(Parsed("BlurDelay=7"), "BlurDelay=7;");
    EXPECT_EQ(Parsed("BlurColor=0,0,192"), "BlurColor=0,0,192;");
    EXPECT_EQ(Parsed("BlurColor=1,2,3,BlurDelay=7"), "BlurColor=1,2,3;BlurDelay=7;");
    EXPECT_EQ(Parsed("BlurDelay=7,BlurColor=1,2,3,On=TRUE"), "BlurDelay=7;BlurColor=1,2,3;On=TRUE;");
    EXPECT_EQ(Parsed("Two Words=3,On=false"), "Two Words=3;On=FALSE;");
}

TEST(Assignments, TakeNamesInAnyCaseAndBlanksAroundThem) {
    EXPECT_EQ(Parsed("blurdelay= 7 , ON = true"), "BlurDelay=7;On=TRUE;");
    EXPECT_EQ(Parsed("TWO WORDS=+9"), "Two Words=9;");
}

TEST(Assignments, KeepValuesOutOfRangeForTheEffectToClamp) {
    EXPECT_EQ(Parsed("BlurDelay=999"), "BlurDelay=999;");
    EXPECT_EQ(Parsed("BlurDelay=-5"), "BlurDelay=-5;");
    EXPECT_EQ(Parsed("BlurDelay=99999999999"), "BlurDelay=2147483647;");
    EXPECT_EQ(Parsed("BlurDelay=-99999999999"), "BlurDelay=-2147483648;");
    EXPECT_EQ(Parsed("BlurColor=300,-5,7"), "BlurColor=300,-5,7;");
}

TEST(Assignments, NameThePropertiesThereAre) {
    EXPECT_EQ(Parsed("Colour=1"),
              "Effect has no property \"Colour\"; it has: BlurDelay, BlurColor, On, Two Words");
    EXPECT_EQ(Parsed("BlurColor=1,2,3,Delay=4"),
              "Effect has no property \"Delay\"; it has: BlurDelay, BlurColor, On, Two Words");
    EXPECT_EQ(Parsed("A=1", {}), "Effect has no property \"A\"; it has none at all");
}

TEST(Assignments, SayWhatAValueIs) {
    EXPECT_EQ(Parsed("BlurDelay=fast"), "BlurDelay takes a whole number from 1 to 100, not \"fast\"");
    EXPECT_EQ(Parsed("BlurDelay=1.5"), "BlurDelay takes a whole number from 1 to 100, not \"1.5\"");
    EXPECT_EQ(Parsed("BlurDelay="), "BlurDelay takes a whole number from 1 to 100, not \"\"");
    EXPECT_EQ(Parsed("On=yes"), "On takes TRUE or FALSE, not \"yes\"");
    for (const char* colour : {"1,2", "1,2,3,4", "red", "1,2,x", "1,2,"}) {
        EXPECT_NE(Parsed(std::string("BlurColor=") + colour).find("RED,GREEN,BLUE"), std::string::npos)
            << colour;
    }
    EXPECT_NE(Parsed("fast").find("NAME=VALUE"), std::string::npos);
}

TEST(Size, IsTwoNumbers) {
    EXPECT_EQ(ParseSize("640x480"), (Size{640, 480}));
    EXPECT_EQ(ParseSize("2x16384"), (Size{2, 16384}));
    for (const char* text : {"", "640", "640x", "x480", "640x480x2", "640*480", "1x480", "640x0", "-640x480",
                             "16385x480", "99999999999x480", "640 x480"}) {
        EXPECT_THROW(ParseSize(text), UsageError) << text;
    }
}

// Runs the parser over words; the program's name is added.
std::optional<Command> CommandOf(std::vector<const char*> words) {
    words.insert(words.begin(), "specialeffects");
    return ParseCommandLine(static_cast<int>(words.size()), words.data());
}

TEST(CommandLine, ReadsApply) {
    const auto command = CommandOf({"apply", "-e", "a:B=1,C=2", "-e", "d", "in.mp4", "out.mp4", "--frames",
                                    "5", "--size", "64x48", "--seed", "9", "--packed", "--quiet"});
    ASSERT_TRUE(command);
    const auto& apply = std::get<ApplyOptions>(*command);
    EXPECT_EQ(apply.effects, (std::vector<std::string>{"a:B=1,C=2", "d"}));
    EXPECT_EQ(apply.input, "in.mp4");
    EXPECT_EQ(apply.output, "out.mp4");
    EXPECT_EQ(apply.frames, 5);
    EXPECT_EQ(apply.size, (Size{64, 48}));
    EXPECT_EQ(apply.seed, 9u);
    EXPECT_TRUE(apply.packed);
    EXPECT_TRUE(apply.quiet);
    EXPECT_FALSE(apply.frame);
    EXPECT_FALSE(apply.settings);
}

TEST(CommandLine, TakesADashAndOptionsInAnyPlace) {
    const auto command = CommandOf({"apply", "--frames", "5", "-", "-", "-e", "a"});
    ASSERT_TRUE(command);
    const auto& apply = std::get<ApplyOptions>(*command);
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
