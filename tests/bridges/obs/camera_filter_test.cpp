// The filter for asynchronous sources: its frames are libsfx's, byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <thread>

#include "Host.h"

namespace {

constexpr uint64_t kInterval = 33333333;

uint64_t TimeOf(int index) {
    return 1000 + static_cast<uint64_t>(index) * kInterval;
}

/// What libsfx makes of a picture.
void Process(const Effect& effect, Picture& picture, uint64_t time) {
    const sfx_picture view = picture.View();
    ASSERT_EQ(sfx_process(effect.get(), &view, static_cast<int64_t>(time)), SFX_OK) << sfx_message();
}

/// Sends frames of a moving scene and compares them with what `reference` makes of them. The first one has
/// been processed already.
void ExpectSameFrames(Camera& camera, const Effect& reference, Picture picture, int first, int end) {
    for (int index = first; index < end; ++index) {
        picture.Draw(index);
        const Picture result = camera.Send(picture, TimeOf(index));
        Process(reference, picture, TimeOf(index));
        ASSERT_TRUE(picture == result) << "frame " << index;
    }
}

struct FormatCase {
    video_format format;
    int width, height, padding;
    bool flip;
};

std::string NameOf(const testing::TestParamInfo<FormatCase>& info) {
    const FormatCase& c = info.param;
    return std::string(get_video_format_name(c.format)) + "_" + std::to_string(c.width) + "x" +
           std::to_string(c.height) + (c.flip ? "_flipped" : "") + (c.padding != 0 ? "_padded" : "");
}

class Formats : public testing::TestWithParam<FormatCase> {};

TEST_P(Formats, GiveTheFramesOfLibsfx) {
    const auto& [format, width, height, padding, flip] = GetParam();
    Camera camera(R"({"effect": "rain:drop-size=9+sepia", "seed": 7})");
    const Effect reference = CreateEffect("rain:drop-size=9+sepia", 7);
    Picture picture(format, width, height, padding);
    picture.flip = flip;
    picture.Draw(0);
    const Picture first = camera.SendUntilReady(picture, TimeOf(0));
    Process(reference, picture, TimeOf(0));
    EXPECT_TRUE(picture == first);
    ExpectSameFrames(camera, reference, picture, 1, 8);
}

INSTANTIATE_TEST_SUITE_P(
    CameraFilter, Formats,
    testing::Values(
        FormatCase{VIDEO_FORMAT_I420, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_I420, 161, 121, 0, false},
        FormatCase{VIDEO_FORMAT_I420, 160, 120, 32, false}, FormatCase{VIDEO_FORMAT_I420, 160, 120, 0, true},
        FormatCase{VIDEO_FORMAT_NV12, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_NV12, 162, 94, 0, true},
        FormatCase{VIDEO_FORMAT_YUY2, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_UYVY, 160, 120, 0, false},
        FormatCase{VIDEO_FORMAT_I422, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_I444, 160, 120, 0, false},
        FormatCase{VIDEO_FORMAT_RGBA, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_RGBA, 161, 121, 12, true},
        FormatCase{VIDEO_FORMAT_BGRA, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_BGRX, 160, 120, 0, false},
        FormatCase{VIDEO_FORMAT_BGR3, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_I40A, 160, 120, 0, false},
        FormatCase{VIDEO_FORMAT_I42A, 160, 120, 0, false}, FormatCase{VIDEO_FORMAT_YUVA, 160, 120, 0, false}),
    NameOf);

TEST(CameraFilter, LetsUnknownFormatsPassAndSaysSoOnce) {
    ForgetLog();
    Camera camera(R"({"effect": "polarize"})");
    Picture known(VIDEO_FORMAT_I420, 64, 48);
    camera.SendUntilReady(known.Draw(0), 0);
    Picture unknown(VIDEO_FORMAT_AYUV, 64, 48);
    for (int index = 0; index < 5; ++index) {
        unknown.Draw(index);
        EXPECT_TRUE(unknown == camera.Send(unknown, TimeOf(index)));
    }
    EXPECT_EQ(LogLines("AYUV pass unchanged").size(), 1U);
    EXPECT_FALSE(known == camera.Send(known, 0));
}

TEST(CameraFilter, RunsEveryEffectAndChangesOverWithoutAGap) {
    Camera camera(R"({"effect": "sepia+polarize"})");
    Picture picture(VIDEO_FORMAT_I420, 176, 144);
    Effect running = CreateEffect("sepia+polarize");
    int index = 0;
    picture.Draw(index);
    EXPECT_FALSE(picture == camera.SendUntilReady(picture, TimeOf(index)));
    Process(running, picture, TimeOf(index));
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const std::string id = sfx_effect_at(i)->id;
        SCOPED_TRACE(id);
        Update(camera.filter, (R"({"effect": ")" + id + R"("})").c_str());
        // The old effect runs on, frame by frame, until the new one begins.
        Effect next = CreateEffect(id);
        bool hasBegun = false;
        for (int tries = 0; tries < 4000 && !hasBegun; ++tries) {
            picture.Draw(++index);
            const Picture result = camera.Send(picture, TimeOf(index));
            hasBegun = StatusOf(camera.filter).effect == id;
            Process(hasBegun ? next : running, picture, TimeOf(index));
            ASSERT_TRUE(picture == result) << "frame " << index;
        }
        ASSERT_TRUE(hasBegun);
        running = std::move(next);
        ExpectSameFrames(camera, running, picture, index + 1, index + 4);
        index += 3;
    }
}

std::string JsonOf(const sfx_effect_info& effect, const sfx_property_info& property, int32_t value) {
    std::string text = std::to_string(value);
    if (property.type == SFX_COLOR) {
        text = std::to_string(0xFF000000LL | (value & 0xFF) << 16 | (value & 0xFF00) | (value >> 16 & 0xFF));
    } else if (property.type == SFX_BOOLEAN && property.choice_count == 0) {
        text = value != 0 ? "true" : "false";
    }
    for (size_t i = 0; i < property.choice_count; ++i) {
        if (property.choices[i].value == value) text = "\"" + std::string(property.choices[i].id) + "\"";
    }
    return std::string("{\"") + effect.id + "." + property.id + "\": " + text + "}";
}

TEST(CameraFilter, FollowsEveryPropertyWhileFramesRun) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& effect = *sfx_effect_at(i);
        if (effect.property_count == 0) continue;
        Camera camera((std::string(R"({"effect": ")") + effect.id + "\"}").c_str());
        const Effect reference = CreateEffect(effect.id);
        Picture picture(VIDEO_FORMAT_I420, 96, 64);
        int index = 0;
        picture.Draw(index);
        camera.SendUntilReady(picture, TimeOf(index));
        Process(reference, picture, TimeOf(index));
        for (size_t k = 0; k < effect.property_count; ++k) {
            const sfx_property_info& property = *effect.properties[k];
            const int32_t between = std::clamp(property.maximum / 3 + 1, property.minimum, property.maximum);
            for (const int32_t value : std::set{property.minimum, property.maximum, between}) {
                SCOPED_TRACE(std::string(effect.id) + " " + property.id + " " + std::to_string(value));
                Update(camera.filter, JsonOf(effect, property, value).c_str());
                ASSERT_GE(sfx_set_int(reference.get(), property.id, value), 0);
                char expected[512];
                sfx_print(reference.get(), expected, sizeof expected);
                // No new effect takes over: the frames go on counting.
                ASSERT_TRUE(WaitUntil([&] { return StatusOf(camera.filter).effect == expected; }))
                    << StatusOf(camera.filter).effect << " instead of " << expected;
                ExpectSameFrames(camera, reference, picture, index + 1, index + 3);
                index += 2;
                ASSERT_EQ(StatusOf(camera.filter).frames, index + 1);
            }
        }
    }
}

TEST(CameraFilter, ClampsAndIgnoresWhatIsNoValue) {
    Camera camera(R"({"effect": "rain", "rain.drop-size": 1000, "rain.drop-period": "often", "sepia.none": 1,
                      "clouds.type": 17})");
    Picture picture(VIDEO_FORMAT_I420, 64, 48);
    camera.SendUntilReady(picture.Draw(0), 0);
    EXPECT_EQ(StatusOf(camera.filter).effect, "rain:drop-size=16");
}

TEST(CameraFilter, KeepsTheEffectWhereAnotherIsUnknown) {
    ForgetLog();
    Camera camera(R"({"effect": "sepia"})");
    Picture picture(VIDEO_FORMAT_I420, 64, 48);
    camera.SendUntilReady(picture.Draw(0), 0);
    Update(camera.filter, R"({"effect": "sepiaa"})");
    EXPECT_TRUE(WaitUntil([] { return !LogLines("sepiaa").empty(); }));
    Update(camera.filter, R"({"seed": 3})");
    WaitForFrames(20);
    EXPECT_EQ(LogLines("sepiaa").size(), 1U);
    EXPECT_EQ(StatusOf(camera.filter).effect, "sepia");
    Update(camera.filter, R"({"effect": "preset:noir"})");
    EXPECT_TRUE(camera.WaitForEffect("spot-light-2+gray-scale", picture));
}

TEST(CameraFilter, StartsAnewWithAnotherSeed) {
    Camera camera(R"({"effect": "quark", "seed": 5})");
    Picture picture(VIDEO_FORMAT_I420, 64, 48);
    camera.SendUntilReady(picture.Draw(0), 0);
    Update(camera.filter, R"({"seed": 6})");
    const Effect reference = CreateEffect("quark", 6);
    const Picture first = picture;
    ASSERT_TRUE(WaitUntil([&] {
        camera.Send(first, TimeOf(0));
        return StatusOf(camera.filter).frames == 1;
    }));
    Process(reference, picture, TimeOf(0));
    ExpectSameFrames(camera, reference, picture, 1, 20);
}

TEST(CameraFilter, FollowsChangesOfSizeAndFormat) {
    Camera camera(R"({"effect": "time-distortion"})");
    const Effect reference = CreateEffect("time-distortion");
    Picture picture(VIDEO_FORMAT_I420, 160, 120);
    camera.SendUntilReady(picture.Draw(0), TimeOf(0));
    Process(reference, picture, TimeOf(0));
    int index = 0;
    for (const auto& [format, width, height] :
         {std::tuple(VIDEO_FORMAT_I420, 160, 120), std::tuple(VIDEO_FORMAT_NV12, 160, 120),
          std::tuple(VIDEO_FORMAT_NV12, 320, 240), std::tuple(VIDEO_FORMAT_BGRA, 33, 17),
          std::tuple(VIDEO_FORMAT_YUY2, 2, 2), std::tuple(VIDEO_FORMAT_RGBA, 1, 1),
          std::tuple(VIDEO_FORMAT_I444, 640, 360)}) {
        ExpectSameFrames(camera, reference, Picture(format, width, height), index + 1, index + 4);
        index += 3;
    }
}

TEST(CameraFilter, ShowsNoUnchangedFrameWhereTheSizeChangesAllTheTime) {
    Camera camera(R"({"effect": "liquefy-2"})");
    const Effect reference = CreateEffect("liquefy-2");
    camera.SendUntilReady(Picture(VIDEO_FORMAT_I420, 64, 48).Draw(0), TimeOf(0));
    int shown = 0;
    for (int index = 1; index < 100; ++index) {
        const Picture picture = Picture(VIDEO_FORMAT_I420, 320 + 2 * index, 240).Draw(index);
        if (!camera.Try(picture, TimeOf(index))) continue;
        ++shown;
        Picture expected = picture;
        Process(reference, expected, TimeOf(index));
        ASSERT_TRUE(expected == camera.Latest(picture)) << "frame " << index;
    }
    EXPECT_GE(shown, 100 / 8 - 1);
}

TEST(CameraFilter, SaysThatAnEffectIsTooSlow) {
    ForgetLog();
    Camera camera(R"({"effect": "chalk-2+sketch-2+chalk-3"})");
    Picture picture(VIDEO_FORMAT_I420, 1920, 1080);
    picture.Draw(0);
    camera.SendUntilReady(picture, 0);
    for (int index = 0; index < 110; ++index) camera.Send(picture, TimeOf(index));
    const std::vector<std::string> lines = LogLines("ms between frames");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("Chalk 2 and more takes "), std::string::npos) << lines[0];
    EXPECT_NE(lines[0].find("at 1920x1080; there are 5.0 ms"), std::string::npos) << lines[0];
}

TEST(CameraFilter, MayBeAddedAndRemovedWhileFramesRun) {
    Camera camera;
    std::atomic<bool> stop = false;
    std::thread sender([&] {
        Picture picture(VIDEO_FORMAT_I420, 64, 48);
        for (int index = 0; !stop; ++index) {
            const obs_source_frame frame = picture.Draw(index).Frame(TimeOf(index));
            obs_source_output_video(camera.source.get(), &frame);
            Pause();
        }
    });
    for (int round = 0; round < 60; ++round) {
        const std::string id = sfx_effect_at(static_cast<size_t>(round) % sfx_effect_count())->id;
        const Source filter =
            AddFilter(camera.source, kCameraFilter, (R"({"effect": ")" + id + "\"}").c_str());
        if (round % 3 != 0) WaitUntil([&] { return StatusOf(filter).frames > 0; });
        if (round % 2 == 0) Update(filter, R"({"effect": "rain", "rain.drop-size": 4})");
        if (round % 5 == 0) obs_source_set_enabled(filter.get(), false);
        obs_source_filter_remove(camera.source.get(), filter.get());
    }
    stop = true;
    sender.join();
}

TEST(CameraFilter, RunsFiftyTimesAtOnce) {
    Camera camera;
    std::vector<Source> filters;
    for (size_t i = 0; i < 50; ++i) {
        const std::string id = sfx_effect_at(i)->id;
        filters.push_back(AddFilter(camera.source, kCameraFilter, (R"({"effect": ")" + id + "\"}").c_str()));
    }
    Picture picture(VIDEO_FORMAT_I420, 64, 48);
    picture.Draw(0);
    EXPECT_TRUE(WaitUntil([&] {
        camera.Send(picture, 0);
        return std::ranges::all_of(filters, [](const Source& filter) { return StatusOf(filter).frames > 0; });
    }));
    for (const Source& filter : filters) obs_source_filter_remove(camera.source.get(), filter.get());
}

TEST(CameraFilter, EndsBeforeAndWithoutAnyFrame) {
    for (int round = 0; round < 20; ++round) Camera(R"({"effect": "clouds"})");
}

}  // namespace
