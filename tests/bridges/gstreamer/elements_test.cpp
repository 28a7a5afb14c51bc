// The same for every element: an effect of libsfx, its description, its properties, its frames.
#include <algorithm>

#include "Harness.h"

namespace {

class Elements : public testing::TestWithParam<size_t> {
  protected:
    const sfx_effect_info& Info() const { return *sfx_effect_at(GetParam()); }
    std::string Name() const { return std::string("sfx-") + Info().id; }
};

TEST_P(Elements, AreDescribed) {
    GstElementFactory* const factory = gst_element_factory_find(Name().c_str());
    ASSERT_NE(factory, nullptr);
    EXPECT_STREQ(gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_LONGNAME), Info().title);
    EXPECT_STREQ(gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_KLASS),
                 "Filter/Effect/Video");
    EXPECT_STREQ(gst_element_factory_get_metadata(factory, GST_ELEMENT_METADATA_DESCRIPTION),
                 Info().description);
    gst_object_unref(factory);
}

int64_t NumberIn(const GValue& value) {
    if (G_VALUE_HOLDS_BOOLEAN(&value)) {
        return g_value_get_boolean(&value);
    }
    if (G_VALUE_HOLDS_UINT(&value)) {
        return g_value_get_uint(&value);
    }
    return G_VALUE_HOLDS_ENUM(&value) ? g_value_get_enum(&value) : g_value_get_int(&value);
}

void ExpectSpec(GParamSpec* spec, const sfx_property_info& property) {
    switch (property.type) {
        case SFX_INTEGER:
            ASSERT_TRUE(G_IS_PARAM_SPEC_INT(spec));
            EXPECT_EQ(G_PARAM_SPEC_INT(spec)->minimum, property.minimum);
            EXPECT_EQ(G_PARAM_SPEC_INT(spec)->maximum, property.maximum);
            break;
        case SFX_BOOLEAN:
            ASSERT_TRUE(G_IS_PARAM_SPEC_BOOLEAN(spec));
            break;
        case SFX_COLOR:
            ASSERT_TRUE(G_IS_PARAM_SPEC_UINT(spec));
            EXPECT_EQ(G_PARAM_SPEC_UINT(spec)->maximum, G_MAXUINT32);
            break;
        case SFX_CHOICE:
            ASSERT_TRUE(G_IS_PARAM_SPEC_ENUM(spec));
            for (size_t i = 0; i < property.choice_count; ++i) {
                const GEnumValue* const value =
                    g_enum_get_value(G_PARAM_SPEC_ENUM(spec)->enum_class, property.choices[i].value);
                ASSERT_NE(value, nullptr);
                EXPECT_STREQ(value->value_nick, property.choices[i].id);
                EXPECT_STREQ(value->value_name, property.choices[i].description);
            }
            for (int32_t value = property.minimum; value <= property.maximum; ++value) {
                EXPECT_NE(g_enum_get_value(G_PARAM_SPEC_ENUM(spec)->enum_class, value), nullptr) << value;
            }
    }
    EXPECT_STREQ(g_param_spec_get_nick(spec), property.name);
    EXPECT_STREQ(g_param_spec_get_blurb(spec), property.description);
    EXPECT_NE(spec->flags & GST_PARAM_CONTROLLABLE, 0);
    EXPECT_NE(spec->flags & GST_PARAM_MUTABLE_PLAYING, 0);
}

int64_t Read(GObject* object, const char* property) {
    GValue value = G_VALUE_INIT;
    g_object_get_property(object, property, &value);
    const int64_t number = NumberIn(value);
    g_value_unset(&value);
    return number;
}

int64_t Alpha(const sfx_property_info& property) {
    return property.type == SFX_COLOR ? int64_t{0xFF000000} : 0;
}

TEST_P(Elements, HaveTheirEffectsProperties) {
    GstElement* const element = gst_element_factory_make(Name().c_str(), nullptr);
    ASSERT_NE(element, nullptr);
    gst_object_ref_sink(element);
    for (size_t i = 0; i < Info().property_count; ++i) {
        const sfx_property_info& property = *Info().properties[i];
        SCOPED_TRACE(property.id);
        GParamSpec* const spec = g_object_class_find_property(G_OBJECT_GET_CLASS(element), property.id);
        ASSERT_NE(spec, nullptr);
        ExpectSpec(spec, property);
        EXPECT_EQ(NumberIn(*g_param_spec_get_default_value(spec)), property.start | Alpha(property));
        EXPECT_EQ(Read(G_OBJECT(element), property.id), property.start | Alpha(property));
    }
    gst_object_unref(element);
}

TEST_P(Elements, TakeValuesAtAnyTime) {
    Harness harness(Name());
    GObject* const object = G_OBJECT(harness.element());
    harness.SetFormat(kI420, 64, 48);
    for (const int round : {0, 1}) {  // before the first frame, and while they run
        for (size_t i = 0; i < Info().property_count; ++i) {
            const sfx_property_info& property = *Info().properties[i];
            SCOPED_TRACE(property.id);
            for (const int32_t number : {property.minimum, property.maximum, property.start}) {
                gst_util_set_object_arg(object, property.id, std::to_string(number).c_str());
                EXPECT_EQ(Read(object, property.id), number | Alpha(property));
            }
        }
        EXPECT_NE(harness.PushAndPull(harness.Input(round)), nullptr);
    }
}

// Odd sizes, the smallest one, and back, without a new start of the stream.
TEST_P(Elements, GiveTheFramesOfLibsfx) {
    Harness harness(Name() + " seed=7");
    Reference reference(Info().id, 7);
    int frame = 0;
    for (const auto& [width, height] :
         std::vector<std::pair<int32_t, int32_t>>{{176, 144}, {63, 49}, {1, 1}, {176, 144}}) {
        harness.SetFormat(kI420, width, height);
        harness.ExpectSameFrames(reference, frame, 10);
        frame += 10;
    }
    EXPECT_EQ(harness.Messages(GST_MESSAGE_ERROR), std::vector<std::string>());
}

TEST_P(Elements, TakeEveryFormat) {
    Harness harness(Name());
    Reference reference(Info().id);
    int frame = 0;
    for (const auto& [width, height] : std::vector<std::pair<int32_t, int32_t>>{{64, 48}, {35, 17}}) {
        for (const NamedFormat& format : kNamedFormats) {
            harness.SetFormat(format, width, height);
            harness.ExpectSameFrames(reference, frame, 2);
            frame += 2;
        }
    }
}

TEST_P(Elements, LeaveSharedBuffersAlone) {
    Harness harness(Name());
    Reference reference(Info().id);
    harness.SetFormat(kI420, 64, 48);
    for (int frame = 0; frame < 3; ++frame) {
        Picture wanted = Picture(kI420, 64, 48).Draw(frame);
        const Picture before = wanted;
        reference.Process(wanted, frame);

        const BufferHandle input = harness.Input(frame);
        const BufferHandle output = harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get())));
        EXPECT_TRUE(harness.PictureOf(input).bytes() == before.bytes());
        EXPECT_TRUE(harness.PictureOf(output).bytes() == wanted.bytes());

        // Another buffer with the same memory.
        BufferHandle copy(gst_buffer_copy(input.get()));
        ASSERT_EQ(gst_buffer_peek_memory(copy.get(), 0), gst_buffer_peek_memory(input.get(), 0));
        harness.PushAndPull(std::move(copy));
        EXPECT_TRUE(harness.PictureOf(input).bytes() == before.bytes());
        reference.Process(Picture(kI420, 64, 48).Draw(frame), frame);
    }
}

TEST_P(Elements, StartsAndStopsAHundredTimes) {
    Harness harness(Name());
    std::vector<uint8_t> first;
    for (int round = 0; round < 100; ++round) {
        harness.SetFormat(kI420, 48, 32);
        BufferHandle last;
        for (int frame = 0; frame < 2; ++frame) {
            last = harness.PushAndPull(harness.Input(frame));
        }
        if (round == 0) {
            first = harness.PictureOf(last).bytes();
        }
        // Every round begins in the same way.
        ASSERT_TRUE(harness.PictureOf(last).bytes() == first) << "round " << round;
        ASSERT_EQ(gst_element_set_state(harness.element(), round % 2 == 0 ? GST_STATE_NULL : GST_STATE_READY),
                  GST_STATE_CHANGE_SUCCESS);
        gst_harness_play(harness.get());
        gst_harness_push_event(harness.get(), gst_event_new_stream_start("again"));
    }
}

std::string CaseName(const testing::TestParamInfo<size_t>& effect) {
    std::string name = sfx_effect_at(effect.param)->id;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}
INSTANTIATE_TEST_SUITE_P(All, Elements, testing::Range(size_t{0}, sfx_effect_count()), CaseName);

TEST(AllElements, AreThoseOfTheList) {
    GstPlugin* const plugin = gst_registry_find_plugin(gst_registry_get(), "specialeffects");
    ASSERT_NE(plugin, nullptr);
    EXPECT_STREQ(gst_plugin_get_version(plugin), sfx_version_text());
    GList* const features = gst_registry_get_feature_list_by_plugin(gst_registry_get(), "specialeffects");
    EXPECT_EQ(g_list_length(features), sfx_effect_count() + 1);
    EXPECT_EQ(sfx_effect_count(), 63u);
    gst_plugin_feature_list_free(features);
    gst_object_unref(plugin);
}

}  // namespace
