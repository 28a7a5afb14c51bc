// What the program says: lists, reports, help, notes, and the line at the end of a run.
#include <csignal>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "Clips.h"
#include "Media.h"

namespace {

using nlohmann::json;

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

class WordsTest : public MediaTest {
  protected:
    json Json(const std::vector<std::string>& arguments) const {
        const Outcome outcome = Run(arguments);
        ExpectSuccess(outcome);
        return json::parse(outcome.out, nullptr, false);
    }
};

// ---- list ----

TEST_F(WordsTest, ListHasEachEffectOnceUnderItsKind) {
    const Outcome outcome = Run({"list"});
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "");
    std::map<std::string, int> rows;
    std::set<std::string> kinds;
    for (const std::string& line : Lines(outcome.out)) {
        if (line.starts_with("  ") && !line.starts_with("  preset:"))
            ++rows[line.substr(2, line.find(' ', 2) - 2)];
        if (!line.empty() && line[0] != ' ') kinds.insert(line);
    }
    EXPECT_EQ(rows.size(), 63u);
    for (const auto& [id, count] : rows) EXPECT_EQ(count, 1) << id;
    for (const char* kind : {"tone", "distortion", "drawing", "time", "animated", "faces"}) {
        EXPECT_TRUE(kinds.contains(kind)) << kind;
    }
    EXPECT_EQ(outcome.out.find('{'), std::string::npos) << "no GUIDs";
    EXPECT_EQ(outcome.out.find('\033'), std::string::npos) << "no colours in a pipe";
}

TEST_F(WordsTest, ListOfAllAddsWhatTheContractListsBesides) {
    const std::string all = Run({"list", "--all"}).out;
    EXPECT_NE(all.find("{333FBC24-1123-4E32-BBA1-3E77B228A727}  graphic-pen-3 once more"), std::string::npos);
    EXPECT_NE(all.find("{8AAE654A-D222-4D8A-968F-937591B1B696}  cannot be created"), std::string::npos);
    EXPECT_EQ(Json({"list", "--all", "--json"}).size(), 65u);
}

TEST_F(WordsTest, ListInJsonHasAllDescriptions) {
    const json list = Json({"list", "--json"});
    ASSERT_EQ(list.size(), 63u);
    std::set<std::string> ids;
    int listed = 0;
    for (const json& effect : list) {
        ids.insert(effect["id"]);
        listed += effect["listed"] ? 1 : 0;
        EXPECT_NE(effect["description"], "") << effect["id"];
        EXPECT_NE(effect["title"], "") << effect["id"];
        for (const json& property : effect["properties"]) {
            EXPECT_NE(property["description"], "") << effect["id"] << property["id"];
        }
    }
    EXPECT_EQ(ids.size(), 63u);
    EXPECT_EQ(listed, 39);
}

TEST_F(WordsTest, PresetsAreListedAndWork) {
    const json presets = Json({"list", "--presets", "--json"});
    ASSERT_FALSE(presets.empty());
    for (const json& preset : presets) {
        const std::string id = preset["id"];
        EXPECT_NE(preset["description"], "") << id;
        ExpectSuccess(Run({"apply", "-y", "-e", id, "test:", "out.png", "--size", "96x64"}));
        EXPECT_NE(Run({"info", id}).out.find(preset["effect"].get<std::string>()), std::string::npos);
    }
    ExpectError(Run({"info", "preset:nonsense"}), 2, "there is no preset \"nonsense\"");
    ExpectError(Run({"apply", "-y", "-e", "preset:nonsense", "test:", "out.png"}), 2,
                "there is no preset \"nonsense\"");
}

// ---- info ----

TEST_F(WordsTest, InfoShowsPropertiesAndAnExampleThatWorks) {
    const Outcome outcome = Run({"info", "rain"});
    ExpectSuccess(outcome);
    EXPECT_NE(outcome.out.find("drop-size"), std::string::npos);
    EXPECT_NE(outcome.out.find("2 to 16; starts with 3"), std::string::npos) << outcome.out;
    const json effects = Json({"list", "--json"});
    for (size_t i = 0; i < effects.size(); i += 5) {
        const json& effect = effects[i];
        const std::string id = effect["id"];
        const std::string text = Run({"info", id}).out;
        for (const json& property : effect["properties"]) {
            EXPECT_NE(text.find(property["description"].get<std::string>()), std::string::npos) << id;
            for (const json& choice : property["choices"]) {
                EXPECT_NE(text.find(choice["id"].get<std::string>()), std::string::npos) << id;
            }
        }
        const std::string example = effect["example"];
        EXPECT_NE(text.find("specialeffects apply -e " + example + " INPUT OUTPUT"), std::string::npos) << id;
    }
    for (const char* example : {"rain", "line-art-1", "camera-flashes-9", "logo-animation", "sepia"}) {
        const json info = Json({"info", example, "--json"});
        const Outcome run = Run(
            {"apply", "-y", "-e", info["example"].get<std::string>(), "test:", "out.png", "--size", "96x64"});
        ExpectSuccess(run);
        EXPECT_EQ(run.error, "") << "an example is in range";
    }
}

TEST_F(WordsTest, InfoTakesGuidsAndSuggestsNames) {
    EXPECT_EQ(Json({"info", "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}", "--json"})["id"], "sepia");
    EXPECT_EQ(Json({"info", "Gray Scale", "--json"})["id"], "gray-scale");
    EXPECT_EQ(Json({"info", "SEPIA", "--json"})["id"], "sepia");
    ExpectError(Run({"info", "sepai"}), 2, "did you mean sepia?");
    ExpectError(Run({"info", "zzzzzzzzzzzzz"}), 2, "\"specialeffects list\" shows them");
}

// ---- bench ----

TEST_F(WordsTest, BenchHasALineForEachEffect) {
    const Outcome outcome = Run({"bench", "gray-scale", "rain:drop-size=9", "--size", "64x48"});
    ExpectSuccess(outcome);
    const auto lines = Lines(outcome.out);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].rfind("64x48", 0), 0u);
    EXPECT_EQ(lines[2].rfind("gray-scale", 0), 0u);
    double milliseconds = 0, rate = 0, copy = 0, ratio = 0;
    std::istringstream(lines[3].substr(24)) >> milliseconds >> rate >> copy >> ratio;
    EXPECT_GT(milliseconds, 0);
    EXPECT_GT(ratio, 0);
    const json bench = Json({"bench", "sepia", "--size", "65x48", "--json"});
    EXPECT_EQ(bench[0]["width"], 64);
    EXPECT_DOUBLE_EQ(bench[0]["ratio"],
                     bench[0]["milliseconds"].get<double>() / bench[0]["memcpyMilliseconds"].get<double>());
    ExpectError(Run({"bench", "sepai"}), 2, "did you mean sepia?");
    ExpectError(Run({"bench", "sepia:nothing=2"}), 2, "has no property \"nothing\"");
}

// ---- help ----

TEST_F(WordsTest, HelpAndVersionWorkEverywhere) {
    const std::string version = Run({"--version"}).out;
    EXPECT_NE(version.find('.'), std::string::npos);
    EXPECT_EQ(Run({"-V"}).out, version);
    for (const std::string command : {"list", "info", "apply", "bench", "cameras"}) {
        SCOPED_TRACE(command);
        const Outcome help = Run({command, "--help"});
        ExpectSuccess(help);
        EXPECT_EQ(help.error, "");
        EXPECT_EQ(Run({"help", command}).out, help.out);
        EXPECT_NE(help.out.find("-q,--quiet"), std::string::npos);
        EXPECT_EQ(Run({command, "-V"}).out, version);
        EXPECT_EQ(Run({command, "--version"}).out, version);
    }
    EXPECT_EQ(Run({"help"}).out, Run({"--help"}).out);
    EXPECT_EQ(Run({"-q", "list"}).out, Run({"list"}).out);
    ExpectError(Run({"help", "nonsense"}), 2, "there is no command \"nonsense\"");
    ExpectError(Run({"aply"}), 2, "there is no command \"aply\"; there are list, info");
}

TEST_F(WordsTest, ManPageAndCompletionNameEveryOption) {
    const std::string page = Run({"help", "--man"}).out, script = Run({"help", "--bash-completion"}).out;
    const std::string help = Run({"help", "apply"}).out;
    int options = 0;
    for (size_t at = help.find("--"); at != std::string::npos; at = help.find("--", at + 2)) {
        const size_t end = help.find_first_of(" ,\n\"", at);
        const std::string option = help.substr(at, end - at);
        if (option.size() < 4) continue;
        ++options;
        std::string roff;
        for (const char c : option) roff += c == '-' ? std::string("\\-") : std::string(1, c);
        EXPECT_NE(page.find(roff), std::string::npos) << option;
        EXPECT_NE(script.find(option), std::string::npos) << option;
    }
    EXPECT_GT(options, 15);
    Write("page.1", page);
    Write("complete.bash", script);
    if (Shell("command -v man").exitCode == 0) {
        EXPECT_EQ(Shell("man --warnings=all -l page.1 > /dev/null").error, "");
    }
    EXPECT_EQ(Shell("bash -n complete.bash").error, "");
    const Outcome completed = Shell(
        "specialeffects() { \"$P\" \"$@\"; }; . ./complete.bash; COMP_WORDS=(specialeffects apply -e sep); "
        "COMP_CWORD=3; _specialeffects; echo \"${COMPREPLY[@]}\"; COMP_WORDS=(specialeffects apply --cod); "
        "COMP_CWORD=2; _specialeffects; echo \"${COMPREPLY[@]}\"; COMP_WORDS=(specialeffects be); "
        "COMP_CWORD=1; "
        "_specialeffects; echo \"${COMPREPLY[@]}\"");
    EXPECT_EQ(completed.out, "sepia\n--codec\nbench\n");
    EXPECT_EQ(completed.error, "");
}

TEST_F(WordsTest, ListEndsQuietlyWhenTheReaderGoes) {
    const Outcome outcome = Shell("(sleep 0.3; exec $P list) | true; exit ${PIPESTATUS[0]}");
    ExpectSuccess(outcome);
    EXPECT_EQ(outcome.error, "");
}

// ---- notes ----

TEST_F(WordsTest, ClampedValuesAreQuotedAsTyped) {
    const auto note = [this](const std::string& effect) {
        const Outcome outcome = Run({"apply", "-y", "-e", effect, "test:", "out.png", "--size", "96x64"});
        ExpectSuccess(outcome);
        return outcome.error;
    };
    EXPECT_NE(note("liquefy-1:intensity=99").find("note: "), std::string::npos);
    EXPECT_NE(note("liquefy-1:intensity=99").find("99"), std::string::npos);
    const std::string huge(30, '9');
    EXPECT_NE(note("liquefy-1:Intensity=" + huge).find(huge), std::string::npos);
    EXPECT_EQ(note("liquefy-1:intensity=24"), "");
    EXPECT_EQ(note("rain:DropSize=4,DropSize=5"), "") << "the later one counts, and is in range";
    EXPECT_EQ(Run({"apply", "-y", "-q", "-e", "liquefy-1:intensity=99", "test:", "out.png"}).error, "");
}

TEST_F(WordsTest, APictureThroughAnEffectWithAMemoryGetsAHint) {
    const std::string portrait = SE_SOURCE_DIR "/demo/portrait.jpg";
    const Outcome outcome = Run({"apply", "-e", "motion-blur-0", portrait, "out.png", "--size", "96x64"});
    ExpectSuccess(outcome);
    EXPECT_NE(outcome.error.find("builds on earlier frames"), std::string::npos) << outcome.error;
    EXPECT_NE(outcome.error.find("--frame 30"), std::string::npos) << outcome.error;
    EXPECT_EQ(Run({"apply", "-y", "-e", "motion-blur-0", portrait, "out.png", "--frame", "2"}).error, "");
    EXPECT_EQ(Run({"apply", "-y", "-e", "sepia", portrait, "out.png"}).error, "");
}

// ---- the terminal ----

class TerminalTest : public WordsTest {
  protected:
    /// What a run writes on a terminal.
    std::string Shown(std::vector<std::string> command, const std::string& setting = "TERM=xterm") const {
        const Terminal terminal;
        command.insert(command.begin(), {"apply", "-y", "-e", "gray-scale"});
        ExpectSuccess(Run(command, {.error = terminal.Name(), .environment = {setting}}));
        return terminal.Text();
    }
};

TEST_F(TerminalTest, ShowsProgressAndWhatWasWritten) {
    const std::vector<std::string> command = {"test:", "out.y4m", "--frames", "20", "--size", "96x64"};
    const std::string text = Shown(command);
    EXPECT_NE(text.find("20/20 frames"), std::string::npos) << text;
    EXPECT_NE(text.find("fps"), std::string::npos);
    EXPECT_NE(text.find("wrote 20 frames, 0.7 seconds, to out.y4m\r\n"), std::string::npos) << text;
    EXPECT_NE(Shown({"test:", "out.png"}).find("wrote out.png\r\n"), std::string::npos);
    auto quiet = command;
    quiet.emplace_back("-q");
    EXPECT_EQ(Shown(quiet), "");
    ExpectSuccess(Run({"apply", "-y", "-e", "sepia", "test:", "out.png"}));
    EXPECT_EQ(Run({"apply", "-y", "-e", "sepia", "test:", "out.png"}).error, "") << "only on a terminal";
}

TEST_F(TerminalTest, ADumbOneGetsNoEscapes) {
    const std::string text = Shown({"test:", "out.y4m", "--frames", "20", "--size", "96x64"}, "TERM=dumb");
    EXPECT_EQ(text, "wrote 20 frames, 0.7 seconds, to out.y4m\r\n");
}

TEST_F(TerminalTest, HeadingsAreBoldUnlessNoColorIsSet) {
    const auto list = [this](const std::vector<std::string>& environment) {
        const Terminal terminal;
        Child child = Start({"list"}, {.output = terminal.Name(), .environment = environment});
        const std::string text = terminal.Await("sepia");
        child.Wait();
        return text + terminal.Text();
    };
    EXPECT_NE(list({"TERM=xterm", "NO_COLOR="}).find("\033[1m"), std::string::npos);
    EXPECT_EQ(list({"TERM=xterm", "NO_COLOR=1"}).find('\033'), std::string::npos);
    EXPECT_EQ(list({"TERM=dumb", "NO_COLOR="}).find('\033'), std::string::npos);
}

TEST_F(TerminalTest, AcknowledgesAnInterruptAtOnce) {
    const Terminal terminal;
    Child child =
        Start({"apply", "-e", "gray-scale", "test:", "out.mkv", "--frames", "1000000", "--size", "96x64"},
              {.error = terminal.Name(), .environment = {"TERM=xterm"}});
    terminal.Await("frames");
    child.Send(SIGINT);
    std::string text = terminal.Await("specialeffects: stopping\r\n");
    ExpectSuccess(child.Wait());
    text += terminal.Text();
    EXPECT_NE(text.find("wrote "), std::string::npos) << text;
}

}  // namespace
