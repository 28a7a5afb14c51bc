// `bench`: what an effect costs, beside what it costs to copy the frame.
#include <algorithm>
#include <chrono>
#include <cstring>

#include "Commands.h"
#include "EffectChain.h"
#include "Interrupt.h"
#include "Json.h"
#include "StandardOutput.h"
#include "TestScene.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr AVRational kTimeBase{1, 30};
constexpr int kSceneFrames = 16;
constexpr int kWarmUpFrames = 4;
constexpr size_t kFewestFrames = 12;
constexpr size_t kMostFrames = 200;
constexpr Milliseconds kEnough(600);

struct Timing {
    double effect;  // milliseconds a frame
    double copy;    // milliseconds for a memcpy of the frame, in the same run
};

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <class Work>
double Timed(Work work) {
    const auto start = Clock::now();
    work();
    return Milliseconds(Clock::now() - start).count();
}

Timing Measure(EffectChain& chain, const std::vector<Frame>& scene) {
    Frame frame(scene.front().Width(), scene.front().Height());
    Frame copy(frame.Width(), frame.Height());
    const size_t size = static_cast<size_t>(frame.Width()) * static_cast<size_t>(frame.Height()) * 3 / 2;
    std::vector<double> effectTimes, copyTimes;
    double total = 0;
    for (size_t i = 0; effectTimes.size() < kMostFrames && !Interrupted(); ++i) {
        // The effect and the copy both find the frame in the cache, as it is after a camera wrote it.
        frame.CopyPixels(scene[i % scene.size()]);
        frame.SetTime(static_cast<int64_t>(i));
        const double effectTime = Timed([&] { chain.Process(frame, kTimeBase); });
        const double copyTime = Timed([&] { std::memcpy(copy.Plane(0), frame.Plane(0), size); });
        if (i < kWarmUpFrames) continue;
        effectTimes.push_back(effectTime);
        copyTimes.push_back(copyTime);
        total += effectTime;
        if (effectTimes.size() >= kFewestFrames && total > kEnough.count()) break;
    }
    if (effectTimes.empty()) throw Failure("interrupted");
    return {Median(std::move(effectTimes)), Median(std::move(copyTimes))};
}

std::vector<Frame> DrawScene(Size size) {
    std::vector<Frame> scene;
    for (int64_t i = 0; i < kSceneFrames; ++i) {
        scene.emplace_back(size.width, size.height);
        DrawTestScene(i, scene.back());
    }
    return scene;
}

std::vector<std::string> EveryEffect() {
    std::vector<std::string> names;
    for (size_t i = 0; i < sfx_effect_count(); ++i) names.emplace_back(sfx_effect_at(i)->id);
    return names;
}

void PrintHead(Size size) {
    Print("{}x{}, one thread, medians\n", size.width, size.height);
    Print("{:<24} {:>9} {:>9} {:>9} {:>9}\n", "effect", "ms/frame", "fps", "memcpy ms", "x memcpy");
}

void PrintRow(const std::string& effect, const Timing& timing) {
    Print("{:<24} {:>9.3f} {:>9.1f} {:>9.4f} {:>9.2f}\n", effect, timing.effect, 1000 / timing.effect,
          timing.copy, timing.effect / timing.copy);
}

Json JsonOf(const std::string& effect, Size size, const Timing& timing) {
    return Json::Object{{"effect", effect},
                        {"width", size.width},
                        {"height", size.height},
                        {"milliseconds", timing.effect},
                        {"memcpyMilliseconds", timing.copy},
                        {"ratio", timing.effect / timing.copy}};
}

}  // namespace

void Run(const BenchOptions& options) {
    const Notes notes(options.quiet);
    const std::vector<std::string> effects = options.effects.empty() ? EveryEffect() : options.effects;
    std::vector<EffectChain> chains;
    chains.reserve(effects.size());
    for (const std::string& effect : effects) chains.emplace_back(std::vector{effect}, notes);
    const Size size = EvenSize(options.size, notes);
    const std::vector<Frame> scene = DrawScene(size);

    Json::Array json;
    if (!options.json) PrintHead(size);
    for (size_t i = 0; i < chains.size(); ++i) {
        chains[i].Prepare(size.width, size.height);
        const Timing timing = Measure(chains[i], scene);
        if (options.json) {
            json.push_back(JsonOf(effects[i], size, timing));
        } else {
            PrintRow(effects[i], timing);
        }
    }
    if (options.json) Print("{}\n", Json(json).Text());
}

}  // namespace host
