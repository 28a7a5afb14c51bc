#include "Harness.h"

Reference::Reference(const std::string& text, uint32_t seed) : effect_(nullptr, sfx_destroy) {
    sfx_effect* effect = nullptr;
    EXPECT_GE(sfx_create(text.c_str(), &effect), 0) << text << ": " << sfx_message();
    effect_.reset(effect);
    EXPECT_EQ(sfx_set_seed(effect, seed), SFX_OK);
}

void Reference::Process(const Picture& picture, int frame) {
    ASSERT_GE(sfx_process(effect_.get(), &picture.record(), int64_t{frame} * (GST_SECOND / 25)), 0)
        << sfx_message();
}

Harness::Harness(const std::string& description)
    : element_(gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, nullptr)),
      harness_(nullptr),
      bus_(gst_bus_new()) {
    if (element_ == nullptr) {
        ADD_FAILURE() << "no element " << description;
        std::abort();
    }
    gst_element_set_bus(element_, bus_);
    harness_ = gst_harness_new_with_element(element_, "sink", "src");
    gst_harness_play(harness_);
}

Harness::~Harness() {
    gst_element_set_bus(element_, nullptr);
    gst_harness_teardown(harness_);
    gst_bus_set_flushing(bus_, TRUE);
    gst_object_unref(bus_);
    gst_object_unref(element_);
}

void Harness::SetFormat(const NamedFormat& format, int32_t width, int32_t height) {
    format_ = format;
    width_ = width;
    height_ = height;
    gst_harness_set_src_caps_str(harness_, CapsText(format, width, height).c_str());
}

BufferHandle Harness::Input(int frame) const {
    return BufferHandle(NewBuffer(format_, Picture(format_, width_, height_).Draw(frame), frame));
}

GstFlowReturn Harness::Push(BufferHandle buffer) {
    return gst_harness_push(harness_, buffer.release());
}

BufferHandle Harness::Pull() {
    return BufferHandle(gst_harness_try_pull(harness_));
}

BufferHandle Harness::PushAndPull(BufferHandle buffer) {
    EXPECT_EQ(Push(std::move(buffer)), GST_FLOW_OK);
    return Pull();
}

Picture Harness::PictureOf(const BufferHandle& buffer) const {
    return PictureIn(buffer.get(), format_, width_, height_);
}

void Harness::ExpectSameFrames(Reference& reference, int first, int count) {
    for (int frame = first; frame < first + count; ++frame) {
        Picture wanted = Picture(format_, width_, height_).Draw(frame);
        reference.Process(wanted, frame);
        const BufferHandle out = PushAndPull(Input(frame));
        ASSERT_TRUE(PictureOf(out).bytes() == wanted.bytes())
            << format_.name << " " << width_ << "x" << height_ << ", frame " << frame;
        EXPECT_EQ(GST_BUFFER_PTS(out.get()), static_cast<GstClockTime>(frame) * (GST_SECOND / 25));
    }
}

std::vector<std::string> Harness::Messages(GstMessageType type) {
    std::vector<std::string> texts;
    while (GstMessage* const message = gst_bus_pop(bus_)) {
        GError* error = nullptr;
        if ((GST_MESSAGE_TYPE(message) & type) != 0) {
            if (type == GST_MESSAGE_WARNING) {
                gst_message_parse_warning(message, &error, nullptr);
            } else if (type == GST_MESSAGE_ERROR) {
                gst_message_parse_error(message, &error, nullptr);
            }
            texts.emplace_back(error != nullptr ? error->message : GST_MESSAGE_TYPE_NAME(message));
            g_clear_error(&error);
        }
        gst_message_unref(message);
    }
    return texts;
}
