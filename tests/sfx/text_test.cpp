// Effects from texts and back, settings, presets, data files.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/sfx/Handles.h"

namespace {

namespace fs = std::filesystem;

/// What sfx_create says of a text that it refuses.
std::string Refusal(const std::string& text, sfx_status status) {
    sfx_effect* effect = nullptr;
    EXPECT_EQ(sfx_create(text.c_str(), &effect), status) << text;
    EXPECT_EQ(effect, nullptr);
    return sfx_message();
}

TEST(Text, PrintsWhatDiffersFromTheStart) {
    const std::pair<const char*, const char*> texts[] = {
        {"sepia", "sepia"},
        {"rain:drop-size=9,drop-period=2", "rain:drop-period=2,drop-size=9"},
        {" RAIN : DropSize = 9 ", "rain:drop-size=9"},
        {"rain:drop-size=9,drop-size=4", "rain:drop-size=4"},
        {"rain:drop-size=3", "rain:drop-size=3"},
        {"sepia+rain:drop-size=9 + twirl-1", "sepia+rain:drop-size=9+twirl-1"},
        {"line-art-1:background-color=#0102FF", "line-art-1:background-color=#0102ff"},
        {"line-art-1:BackgroundColor=1,2,255", "line-art-1:background-color=#0102ff"},
        {"clouds:cloud-color=10,20,30,intensity=50", "clouds:cloud-color=#0a141e,intensity=50"},
        {"antiquated-movie:sepia=no,vignetting=off", "antiquated-movie:sepia=false,vignetting=false"},
        {"logo-animation:color-3=#abcdef", "logo-animation:color-3=#abcdef"},
        {"picture-me:rotation speed=3", "picture-me:rotation-speed=3"},
    };
    for (const auto& [text, printed] : texts) {
        const EffectHandle effect = Create(text);
        EXPECT_EQ(Print(effect.get()), printed);
        const EffectHandle again = Create(printed);
        EXPECT_EQ(Print(again.get()), printed);
    }
    // Cut texts are terminated, and the result is their whole length.
    const EffectHandle effect = Create("sepia+rain:drop-size=9");
    char buffer[8];
    EXPECT_EQ(sfx_print(effect.get(), buffer, sizeof buffer), 22);
    EXPECT_STREQ(buffer, "sepia+r");
    EXPECT_EQ(sfx_print(effect.get(), nullptr, 4), SFX_ERROR_ARGUMENT);
}

TEST(Text, SaysWhatIsWrong) {
    EXPECT_EQ(Refusal("sepai", SFX_ERROR_UNKNOWN), "there is no effect \"sepai\"; did you mean sepia?");
    EXPECT_EQ(Refusal("rain:drop-sise=9", SFX_ERROR_UNKNOWN),
              "rain has no property \"drop-sise\"; it has drop-period, drop-size");
    EXPECT_EQ(Refusal("sepia:tone=9", SFX_ERROR_UNKNOWN), "sepia has no property \"tone\"; it has none");
    EXPECT_EQ(Refusal("rain:drop-size=big", SFX_ERROR_VALUE), "drop-size takes a whole number, not \"big\"");
    EXPECT_EQ(Refusal("rain:drop-size=", SFX_ERROR_VALUE), "drop-size takes a whole number, not \"\"");
    EXPECT_EQ(Refusal("fish-eye:effect-type=sphre", SFX_ERROR_UNKNOWN),
              "effect-type takes the name or number of a choice, not \"sphre\"; did you mean sphere?");
    EXPECT_EQ(Refusal("rain:9", SFX_ERROR_VALUE),
              "\"9\" sets nothing; properties of rain are set as name=value");
    EXPECT_EQ(Refusal("line-art-1:background-color=1,2", SFX_ERROR_VALUE),
              "background-color takes a colour as #rrggbb or red,green,blue, not \"1,2\"");
    for (const char* color : {"#12345", "#1234567", "#12345g", "#-12345", "red", "1,2,3,4", "1,,3"}) {
        Refusal(std::string("line-art-1:background-color=") + color, SFX_ERROR_VALUE);
    }
    EXPECT_EQ(Refusal("antiquated-movie:sepia=maybe", SFX_ERROR_VALUE),
              "sepia takes true or false, not \"maybe\"");
    EXPECT_EQ(Refusal("", SFX_ERROR_VALUE), "an effect's name is missing");
    EXPECT_EQ(Refusal("sepia+", SFX_ERROR_VALUE), "an effect's name is missing");
    EXPECT_EQ(Refusal(":drop-size=9", SFX_ERROR_VALUE), "an effect's name is missing");
    EXPECT_EQ(Refusal("preset:nior", SFX_ERROR_UNKNOWN),
              "there is no preset \"nior\"; did you mean noir or neon?");
    std::string many = "sepia";
    for (int i = 0; i < 63; ++i) {
        many += "+sepia";
    }
    EXPECT_EQ(sfx_link_count(Create(many).get()), 64U);
    Refusal(many + "+sepia", SFX_ERROR_VALUE);
    const std::string endless(1 << 20, 'a');
    Refusal(endless, SFX_ERROR_UNKNOWN);
    Refusal("rain:" + endless + "=1", SFX_ERROR_UNKNOWN);
    Refusal("rain:drop-size=" + endless, SFX_ERROR_VALUE);
    EXPECT_EQ(sfx_create(nullptr, nullptr), SFX_ERROR_ARGUMENT);
    sfx_effect* effect = nullptr;
    EXPECT_EQ(sfx_create(nullptr, &effect), SFX_ERROR_ARGUMENT);
    EXPECT_EQ(sfx_create("sepia", nullptr), SFX_ERROR_ARGUMENT);
    EXPECT_EQ(sfx_clone(nullptr, &effect), SFX_ERROR_ARGUMENT);
    sfx_destroy(nullptr);
    EXPECT_EQ(sfx_link_count(nullptr), 0U);
    EXPECT_EQ(sfx_link_info(nullptr, 0), nullptr);
}

TEST(Settings, AreTypedAndTextual) {
    const EffectHandle effect = Create("rain+line-art-1+antiquated-movie+rain");
    EXPECT_EQ(sfx_set(effect.get(), "drop-size", "7"), SFX_OK);
    EXPECT_EQ(sfx_set_int(effect.get(), "3.drop-size", 8), SFX_OK);
    EXPECT_EQ(sfx_set_int(effect.get(), "BackgroundColor", 0x123456), SFX_OK);
    EXPECT_EQ(sfx_set_int(effect.get(), "sepia", 0), SFX_OK);
    EXPECT_EQ(sfx_set(effect.get(), "drop-size", "+-9"), SFX_ERROR_VALUE);
    EXPECT_STREQ(sfx_message(), "drop-size takes a whole number, not \"+-9\"");
    EXPECT_EQ(Get(effect, "0.drop-size"), "7");
    EXPECT_EQ(Get(effect, "3.DropSize"), "8");
    EXPECT_EQ(Get(effect, "background-color"), "#123456");
    EXPECT_EQ(Get(effect, "2.sepia"), "false");
    EXPECT_EQ(sfx_set_int(effect.get(), "sepia", -7), SFX_OK);
    int32_t value = 9;
    EXPECT_EQ(sfx_get_int(effect.get(), "sepia", &value), SFX_OK);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(sfx_set(effect.get(), "sepia", "OFF"), SFX_OK);
    EXPECT_EQ(Print(effect.get()),
              "rain:drop-size=7+line-art-1:background-color=#123456+antiquated-movie:sepia="
              "false+rain:drop-size=8");
    char small[4];
    EXPECT_EQ(sfx_get(effect.get(), "background-color", small, sizeof small), SFX_OK);
    EXPECT_STREQ(small, "#12");
    EXPECT_EQ(sfx_get(effect.get(), "background-color", small, 0), SFX_ERROR_ARGUMENT);
    EXPECT_STREQ(sfx_message(), "the size of the buffer is 0; the terminator needs 1");
    EXPECT_STREQ(small, "#12");

    for (const char* name :
         {"4.drop-size", "-1.drop-size", "x.drop-size", "1.drop-size", "dropp", "", ".", "0."}) {
        EXPECT_EQ(sfx_set_int(effect.get(), name, 5), SFX_ERROR_UNKNOWN) << name;
        EXPECT_EQ(sfx_get_int(effect.get(), name, &value), SFX_ERROR_UNKNOWN) << name;
    }
    for (const char* number : {"x", "+-5", "5 6", "1e1"}) {
        EXPECT_EQ(sfx_set(effect.get(), "drop-size", number), SFX_ERROR_VALUE) << number;
    }
    EXPECT_EQ(Get(effect, "drop-size"), "7");

    ASSERT_EQ(sfx_set_defaults(effect.get()), SFX_OK);
    EXPECT_EQ(Print(effect.get()), "rain+line-art-1+antiquated-movie+rain");
}

TEST(Settings, OutOfRangeAreClamped) {
    sfx_effect* created = nullptr;
    EXPECT_EQ(sfx_create("rain:drop-size=99999999999999999999", &created), SFX_CLAMPED);
    const EffectHandle effect(created);
    EXPECT_EQ(Get(effect, "drop-size"), "16");
    EXPECT_EQ(sfx_set_int(effect.get(), "drop-size", INT32_MIN), SFX_CLAMPED);
    EXPECT_STREQ(sfx_message(), "drop-size is from 2 to 16; it is now 2");
    EXPECT_EQ(Get(effect, "drop-size"), "2");
    EXPECT_EQ(sfx_set(effect.get(), "drop-size", "17"), SFX_CLAMPED);
    EXPECT_EQ(sfx_set(effect.get(), "drop-size", "16"), SFX_OK);
    const EffectHandle lines = Create("line-art-1");
    EXPECT_EQ(sfx_set(lines.get(), "background-color", "300,-5,7"), SFX_CLAMPED);
    EXPECT_EQ(Get(lines, "background-color"), "#ff0007");
    EXPECT_EQ(sfx_set_int(lines.get(), "background-color", -1), SFX_CLAMPED);
}

TEST(Settings, OfAChoiceAreNamesOrNumbers) {
    const EffectHandle effect = Create("fish-eye:effect-type=2");
    EXPECT_EQ(Get(effect, "effect-type"), "cosine");
    EXPECT_EQ(sfx_set(effect.get(), "effect-type", "Arc_Cosine"), SFX_OK);
    EXPECT_EQ(Print(effect.get()), "fish-eye:effect-type=arc-cosine");
    EXPECT_EQ(sfx_set(effect.get(), "effect-type", "0"), SFX_CLAMPED);
    EXPECT_EQ(Get(effect, "effect-type"), "sphere");
}

// Also those that an effect resets when it is configured.
TEST(Settings, SurviveEverything) {
    const Home home;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        const EffectHandle effect = Create(info.id);
        TestFrame first(320, 240), second(160, 240);
        const auto expect = [&](bool other) {
            for (size_t j = 0; j < info.property_count; ++j) {
                const sfx_property_info& property = *info.properties[j];
                int32_t value = 0;
                ASSERT_EQ(sfx_get_int(effect.get(), property.id, &value), SFX_OK);
                const int32_t wanted = !other                               ? property.start
                                       : property.start == property.maximum ? property.minimum
                                                                            : property.maximum;
                // As many as fit into the picture; tiles start with a size that suits it.
                const bool fits = std::strcmp(property.id, "textures-number") == 0 ||
                                  (!other && std::strcmp(property.id, "tile-size") == 0);
                if (!fits) {
                    EXPECT_EQ(value, wanted) << info.id << " " << property.id;
                }
            }
        };
        expect(false);
        ASSERT_GE(Process(effect, first, 0), 0);
        expect(false);
        for (size_t j = 0; j < info.property_count; ++j) {
            const sfx_property_info& property = *info.properties[j];
            ASSERT_EQ(sfx_set_int(effect.get(), property.id,
                                  property.start == property.maximum ? property.minimum : property.maximum),
                      SFX_OK);
        }
        expect(true);
        ASSERT_GE(Process(effect, first, 1), 0);
        expect(true);
        ASSERT_GE(Process(effect, second, 2), 0);
        expect(true);
        ASSERT_EQ(sfx_reset(effect.get()), SFX_OK);
        expect(true);
        ASSERT_GE(sfx_prepare(effect.get(), 64, 64), 0);
        expect(true);
        ASSERT_EQ(sfx_set_defaults(effect.get()), SFX_OK);
        expect(false);
    }
}

TEST(Settings, TakeEffectInTheNextFrame) {
    const EffectHandle changed = Create("tiled-up"), fixed = Create("tiled-up:tile-size=20");
    TestFrame a = TestFrame(160, 120).DrawScene(0), b = a;
    ASSERT_EQ(sfx_prepare(changed.get(), 160, 120), SFX_OK);
    ASSERT_EQ(sfx_set_int(changed.get(), "tile-size", 20), SFX_OK);
    ASSERT_EQ(Process(changed, a, 0), SFX_OK);
    ASSERT_EQ(Process(fixed, b, 0), SFX_OK);
    TestFrame plain = TestFrame(160, 120).DrawScene(0);
    const EffectHandle start = Create("tiled-up");
    ASSERT_EQ(Process(start, plain, 0), SFX_OK);
    EXPECT_FALSE(a == plain);
}

TEST(Settings, ComeFromFiles) {
    const Home home;
    WriteFile(home.Path("colour.txt"), "12 34 56\n");
    const EffectHandle effect = Create("sepia+line-art-2");
    ASSERT_EQ(sfx_load_settings(effect.get(), home.Path("colour.txt").c_str()), SFX_OK);
    EXPECT_EQ(Get(effect, "background-color"), "#0c2238");
    EXPECT_EQ(Print(effect.get()), "sepia+line-art-2:background-color=#0c2238");
    TestFrame frame(64, 48);
    ASSERT_EQ(Process(effect, frame, 0), SFX_OK);
    EXPECT_EQ(Get(effect, "background-color"), "#0c2238");
    ASSERT_EQ(sfx_set(effect.get(), "background-color", "#010203"), SFX_OK);
    TestFrame other(48, 64);
    ASSERT_EQ(Process(effect, other, 0), SFX_OK);
    EXPECT_EQ(Get(effect, "background-color"), "#010203");
    WriteFile(home.Path("colour.txt"), "1 1 1\n");
    ASSERT_EQ(sfx_load_settings(effect.get(), home.Path("colour.txt").c_str()), SFX_OK);  // while it runs
    EXPECT_EQ(Get(effect, "background-color"), "#010101");

    EXPECT_EQ(sfx_load_settings(effect.get(), home.Path("none.txt").c_str()), SFX_ERROR_FILE);
    EXPECT_EQ(sfx_load_settings(effect.get(), home.Path("").c_str()), SFX_ERROR_FILE);
    ASSERT_TRUE(MakePipe(home.Path("pipe")));
    EXPECT_EQ(sfx_load_settings(effect.get(), home.Path("pipe").c_str()), SFX_ERROR_FILE);
    EXPECT_EQ(sfx_load_settings(Create("sepia").get(), home.Path("colour.txt").c_str()), SFX_ERROR_UNKNOWN);
    EXPECT_EQ(sfx_load_settings(effect.get(), nullptr), SFX_ERROR_ARGUMENT);
}

#if !defined(_WIN32)
// A short path may lead to a file whose full path is too long for the system.
TEST(Settings, OfAFileThatAnEffectCannotOpenAreRefused) {
    const Home home;
    const std::string name(250, 'd');
    for (int depth = 0; depth < 20; ++depth) {
        fs::create_directory(name);
        fs::current_path(name);
    }
    std::ofstream("colour.txt") << "12 34 56\n";
    const EffectHandle effect = Create("sepia+line-art-2:background-color=#445566");
    EXPECT_EQ(sfx_load_settings(effect.get(), "colour.txt"), SFX_ERROR_FILE);
    EXPECT_EQ(std::string(sfx_message()).find("line-art-2 does not take the settings file /"), 0U)
        << sfx_message();
    EXPECT_EQ(Print(effect.get()), "sepia+line-art-2:background-color=#445566");
}
#endif

TEST(Settings, FromAFileReplaceWhatWasSet) {
    const Home home;
    WriteFile(home.Path("black.txt"), "0 0 0\n");  // the starting value
    const EffectHandle effect =
        Create("line-art-1:background-color=#112233+line-art-2:background-color=#445566");
    ASSERT_EQ(sfx_load_settings(effect.get(), home.Path("black.txt").c_str()), SFX_OK);
    EXPECT_EQ(Print(effect.get()), "line-art-1:background-color=#000000+line-art-2:background-color=#000000");
}

TEST(Settings, FilesLeaveOtherPropertiesAlone) {
    const Home home;
    WriteFile(home.Path("cascade.txt"), "no cascade\n");
    const EffectHandle effect = Create("picture-me:textures-number=1");
    TestFrame frame(320, 240);
    ASSERT_GE(Process(effect, frame, 0), 0);
    ASSERT_EQ(sfx_load_settings(effect.get(), home.Path("cascade.txt").c_str()), SFX_OK);
    EXPECT_EQ(Print(effect.get()), "picture-me:textures-number=1");
    ASSERT_EQ(Process(effect, frame, 1), SFX_OK);
    EXPECT_EQ(Get(effect, "textures-number"), "1");
}

// ---- presets -----------------------------------------------------------------------------------------

const sfx_preset_info* FindPreset(const std::string& id) {
    for (size_t i = 0; i < sfx_preset_count(); ++i) {
        if (sfx_preset_at(i)->id == id) {
            return sfx_preset_at(i);
        }
    }
    return nullptr;
}

TEST(Presets, ThatShipAllWork) {
    const Home home;
    size_t shipped = 0;
    for (size_t i = 0; i < sfx_preset_count(); ++i) {
        const sfx_preset_info& preset = *sfx_preset_at(i);
        shipped += preset.is_user == 0 ? 1 : 0;
        EXPECT_EQ(preset.struct_size, sizeof preset);
        EXPECT_STRNE(preset.title, "");
        EXPECT_STRNE(preset.description, "");
        const EffectHandle effect = Create(std::string("preset:") + preset.id), plain = Create(preset.effect);
        // Its own text is the printed form, so that every setting in it says something.
        EXPECT_EQ(Print(effect.get()), preset.effect);
        for (int frame = 0; frame < 3; ++frame) {
            TestFrame a = TestFrame(160, 120).DrawScene(frame), b = a, before = a;
            ASSERT_GE(Process(effect, a, frame), 0) << sfx_message();
            ASSERT_GE(Process(plain, b, frame), 0);
            EXPECT_EQ(FirstDifference(a, b), "");
            EXPECT_FALSE(a == before) << preset.id;
        }
    }
    EXPECT_GE(shipped, 12U);
    EXPECT_EQ(sfx_preset_at(sfx_preset_count()), nullptr);
}

TEST(Presets, CanBeAdded) {
    const Home home;
    const std::string file = home.Path("mine.ini");
    WriteFile(file,
              "# mine\n\n[test-wet]\ntitle = Wet\r\neffect = rain:drop-size=9 + sepia\n; end\n"
              "[test-plain]\neffect=sepia\n");
    const size_t before = sfx_preset_count();
    ASSERT_EQ(sfx_load_presets(file.c_str()), SFX_OK) << sfx_message();
    ASSERT_EQ(sfx_preset_count(), before + 2);
    const sfx_preset_info* const wet = FindPreset("test-wet");
    ASSERT_NE(wet, nullptr);
    EXPECT_STREQ(wet->title, "Wet");
    EXPECT_STREQ(wet->effect, "rain:drop-size=9 + sepia");
    EXPECT_EQ(wet->is_user, 1);
    EXPECT_STREQ(FindPreset("test-plain")->title, "test-plain");
    EXPECT_EQ(Print(Create("sepia+Preset: Test_Wet +twirl-1").get()), "sepia+rain:drop-size=9+sepia+twirl-1");

    // A later one replaces an earlier one; what was given out stays valid.
    WriteFile(file, "[test-wet]\neffect = rain-drops\n");
    ASSERT_EQ(sfx_load_presets(file.c_str()), SFX_OK);
    EXPECT_EQ(sfx_preset_count(), before + 2);
    EXPECT_STREQ(wet->title, "Wet");
    EXPECT_EQ(Print(Create("preset:test-wet").get()), "rain-drops");

    const std::pair<const char*, const char*> wrong[] = {
        {"[a]\neffect = sepai\n", "line 2: there is no effect \"sepai\""},
        {"[a]\neffect = sepia\n[b]\neffect = rain:size=1\n", "line 4: rain has no property"},
        {"[a]\n", "line 1: an effect's name is missing"},
        {"effect = sepia\n", "line 1: this stands before the first section"},
        {"[A b]\n", "line 1: a preset's id"},
        {"[a\n", "line 1: a preset's id"},
        {"[]\n", "line 1: a preset's id"},
        {"[\n", "line 1: a preset's id"},
        {"[a]\nwhat\n", "line 2: neither"},
        {"[a]\ncolour = 1\n", "line 2: a preset has"},
        {"[a]\neffect = preset:noir\n", "line 2: a preset cannot refer"},
    };
    for (const auto& [text, message] : wrong) {
        WriteFile(file, text);
        EXPECT_EQ(sfx_load_presets(file.c_str()), SFX_ERROR_VALUE) << text;
        EXPECT_NE(std::string(sfx_message()).find(message), std::string::npos) << sfx_message();
        EXPECT_EQ(sfx_preset_count(), before + 2);
    }
    EXPECT_EQ(sfx_load_presets(home.Path("none.ini").c_str()), SFX_ERROR_FILE);
    EXPECT_EQ(sfx_load_presets("/dev/zero"), SFX_ERROR_FILE);
    EXPECT_EQ(sfx_load_presets(nullptr), SFX_ERROR_ARGUMENT);
}

// Needs a process of its own, because the user's file is read once.
TEST(PresetsOfTheUser, AreReadFromTheConfiguration) {
    if (std::getenv("SFX_TEST_ALONE") == nullptr) {
        const Home home;
        WriteFile(home.Path("config/specialeffects/presets.ini"),
                  "garbage\n[one]\neffect = sepia\n[bad]\neffect = sepai\nmore\n[two]\ntitle = Two\neffect = "
                  "rain\n[noir]\neffect = sepia\n");
        const Variable alone("SFX_TEST_ALONE", "1");
        const std::string command = ThisProgram() + " --gtest_filter=PresetsOfTheUser.* --gtest_brief=1";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return;
    }
    ASSERT_NE(FindPreset("one"), nullptr);
    EXPECT_EQ(FindPreset("one")->is_user, 1);
    EXPECT_EQ(FindPreset("bad"), nullptr);
    ASSERT_NE(FindPreset("two"), nullptr);
    EXPECT_STREQ(FindPreset("two")->title, "Two");
    EXPECT_STREQ(FindPreset("noir")->effect, "sepia");
}

// ---- data files --------------------------------------------------------------------------------------

std::vector<std::string> FilesBelow(const std::string& folder) {
    std::vector<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_directory()) {
            files.push_back(fs::relative(entry.path(), folder).generic_string());
        }
    }
    return files;
}

TEST(Data, OfCloudsIsMadeOnceInTheCache) {
    const Home home;
    std::vector<std::thread> threads;
    std::vector<uint64_t> sums(3);
    for (size_t i = 0; i < sums.size(); ++i) {
        threads.emplace_back([&, i] {
            const EffectHandle effect = Create("clouds");
            // The file is the same for every seed.
            EXPECT_EQ(sfx_set_seed(effect.get(), static_cast<uint32_t>(i * 1000)), SFX_OK);
            EXPECT_EQ(sfx_prepare(effect.get(), 64, 48), SFX_OK) << sfx_message();
            TestFrame frame(64, 48);
            EXPECT_EQ(Process(effect, frame, 0), SFX_OK);
            sums[i] = frame.Checksum();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sums, std::vector<uint64_t>(3, sums[0]));
    EXPECT_EQ(FilesBelow(home.Path("")), std::vector<std::string>{"cache/specialeffects/perlin.dat"});
    const std::string file = home.Path("cache/specialeffects/perlin.dat");
    EXPECT_EQ(fs::file_size(file), 20U * 640 * 480);

    // It is used, not made again; a caller's folder comes first.
    const auto time = fs::last_write_time(file);
    const EffectHandle effect = Create("clouds");
    ASSERT_EQ(sfx_prepare(effect.get(), 64, 48), SFX_OK);
    EXPECT_EQ(fs::last_write_time(file), time);
    WriteFile(home.Path("own/perlin.dat"), std::string(20 * 640 * 480, '\xFF'));
    ASSERT_EQ(sfx_set_data_folder(effect.get(), home.Path("own").c_str()), SFX_OK);
    ASSERT_EQ(sfx_reset(effect.get()), SFX_OK);
    TestFrame frame(64, 48);
    ASSERT_EQ(Process(effect, frame, 0), SFX_OK);
    EXPECT_NE(frame.Checksum(), sums[0]);
    EXPECT_EQ(fs::last_write_time(file), time);
}

TEST(Data, ThatCannotBeMadeIsReportedAndTheEffectRuns) {
    const Home home;
    // A file where the cache folder should be, and a pipe with the name of the data file.
    WriteFile(home.Path("cache"), "");
    fs::create_directories(home.Path("own"));
    ASSERT_TRUE(MakePipe(home.Path("own/haar.txt")));
    const EffectHandle clouds = Create("sepia+clouds");
    TestFrame frame = TestFrame(64, 48).DrawScene(0);
    ASSERT_EQ(Process(clouds, frame, 0), SFX_DATA_MISSING);
    EXPECT_NE(std::string(sfx_message()).find("clouds"), std::string::npos);
    EXPECT_NE(std::string(sfx_message()).find("perlin.dat"), std::string::npos);
    EXPECT_EQ(Process(clouds, frame, 1), SFX_OK);
    EXPECT_EQ(sfx_prepare(clouds.get(), 64, 48), SFX_OK);
    EXPECT_EQ(sfx_prepare(clouds.get(), 48, 48), SFX_DATA_MISSING);
    EXPECT_TRUE(fs::is_regular_file(home.Path("cache")));
}

TEST(Data, OfACallersFolderIsMadeThere) {
    const Home home;
    const EffectHandle effect = Create("clouds");
    ASSERT_EQ(sfx_set_data_folder(effect.get(), home.Path("Ähre/own").c_str()), SFX_OK);
    ASSERT_EQ(sfx_prepare(effect.get(), 64, 48), SFX_OK);
    EXPECT_EQ(FilesBelow(home.Path("")), std::vector<std::string>{"Ähre/own/perlin.dat"});
    EXPECT_EQ(sfx_set_data_folder(effect.get(), nullptr), SFX_OK);
}

// Nothing is written to the current directory.
TEST(Data, LeavesTheCurrentDirectoryAlone) {
    const Home home;
    const TemporaryDirectory current;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const EffectHandle effect = Create(sfx_effect_at(i)->id);
        TestFrame frame(64, 48);
        ASSERT_GE(Process(effect, frame, 0), 0);
    }
    EXPECT_TRUE(FilesBelow(current.path()).empty());
}

}  // namespace
