// What a GStreamer element costs beyond the effect itself, for 1280x720 I420.
//
//     bench_gstreamer [EFFECT...]
//
// Frames go through the element and through libsfx by turns, on one thread; processor time, medians.
#include <gst/gst.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/Timing.h"
#include "sfx/sfx.h"

namespace {

constexpr int kWidth = 1280, kHeight = 720, kFrames = 400;
constexpr GstClockTime kFrameDuration = GST_SECOND / 25;

/// An element between two pads; what comes out is kept in `out`.
struct Line {
    explicit Line(const std::string& name) : element(gst_element_factory_make(name.c_str(), nullptr)) {
        if (element == nullptr) {
            std::fprintf(stderr, "there is no element %s\n", name.c_str());
            std::exit(2);
        }
        gst_pad_set_element_private(sink, this);
        gst_pad_set_chain_function(sink, [](GstPad* pad, GstObject*, GstBuffer* buffer) {
            static_cast<Line*>(gst_pad_get_element_private(pad))->out = buffer;
            return GST_FLOW_OK;
        });
        GstPad* const in = gst_element_get_static_pad(element, "sink");
        GstPad* const end = gst_element_get_static_pad(element, "src");
        gst_pad_link(source, in);
        gst_pad_link(end, sink);
        gst_object_unref(in);
        gst_object_unref(end);
        gst_pad_set_active(sink, TRUE);
        gst_pad_set_active(source, TRUE);
        gst_element_set_state(element, GST_STATE_PLAYING);

        gst_pad_push_event(source, gst_event_new_stream_start("bench"));
        GstCaps* const caps =
            gst_caps_from_string("video/x-raw,format=I420,width=1280,height=720,framerate=25/1");
        gst_pad_push_event(source, gst_event_new_caps(caps));
        gst_caps_unref(caps);
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        gst_pad_push_event(source, gst_event_new_segment(&segment));
    }
    ~Line() {
        gst_element_set_state(element, GST_STATE_NULL);
        gst_object_unref(element);
        gst_object_unref(source);
        gst_object_unref(sink);
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    GstElement* element;
    GstPad* source = gst_pad_new("src", GST_PAD_SRC);
    GstPad* sink = gst_pad_new("sink", GST_PAD_SINK);
    GstBuffer* out = nullptr;
};

void Measure(const std::string& id) {
    sfx_effect* effect = nullptr;
    if (sfx_create(id.c_str(), &effect) < 0) {
        std::fprintf(stderr, "%s\n", sfx_message());
        std::exit(2);
    }
    Line line("sfx-" + id);

    // The same memory for both, as full of the same picture and as warm.
    const size_t size = sfx_picture_layout(nullptr, SFX_I420, kWidth, kHeight, nullptr);
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, size, nullptr);
    const auto fill = [&](int frame, auto use) {
        GstMapInfo map;
        if (!gst_buffer_map(buffer, &map, GST_MAP_WRITE)) {
            std::exit(1);
        }
        for (size_t i = 0; i < size; ++i) {
            map.data[i] = static_cast<uint8_t>(i / 97 + static_cast<size_t>(frame) * 3);
        }
        use(map.data);
        gst_buffer_unmap(buffer, &map);
    };
    std::vector<double> direct, element;
    const auto runDirect = [&](int frame) {
        fill(frame, [&](uint8_t* pixels) {
            sfx_picture picture;
            sfx_picture_layout(&picture, SFX_I420, kWidth, kHeight, pixels);
            direct.push_back(bench::Timed(
                [&] { sfx_process(effect, &picture, frame * static_cast<int64_t>(kFrameDuration)); }));
        });
    };
    const auto runElement = [&](int frame) {
        fill(frame, [](uint8_t*) {});
        GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(frame) * kFrameDuration;
        element.push_back(bench::Timed([&] { gst_pad_push(line.source, buffer); }));
        buffer = line.out;
    };
    for (int frame = 0; frame < kFrames; ++frame) {
        const bool elementFirst = frame % 2 != 0;
        if (elementFirst) runElement(frame);
        runDirect(frame);
        if (!elementFirst) runElement(frame);
    }
    const double own = bench::Median(direct) * 1e6, all = bench::Median(element) * 1e6;
    std::printf("%-24s %10.1f %10.1f %11.1f\n", id.c_str(), own, all, all - own);
    gst_buffer_unref(buffer);
    sfx_destroy(effect);
}

}  // namespace

int main(int argc, char** argv) {
    setenv("GST_REGISTRY", REGISTRY, 1);
    setenv("GST_PLUGIN_PATH", PLUGIN_FOLDER, 1);
    gst_init(nullptr, nullptr);
    std::printf("%-24s %10s %10s %11s\n", "effect", "libsfx us", "element us", "overhead us");
    std::vector<std::string> effects(argv + 1, argv + argc);
    if (effects.empty()) {
        effects = {"gray-scale", "polarize", "sepia", "motion-blur-1", "rain"};
    }
    for (const std::string& effect : effects) {
        Measure(effect);
    }
    return 0;
}
