#include "Host.h"

#include <gtest/gtest.h>
#include <obs-nix-platform.h>
#include <util/base.h>
#include <util/bmem.h>
#include <util/platform.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <thread>

#include "tests/soak/Soak.h"

// Last, and without its macros of common words.
#include <X11/Xlib.h>
#undef None
#undef Status
#undef Bool

namespace {

// ---- the log ------------------------------------------------------------------------------------------

std::mutex logMutex;
std::vector<std::string> logLines;

void KeepLine(int level, const char* format, va_list arguments, void*) {
    char line[2048];
    std::vsnprintf(line, sizeof line, format, arguments);
    if (level <= LOG_ERROR) std::fprintf(stderr, "%s\n", line);
    const std::lock_guard lock(logMutex);
    logLines.emplace_back(line);
}

// ---- the tests' own sources and filters ---------------------------------------------------------------

obs_source_info CameraInfo() {
    obs_source_info info{};
    info.id = "test_camera";
    info.type = OBS_SOURCE_TYPE_INPUT;
    info.output_flags = OBS_SOURCE_ASYNC_VIDEO;
    info.get_name = [](void*) { return "Camera"; };
    info.create = [](obs_data_t*, obs_source_t* source) -> void* { return source; };
    info.destroy = [](void*) {};
    return info;
}

/// Keeps a copy of each frame.
struct Probe {
    std::mutex mutex;
    int count = 0;
    obs_source_frame frame{};
    std::vector<uint8_t> planes[MAX_AV_PLANES];
};

int CountOf(Probe& probe) {
    const std::lock_guard lock(probe.mutex);
    return probe.count;
}

/// Of the graphics thread, which begins each frame with one.
std::atomic<int> ticks = 0;

size_t RowsOf(const obs_source_frame& frame, int plane) {
    const bool isLow = (frame.format == VIDEO_FORMAT_I420 || frame.format == VIDEO_FORMAT_NV12 ||
                        frame.format == VIDEO_FORMAT_I40A || frame.format == VIDEO_FORMAT_I010) &&
                       (plane == 1 || plane == 2);
    return isLow ? (frame.height + 1) / 2 : frame.height;
}

obs_source_info ProbeInfo() {
    obs_source_info info{};
    info.id = "test_probe";
    info.type = OBS_SOURCE_TYPE_FILTER;
    info.output_flags = OBS_SOURCE_ASYNC_VIDEO;
    info.get_name = [](void*) { return "Probe"; };
    info.create = [](obs_data_t*, obs_source_t*) -> void* { return std::make_unique<Probe>().release(); };
    info.destroy = [](void* data) { const std::unique_ptr<Probe> last(static_cast<Probe*>(data)); };
    info.filter_video = [](void* data, obs_source_frame* frame) {
        auto& probe = *static_cast<Probe*>(data);
        const std::lock_guard lock(probe.mutex);
        probe.frame = *frame;
        for (int plane = 0; plane < MAX_AV_PLANES; ++plane) {
            probe.planes[plane].clear();
            if (frame->data[plane] == nullptr || frame->linesize[plane] == 0) continue;
            probe.planes[plane].assign(frame->data[plane],
                                       frame->data[plane] + RowsOf(*frame, plane) * frame->linesize[plane]);
        }
        ++probe.count;
        return frame;
    };
    return info;
}

struct Still {
    std::mutex mutex;
    StillPicture picture;
    bool isNew = false;
    gs_texture_t* texture = nullptr;
};

obs_source_info StillInfo() {
    obs_source_info info{};
    info.id = "test_picture";
    info.type = OBS_SOURCE_TYPE_INPUT;
    info.output_flags = OBS_SOURCE_VIDEO | OBS_SOURCE_SRGB;
    info.get_name = [](void*) { return "Picture"; };
    info.create = [](obs_data_t*, obs_source_t*) -> void* { return std::make_unique<Still>().release(); };
    info.destroy = [](void* data) {
        const std::unique_ptr<Still> last(static_cast<Still*>(data));
        obs_enter_graphics();
        gs_texture_destroy(last->texture);
        obs_leave_graphics();
    };
    info.get_width = [](void* data) {
        auto& still = *static_cast<Still*>(data);
        const std::lock_guard lock(still.mutex);
        return static_cast<uint32_t>(still.picture.width);
    };
    info.get_height = [](void* data) {
        auto& still = *static_cast<Still*>(data);
        const std::lock_guard lock(still.mutex);
        return static_cast<uint32_t>(still.picture.height);
    };
    info.video_render = [](void* data, gs_effect_t* effect) {
        auto& still = *static_cast<Still*>(data);
        const std::lock_guard lock(still.mutex);
        if (still.isNew) {
            gs_texture_destroy(still.texture);
            const uint8_t* pixels = still.picture.pixels.data();
            still.texture =
                gs_texture_create(static_cast<uint32_t>(still.picture.width),
                                  static_cast<uint32_t>(still.picture.height), GS_RGBA, 1, &pixels, 0);
            still.isNew = false;
        }
        if (still.texture == nullptr) return;
        gs_eparam_t* const image = gs_effect_get_param_by_name(effect, "image");
        const bool isLinear = gs_get_linear_srgb();
        const bool wasLinear = gs_framebuffer_srgb_enabled();
        gs_enable_framebuffer_srgb(isLinear);
        isLinear ? gs_effect_set_texture_srgb(image, still.texture)
                 : gs_effect_set_texture(image, still.texture);
        gs_draw_sprite(still.texture, 0, 0, 0);
        gs_enable_framebuffer_srgb(wasLinear);
    };
    return info;
}

Display* display = nullptr;

struct Canvas {
    std::mutex mutex;
    std::condition_variable arrived;
    int count = 0;
    std::vector<uint8_t> pixels;
};

void KeepCanvas(void* data, video_data* frame) {
    auto& canvas = *static_cast<Canvas*>(data);
    const std::lock_guard lock(canvas.mutex);
    canvas.pixels.clear();
    for (uint32_t y = 0; y < kCanvasHeight; ++y) {
        const uint8_t* const row = frame->data[0] + size_t{y} * frame->linesize[0];
        canvas.pixels.insert(canvas.pixels.end(), row, row + size_t{4} * kCanvasWidth);
    }
    ++canvas.count;
    canvas.arrived.notify_all();
}

}  // namespace

int StartObs() {
    base_set_log_handler(KeepLine, nullptr);
    display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        std::fprintf(stderr, "There is no X display; run under xvfb-run.\n");
        return 1;
    }
    obs_set_nix_platform(OBS_NIX_PLATFORM_X11_EGL);
    obs_set_nix_platform_display(display);
    if (!obs_startup("en-US", OBS_CONFIG_FOLDER, nullptr)) return 1;
    obs_video_info video{};
    video.graphics_module = "libobs-opengl";
    video.fps_num = static_cast<uint32_t>(SoakSetting("SE_OBS_RATE", 200));
    video.fps_den = 1;
    video.base_width = video.output_width = kCanvasWidth;
    video.base_height = video.output_height = kCanvasHeight;
    video.output_format = VIDEO_FORMAT_BGRA;
    video.gpu_conversion = true;
    video.colorspace = VIDEO_CS_SRGB;
    video.range = VIDEO_RANGE_FULL;
    if (obs_reset_video(&video) != OBS_VIDEO_SUCCESS) return 1;
    obs_audio_info audio{48000, SPEAKERS_STEREO};
    if (!obs_reset_audio(&audio)) return 1;
    for (const obs_source_info& info : {CameraInfo(), ProbeInfo(), StillInfo()}) obs_register_source(&info);
    obs_module_t* module = nullptr;
    if (obs_open_module(&module, OBS_PLUGIN, OBS_PLUGIN_DATA) != MODULE_SUCCESS) return 1;
    obs_add_tick_callback([](void*, float) { ++ticks; }, nullptr);
    return obs_init_module(module) ? 0 : 1;
}

long StopObs() {
    obs_wait_for_destroy_queue();
    obs_shutdown();
    XCloseDisplay(display);
    return bnum_allocs();
}

std::vector<std::string> LogLines(const std::string& text) {
    const std::lock_guard lock(logMutex);
    std::vector<std::string> found;
    for (const std::string& line : logLines) {
        if (line.find(text) != std::string::npos) found.push_back(line);
    }
    return found;
}

void ForgetLog() {
    const std::lock_guard lock(logMutex);
    logLines.clear();
}

void Pause() {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void WaitForFrames(uint32_t count) {
    const uint32_t end = obs_get_total_frames() + count;
    WaitUntil([&] { return obs_get_total_frames() >= end; });
}

Source Create(const char* kind, const char* name, const char* settings) {
    const Data data(obs_data_create_from_json(settings), obs_data_release);
    return {obs_source_create(kind, name, data.get(), nullptr), obs_source_release};
}

Source AddFilter(const Source& source, const char* kind, const char* settings) {
    Source filter = Create(kind, "Effect", settings);
    obs_source_filter_add(source.get(), filter.get());
    return filter;
}

void Update(const Source& source, const char* settings) {
    const Data data(obs_data_create_from_json(settings), obs_data_release);
    obs_source_update(source.get(), data.get());
}

Status StatusOf(const Source& filter) {
    calldata_t call{};
    proc_handler_call(obs_source_get_proc_handler(filter.get()), "status", &call);
    const char* const effect = calldata_string(&call, "effect");
    Status status{effect != nullptr ? effect : "", calldata_int(&call, "frames"),
                  calldata_int(&call, "nanoseconds")};
    calldata_free(&call);
    return status;
}

Effect CreateEffect(const std::string& text, uint32_t seed) {
    sfx_effect* effect = nullptr;
    EXPECT_GE(sfx_create(text.c_str(), &effect), 0) << text;
    if (effect != nullptr) sfx_set_seed(effect, seed);
    return {effect, sfx_destroy};
}

// ---- pictures -----------------------------------------------------------------------------------------

Picture::Picture(video_format format_, int width_, int height_, int padding)
    : format(format_), sfxFormat(-1), width(width_), height(height_), planeCount(0) {
    switch (format) {
        case VIDEO_FORMAT_I420:
        case VIDEO_FORMAT_I40A:
            sfxFormat = SFX_I420;
            break;
        case VIDEO_FORMAT_NV12:
            sfxFormat = SFX_NV12;
            break;
        case VIDEO_FORMAT_I422:
        case VIDEO_FORMAT_I42A:
            sfxFormat = SFX_I422;
            break;
        case VIDEO_FORMAT_I444:
        case VIDEO_FORMAT_YUVA:
            sfxFormat = SFX_I444;
            break;
        case VIDEO_FORMAT_YUY2:
            sfxFormat = SFX_YUY2;
            break;
        case VIDEO_FORMAT_UYVY:
            sfxFormat = SFX_UYVY;
            break;
        case VIDEO_FORMAT_RGBA:
            sfxFormat = SFX_RGBA;
            break;
        case VIDEO_FORMAT_BGRA:
        case VIDEO_FORMAT_BGRX:
            sfxFormat = SFX_BGRA;
            break;
        case VIDEO_FORMAT_BGR3:
            sfxFormat = SFX_BGR24;
            break;
        default:
            break;
    }
    const bool isKnown = sfxFormat >= 0;
    planeCount = isKnown ? sfx_format_planes(sfxFormat) : 1;
    for (int plane = 0; plane < planeCount; ++plane) {
        rowBytes[plane] =
            isKnown ? sfx_plane_row_bytes(sfxFormat, plane, width) : static_cast<size_t>(width) * 4;
        strides[plane] = rowBytes[plane] + static_cast<size_t>(padding);
        const int rows = isKnown ? sfx_plane_rows(sfxFormat, plane, height) : height;
        planes[plane].resize(strides[plane] * static_cast<size_t>(rows));
    }
    if (format == VIDEO_FORMAT_I40A || format == VIDEO_FORMAT_I42A || format == VIDEO_FORMAT_YUVA) {
        rowBytes[3] = strides[3] = static_cast<size_t>(width);
        planes[3].resize(strides[3] * static_cast<size_t>(height));
        planeCount = 4;
    }
}

Picture& Picture::Draw(int index) {
    uint32_t noise = static_cast<uint32_t>(index) * 2654435761U + 1;
    for (int plane = 0; plane < planeCount; ++plane) {
        for (size_t i = 0; i < planes[plane].size(); ++i) {
            const size_t x = i % strides[plane], y = i / strides[plane];
            noise = noise * 1664525U + 1013904223U;
            const size_t slope = 2 * x + y + static_cast<size_t>(3 * index + 40 * plane);
            const bool isEdge = (x / 16 + y / 12 + static_cast<size_t>(index)) % 3 == 0;
            planes[plane][i] = static_cast<uint8_t>((slope + (isEdge ? 90 : 0) + (noise >> 29)) & 0xFF);
        }
    }
    return *this;
}

obs_source_frame Picture::Frame(uint64_t time) const {
    obs_source_frame frame{};
    for (int plane = 0; plane < planeCount; ++plane) {
        frame.data[plane] = const_cast<uint8_t*>(planes[plane].data());
        frame.linesize[plane] = static_cast<uint32_t>(strides[plane]);
    }
    frame.width = static_cast<uint32_t>(width);
    frame.height = static_cast<uint32_t>(height);
    frame.format = format;
    frame.timestamp = time;
    frame.flip = flip;
    video_format_get_parameters_for_format(VIDEO_CS_709, VIDEO_RANGE_PARTIAL, format, frame.color_matrix,
                                           frame.color_range_min, frame.color_range_max);
    return frame;
}

sfx_picture Picture::View() {
    sfx_picture picture;
    sfx_picture_layout(&picture, sfxFormat, width, height, nullptr);
    for (int plane = 0; plane < sfx_format_planes(sfxFormat); ++plane) {
        picture.planes[plane] = planes[plane].data();
        picture.strides[plane] = static_cast<ptrdiff_t>(strides[plane]);
        picture.sizes[plane] = planes[plane].size();
        if (!flip) continue;
        picture.planes[plane] += planes[plane].size() - strides[plane];
        picture.strides[plane] *= -1;
    }
    return picture;
}

bool Picture::operator==(const Picture& other) const {
    if (format != other.format || width != other.width || height != other.height) return false;
    for (int plane = 0; plane < planeCount; ++plane) {
        if (rowBytes[plane] == 0) continue;
        const size_t rows = planes[plane].size() / strides[plane];
        if (other.planes[plane].size() < rows * other.strides[plane]) return false;
        for (size_t y = 0; y < rows; ++y) {
            if (std::memcmp(&planes[plane][y * strides[plane]],
                            &other.planes[plane][y * other.strides[plane]], rowBytes[plane]) != 0) {
                return false;
            }
        }
    }
    return true;
}

// ---- a camera -----------------------------------------------------------------------------------------

Camera::Camera(const char* settings)
    : source(Create("test_camera", "Camera")),
      filter(nullptr, obs_source_release),
      probe(nullptr, obs_source_release) {
    obs_source_set_async_unbuffered(source.get(), true);
    // The filter that is added first sees frames first.
    if (settings != nullptr) filter = AddFilter(source, kCameraFilter, settings);
    probe = AddFilter(source, "test_probe", "{}");
}

Camera::~Camera() {
    if (filter != nullptr) obs_source_filter_remove(source.get(), filter.get());
    obs_source_filter_remove(source.get(), probe.get());
}

bool Camera::Try(const Picture& picture, uint64_t time) {
    auto& kept = *static_cast<Probe*>(obs_obj_get_data(probe.get()));
    const auto hasArrived = [&, before = CountOf(kept)] { return CountOf(kept) > before; };
    const obs_source_frame frame = picture.Frame(time);
    const int start = ticks;
    obs_source_output_video(source.get(), &frame);
    // When the third tick has begun, the filters have had the frame in the second at the latest.
    EXPECT_TRUE(WaitUntil([&] { return hasArrived() || ticks > start + 2; }));
    return hasArrived();
}

Picture Camera::Send(const Picture& picture, uint64_t time) {
    EXPECT_TRUE(WaitUntil([&] { return Try(picture, time); }));
    return Latest(picture);
}

Picture Camera::Latest(const Picture& picture) {
    auto& kept = *static_cast<Probe*>(obs_obj_get_data(probe.get()));
    const std::lock_guard lock(kept.mutex);
    Picture result = picture;
    EXPECT_EQ(kept.frame.format, picture.format);
    EXPECT_EQ(static_cast<int>(kept.frame.width), picture.width);
    for (int plane = 0; plane < picture.planeCount; ++plane) {
        result.planes[plane] = kept.planes[plane];
        result.strides[plane] = kept.frame.linesize[plane];
    }
    return result;
}

Picture Camera::SendUntilReady(const Picture& picture, uint64_t time) {
    Picture result = picture;
    WaitUntil([&] {
        result = Send(picture, time);
        return StatusOf(filter).frames > 0;
    });
    EXPECT_EQ(StatusOf(filter).frames, 1);
    return result;
}

bool Camera::WaitForEffect(const std::string& text, const Picture& picture) {
    return WaitUntil([&] {
        Send(picture, 0);
        return StatusOf(filter).effect == text;
    });
}

// ---- the canvas ---------------------------------------------------------------------------------------

void Show(obs_source_t* source) {
    obs_set_output_source(0, source);
}

std::vector<uint8_t> NextCanvas() {
    Canvas canvas;
    obs_add_raw_video_callback(nullptr, KeepCanvas, &canvas);
    {
        std::unique_lock lock(canvas.mutex);
        // The first may have been drawn before the call.
        EXPECT_TRUE(
            canvas.arrived.wait_for(lock, std::chrono::seconds(20), [&] { return canvas.count > 4; }));
    }
    obs_remove_raw_video_callback(KeepCanvas, &canvas);
    return canvas.pixels;
}

void SetStillPicture(const Source& source, StillPicture picture) {
    auto& still = *static_cast<Still*>(obs_obj_get_data(source.get()));
    const std::lock_guard lock(still.mutex);
    still.picture = std::move(picture);
    still.isNew = true;
}
