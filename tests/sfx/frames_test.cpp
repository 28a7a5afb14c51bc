// Frames through sfx_process equal the module's own, in every format.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "framework/AdditiveRandom.h"
#include "framework/Catalogue.h"
#include "framework/Surroundings.h"
#include "tests/sfx/Handles.h"
#include "tests/sfx/PlainPicture.h"
#include "tests/support/EffectDriver.h"

namespace {

constexpr int kFrames = 12;

/// What a host of the contract can give an effect: a clock, a generator with a seed, files of one folder.
class HostSurroundings final : public Surroundings {
  public:
    HostSurroundings(uint32_t seed, std::string folder) : random_(seed), folder_(std::move(folder)) {}
    int64_t Milliseconds() override { return now; }
    int32_t Rand() override { return random_.Next(); }
    void Srand(uint32_t seed) override { random_.Seed(seed); }
    std::string DataFile(const std::string& name) override { return folder_ + "/" + name; }
    std::string NewDataFile(const std::string&) override { return {}; }

    int64_t now = 2000;

  private:
    AdditiveRandom random_;
    std::string folder_;
};

std::vector<TestFrame> Scene(int32_t width, int32_t height, int count = kFrames) {
    std::vector<TestFrame> frames;
    for (int i = 0; i < count; ++i) {
        frames.push_back(TestFrame(width, height).DrawScene(i));
    }
    return frames;
}

class EveryEffect : public testing::TestWithParam<size_t> {
  protected:
    const sfx_effect_info& Info() const { return *sfx_effect_at(GetParam()); }
};

// The same pictures come from the contract, driven with the same generator, clock and files.
TEST_P(EveryEffect, GivesTheModulesOwnFrames) {
    const Home home;
    const EffectHandle effect = Create(Info().id);
    ASSERT_EQ(sfx_set_data_folder(effect.get(), home.Path("data").c_str()), SFX_OK);
    ASSERT_GE(sfx_prepare(effect.get(), 176, 144), 0);

    HostSurroundings surroundings(SFX_DEFAULT_SEED, home.Path("data"));
    const SurroundingsScope scope(surroundings);
    EffectDriver direct(EffectCatalogue()[GetParam()].create());
    ASSERT_EQ(direct.Configure(176, 144), kSuccess);
    const std::vector<TestFrame> scene = Scene(176, 144);
    for (int i = 0; i < kFrames; ++i) {
        TestFrame wanted = scene[static_cast<size_t>(i)], given = wanted;
        surroundings.now = 2000 + 40 * i;
        ASSERT_EQ(direct.Process(wanted), kSuccess);
        ASSERT_EQ(Process(effect, given, i), SFX_OK) << sfx_message();
        ASSERT_EQ(FirstDifference(given, wanted), "") << "frame " << i;
        ASSERT_TRUE(given.GuardsIntact());
    }
}

TEST_P(EveryEffect, RepeatsItselfAfterAReset) {
    const Home home;
    const EffectHandle effect = Create(Info().id);
    sfx_set_seed(effect.get(), 7);
    const std::vector<TestFrame> scene = Scene(96, 64);
    std::vector<uint64_t> first;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < kFrames; ++i) {
            TestFrame frame = scene[static_cast<size_t>(i)];
            ASSERT_GE(Process(effect, frame, i), 0);
            if (round == 0) {
                first.push_back(frame.Checksum());
            } else {
                ASSERT_EQ(frame.Checksum(), first[static_cast<size_t>(i)]) << "frame " << i;
            }
        }
        if (round == 0) {
            ASSERT_EQ(sfx_reset(effect.get()), SFX_OK);
        } else {
            // So does a change of size and back.
            TestFrame other(64, 96);
            ASSERT_GE(Process(effect, other, kFrames), 0);
        }
    }
}

TEST_P(EveryEffect, TakesEverySizeAndFormat) {
    const Home home;
    const EffectHandle effect = Create(Info().id);
    int index = 0;
    for (const auto& [width, height] :
         std::vector<std::pair<int32_t, int32_t>>{{64, 48}, {1, 1}, {63, 49}, {2, 300}, {301, 1}, {16, 16}}) {
        for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
            for (const Rows rows : {Rows::kTight, Rows::kBottomUp}) {
                PlainPicture picture(static_cast<sfx_format>(format), width, height, rows);
                picture.Randomize(static_cast<uint64_t>(format));
                ASSERT_GE(sfx_process(effect.get(), &picture.record(), index++ * int64_t{33333333}), 0)
                    << sfx_message();
                ASSERT_TRUE(picture.GuardsIntact());
            }
        }
    }
}

std::string EffectCaseName(const testing::TestParamInfo<size_t>& info) {
    std::string name = EffectCatalogue()[info.param].shortName;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}
INSTANTIATE_TEST_SUITE_P(All, EveryEffect, testing::Range(size_t{0}, sfx_effect_count()), EffectCaseName);

/// The luma of a picture after an effect, tight.
std::vector<uint8_t> Luma(const PlainPicture& picture) {
    std::vector<uint8_t> luma;
    for (int32_t y = 0; y < picture.height(); ++y) {
        for (int32_t x = 0; x < picture.width(); ++x) {
            luma.push_back(*picture.Sample(0, x, y));
        }
    }
    return luma;
}

// All YUV formats hold the same picture of 4:2:0, so they have the same result.
TEST(Frames, AreTheSameInEveryFormat) {
    for (const char* text : {"sepia", "chalk-2+polarize", "rain:drop-size=9"}) {
        for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{{64, 48}, {63, 47}}) {
            std::vector<uint8_t> wanted;
            for (int format = SFX_I420; format <= SFX_UYVY; ++format) {
                const EffectHandle effect = Create(text);
                std::vector<uint8_t> given;
                for (int i = 0; i < 4; ++i) {
                    PlainPicture picture(static_cast<sfx_format>(format), width, height, Rows::kGaps);
                    TestRandom random(static_cast<uint64_t>(i));
                    for (int32_t y = 0; y < height; ++y) {
                        for (int32_t x = 0; x < width; ++x) {
                            *picture.Sample(0, x, y) = random.Byte();
                            *picture.Sample(1, x, y) = static_cast<uint8_t>(40 + x / 2 * 2 + i);
                            *picture.Sample(2, x, y) = static_cast<uint8_t>(200 - y / 2 * 2 - i);
                        }
                    }
                    ASSERT_EQ(sfx_process(effect.get(), &picture.record(), i), SFX_OK);
                    const std::vector<uint8_t> luma = Luma(picture);
                    given.insert(given.end(), luma.begin(), luma.end());
                    given.push_back(*picture.Sample(1, width / 2, height / 2));
                    given.push_back(*picture.Sample(2, width / 2, height / 2));
                }
                if (format == SFX_I420) {
                    wanted = given;
                }
                EXPECT_EQ(given, wanted) << text << " in " << sfx_format_name(format);
            }
        }
    }
}

TEST(Frames, OfOddSizeAreSeenWithTheEdgeRepeated) {
    const EffectHandle odd = Create("sketch-1"), even = Create("sketch-1");
    for (int i = 0; i < 3; ++i) {
        PlainPicture small(SFX_I420, 77, 55), large(SFX_I420, 78, 56);
        small.Randomize(static_cast<uint64_t>(i));
        for (int32_t y = 0; y < 56; ++y) {
            for (int32_t x = 0; x < 78; ++x) {
                for (int component = 0; component < 3; ++component) {
                    *large.Sample(component, x, y) =
                        *small.Sample(component, std::min(x, 76), std::min(y, 54));
                }
            }
        }
        ASSERT_EQ(sfx_process(odd.get(), &small.record(), i), SFX_OK);
        ASSERT_EQ(sfx_process(even.get(), &large.record(), i), SFX_OK);
        for (int32_t y = 0; y < 55; ++y) {
            for (int32_t x = 0; x < 77; ++x) {
                for (int component = 0; component < 3; ++component) {
                    ASSERT_EQ(*small.Sample(component, x, y), *large.Sample(component, x, y));
                }
            }
        }
    }
}

TEST(Frames, OfSeveralEffectsAreThoseOfOneAfterTheOther) {
    const EffectHandle row = Create("rain:drop-size=9+sepia+rain-drops");
    const EffectHandle rain = Create("rain:drop-size=9"), sepia = Create("sepia"),
                       drops = Create("rain-drops");
    // Each effect of a row has a seed of its own.
    sfx_set_seed(drops.get(), SFX_DEFAULT_SEED + 2);
    for (int i = 0; i < 8; ++i) {
        TestFrame together = TestFrame(160, 120).DrawScene(i), apart = together;
        ASSERT_EQ(Process(row, together, i), SFX_OK);
        for (const EffectHandle* effect : {&rain, &sepia, &drops}) {
            ASSERT_EQ(Process(*effect, apart, i), SFX_OK);
        }
        ASSERT_EQ(FirstDifference(together, apart), "");
    }
}

TEST(Frames, FollowDifferencesOfTimeOnly) {
    const auto run = [](int64_t origin, int64_t backwardsAt) {
        const EffectHandle effect = Create("motion-detector");
        std::vector<uint64_t> sums;
        for (int i = 0; i < 20; ++i) {
            TestFrame frame = TestFrame(160, 120).DrawScene(i);
            const sfx_picture picture = PictureOf(frame);
            const int64_t time = origin + i * int64_t{40000000} - (i >= backwardsAt ? 5000000000 : 0);
            EXPECT_EQ(sfx_process(effect.get(), &picture, time), SFX_OK);
            sums.push_back(frame.Checksum());
        }
        return sums;
    };
    const std::vector<uint64_t> plain = run(0, 100);
    EXPECT_EQ(run(1700000000000000000, 100), plain);
    EXPECT_EQ(run(-800000000, 100), plain);
    EXPECT_EQ(run(INT64_MAX - 20 * int64_t{40000000}, 100), plain);
    // Where time stamps go back the clock stands still for one frame and then continues.
    EXPECT_NE(run(0, 10), plain);

    // Without time stamps, frames are a thirtieth of a second apart.
    const EffectHandle stamped = Create("motion-detector"), unstamped = Create("motion-detector");
    for (int i = 0; i < 20; ++i) {
        TestFrame a = TestFrame(160, 120).DrawScene(i), b = a;
        const sfx_picture pa = PictureOf(a), pb = PictureOf(b);
        ASSERT_EQ(sfx_process(stamped.get(), &pa, i * int64_t{1000000000 / 30}), SFX_OK);
        ASSERT_EQ(sfx_process(unstamped.get(), &pb, SFX_NO_TIME), SFX_OK);
        ASSERT_EQ(FirstDifference(a, b), "");
    }
    // No time stamp overflows.
    TestFrame frame(160, 120);
    const sfx_picture picture = PictureOf(frame);
    for (const int64_t time : {INT64_MAX, INT64_MIN + 1, INT64_MAX, SFX_NO_TIME, SFX_NO_TIME, INT64_MIN + 1,
                               INT64_MAX, SFX_NO_TIME}) {
        EXPECT_EQ(sfx_process(stamped.get(), &picture, time), SFX_OK);
    }
}

TEST(Frames, AreTheSameWithoutPreparation) {
    const Home home;
    for (const char* text : {"rain+logo-animation", "motion-detector", "sketch-3"}) {
        const EffectHandle prepared = Create(text), plain = Create(text);
        ASSERT_EQ(sfx_prepare(prepared.get(), 640, 480), SFX_OK);
        ASSERT_EQ(sfx_prepare(prepared.get(), 160, 120), SFX_OK);
        ASSERT_EQ(sfx_prepare(prepared.get(), 159, 119), SFX_OK);  // the same size, as effects see it
        EXPECT_EQ(ChecksumOf(prepared), ChecksumOf(plain));
    }
}

TEST(Frames, OfACloneAreThoseOfANewEffect) {
    const EffectHandle effect = Create("rain:drop-size=12+tiled-up:tile-size=20");
    sfx_set_seed(effect.get(), 5);
    const uint64_t sum = ChecksumOf(effect);
    sfx_effect* copy = nullptr;
    ASSERT_EQ(sfx_clone(effect.get(), &copy), SFX_OK);
    const EffectHandle clone(copy);
    EXPECT_EQ(Print(clone.get()), Print(effect.get()));
    EXPECT_EQ(ChecksumOf(clone), sum);
}

// ---- refusals ----------------------------------------------------------------------------------------

TEST(Frames, OfPicturesThatDoNotHoldThemAreRefused) {
    const EffectHandle effect = Create("sepia");
    for (int format = 0; format < SFX_FORMAT_COUNT; ++format) {
        SCOPED_TRACE(sfx_format_name(format));
        PlainPicture picture(static_cast<sfx_format>(format), 31, 17, Rows::kGaps);
        picture.Randomize(1);
        const std::vector<uint8_t> before = picture.Bytes();
        const sfx_picture good = picture.record();
        const auto refused = [&](auto spoil, sfx_status status = SFX_ERROR_PICTURE) {
            sfx_picture bad = good;
            spoil(bad);
            EXPECT_EQ(sfx_process(effect.get(), &bad, 0), status);
            EXPECT_STRNE(sfx_message(), "");
        };
        for (int plane = 0; plane < sfx_format_planes(format); ++plane) {
            refused([&](sfx_picture& bad) { bad.planes[plane] = nullptr; });
            refused([&](sfx_picture& bad) { bad.sizes[plane] -= 1; });
            refused(
                [&](sfx_picture& bad) { bad.strides[plane] = -bad.strides[plane], bad.sizes[plane] -= 1; });
            refused([&](sfx_picture& bad) { bad.strides[plane] = 3; });
            refused([&](sfx_picture& bad) { bad.strides[plane] = -3; });
            refused([&](sfx_picture& bad) { bad.strides[plane] = PTRDIFF_MAX, bad.sizes[plane] = 0; });
            refused([&](sfx_picture& bad) { bad.strides[plane] = PTRDIFF_MIN, bad.sizes[plane] = 0; });
            refused([&](sfx_picture& bad) { bad.strides[plane] = PTRDIFF_MAX / 8, bad.sizes[plane] = 0; });
        }
        refused([](sfx_picture& bad) { bad.width = 0; });
        refused([](sfx_picture& bad) { bad.width = -5; });
        refused([](sfx_picture& bad) { bad.width = SFX_MAX_SIDE + 1; });
        refused([](sfx_picture& bad) { bad.height = 0; });
        refused([](sfx_picture& bad) { bad.height = INT32_MAX; });
        refused([](sfx_picture& bad) { bad.format = SFX_FORMAT_COUNT; });
        refused([](sfx_picture& bad) { bad.format = -1; });
        refused([](sfx_picture& bad) { bad.matrix = 3; });
        refused([](sfx_picture& bad) { bad.range = -1; });
        refused([](sfx_picture& bad) { bad.struct_size = 0; }, SFX_ERROR_ARGUMENT);
        EXPECT_EQ(picture.Bytes(), before);
        EXPECT_EQ(sfx_process(effect.get(), &good, 0), SFX_OK);
    }
    EXPECT_EQ(sfx_process(effect.get(), nullptr, 0), SFX_ERROR_ARGUMENT);
}

TEST(Frames, OfTightPicturesNeedNoStrides) {
    std::vector<uint8_t> bytes(sfx_picture_layout(nullptr, SFX_NV12, 33, 21, nullptr), 100);
    ASSERT_EQ(bytes.size(), 33U * 21 + 34 * 11);
    sfx_picture picture = SFX_PICTURE_INIT;
    ASSERT_EQ(sfx_picture_layout(&picture, SFX_NV12, 33, 21, bytes.data()), bytes.size());
    EXPECT_EQ(picture.planes[1], bytes.data() + 33 * 21);
    EXPECT_EQ(picture.strides[1], 34);
    picture.strides[0] = picture.strides[1] = 0;
    const EffectHandle effect = Create("polarize");
    ASSERT_EQ(sfx_process(effect.get(), &picture, 0), SFX_OK);
    EXPECT_EQ(bytes, std::vector<uint8_t>(bytes.size(), 155));
    EXPECT_EQ(sfx_picture_layout(&picture, SFX_NV12, 0, 21, bytes.data()), 0U);
    EXPECT_EQ(sfx_picture_layout(&picture, 99, 3, 21, bytes.data()), 0U);
}

// The largest side, in both directions, in the formats with copies and without.
TEST(Frames, CanBeAsLongAsTheHeaderSays) {
    for (const auto& [width, height] :
         {std::pair{SFX_MAX_SIDE, 3}, std::pair{3, SFX_MAX_SIDE}, std::pair{16383, 2}}) {
        const EffectHandle effect = Create("polarize");
        for (const int format : {SFX_I420, SFX_RGBA}) {
            PlainPicture picture(static_cast<sfx_format>(format), width, height);
            EXPECT_EQ(sfx_process(effect.get(), &picture.record(), 0), SFX_OK);
        }
    }
}

// ---- threads -----------------------------------------------------------------------------------------

TEST(Threads, EffectsSideBySideGiveTheFramesOfOneAlone) {
    const Home home;
    std::vector<std::string> texts;
    for (size_t i = 0; i < sfx_effect_count(); i += 3) {
        texts.emplace_back(sfx_effect_at(i)->id);
    }
    std::vector<uint64_t> alone(texts.size()), together(texts.size());
    const auto run = [&](std::vector<uint64_t>& sums, size_t i) {
        const EffectHandle effect = Create(texts[i]);
        uint64_t sum = 0;
        for (int frame = 0; frame < 5; ++frame) {
            TestFrame picture = TestFrame(80, 60).DrawScene(frame);
            sfx_picture record = PictureOf(picture);
            EXPECT_GE(sfx_process(effect.get(), &record, frame * int64_t{40000000}), 0);
            sum = sum * 31 + picture.Checksum();
        }
        sums[i] = sum;
    };
    for (size_t i = 0; i < texts.size(); ++i) {
        run(alone, i);
    }
    std::vector<std::thread> threads;
    for (size_t i = 0; i < texts.size(); ++i) {
        threads.emplace_back([&, i] { run(together, i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(together, alone);
}

TEST(Threads, SettingsChangeWhileFramesRun) {
    const EffectHandle effect = Create("rain:drop-size=9+fish-eye");
    std::thread frames([&] {
        for (int i = 0; i < 60; ++i) {
            TestFrame picture = TestFrame(i % 20 == 19 ? 62 : 80, 60).DrawScene(i);
            const sfx_picture record = PictureOf(picture);
            EXPECT_EQ(sfx_process(effect.get(), &record, i), SFX_OK);
        }
    });
    std::vector<std::thread> others;
    for (int thread = 0; thread < 3; ++thread) {
        others.emplace_back([&, thread] {
            for (int i = 0; i < 60; ++i) {
                EXPECT_EQ(sfx_set_int(effect.get(), "drop-size", 2 + i % 15), SFX_OK);
                EXPECT_EQ(sfx_set(effect.get(), "1.large-sphere", i % 2 != 0 ? "true" : "false"), SFX_OK);
                int32_t value = 0;
                EXPECT_EQ(sfx_get_int(effect.get(), "drop-size", &value), SFX_OK);
                EXPECT_GE(value, 2);
                EXPECT_GT(sfx_print(effect.get(), nullptr, 0), 0);
                sfx_effect* copy = nullptr;
                EXPECT_EQ(sfx_clone(effect.get(), &copy), SFX_OK);
                sfx_destroy(copy);
                if (i % 20 == thread) {
                    EXPECT_EQ(sfx_reset(effect.get()), SFX_OK);
                    EXPECT_EQ(sfx_prepare(effect.get(), 80, 60), SFX_OK);
                }
            }
        });
    }
    frames.join();
    for (std::thread& other : others) {
        other.join();
    }
}

}  // namespace
