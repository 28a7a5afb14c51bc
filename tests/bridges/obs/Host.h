// A small OBS for tests: libobs with the plugin, and sources and filters of the tests' own.
#ifndef SPECIALEFFECTS_TESTS_BRIDGES_OBS_HOST_H
#define SPECIALEFFECTS_TESTS_BRIDGES_OBS_HOST_H

#include <obs.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sfx/sfx.h"

inline constexpr const char* kCameraFilter = "specialeffects_filter";
inline constexpr const char* kAnyFilter = "specialeffects_any_filter";

using Source = std::unique_ptr<obs_source_t, decltype(&obs_source_release)>;
using Data = std::unique_ptr<obs_data_t, decltype(&obs_data_release)>;
using Properties = std::unique_ptr<obs_properties_t, decltype(&obs_properties_destroy)>;
using Effect = std::unique_ptr<sfx_effect, decltype(&sfx_destroy)>;

inline constexpr uint32_t kCanvasWidth = 160, kCanvasHeight = 96;

/// Starts libobs and loads the plugin; 0 where that works. The canvas is BGRA, 160 by 96. It has 200
/// frames a second; SE_OBS_RATE in the environment makes it another rate.
int StartObs();
/// Ends it, and returns the number of libobs's allocations that are left.
long StopObs();

/// Lines of OBS's log that contain a text, since the last ForgetLog.
std::vector<std::string> LogLines(const std::string& text);
void ForgetLog();

/// A millisecond.
void Pause();

/// Calls `isDone` until it is true or 20 seconds have passed, and returns its last answer.
template <class Function>
bool WaitUntil(Function&& isDone) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isDone()) {
        if (std::chrono::steady_clock::now() > end) return isDone();
        Pause();
    }
    return true;
}

/// Waits until OBS has made this number of further frames.
void WaitForFrames(uint32_t count);

Source Create(const char* kind, const char* name, const char* settings = "{}");
/// A filter on a source.
Source AddFilter(const Source& source, const char* kind, const char* settings);
/// Changes settings, given as JSON.
void Update(const Source& source, const char* settings);

struct Status {
    std::string effect;
    int64_t frames = 0, nanoseconds = 0;
};
Status StatusOf(const Source& filter);

Effect CreateEffect(const std::string& text, uint32_t seed = SFX_DEFAULT_SEED);

/// A picture in a format of OBS's and libsfx's, with rows that may be longer than the picture is wide.
struct Picture {
    Picture(video_format format, int width, int height, int padding = 0);

    /// Picture `index` of a moving scene with gradients, noise and hard edges.
    Picture& Draw(int index);

    obs_source_frame Frame(uint64_t time) const;
    /// The whole, without padding and alpha, for sfx_process.
    sfx_picture View();

    /// Whether the rows are the same, padding aside; alpha included.
    bool operator==(const Picture& other) const;

    video_format format;
    int32_t sfxFormat;
    int width, height;
    int planeCount;  // with that of alpha
    std::vector<uint8_t> planes[MAX_AV_PLANES];
    size_t rowBytes[MAX_AV_PLANES] = {};
    size_t strides[MAX_AV_PLANES] = {};
    bool flip = false;
};

/// A camera whose frames pass through the plugin's filter, and through a filter of the test's behind it.
class Camera {
  public:
    explicit Camera(const char* settings = nullptr);
    ~Camera();

    /// Sends a frame. False where nothing comes out behind the filters.
    bool Try(const Picture& picture, uint64_t time);
    /// Sends a frame, again and again, until it comes out behind the filters.
    Picture Send(const Picture& picture, uint64_t time);
    /// What has come out last; in the form of `picture`.
    Picture Latest(const Picture& picture);
    /// Sends frames until the filter's effect has processed the first, which it returns.
    Picture SendUntilReady(const Picture& picture, uint64_t time);
    /// Waits, while frames run, until the filter runs what a text describes.
    bool WaitForEffect(const std::string& text, const Picture& picture);

    Source source;
    Source filter;  // null for a camera without settings
    Source probe;
};

/// Shows a source as the only one. Null: none.
void Show(obs_source_t* source);
/// The next frame of the canvas, in rows of 4 * kCanvasWidth bytes, blue first.
std::vector<uint8_t> NextCanvas();

/// What sources of the kind "test_picture" draw: set by tests, RGBA, colours multiplied by alpha or opaque.
struct StillPicture {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;
};
void SetStillPicture(const Source& source, StillPicture picture);

#endif
