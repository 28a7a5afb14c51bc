// Times the face tracker and Picture Me frame by frame. The work of a cycle is spread over four frames, so
// that the dearest of the four is what has to fit the time of a frame.
//
// Counters: the median of each frame of the cycle and their sum, in ms of the thread's processor time.
// `worst` is the dearest frame of a whole flight (the flight's frames take turns with those of the cycle, so
// that each meets each), as the median of its repeats. `share` is that of the cycles after which a face is
// known, or of Picture Me's frames in which a picture flies or stands.
#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "facetrack/FaceDetector.h"
#include "facetrack/PictureMe.h"
#include "imaging/Plane8u.h"

namespace {

constexpr size_t kCycle = CFaceDetector::kFramesInCycle;
constexpr size_t kFlight = 31;  // frames of a picture at the usual speed
constexpr size_t kRepeats = 7;
constexpr size_t kPictures = 12;  // of a clip, which runs to and fro
constexpr const char* kCascade = SE_BINARY_DIR "/share/specialeffects/haar.txt";

/// Planar frames of one size.
struct Clip {
    Clip(int32_t w, int32_t h) : width(w), height(h) {}

    size_t LumaSize() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
    size_t ChromaSize() const { return static_cast<size_t>(width / 2) * static_cast<size_t>(height / 2); }
    const std::vector<uint8_t>& Frame(size_t index) const {
        const size_t turn = index % (2 * kPictures - 2);
        return pictures[turn < kPictures ? turn : 2 * kPictures - 2 - turn];
    }

    int32_t width, height;
    std::vector<std::vector<uint8_t>> pictures;
};

uint32_t NextNoise(uint32_t& state) {
    state = state * 1664525U + 1013904223U;
    return state >> 24;
}

/// The portrait of the tests.
CPlane8u LoadPortrait() {
    CPlane8u portrait(640, 480);
    std::ifstream file(SE_SOURCE_DIR "/tests/facetrack/portrait.pgm", std::ios::binary);
    std::string line;
    for (int i = 0; i < 3; ++i) std::getline(file, line);
    file.read(reinterpret_cast<char*>(portrait.data), static_cast<std::streamsize>(portrait.Size()));
    if (!file) throw std::runtime_error("no portrait");
    return portrait;
}

void AddSensorNoise(CPlane8u& luma) {
    uint32_t noise = 1;
    for (size_t k = 0; k < luma.Size(); ++k) {
        const int32_t value = luma.data[k] + static_cast<int32_t>(NextNoise(noise) >> 5) - 4;
        luma.data[k] = static_cast<uint8_t>(std::clamp(value, 0, 255));
    }
}

/// The portrait under a slow pan and zoom, from a usual distance and from close by, so that a large picture
/// flies.
void DrawPortrait(CPlane8u& luma, int32_t index, int32_t width, int32_t left) {
    static const CPlane8u portrait = LoadPortrait();
    width += 2 * index;
    luma.ResizeRegion(portrait, width, width * luma.height / luma.width, left + 2 * index, 8 + index);
    AddSensorNoise(luma);
}
void DrawFace(CPlane8u& luma, int32_t index) {
    DrawPortrait(luma, index, 520, 20);
}
void DrawCloseFace(CPlane8u& luma, int32_t index) {
    DrawPortrait(luma, index, 370, 90);
}

/// Its face six times, so that the later stages have to work as well.
void DrawCrowd(CPlane8u& luma, int32_t index) {
    static const CPlane8u portrait = LoadPortrait();
    CPlane8u one(luma.width / 3, luma.height / 2);
    const int32_t width = 200 + 2 * index;
    one.ResizeRegion(portrait, width, width * one.height / one.width, 180, 30 + index);
    for (int32_t i = 0; i < 6; ++i) luma.Paste(one, i % 3 * one.width, i / 3 * one.height);
    AddSensorNoise(luma);
}

/// Random squares as large as a pixel at the finest scale: edges everywhere, so that every window is tried.
void DrawSquares(CPlane8u& luma, int32_t index) {
    const int32_t side = std::max(luma.width / 120, 1);
    auto noise = static_cast<uint32_t>(index);
    for (int32_t y = 0; y < luma.height; ++y) {
        uint8_t* const row = luma.Row(y);
        if (y % side != 0) {
            std::copy_n(luma.Row(y - 1), luma.width, row);
            continue;
        }
        for (int32_t x = 0; x < luma.width; ++x) {
            row[x] = x % side == 0 ? static_cast<uint8_t>(NextNoise(noise)) : row[x - 1];
        }
    }
}

struct Scene {
    const char* name;
    void (*draw)(CPlane8u& luma, int32_t index);
};

Clip MakeClip(const Scene& scene, int32_t width, int32_t height) {
    Clip clip(width, height);
    clip.pictures.resize(kPictures);
    for (size_t i = 0; i < kPictures; ++i) {
        std::vector<uint8_t>& picture = clip.pictures[i];
        picture.resize(clip.LumaSize() + 2 * clip.ChromaSize());
        for (size_t k = clip.LumaSize(); k < picture.size(); ++k) {
            picture[k] = static_cast<uint8_t>(96 + (k / 16 + i) % 64);
        }
        CPlane8u luma = CPlane8u::Over(picture.data(), width, height);
        scene.draw(luma, static_cast<int32_t>(i));
    }
    return clip;
}

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs `process` over cycles of frames, which it changes, and states the times. `look` sees each frame
/// afterwards, untimed, beside what it was.
using Process = std::function<void(std::vector<uint8_t>& frame)>;
using Look = std::function<void(const std::vector<uint8_t>& frame, const std::vector<uint8_t>& before)>;
void RunCycles(benchmark::State& state, const Clip& clip, const Process& process, const Look& look) {
    std::vector<std::vector<double>> times(kCycle * kFlight);
    std::vector<uint8_t> frame;
    size_t index = 0;
    for ([[maybe_unused]] auto _ : state) {
        double cycle = 0;
        for (size_t i = 0; i < kCycle; ++i, ++index) {
            frame = clip.Frame(index);
            const double start = ThreadSeconds();
            process(frame);
            benchmark::ClobberMemory();
            const double time = ThreadSeconds() - start;
            times[index % times.size()].push_back(time);
            cycle += time;
            look(frame, clip.Frame(index));
        }
        state.SetIterationTime(cycle);
    }
    std::vector<std::vector<double>> ofCycle(kCycle);
    double sum = 0, worst = 0;
    for (size_t i = 0; i < times.size(); ++i) {
        ofCycle[i % kCycle].insert(ofCycle[i % kCycle].end(), times[i].begin(), times[i].end());
        worst = std::max(worst, Median(times[i]));
    }
    for (size_t i = 0; i < kCycle; ++i) {
        const double median = Median(ofCycle[i]);
        state.counters["frame_" + std::to_string(i + 1)] = median * 1e3;
        sum += median;
    }
    state.counters["sum"] = sum * 1e3;
    state.counters["worst"] = worst * 1e3;
}

void RunTracker(benchmark::State& state, const Scene& scene, int32_t width, int32_t height) {
    const Clip clip = MakeClip(scene, width, height);
    CFaceDetector detector;
    detector.SetCascadePath(kCascade);
    if (!detector.Initialize(width, height)) {
        state.SkipWithError("no cascade");
        return;
    }
    size_t frames = 0, known = 0;
    const auto process = [&](std::vector<uint8_t>& frame) {
        // The cascade wants pictures upside down; turning them back is part of the price.
        CPlane8u luma = CPlane8u::Over(frame.data(), width, height);
        luma.Mirror(0);
        detector.TrackFrame(luma);
        luma.Mirror(0);
    };
    RunCycles(state, clip, process, [&](const auto&, const auto&) {
        if (++frames % kCycle == 0) known += detector.Faces().empty() ? 0 : 1;
    });
    state.counters["share"] = static_cast<double>(known * kCycle) / static_cast<double>(frames);
}

void RunPictureMe(benchmark::State& state, const Scene& scene, int32_t width, int32_t height) {
    const Clip clip = MakeClip(scene, width, height);
    CPictureMeSpecialEffectFilter effect;
    StreamDescription stream{0, width, height, kFormatPlanar};
    std::string path = kCascade;
    SettingsRecord settings{0, nullptr, path.data(), {0, 0}};
    effect.Configure(&stream);
    effect.LoadSettings(&settings);

    const size_t luma = clip.LumaSize(), chroma = clip.ChromaSize();
    size_t frames = 0, drawn = 0;
    const auto process = [&](std::vector<uint8_t>& frame) {
        const auto size = [](size_t bytes) { return static_cast<int32_t>(bytes); };
        uint8_t* const data = frame.data();
        ImageRecord image{kFormatPlanar,
                          {data, data + luma, data + luma + chroma},
                          0,
                          {size(luma), size(chroma), size(chroma)}};
        FrameRecord record{{}, &image};
        effect.ProcessFrame(&record);
    };
    RunCycles(state, clip, process, [&](const auto& frame, const auto& before) {
        // The outlines of faces are in the luma alone.
        ++frames;
        drawn += std::memcmp(frame.data() + luma, before.data() + luma, 2 * chroma) != 0 ? 1 : 0;
    });
    state.counters["share"] = static_cast<double>(drawn) / static_cast<double>(frames);
    effect.Shutdown();
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    static constexpr Scene kScenes[] = {
        {"face", DrawFace}, {"close", DrawCloseFace}, {"crowd", DrawCrowd}, {"squares", DrawSquares}};
    using Run = void (*)(benchmark::State&, const Scene&, int32_t, int32_t);
    for (const auto& [what, run] :
         {std::pair<const char*, Run>{"tracker", RunTracker}, {"Picture Me", RunPictureMe}}) {
        for (const Scene& scene : kScenes) {
            for (const auto& [w, h] : {std::pair{640, 480}, {1280, 720}, {1920, 1080}}) {
                const std::string name =
                    std::string(what) + "/" + scene.name + "/" + std::to_string(w) + "x" + std::to_string(h);
                benchmark::RegisterBenchmark(
                    name.c_str(),
                    [&scene, run = run, w = w, h = h](benchmark::State& state) { run(state, scene, w, h); })
                    ->UseManualTime()
                    ->Unit(benchmark::kMillisecond)
                    ->Iterations(kFlight * kRepeats);
            }
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
