// Properties that a control source moves with the stream.
#include <gst/controller/gstdirectcontrolbinding.h>
#include <gst/controller/gstinterpolationcontrolsource.h>

#include "Harness.h"

namespace {

/// Moves a property from its least to its largest value at frame 5.
void Control(GstElement* element, const char* property) {
    GstControlSource* const source = gst_interpolation_control_source_new();
    g_object_set(source, "mode", GST_INTERPOLATION_MODE_NONE, nullptr);
    auto* const values = GST_TIMED_VALUE_CONTROL_SOURCE(source);
    gst_timed_value_control_source_set(values, 0, 0.0);
    gst_timed_value_control_source_set(values, 5 * (GST_SECOND / 25), 1.0);
    ASSERT_TRUE(gst_object_add_control_binding(
        GST_OBJECT(element), gst_direct_control_binding_new(GST_OBJECT(element), property, source)))
        << property;
    gst_object_unref(source);
}

TEST(Controller, MovesEveryPropertyOfEveryEffect) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        SCOPED_TRACE(info.id);
        Harness harness(std::string("sfx-") + info.id);
        Reference reference(info.id);
        harness.SetFormat(kI420, 64, 48);
        ASSERT_GE(sfx_prepare(reference.get(), 64, 48), 0);  // values come to an effect that is ready
        for (size_t p = 0; p < info.property_count; ++p) {
            Control(harness.element(), info.properties[p]->id);
        }
        for (const bool late : {false, true}) {
            for (size_t p = 0; p < info.property_count; ++p) {
                const sfx_property_info& property = *info.properties[p];
                ASSERT_EQ(
                    sfx_set_int(reference.get(), property.id, late ? property.maximum : property.minimum),
                    SFX_OK);
            }
            harness.ExpectSameFrames(reference, late ? 5 : 0, 5);
        }
    }
}

TEST(Controller, SwitchesOnAndOff) {
    Harness harness("sfx-polarize");
    Control(harness.element(), "enabled");
    Reference reference("polarize");
    harness.SetFormat(kI420, 64, 48);
    for (int frame = 0; frame < 5; ++frame) {
        const BufferHandle input = harness.Input(frame);
        EXPECT_EQ(harness.PushAndPull(BufferHandle(gst_buffer_ref(input.get()))).get(), input.get());
    }
    harness.ExpectSameFrames(reference, 5, 5);
}

TEST(Controller, LeavesSeedAndFolderAlone) {
    Harness harness("sfx-rain");
    for (const char* const name : {"seed", "data-folder"}) {
        GParamSpec* const spec = g_object_class_find_property(G_OBJECT_GET_CLASS(harness.element()), name);
        ASSERT_NE(spec, nullptr);
        EXPECT_EQ(spec->flags & GST_PARAM_CONTROLLABLE, 0) << name;
    }
}

}  // namespace
