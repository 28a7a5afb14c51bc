// What all elements have in common beyond frames: on and off, time, seeds, data files, lateness.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "Harness.h"

namespace {

constexpr GstClockTime kFrame = GST_SECOND / 25;

TEST(Filter, CostsNothingWhenItIsOff) {
    Harness harness("sfx-rain enabled=false");
    harness.SetFormat(kI420, 64, 48);
    for (int frame = 0; frame < 3; ++frame) {
        const BufferHandle input = harness.Input(frame);
        const std::vector<uint8_t> before = harness.PictureOf(input).bytes();
        // Not even a buffer that others share is copied.
        const BufferHandle output = harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get())));
        EXPECT_EQ(output.get(), input.get());
        EXPECT_TRUE(harness.PictureOf(output).bytes() == before);
    }
}

TEST(Filter, StartsAnewWhenItIsSwitchedOnAgain) {
    Harness harness("sfx-motion-blur-1");
    harness.SetFormat(kI420, 64, 48);
    Reference before("motion-blur-1");
    harness.ExpectSameFrames(before, 0, 5);
    g_object_set(harness.element(), "enabled", FALSE, nullptr);
    const BufferHandle input = harness.Input(5);
    const BufferHandle output = harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get())));
    EXPECT_EQ(output.get(), input.get());
    g_object_set(harness.element(), "enabled", TRUE, nullptr);
    g_object_set(harness.element(), "enabled", TRUE, nullptr);
    Reference after("motion-blur-1");
    harness.ExpectSameFrames(after, 6, 5);
    g_object_set(harness.element(), "enabled", TRUE, nullptr);  // it already is
    harness.ExpectSameFrames(after, 11, 5);
}

TEST(Filter, SettingsTakeEffectWhileFramesRun) {
    Harness harness("sfx-tiled-up");
    Reference reference("tiled-up");
    harness.SetFormat(kI420, 64, 48);
    harness.ExpectSameFrames(reference, 0, 2);
    g_object_set(harness.element(), "tile-size", 16, nullptr);
    ASSERT_EQ(sfx_set_int(reference.get(), "tile-size", 16), SFX_OK);
    harness.ExpectSameFrames(reference, 2, 2);
}

TEST(Filter, SeedsDecideChance) {
    std::vector<std::vector<uint8_t>> pictures;
    for (const char* const name :
         {"sfx-rain-drops seed=3", "sfx-rain-drops seed=4", "sfx-rain-drops seed=3"}) {
        Harness harness(name);
        harness.SetFormat(kI420, 176, 144);
        BufferHandle last;
        for (int frame = 0; frame < 20; ++frame) {
            last = harness.PushAndPull(harness.Input(frame));
        }
        pictures.push_back(harness.PictureOf(last).bytes());
        guint seed = 0;
        g_object_get(harness.element(), "seed", &seed, nullptr);
        EXPECT_EQ(seed, name[std::string(name).size() - 1] == '3' ? 3u : 4u);
    }
    EXPECT_TRUE(pictures[0] != pictures[1]);
    EXPECT_TRUE(pictures[0] == pictures[2]);
}

TEST(Filter, ANewSeedStartsAnewAndTheSameSeedDoesNot) {
    Harness harness("sfx-quark");
    harness.SetFormat(kI420, 64, 48);
    Reference first("quark");
    harness.ExpectSameFrames(first, 0, 5);
    g_object_set(harness.element(), "seed", SFX_DEFAULT_SEED, nullptr);
    harness.ExpectSameFrames(first, 5, 5);
    g_object_set(harness.element(), "seed", 9u, nullptr);
    Reference second("quark", 9);
    harness.ExpectSameFrames(second, 10, 5);
}

TEST(Filter, TimeStampsDriveTheClock) {
    // Motion fades with time, not with the number of frames.
    for (const GstClockTime interval : {kFrame, 5 * kFrame, 50 * kFrame}) {
        Harness harness("sfx-motion-detector");
        Reference reference("motion-detector");
        harness.SetFormat(kI420, 64, 48);
        for (int i = 0; i < 6; ++i) {
            // The scene stands still after its third frame.
            const GstClockTime time = GST_SECOND * 1000 + static_cast<GstClockTime>(i) * interval;
            Picture wanted = Picture(kI420, 64, 48).Draw(std::min(i, 2));
            ASSERT_EQ(sfx_process(reference.get(), &wanted.record(), static_cast<int64_t>(time)), SFX_OK);
            BufferHandle input = harness.Input(std::min(i, 2));
            GST_BUFFER_PTS(input.get()) = time;
            ASSERT_TRUE(harness.PictureOf(harness.PushAndPull(std::move(input))).bytes() == wanted.bytes())
                << interval << " frame " << i;
        }
    }
}

// A second segment begins at 0 again, and its running time goes on.
TEST(Filter, TimeGoesOnInTheNextSegment) {
    Harness harness("sfx-motion-detector");
    Reference reference("motion-detector");
    harness.SetFormat(kI420, 64, 48);
    for (int i = 0; i < 10; ++i) {
        if (i == 5) {
            GstSegment segment;
            gst_segment_init(&segment, GST_FORMAT_TIME);
            segment.base = 5 * kFrame;
            gst_harness_push_event(harness.get(), gst_event_new_segment(&segment));
        }
        Picture wanted = Picture(kI420, 64, 48).Draw(i);
        reference.Process(wanted, i);
        BufferHandle input = harness.Input(i);
        GST_BUFFER_PTS(input.get()) = static_cast<GstClockTime>(i % 5) * kFrame;
        ASSERT_TRUE(harness.PictureOf(harness.PushAndPull(std::move(input))).bytes() == wanted.bytes()) << i;
    }
}

TEST(Filter, FramesWithoutTimeCome30ASecond) {
    Harness harness("sfx-motion-detector");
    Reference reference("motion-detector");
    harness.SetFormat(kI420, 64, 48);
    for (int i = 0; i < 6; ++i) {
        Picture wanted = Picture(kI420, 64, 48).Draw(i);
        ASSERT_EQ(sfx_process(reference.get(), &wanted.record(), SFX_NO_TIME), SFX_OK);
        BufferHandle input = harness.Input(i);
        GST_BUFFER_PTS(input.get()) = GST_CLOCK_TIME_NONE;
        ASSERT_TRUE(harness.PictureOf(harness.PushAndPull(std::move(input))).bytes() == wanted.bytes()) << i;
    }
}

TEST(Filter, StartsAnewAfterASeek) {
    Harness harness("sfx-motion-blur-1");
    harness.SetFormat(kI420, 64, 48);
    Reference before("motion-blur-1");
    harness.ExpectSameFrames(before, 0, 5);
    gst_harness_push_event(harness.get(), gst_event_new_flush_start());
    gst_harness_push_event(harness.get(), gst_event_new_flush_stop(TRUE));
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    gst_harness_push_event(harness.get(), gst_event_new_segment(&segment));
    Reference after("motion-blur-1");
    harness.ExpectSameFrames(after, 3, 5);
}

void SayItIsLate(Harness& harness, int frame) {
    gst_harness_push_upstream_event(
        harness.get(), gst_event_new_qos(GST_QOS_TYPE_UNDERFLOW, 1.5, static_cast<GstClockTimeDiff>(kFrame),
                                         static_cast<GstClockTime>(frame) * kFrame));
}

/// Says how often frames come. What an effect may cost for late frames goes by that.
void SetRate(Harness& harness, const char* rate) {
    const std::string caps = std::string("video/x-raw,format=I420,width=64,height=48,framerate=") + rate;
    gst_harness_set_src_caps_str(harness.get(), caps.c_str());
}

// The base class drops what is late. An effect with a memory that takes little time still sees it.
TEST(Filter, LateFramesAreDroppedButNotForgotten) {
    Harness harness("sfx-motion-blur-1");
    Reference reference("motion-blur-1");
    harness.SetFormat(kI420, 64, 48);
    SetRate(harness, "1/100");  // the effect takes little of that on any machine
    harness.ExpectSameFrames(reference, 0, 3);
    SayItIsLate(harness, 5);
    for (int frame = 3; frame < 7; ++frame) {
        EXPECT_EQ(harness.PushAndPull(harness.Input(frame)), nullptr) << frame;
        Picture seen = Picture(kI420, 64, 48).Draw(frame);
        reference.Process(seen, frame);
    }
    EXPECT_EQ(harness.Messages(GST_MESSAGE_QOS).size(), 4u);
    harness.ExpectSameFrames(reference, 7, 3);
}

TEST(Filter, LateFramesAreSkippedWhereTheEffectTakesLong) {
    Harness harness("sfx-motion-blur-1");
    Reference reference("motion-blur-1");
    harness.SetFormat(kI420, 64, 48);
    SetRate(harness, "2147483647/1");  // less than a nanosecond for a frame
    harness.ExpectSameFrames(reference, 0, 3);
    SayItIsLate(harness, 5);
    for (int frame = 3; frame < 7; ++frame) {
        EXPECT_EQ(harness.PushAndPull(harness.Input(frame)), nullptr) << frame;
    }
    harness.ExpectSameFrames(reference, 7, 3);
}

TEST(Filter, LateFramesAreSharedWithOthersUnchanged) {
    Harness harness("sfx-motion-blur-1");
    harness.SetFormat(kI420, 64, 48);
    SetRate(harness, "1/100");
    harness.PushAndPull(harness.Input(0));
    SayItIsLate(harness, 5);
    const BufferHandle input = harness.Input(1);
    EXPECT_EQ(harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get()))), nullptr);
    EXPECT_TRUE(harness.PictureOf(input).bytes() == Picture(kI420, 64, 48).Draw(1).bytes());
}

TEST(Filter, EffectsWithoutAMemoryDoNotSeeLateFrames) {
    Harness harness("sfx-liquefy-1");  // each frame that it sees moves its waves
    Reference reference("liquefy-1");
    harness.SetFormat(kI420, 64, 48);
    harness.ExpectSameFrames(reference, 0, 3);
    SayItIsLate(harness, 5);
    EXPECT_EQ(harness.PushAndPull(harness.Input(3)), nullptr);
    harness.ExpectSameFrames(reference, 7, 3);
}

/// Takes the cache folder away, where the tests' data files are.
class NoCache {
  public:
    NoCache() { setenv("XDG_CACHE_HOME", "/dev/null/nowhere", 1); }
    ~NoCache() { setenv("XDG_CACHE_HOME", SCRATCH_FOLDER "/cache", 1); }
    NoCache(const NoCache&) = delete;
    NoCache& operator=(const NoCache&) = delete;
};

TEST(Filter, WarnsOnceWhenADataFileIsMissing) {
    const NoCache none;
    {
        Harness harness("sfx-clouds");
        harness.SetFormat(kI420, 64, 48);
        EXPECT_NE(harness.PushAndPull(harness.Input(0)), nullptr);
        harness.SetFormat(kI420, 32, 48);
        EXPECT_NE(harness.PushAndPull(harness.Input(1)), nullptr);
        const std::vector<std::string> warnings = harness.Messages(GST_MESSAGE_WARNING);
        ASSERT_EQ(warnings.size(), 1u);
        EXPECT_NE(warnings[0].find("perlin.dat"), std::string::npos);
    }
}

TEST(Filter, MakesDataFilesInTheDataFolder) {
    gchar* const folder = g_dir_make_tmp("gstreamer_tests_XXXXXX", nullptr);
    const std::string file = std::string(folder) + "/perlin.dat";
    const NoCache none;
    {
        // Once it is started, before any frame.
        Harness harness(std::string("sfx-clouds data-folder=") + folder);
        EXPECT_TRUE(g_file_test(file.c_str(), G_FILE_TEST_IS_REGULAR));
        gchar* text = nullptr;
        g_object_get(harness.element(), "data-folder", &text, nullptr);
        EXPECT_STREQ(text, folder);
        g_free(text);
        EXPECT_EQ(harness.Messages(GST_MESSAGE_WARNING), std::vector<std::string>());
    }
    std::remove(file.c_str());
    EXPECT_EQ(std::remove(folder), 0);
    g_free(folder);
}

TEST(Filter, SettingsComeFromOtherThreadsWhileFramesRun) {
    Harness harness("sfx-rain");
    harness.SetFormat(kI420, 64, 48);
    std::atomic<bool> done = false;
    std::thread other([&] {
        for (int i = 0; !done; ++i) {
            g_object_set(harness.element(), "drop-size", 2 + i % 15, "drop-period", 1 + i % 20, "seed",
                         static_cast<guint>(i / 16), "enabled", i % 8 != 0, nullptr);
            gint size = 0;
            g_object_get(harness.element(), "drop-size", &size, nullptr);
            EXPECT_EQ(size, 2 + i % 15);
        }
    });
    for (int frame = 0; frame < 300; ++frame) {
        EXPECT_NE(harness.PushAndPull(harness.Input(frame)), nullptr);
    }
    done = true;
    other.join();
}

TEST(Filter, RefusesSizesThatLibsfxRefuses) {
    Harness harness("sfx-polarize");
    GstPad* const pad = gst_element_get_static_pad(harness.element(), "sink");
    for (const auto& [size, accepted] :
         std::vector<std::pair<const char*, bool>>{{"width=16384,height=1", true},
                                                   {"width=16385,height=1", false},
                                                   {"width=1,height=16384", true},
                                                   {"width=1,height=16385", false}}) {
        GstCaps* const caps =
            gst_caps_from_string((std::string("video/x-raw,format=I420,framerate=25/1,") + size).c_str());
        EXPECT_EQ(gst_pad_query_accept_caps(pad, caps) != FALSE, accepted) << size;
        gst_caps_unref(caps);
    }
    gst_object_unref(pad);
}

}  // namespace
