// A live pipeline whose effects change every second. SE_SOAK_SECONDS in the environment says for how long.
#include <atomic>

#include "Harness.h"
#include "tests/soak/Soak.h"

namespace {

TEST(LongRun, EffectsThatChangeEverySecond) {
    GError* error = nullptr;
    GstElement* const pipeline = gst_parse_launch(
        "videotestsrc is-live=true pattern=ball ! "
        "video/x-raw,format=I420,width=176,height=144,framerate=10/1 "
        "! sfxchain name=chain effect=sepia ! fakesink name=sink signal-handoffs=true",
        &error);
    ASSERT_EQ(error, nullptr) << error->message;
    GstElement* const chain = gst_bin_get_by_name(GST_BIN(pipeline), "chain");
    GstElement* const sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
    std::atomic<size_t> frames = 0;
    const auto count = +[](GstElement*, GstBuffer*, GstPad*, std::atomic<size_t>* counted) { ++*counted; };
    g_signal_connect(sink, "handoff", G_CALLBACK(count), &frames);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);

    const size_t seconds = SoakSetting("SE_SOAK_SECONDS", 5);
    ChangeEverySecond(seconds, sfx_effect_count(), [&](size_t index) {
        g_object_set(chain, "effect", sfx_effect_at(index)->id, nullptr);
    });
    std::printf("%zu frames in %zu seconds\n", frames.load(), seconds);
    EXPECT_GT(frames, seconds);

    GstBus* const bus = gst_element_get_bus(pipeline);
    constexpr auto kTrouble = static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_WARNING);
    GstMessage* const trouble = gst_bus_pop_filtered(bus, kTrouble);
    EXPECT_EQ(trouble, nullptr);
    if (trouble != nullptr) gst_message_unref(trouble);
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(sink);
    gst_object_unref(chain);
    gst_object_unref(pipeline);
}

}  // namespace
