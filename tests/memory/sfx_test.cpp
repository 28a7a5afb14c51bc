// libsfx when memory runs out: it reports an error, loses nothing, and the effect can be used again.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "sfx/sfx.h"
#include "tests/memory/Heap.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/TestFrame.h"

namespace {

bool IsMemoryOr(int status, int other) {
    return status == SFX_ERROR_MEMORY || status == other;
}

sfx_picture LayOver(std::vector<uint8_t>& pixels, sfx_format format, int32_t width, int32_t height) {
    sfx_picture picture = SFX_PICTURE_INIT;
    pixels.assign(sfx_picture_layout(nullptr, format, width, height, nullptr), 100);
    sfx_picture_layout(&picture, format, width, height, pixels.data());
    return picture;
}

class FailingAllocations : public testing::TestWithParam<const char*> {};

TEST_P(FailingAllocations, AreReportedAndLoseNothing) {
    const TemporaryDirectory directory;
    std::vector<uint8_t> first, second;
    const sfx_picture picture = LayOver(first, SFX_RGBA, 61, 33), other = LayOver(second, SFX_NV12, 32, 48);
    // What the library keeps for the process is allocated before.
    sfx_effect* warm = nullptr;
    ASSERT_GE(sfx_create(GetParam(), &warm), 0) << sfx_message();
    sfx_set_data_folder(warm, directory.path().c_str());
    ASSERT_GE(sfx_process(warm, &picture, 0), 0);
    sfx_destroy(warm);
    sfx_preset_count();

    // All of the first ones, and samples of those that are alike.
    for (int64_t n = 1; n <= 400; n += n < 60 ? 1 : 13) {
        SCOPED_TRACE(n);
        const int64_t before = heap::LiveBytes();
        heap::FailAllocation(n);
        sfx_effect *effect = nullptr, *copy = nullptr;
        const int created = sfx_create(GetParam(), &effect);
        ASSERT_TRUE(IsMemoryOr(created, SFX_OK));
        ASSERT_EQ(effect != nullptr, created == SFX_OK);
        if (effect != nullptr) {
            EXPECT_TRUE(IsMemoryOr(sfx_set_data_folder(effect, directory.path().c_str()), SFX_OK));
            const int prepared = sfx_prepare(effect, 61, 33);
            EXPECT_TRUE(IsMemoryOr(prepared, SFX_OK) || prepared == SFX_DATA_MISSING);
            const int processed = sfx_process(effect, &picture, 0);
            EXPECT_TRUE(IsMemoryOr(processed, SFX_OK) || processed == SFX_DATA_MISSING) << sfx_message();
            const int set = sfx_set(effect, "drop-size", "7");
            EXPECT_TRUE(IsMemoryOr(set, SFX_OK) || set == SFX_ERROR_UNKNOWN);
            EXPECT_TRUE(IsMemoryOr(sfx_clone(effect, &copy), SFX_OK));
            const int length = sfx_print(effect, nullptr, 0);
            EXPECT_TRUE(length > 0 || length == SFX_ERROR_MEMORY);
            const int changed = sfx_process(effect, &other, 1);
            EXPECT_TRUE(IsMemoryOr(changed, SFX_OK) || changed == SFX_DATA_MISSING) << sfx_message();
        }
        const bool failed = heap::HasFailed();
        heap::FailAllocation(0);
        if (effect != nullptr) {
            // With memory it continues.
            EXPECT_GE(sfx_process(effect, &other, 2), 0) << sfx_message();
            EXPECT_GE(sfx_process(effect, &picture, 3), 0) << sfx_message();
        }
        sfx_destroy(effect);
        sfx_destroy(copy);
        ASSERT_EQ(heap::LiveBytes(), before);
        if (!failed) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sfx, FailingAllocations,
                         testing::Values("sepia", "rain:drop-size=9+sketch-2", "preset:paparazzi",
                                         "clouds+logo-animation", "picture-me+moving-twirl",
                                         "time-distortion"));

TEST(SfxMemory, AllLinksTakeASettingsFileOrNone) {
    const TemporaryDirectory directory;
    std::ofstream("settings.txt") << "1 2 3\n";
    const std::string text = "line-art-1:background-color=#010101+picture-me:textures-number=1+line-art-2";
    std::vector<uint8_t> pixels;
    const sfx_picture picture = LayOver(pixels, SFX_I420, 64, 48);
    const auto print = [](const sfx_effect* effect) {
        std::string printed(static_cast<size_t>(sfx_print(effect, nullptr, 0)), ' ');
        sfx_print(effect, printed.data(), printed.size() + 1);
        return printed;
    };
    testing::internal::CaptureStderr();  // where the module says that the file is not a cascade
    for (const bool running : {false, true}) {
        SCOPED_TRACE(running);
        bool failed = true;
        for (int64_t n = 1; failed; ++n) {
            SCOPED_TRACE(n);
            sfx_effect *effect = nullptr, *untouched = nullptr;
            ASSERT_EQ(sfx_create(text.c_str(), &effect), SFX_OK);
            ASSERT_EQ(sfx_create(text.c_str(), &untouched), SFX_OK);
            if (running) {
                ASSERT_GE(sfx_process(effect, &picture, 0), 0);
            }
            heap::FailAllocation(n);
            const int status = sfx_load_settings(effect, "settings.txt");
            failed = heap::HasFailed();
            heap::FailAllocation(0);
            if (status == SFX_OK) {
                EXPECT_EQ(print(effect),
                          "line-art-1:background-color=#010203+picture-me:textures-number=1+"
                          "line-art-2:background-color=#010203");
            } else {
                ASSERT_EQ(status, SFX_ERROR_MEMORY) << sfx_message();
                EXPECT_EQ(print(effect), text);
                // Nor does a frame show any of it.
                std::vector<uint8_t> one, other;
                const sfx_picture first = LayOver(one, SFX_I420, 64, 48);
                const sfx_picture second = LayOver(other, SFX_I420, 64, 48);
                EXPECT_GE(sfx_process(effect, &first, 0), 0);
                EXPECT_GE(sfx_process(untouched, &second, 0), 0);
                EXPECT_EQ(one, other);
            }
            sfx_destroy(effect);
            sfx_destroy(untouched);
        }
    }
    testing::internal::GetCapturedStderr();
}

/// Once an effect runs, conversions take nothing more.
TEST(SfxMemory, FramesAllocateNothing) {
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        std::vector<uint8_t> pixels;
        const sfx_picture picture = LayOver(pixels, static_cast<sfx_format>(format), 63, 47);
        sfx_effect* effect = nullptr;
        ASSERT_EQ(sfx_create("gray-scale+sepia", &effect), SFX_OK);
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(sfx_process(effect, &picture, i), SFX_OK);
        }
        const int64_t before = heap::Allocations();
        ASSERT_EQ(sfx_process(effect, &picture, 4), SFX_OK);
        EXPECT_EQ(heap::Allocations(), before) << sfx_format_name(format);
        sfx_destroy(effect);
    }
}

}  // namespace
