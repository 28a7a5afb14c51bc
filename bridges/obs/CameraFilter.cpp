// "Special effect": changes the frames of a camera or a video file in memory, before OBS uploads them.
#include <obs-module.h>

#include "Filter.h"
#include "Frames.h"

namespace sfxobs {
namespace {

class CameraFilter : public Filter {
  public:
    using Filter::Filter;

    /// Whether the frame is to be shown.
    bool Process(const obs_source_frame& frame) {
        sfx_picture picture;
        if (!PictureOf(frame, picture)) {
            LogFormat(frame.format);
            return true;
        }
        const Runner::Readiness readiness = runner().ReadinessFor(picture.width, picture.height);
        if (readiness == Runner::Readiness::Ready) {
            runner().Process(picture, static_cast<int64_t>(frame.timestamp));
        }
        return readiness != Runner::Readiness::Soon;
    }

  private:
    void LogFormat(video_format format) {
        if (std::exchange(unknownFormat_, format) == format) return;
        blog(LOG_WARNING, "[specialeffects] '%s': frames in the format %s pass unchanged",
             obs_source_get_name(source()), get_video_format_name(format));
    }

    video_format unknownFormat_ = VIDEO_FORMAT_NONE;  // the latest one in the log
};

obs_source_frame* FilterVideo(void* data, obs_source_frame* frame) noexcept {
    auto& filter = *static_cast<CameraFilter*>(static_cast<Filter*>(data));
    if (Guarded(true, [&] { return filter.Process(*frame); })) return frame;
    // OBS goes on showing the frame before.
    obs_source_release_frame(obs_filter_get_parent(filter.source()), frame);
    return nullptr;
}

}  // namespace

void RegisterCameraFilter() {
    obs_source_info info = FilterInfo<CameraFilter>("specialeffects_filter", OBS_SOURCE_ASYNC_VIDEO);
    info.get_name = [](void*) noexcept { return obs_module_text("CameraFilter"); };
    info.filter_video = FilterVideo;
    obs_register_source(&info);
}

}  // namespace sfxobs
