// What `list`, `info` and `bench` print.
#include <nlohmann/json.hpp>
#include <sstream>

#include "EffectNames.h"
#include "Program.h"

namespace {

using nlohmann::json;

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

class ReportTest : public ProgramTest {
  protected:
    json Json(const std::vector<std::string>& arguments) {
        const Outcome outcome = Run(arguments);
        ExpectSuccess(outcome);
        return json::parse(outcome.out, nullptr, false);
    }
};

TEST_F(ReportTest, ListHasTheModulesListing) {
    const json list = Json({"list", "--json"});
    ASSERT_TRUE(list.is_array());
    ASSERT_EQ(list.size(), 41u);
    EXPECT_EQ(list[0]["name"], "neonize");
    EXPECT_EQ(list[6]["name"], "graphic-pen-3");
    EXPECT_EQ(list[28]["name"], "graphic-pen-3");
    EXPECT_EQ(list[28]["listedAt"], json({6, 28}));
    EXPECT_EQ(list[39]["name"], "sepia");
    EXPECT_TRUE(list[40]["name"].is_null());
    EXPECT_EQ(list[40]["guid"], "{8AAE654A-D222-4D8A-968F-937591B1B696}");
    EXPECT_EQ(list[40]["creatable"], false);
}

TEST_F(ReportTest, ListOfAllHasEveryEffect) {
    const json list = Json({"list", "--all", "--json"});
    ASSERT_EQ(list.size(), host::AllEffects().size());
    int listed = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        const json& row = list[i];
        const host::EffectName& name = host::AllEffects()[i];
        EXPECT_EQ(row["number"], name.number);
        EXPECT_EQ(row["name"], name.shortName);
        EXPECT_EQ(row["displayName"], name.displayName);
        EXPECT_EQ(row["guid"], name.guid);
        EXPECT_EQ(row["creatable"], true) << name.shortName;
        const bool packed = name.shortName == "sepia" || name.shortName == "bulge" ||
                            name.shortName == "fish-eye" || name.shortName == "blockhead";
        EXPECT_EQ(row["formats"], packed ? json({"planar", "packed"}) : json({"planar"})) << name.shortName;
        listed += row["listed"] ? 1 : 0;
    }
    EXPECT_EQ(listed, 39);
    EXPECT_TRUE(list[62]["variant"].is_null());
    EXPECT_EQ(list[48]["variant"], 0);
}

TEST_F(ReportTest, ListInWordsHasALineForEachEffect) {
    const Outcome outcome = Run({"list", "--all"});
    ExpectSuccess(outcome);
    const auto lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 64u);
    EXPECT_NE(lines[63].find("sepia"), std::string::npos);
    EXPECT_NE(lines[63].find("planar, packed"), std::string::npos);
    EXPECT_EQ(outcome.error, "");
    EXPECT_FALSE(Exists("perlin.dat")) << "looking at effects leaves no files";
}

TEST_F(ReportTest, InfoShowsTheValueThatRunsBesideTheDefault) {
    const json clouds = Json({"info", "clouds", "--json"});
    EXPECT_EQ(clouds["displayName"], "Clouds");
    EXPECT_EQ(clouds["number"], 28);
    EXPECT_EQ(clouds["listedAt"], json({18}));
    ASSERT_EQ(clouds["properties"].size(), 3u);
    EXPECT_EQ(clouds["properties"][0],
              json::parse(R"({"name": "CloudColor", "type": "color", "default": "0,0,255", "range": "",
                              "running": "192,192,192"})"));
    EXPECT_EQ(clouds["properties"][1]["range"], "1,100");
    EXPECT_FALSE(Exists("perlin.dat"));

    const Outcome words = Run({"info", "Clouds"});
    ExpectSuccess(words);
    EXPECT_NE(words.out.find("192,192,192"), std::string::npos);
}

TEST_F(ReportTest, InfoShowsWhatConfigureResets) {
    const json logo = Json({"info", "logo-animation", "--json"});
    ASSERT_EQ(logo["properties"].size(), 10u);
    EXPECT_EQ(logo["properties"][1]["default"], "2");
    EXPECT_EQ(logo["properties"][1]["running"], "1");
    EXPECT_EQ(logo["properties"][4]["default"], "FALSE");
    EXPECT_EQ(logo["properties"][4]["running"], "TRUE");
}

TEST_F(ReportTest, InfoOfEveryEffectIsJson) {
    // The table's order of effects with properties, by their classes.
    for (const char* name :
         {"graphic-pen-1", "line-art-1", "tiled-up", "chalk-1", "liquefy-2", "rain", "antiquated-movie",
          "rain-drops", "camera-flashes-9", "motion-detector", "fish-eye", "picture-me"}) {
        const json info = Json({"info", name, "--json"});
        EXPECT_EQ(info["name"], name);
        EXPECT_FALSE(info["properties"].empty()) << name;
        for (const json& property : info["properties"]) EXPECT_NE(property["running"], "") << name;
    }
    EXPECT_TRUE(Json({"info", "sepia", "--json"})["properties"].empty());
}

TEST_F(ReportTest, InfoTakesGuidsAndSuggestsNames) {
    EXPECT_EQ(Json({"info", "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}", "--json"})["name"], "sepia");
    ExpectError(Run({"info", "sepai"}), 2, "did you mean sepia?");
    ExpectError(RunFake({"info", "rain"}), 1, "has no effect rain");
}

TEST_F(ReportTest, ListShowsWhatAnotherModuleHas) {
    const Outcome outcome = RunFake({"list", "--json"});
    ExpectSuccess(outcome);
    const json list = json::parse(outcome.out);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0]["name"], "fire");
    EXPECT_EQ(list[0]["formats"], json({"planar"}));
    EXPECT_EQ(list[1]["formats"], json({"planar", "packed"}));
}

TEST_F(ReportTest, BenchHasALineForEachEffect) {
    const Outcome outcome = Run({"bench", "gray-scale", "sepia", "--size", "64x48"});
    ExpectSuccess(outcome);
    const auto lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].rfind("64x48", 0), 0u);
    EXPECT_EQ(lines[2].rfind("gray-scale", 0), 0u);
    double milliseconds = 0, rate = 0, copy = 0, ratio = 0;
    std::istringstream(lines[3].substr(24)) >> milliseconds >> rate >> copy >> ratio;
    EXPECT_GT(milliseconds, 0);
    EXPECT_GT(ratio, 0);
}

TEST_F(ReportTest, BenchWritesJson) {
    const json bench = Json({"bench", "gray-scale", "sepia", "--size", "65x48", "--json"});
    ASSERT_EQ(bench.size(), 2u);
    EXPECT_EQ(bench[1]["effect"], "sepia");
    EXPECT_EQ(bench[1]["width"], 64);
    EXPECT_EQ(bench[1]["height"], 48);
    const double milliseconds = bench[1]["milliseconds"], copy = bench[1]["memcpyMilliseconds"];
    EXPECT_GT(milliseconds, 0);
    EXPECT_DOUBLE_EQ(bench[1]["ratio"], milliseconds / copy);
}

TEST_F(ReportTest, BenchTakesProperties) {
    ExpectSuccess(RunFake({"bench", "fire:Level=2", "--size", "64x48"}));
    ExpectError(RunFake({"bench", "fire:Nothing=2", "--size", "64x48"}), 2, "has no property \"Nothing\"");
    ExpectError(Run({"bench", "sepai"}), 2, "did you mean sepia?");
}

TEST_F(ReportTest, HelpAndVersionAreAnswers) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"apply", "--help"}, {"list", "--help"}, {"--version"}}) {
        std::vector<std::string> command = {SE_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const Outcome outcome = Child(command, directory_).Wait();
        ExpectSuccess(outcome);
        EXPECT_NE(outcome.out, "");
        EXPECT_EQ(outcome.error, "");
    }
}

TEST_F(ReportTest, HelpOfACommandIsItsOwn) {
    EXPECT_NE(Child({SE_PROGRAM, "--help"}, directory_).Wait().out.find("specialeffects info rain"),
              std::string::npos);
    EXPECT_EQ(Child({SE_PROGRAM, "bench", "--help"}, directory_).Wait().out.find("info"), std::string::npos);
}

TEST_F(ReportTest, ListEndsQuietlyWhenTheReaderGoes) {
    const Outcome outcome = Child({"/bin/bash", "-c",
                                   "(sleep 0.3; exec '" SE_PROGRAM "' list --module '" SE_FAKE_MODULE
                                   "') | true; exit ${PIPESTATUS[0]}"},
                                  directory_)
                                .Wait();
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "");
}

TEST_F(ReportTest, TheProgramFindsTheModuleByItself) {
    const Outcome outcome = Child({SE_PROGRAM, "info", "sepia"}, directory_).Wait();
    ExpectSuccess(outcome);
}

}  // namespace
