// An element between two pads of the test's, with a bus, and libsfx beside it for comparison.
#ifndef SPECIALEFFECTS_TESTS_BRIDGES_GSTREAMER_HARNESS_H
#define SPECIALEFFECTS_TESTS_BRIDGES_GSTREAMER_HARNESS_H

#include <gst/check/gstharness.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Picture.h"

inline constexpr const NamedFormat& kI420 = kNamedFormats[0];

struct UnrefBuffer {
    void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
};
using BufferHandle = std::unique_ptr<GstBuffer, UnrefBuffer>;

/// libsfx without GStreamer.
class Reference {
  public:
    explicit Reference(const std::string& text, uint32_t seed = SFX_DEFAULT_SEED);
    sfx_effect* get() const { return effect_.get(); }

    /// Changes a picture at the time of a frame.
    void Process(const Picture& picture, int frame);

  private:
    std::unique_ptr<sfx_effect, void (*)(sfx_effect*)> effect_;
};

/// Plays what is pushed, without waiting. The test owns what it is given.
class Harness {
  public:
    /// As for gst-launch: "sfx-rain seed=7".
    explicit Harness(const std::string& description);
    ~Harness();
    Harness(const Harness&) = delete;
    Harness& operator=(const Harness&) = delete;

    GstHarness* get() const { return harness_; }
    GstElement* element() const { return element_; }

    void SetFormat(const NamedFormat& format, int32_t width, int32_t height);

    /// Frame n of a scene in the format that was set.
    BufferHandle Input(int frame) const;
    GstFlowReturn Push(BufferHandle buffer);
    /// Null if there was no output.
    BufferHandle Pull();
    BufferHandle PushAndPull(BufferHandle buffer);
    Picture PictureOf(const BufferHandle& buffer) const;

    /// Sends frames through both, and compares what comes out.
    void ExpectSameFrames(Reference& reference, int first, int count);

    /// The texts of the messages of a type that were posted since the last call.
    std::vector<std::string> Messages(GstMessageType type);

  private:
    GstElement* element_;
    GstHarness* harness_;
    GstBus* bus_;
    NamedFormat format_ = kI420;
    int32_t width_ = 0, height_ = 0;
};

#endif
