// Both filters at once, whose effects change every second. SE_SOAK_SECONDS in the environment says for how
// long.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "Host.h"
#include "tests/soak/Soak.h"

namespace {

std::string EffectSetting(size_t index) {
    return std::string(R"({"effect": ")") + sfx_effect_at(index % sfx_effect_count())->id + "\"}";
}

TEST(LongRun, EffectsThatChangeEverySecond) {
    Camera camera(R"({"effect": "sepia"})");
    const Source drawn = Create("test_picture", "Picture");
    SetStillPicture(drawn, {64, 48, std::vector<uint8_t>(size_t{64} * 48 * 4, 200)});
    const Source drawing = AddFilter(drawn, kAnyFilter, R"({"effect": "sepia"})");
    Show(drawn.get());

    std::atomic<bool> done = false;
    size_t frames = 0;
    std::thread sender([&] {
        constexpr auto kInterval = std::chrono::milliseconds(100);
        Picture picture(VIDEO_FORMAT_I420, 176, 144);
        for (uint64_t time = 0; !done; time += 100'000'000) {
            picture.Draw(static_cast<int>(time / 100'000'000 % 50));
            frames += camera.Try(picture, time) ? 1 : 0;
            std::this_thread::sleep_for(kInterval);
        }
    });
    const size_t seconds = SoakSetting("SE_SOAK_SECONDS", 5);
    ChangeEverySecond(seconds, sfx_effect_count(), [&](size_t index) {
        ForgetLog();
        Update(camera.filter, EffectSetting(index).c_str());
        Update(drawing, EffectSetting(index + 30).c_str());
    });
    done = true;
    sender.join();
    std::printf("%zu frames in %zu seconds\n", frames, seconds);
    EXPECT_GT(frames, seconds);
    EXPECT_GT(StatusOf(drawing).frames, 0);
    Show(nullptr);
    obs_source_filter_remove(drawn.get(), drawing.get());
}

}  // namespace
