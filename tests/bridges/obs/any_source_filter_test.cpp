// The filter that draws, for any source: what comes out of the canvas, one frame late.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "Host.h"

namespace {

/// A picture of gradients and edges; opaque, or with alpha from 0 to 255 from left to right, by which its
/// colours are multiplied.
StillPicture Scene(int width, int height, bool isOpaque) {
    StillPicture scene{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int alpha = isOpaque ? 255 : x * 255 / (width - 1);
            for (const int value : {x * 255 / width, y * 255 / height, (x / 8 + y / 8) % 2 * 200 + 20}) {
                scene.pixels.push_back(static_cast<uint8_t>(value * alpha / 255));
            }
            scene.pixels.push_back(static_cast<uint8_t>(alpha));
        }
    }
    return scene;
}

StillPicture Plain(uint8_t gray) {
    StillPicture plain{static_cast<int>(kCanvasWidth), static_cast<int>(kCanvasHeight), {}};
    for (uint32_t i = 0; i < kCanvasWidth * kCanvasHeight; ++i) {
        plain.pixels.insert(plain.pixels.end(), {gray, gray, gray, 255});
    }
    return plain;
}

void Process(const std::string& text, StillPicture& picture) {
    const Effect effect = CreateEffect(text);
    sfx_picture view;
    sfx_picture_layout(&view, SFX_RGBA, picture.width, picture.height, picture.pixels.data());
    ASSERT_EQ(sfx_process(effect.get(), &view, 0), SFX_OK);
}

/// The largest difference of red, green and blue between the canvas and a picture at its top left.
int Difference(const std::vector<uint8_t>& canvas, const StillPicture& picture) {
    int difference = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const uint8_t* const shown =
                &canvas[(static_cast<size_t>(y) * kCanvasWidth + static_cast<size_t>(x)) * 4];
            const uint8_t* const meant = &picture.pixels[static_cast<size_t>(y * picture.width + x) * 4];
            for (int c = 0; c < 3; ++c) difference = std::max(difference, std::abs(shown[2 - c] - meant[c]));
        }
    }
    return difference;
}

class Shown {
  public:
    explicit Shown(obs_source_t* source) { Show(source); }
    ~Shown() { Show(nullptr); }
};

bool WaitForFilter(const Source& filter) {
    return WaitUntil([&] { return StatusOf(filter).frames > 2; });
}

TEST(AnySourceFilter, DrawsTheFramesOfLibsfx) {
    // The last two are smaller than the canvas, and odd.
    for (const auto& [text, width, height] :
         {std::tuple("polarize", 160, 96), std::tuple("sepia", 160, 96),
          std::tuple("comic-book+twirl-1", 120, 80), std::tuple("fish-eye", 101, 67)}) {
        SCOPED_TRACE(text);
        const Source source = Create("test_picture", "Picture");
        StillPicture scene = Scene(width, height, true);
        SetStillPicture(source, scene);
        const Source filter =
            AddFilter(source, kAnyFilter, (std::string(R"({"effect": ")") + text + "\"}").c_str());
        const Shown shown(source.get());
        ASSERT_TRUE(WaitForFilter(filter));
        const std::vector<uint8_t> canvas = NextCanvas();
        EXPECT_GT(Difference(canvas, scene), 50);
        Process(text, scene);
        EXPECT_EQ(Difference(canvas, scene), 0);
        obs_source_filter_remove(source.get(), filter.get());
    }
}

TEST(AnySourceFilter, DrawsTheSameInAScene) {
    const Source source = Create("test_picture", "Picture");
    StillPicture picture = Scene(160, 96, true);
    SetStillPicture(source, picture);
    const Source filter = AddFilter(source, kAnyFilter, R"({"effect": "polarize"})");
    obs_scene_t* const scene = obs_scene_create("Scene");
    obs_scene_add(scene, source.get());
    {
        const Shown shown(obs_scene_get_source(scene));
        ASSERT_TRUE(WaitForFilter(filter));
        Process("polarize", picture);
        EXPECT_EQ(Difference(NextCanvas(), picture), 0);
    }
    obs_source_filter_remove(source.get(), filter.get());
    // A scene is a source, too.
    const Source onScene =
        AddFilter(Source(obs_source_get_ref(obs_scene_get_source(scene)), obs_source_release), kAnyFilter,
                  R"({"effect": "polarize"})");
    {
        const Shown shown(obs_scene_get_source(scene));
        ASSERT_TRUE(WaitForFilter(onScene));
        EXPECT_EQ(Difference(NextCanvas(), picture), 0);
    }
    obs_source_filter_remove(obs_scene_get_source(scene), onScene.get());
    obs_scene_release(scene);
}

TEST(AnySourceFilter, TakesAnAsynchronousSourceToo) {
    Camera camera;
    Picture picture(VIDEO_FORMAT_BGRA, 160, 96);
    picture.Draw(3);
    for (size_t i = 3; i < picture.planes[0].size(); i += 4) picture.planes[0][i] = 255;
    const Source filter = AddFilter(camera.source, kAnyFilter, R"({"effect": "polarize"})");
    const Shown shown(camera.source.get());
    camera.Send(picture, 0);
    ASSERT_TRUE(WaitUntil([&] {
        camera.Send(picture, 0);
        return StatusOf(filter).frames > 2;
    }));
    const std::vector<uint8_t> canvas = NextCanvas();
    const Effect reference = CreateEffect("polarize");
    const sfx_picture view = picture.View();
    ASSERT_EQ(sfx_process(reference.get(), &view, 0), SFX_OK);
    EXPECT_EQ(canvas, picture.planes[0]);
    obs_source_filter_remove(camera.source.get(), filter.get());
}

TEST(AnySourceFilter, KeepsAlpha) {
    const Source below = Create("test_picture", "Below");
    SetStillPicture(below, Plain(90));
    const Source above = Create("test_picture", "Above");
    const StillPicture picture = Scene(160, 96, false);
    // The test's source draws colours that are not multiplied: OBS's usual blending does it.
    StillPicture straight = Scene(160, 96, true);
    for (size_t i = 3; i < straight.pixels.size(); i += 4) straight.pixels[i] = picture.pixels[i];
    SetStillPicture(above, straight);
    const Source filter = AddFilter(above, kAnyFilter, R"({"effect": "polarize"})");
    obs_scene_t* const scene = obs_scene_create("Scene");
    obs_scene_add(scene, below.get());
    obs_scene_add(scene, above.get());
    {
        const Shown shown(obs_scene_get_source(scene));
        ASSERT_TRUE(WaitForFilter(filter));
        const std::vector<uint8_t> filtered = NextCanvas();
        obs_source_filter_remove(above.get(), filter.get());
        // The same without the filter, of a picture that libsfx has changed before.
        StillPicture changed = straight;
        Process("polarize", changed);
        SetStillPicture(above, changed);
        const std::vector<uint8_t> expected = NextCanvas();
        int difference = 0;
        for (size_t i = 0; i < expected.size(); ++i) {
            difference = std::max(difference, std::abs(filtered[i] - expected[i]));
        }
        // The way through the textures loses bits of colour where alpha is low.
        EXPECT_LE(difference, 5);
        for (size_t y = 0; y < kCanvasHeight; ++y) EXPECT_EQ(filtered[y * kCanvasWidth * 4], 90);
    }
    obs_scene_release(scene);
}

/// Shows another gray in each frame, in a source with the filter and in one without, beside each other.
struct Counter {
    const Source& plain;
    const Source& filtered;
    int frame = 0;
};

TEST(AnySourceFilter, IsOneFrameLate) {
    const Source plain = Create("test_picture", "Plain");
    const Source filtered = Create("test_picture", "Filtered");
    SetStillPicture(plain, Plain(0));
    SetStillPicture(filtered, Plain(0));
    const Source filter = AddFilter(filtered, kAnyFilter, R"({"effect": "polarize"})");
    obs_scene_t* const scene = obs_scene_create("Scene");
    obs_scene_add(scene, plain.get());
    obs_sceneitem_t* const item = obs_scene_add(scene, filtered.get());
    const vec2 position{{{kCanvasWidth / 2, 0}}};
    obs_sceneitem_set_pos(item, &position);
    // The gray of one frame with the filter, and of the frame before without, where both are there: OBS
    // repeats and leaves out frames of its output where the machine is slow.
    struct Pairs {
        std::mutex mutex;
        std::vector<std::pair<int, int>> grays;
        int seen = 0, before = -1;
    } pairs;
    Counter counter{plain, filtered};
    const auto count = [](void* data, float) {
        auto& c = *static_cast<Counter*>(data);
        c.frame = (c.frame + 1) % 50;
        SetStillPicture(c.plain, Plain(static_cast<uint8_t>(20 + 4 * c.frame)));
        SetStillPicture(c.filtered, Plain(static_cast<uint8_t>(20 + 4 * c.frame)));
    };
    const auto keep = [](void* data, video_data* frame) {
        auto& p = *static_cast<Pairs*>(data);
        const std::lock_guard lock(p.mutex);
        const int gray = frame->data[0][0];
        const bool isNext = (gray - p.before + 200) % 200 == 4;
        if (isNext && ++p.seen > 4) {
            p.grays.emplace_back(frame->data[0][size_t{4} * (kCanvasWidth - 1)], p.before);
        }
        p.before = gray;
    };
    {
        const Shown shown(obs_scene_get_source(scene));
        ASSERT_TRUE(WaitForFilter(filter));
        obs_add_tick_callback(count, &counter);
        obs_add_raw_video_callback(nullptr, keep, &pairs);
        EXPECT_TRUE(WaitUntil([&] {
            const std::lock_guard lock(pairs.mutex);
            return pairs.grays.size() > 30;
        }));
        obs_remove_raw_video_callback(keep, &pairs);
        obs_remove_tick_callback(count, &counter);
    }
    for (const auto& [shown, before] : pairs.grays) {
        StillPicture expected{2, 2, std::vector<uint8_t>(16, static_cast<uint8_t>(before))};
        Process("polarize", expected);
        EXPECT_EQ(shown, expected.pixels[2]);  // blue, too
    }
    obs_source_filter_remove(filtered.get(), filter.get());
    obs_scene_release(scene);
}

TEST(AnySourceFilter, FollowsChangesOfSizeWithoutAPlainFrame) {
    const Source source = Create("test_picture", "Picture");
    SetStillPicture(source, Scene(160, 96, true));
    const Source filter = AddFilter(source, kAnyFilter, R"({"effect": "gray-scale"})");
    struct Colors {
        std::atomic<int> frames = 0, colored = 0;
    } colors;
    const auto look = [](void* data, video_data* frame) {
        auto& seen = *static_cast<Colors*>(data);
        ++seen.frames;
        for (uint32_t y = 0; y < kCanvasHeight; ++y) {
            const uint8_t* const row = frame->data[0] + size_t{y} * frame->linesize[0];
            for (uint32_t x = 0; x < kCanvasWidth; ++x) {
                const auto [low, high] = std::minmax({row[4 * x], row[4 * x + 1], row[4 * x + 2]});
                if (high - low > 8) {
                    ++seen.colored;
                    return;
                }
            }
        }
    };
    {
        const Shown shown(source.get());
        ASSERT_TRUE(WaitForFilter(filter));
        WaitForFrames(4);
        obs_add_raw_video_callback(nullptr, look, &colors);
        for (int round = 0; round < 40; ++round) {
            SetStillPicture(source, Scene(40 + 3 * round, 30 + round, true));
            WaitForFrames(2);
        }
        EXPECT_TRUE(WaitUntil([&] { return colors.frames > 20; }));
        obs_remove_raw_video_callback(look, &colors);
        EXPECT_EQ(colors.colored, 0) << "of " << colors.frames;
    }
    obs_source_filter_remove(source.get(), filter.get());
}

TEST(AnySourceFilter, LivesThroughScenesSizesAndRemoval) {
    std::vector<Source> sources, filters;
    std::vector<obs_scene_t*> scenes;
    for (int i = 0; i < 4; ++i) {
        obs_scene_t* const scene = scenes.emplace_back(obs_scene_create("Scene"));
        Source source = Create("test_picture", "Picture");
        SetStillPicture(source, Scene(100 + i, 70 - i, i % 2 == 0));
        obs_scene_add(scene, source.get());
        // Sources with a size of nothing, too.
        Source empty = Create("test_picture", "Empty");
        obs_scene_add(scene, empty.get());
        filters.push_back(AddFilter(empty, kAnyFilter, R"({"effect": "sepia"})"));
        for (const char* const effect : {"rain", "time-distortion", "preset:noir"}) {
            filters.push_back(
                AddFilter(source, kAnyFilter, (std::string(R"({"effect": ")") + effect + "\"}").c_str()));
        }
        sources.push_back(std::move(source));
        sources.push_back(std::move(empty));
    }
    for (int round = 0; round < 60; ++round) {
        const auto at = static_cast<size_t>(round) % scenes.size();
        Show(obs_scene_get_source(scenes[at]));
        WaitForFrames(3);
        SetStillPicture(sources[2 * at], Scene(50 + round, 40 + round % 7, round % 3 == 0));
        if (round % 4 == 0) Update(filters[4 * at + 1], R"({"effect": "sketch-1"})");
        if (round % 7 == 0) obs_source_set_enabled(filters[4 * at + 2].get(), round % 2 == 0);
        if (round > 40) {
            obs_source_filter_remove(sources[2 * at].get(),
                                     filters[4 * at + static_cast<size_t>(round) % 4].get());
        }
    }
    Show(nullptr);
    filters.clear();
    sources.clear();
    for (obs_scene_t* const scene : scenes) obs_scene_release(scene);
}

}  // namespace
