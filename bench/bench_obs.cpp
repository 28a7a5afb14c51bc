// What OBS's filters cost beyond the effect itself, for 1280x720.
//
//     xvfb-run -a bench_obs [EFFECT...]
//
// Frames of each format go through the filter for cameras, and through libsfx as I420 with tight rows, by
// turns, on one thread; processor time, medians. The filter for any source is measured without what the
// graphics processor does: a copy out of its memory, the effect on RGBA, and a copy into its memory.
#include <dlfcn.h>
#include <obs-module.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "bench/Timing.h"
#include "sfx/sfx.h"

namespace {

constexpr int kWidth = 1280, kHeight = 720, kFrames = 200;
constexpr uint64_t kInterval = 33333333;

obs_source_info cameraFilter;

void Draw(std::vector<uint8_t>& pixels, int index) {
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<uint8_t>(i / 3 + i / 1280 + static_cast<size_t>(index) * 5);
    }
}

sfx_effect* Create(const std::string& text) {
    sfx_effect* effect = nullptr;
    if (sfx_create(text.c_str(), &effect) < 0) {
        std::fprintf(stderr, "%s\n", sfx_message());
        std::exit(2);
    }
    return effect;
}

struct Pixels {
    explicit Pixels(int32_t format) : bytes(sfx_picture_layout(nullptr, format, kWidth, kHeight, nullptr)) {
        sfx_picture_layout(&picture, format, kWidth, kHeight, bytes.data());
    }
    std::vector<uint8_t> bytes;
    sfx_picture picture;
};

/// A filter of the plugin, driven without a source.
struct Filter {
    explicit Filter(const std::string& effect) {
        obs_data_t* const settings = obs_data_create();
        obs_data_set_string(settings, "effect", effect.c_str());
        source = obs_source_create("specialeffects_filter", "Effect", settings, nullptr);
        obs_data_release(settings);
    }
    ~Filter() { obs_source_release(source); }

    void Process(Pixels& pixels, video_format format, int index) {
        obs_source_frame frame{};
        for (int plane = 0; plane < sfx_format_planes(pixels.picture.format); ++plane) {
            frame.data[plane] = pixels.picture.planes[plane];
            frame.linesize[plane] = static_cast<uint32_t>(pixels.picture.strides[plane]);
        }
        frame.width = kWidth;
        frame.height = kHeight;
        frame.format = format;
        frame.timestamp = static_cast<uint64_t>(index) * kInterval;
        cameraFilter.filter_video(obs_obj_get_data(source), &frame);
    }

    obs_source_t* source = nullptr;
};

/// Seconds that `other`, another way to an effect, takes longer than the effect itself on I420: the median.
/// The time of the effect goes to `own`.
template <class Other>
double Overhead(const std::string& effect, Other&& other, double& own) {
    sfx_effect* const reference = Create(effect);
    Pixels pixels(SFX_I420);
    std::vector<double> times, differences;
    for (int index = 0; index < kFrames; ++index) {
        Draw(pixels.bytes, index);
        const double time = bench::Timed([&] {
            sfx_process(reference, &pixels.picture,
                        static_cast<int64_t>(static_cast<uint64_t>(index) * kInterval));
        });
        times.push_back(time);
        differences.push_back(other(index) - time);
    }
    sfx_destroy(reference);
    own = bench::Median(times);
    return bench::Median(differences);
}

double CameraOverhead(const std::string& effect, int32_t format, video_format obsFormat, double& own) {
    Filter filter(effect);
    Pixels pixels(format);
    // The effect gets ready on another thread, which no function of the filter waits for.
    for (int tries = 0; tries < 200; ++tries) {
        filter.Process(pixels, obsFormat, 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return Overhead(
        effect,
        [&](int index) {
            Draw(pixels.bytes, index);
            return bench::Timed([&] { filter.Process(pixels, obsFormat, index); });
        },
        own);
}

double AnySourceOverhead(const std::string& effect, double& own) {
    sfx_effect* const drawn = Create(effect);
    Pixels mapped(SFX_RGBA), pixels(SFX_RGBA), texture(SFX_RGBA);
    const double overhead = Overhead(
        effect,
        [&](int index) {
            Draw(mapped.bytes, index);
            return bench::Timed([&] {
                std::memcpy(pixels.bytes.data(), mapped.bytes.data(), mapped.bytes.size());
                sfx_process(drawn, &pixels.picture,
                            static_cast<int64_t>(static_cast<uint64_t>(index) * kInterval));
                std::memcpy(texture.bytes.data(), pixels.bytes.data(), mapped.bytes.size());
            });
        },
        own);
    sfx_destroy(drawn);
    return overhead;
}

}  // namespace

/// Takes the place of the function of this name in libobs, which it calls.
extern "C" __attribute__((visibility("default"))) void obs_register_source_s(const obs_source_info* info,
                                                                             size_t size) {
    if (std::strcmp(info->id, "specialeffects_filter") == 0) cameraFilter = *info;
    const auto own =
        reinterpret_cast<decltype(&obs_register_source_s)>(dlsym(RTLD_NEXT, "obs_register_source_s"));
    own(info, size);
}

int main(int argc, char** argv) {
    base_set_log_handler([](int, const char*, va_list, void*) {}, nullptr);
    obs_module_t* module = nullptr;
    if (!obs_startup("en-US", nullptr, nullptr) ||
        obs_open_module(&module, OBS_PLUGIN, OBS_PLUGIN_DATA) != MODULE_SUCCESS || !obs_init_module(module)) {
        std::fprintf(stderr, "OBS cannot load the plugin; it needs an X display\n");
        return 2;
    }
    std::vector<std::string> effects(argv + 1, argv + argc);
    if (effects.empty()) effects = {"gray-scale", "sepia", "rain", "sketch-2"};
    std::printf("%-12s %-10s %10s %10s  ms a frame\n", "effect", "frames", "effect", "overhead");
    for (const std::string& effect : effects) {
        double own = 0;
        for (const auto& [name, format, obsFormat] : {std::tuple("I420", SFX_I420, VIDEO_FORMAT_I420),
                                                      std::tuple("NV12", SFX_NV12, VIDEO_FORMAT_NV12),
                                                      std::tuple("YUY2", SFX_YUY2, VIDEO_FORMAT_YUY2),
                                                      std::tuple("BGRA", SFX_BGRA, VIDEO_FORMAT_BGRA)}) {
            const double overhead = CameraOverhead(effect, format, obsFormat, own);
            std::printf("%-12s %-10s %10.3f %10.3f\n", effect.c_str(), name, own * 1e3, overhead * 1e3);
        }
        const double overhead = AnySourceOverhead(effect, own);
        std::printf("%-12s %-10s %10.3f %10.3f\n", effect.c_str(), "any source", own * 1e3, overhead * 1e3);
    }
    obs_shutdown();
    return 0;
}
