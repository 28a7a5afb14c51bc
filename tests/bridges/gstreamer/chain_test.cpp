// sfxchain: several effects as one text.
#include <atomic>
#include <thread>

#include "Harness.h"

namespace {

std::string TextOf(const Harness& harness) {
    gchar* text = nullptr;
    g_object_get(harness.element(), "effect", &text, nullptr);
    std::string copy = text != nullptr ? text : "(none)";
    g_free(text);
    return copy;
}

void SetText(const Harness& harness, const char* text) {
    g_object_set(harness.element(), "effect", text, nullptr);
}

TEST(Chain, GivesTheFramesOfLibsfx) {
    for (const char* const text :
         {"sepia", "sepia+rain:drop-size=9", "rain+rain:drop-period=2+sketch-2+quark"}) {
        Harness harness(std::string("sfxchain seed=5 effect=") + text);
        Reference reference(text, 5);
        harness.SetFormat(kI420, 64, 48);
        harness.ExpectSameFrames(reference, 0, 12);
        EXPECT_EQ(TextOf(harness), text);
    }
}

TEST(Chain, TakesPresets) {
    ASSERT_GT(sfx_preset_count(), 0u);
    const std::string text = std::string("preset:") + sfx_preset_at(0)->id;
    Harness harness("sfxchain effect=" + text);
    Reference reference(text);
    harness.SetFormat(kI420, 64, 48);
    harness.ExpectSameFrames(reference, 0, 5);
}

TEST(Chain, WithoutEffectsPassesFrames) {
    Harness harness("sfxchain");
    harness.SetFormat(kI420, 64, 48);
    EXPECT_EQ(TextOf(harness), "(none)");
    const BufferHandle input = harness.Input(0);
    EXPECT_EQ(harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get()))).get(), input.get());

    SetText(harness, "polarize");
    Reference reference("polarize");
    harness.ExpectSameFrames(reference, 1, 2);
    for (const char* const none : {"", static_cast<const char*>(nullptr)}) {
        SetText(harness, none);
        EXPECT_EQ(TextOf(harness), "(none)");
        EXPECT_EQ(harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get()))).get(), input.get());
        SetText(harness, "polarize");
    }
}

TEST(Chain, OtherSettingsKeepTheHistory) {
    Harness harness("sfxchain effect=motion-blur-1+rain+rain:drop-period=2");
    Reference reference("motion-blur-1+rain+rain:drop-period=2");
    harness.SetFormat(kI420, 64, 48);
    harness.ExpectSameFrames(reference, 0, 10);
    SetText(harness, "motion-blur-1+rain:drop-size=12+rain:drop-period=3");
    EXPECT_EQ(TextOf(harness), "motion-blur-1+rain:drop-size=12+rain:drop-period=3");
    ASSERT_EQ(sfx_set_int(reference.get(), "1.drop-size", 12), SFX_OK);
    ASSERT_EQ(sfx_set_int(reference.get(), "2.drop-period", 3), SFX_OK);
    harness.ExpectSameFrames(reference, 10, 10);
}

TEST(Chain, OtherEffectsStartAnew) {
    Harness harness("sfxchain seed=3 effect=rain");
    harness.SetFormat(kI420, 64, 48);
    Reference first("rain", 3), second("rain+sepia", 3);
    harness.ExpectSameFrames(first, 0, 5);
    SetText(harness, "rain+sepia");
    harness.ExpectSameFrames(second, 5, 5);
}

TEST(Chain, TextsComeFromOtherThreadsWhileFramesRun) {
    Harness harness("sfxchain effect=rain");
    harness.SetFormat(kI420, 64, 48);
    std::atomic<bool> done = false;
    std::thread other([&] {
        constexpr const char* kTexts[] = {"rain:drop-size=9", "rain:drop-size=5", "quark+sepia", "",
                                          "sepia+rain"};
        for (size_t i = 0; !done; ++i) {
            const std::string text = kTexts[i % std::size(kTexts)];
            SetText(harness, text.c_str());
            EXPECT_EQ(TextOf(harness), text.empty() ? "(none)" : text);
        }
    });
    for (int frame = 0; frame < 300; ++frame) {
        EXPECT_NE(harness.PushAndPull(harness.Input(frame)), nullptr);
    }
    done = true;
    other.join();
}

TEST(Chain, KeepsItsEffectWhenATextIsWrong) {
    Harness harness("sfxchain effect=rain");
    harness.SetFormat(kI420, 64, 48);
    Reference reference("rain");
    harness.ExpectSameFrames(reference, 0, 3);
    SetText(harness, "rian");
    const std::vector<std::string> warnings = harness.Messages(GST_MESSAGE_WARNING);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("rian"), std::string::npos) << warnings[0];
    EXPECT_EQ(TextOf(harness), "rain");
    harness.ExpectSameFrames(reference, 3, 3);
}

// A handler that runs where a message is posted may use the element's properties.
TEST(Chain, PostsMessagesWithoutHoldingLocks) {
    GstElement* const element = gst_element_factory_make("sfxchain", nullptr);
    ASSERT_NE(element, nullptr);
    gst_object_ref_sink(element);
    GstBus* const bus = gst_bus_new();
    g_object_set(element, "effect", "no-such-effect", nullptr);
    gst_bus_set_sync_handler(
        bus,
        [](GstBus*, GstMessage* message, gpointer) {
            guint seed = 0;
            if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
                g_object_get(GST_MESSAGE_SRC(message), "seed", &seed, nullptr);
                g_object_set(GST_MESSAGE_SRC(message), "seed", seed + 1, nullptr);
            }
            return GST_BUS_PASS;
        },
        nullptr, nullptr);
    gst_element_set_bus(element, bus);
    EXPECT_EQ(gst_element_set_state(element, GST_STATE_PAUSED), GST_STATE_CHANGE_FAILURE);
    guint seed = 0;
    g_object_get(element, "seed", &seed, nullptr);
    EXPECT_EQ(seed, SFX_DEFAULT_SEED + 1);
    gst_element_set_state(element, GST_STATE_NULL);
    gst_element_set_bus(element, nullptr);
    gst_object_unref(bus);
    gst_object_unref(element);
}

TEST(Chain, CannotBeStartedWithAWrongText) {
    GstElement* const element = gst_element_factory_make("sfxchain", nullptr);
    ASSERT_NE(element, nullptr);
    gst_object_ref_sink(element);
    GstBus* const bus = gst_bus_new();
    g_object_set(element, "effect", "no-such-effect", nullptr);
    gst_element_set_bus(element, bus);
    EXPECT_EQ(gst_element_set_state(element, GST_STATE_PAUSED), GST_STATE_CHANGE_FAILURE);
    GstMessage* const message = gst_bus_pop_filtered(bus, GST_MESSAGE_ERROR);
    ASSERT_NE(message, nullptr);
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    EXPECT_NE(std::string(error->message).find("no-such-effect"), std::string::npos) << error->message;
    g_error_free(error);
    gst_message_unref(message);

    // Another text corrects it.
    gst_element_set_state(element, GST_STATE_NULL);
    g_object_set(element, "effect", "sepia", nullptr);
    EXPECT_EQ(gst_element_set_state(element, GST_STATE_PAUSED), GST_STATE_CHANGE_SUCCESS);
    gst_element_set_state(element, GST_STATE_NULL);
    gst_element_set_bus(element, nullptr);
    gst_object_unref(bus);
    gst_object_unref(element);
}

}  // namespace
