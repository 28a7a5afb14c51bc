// Times every effect of the catalogue on a moving noisy scene, one thread, beside a memcpy of the same frame.
//
// Counters: ms a frame, megapixels a second, and x_memcpy, the ratio of the two medians. The frame that a
// memcpy copies is the one that the effect then works on, so that both find it in the same cache.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "framework/Catalogue.h"

namespace {

constexpr int kPictures = 8;

struct Frame {
    Frame(int32_t w, int32_t h)
        : width(w), height(h), bytes(static_cast<size_t>(w) * static_cast<size_t>(h) * 3 / 2) {
        const int32_t luma = w * h;
        uint8_t* const data = bytes.data();
        image = {kFormatPlanar, {data, data + luma, data + luma + luma / 4}, 0, {luma, luma / 4, luma / 4}};
        record.Image = &image;
    }
    Frame(const Frame&) = delete;

    /// A disc, a bar and texture that move, with sensor noise.
    void Draw(int index) {
        uint32_t noise = 12345U + static_cast<uint32_t>(index);
        for (int p = 0; p < 3; ++p) {
            const int32_t w = p == 0 ? width : width / 2, h = p == 0 ? height : height / 2;
            for (int32_t y = 0; y < h; ++y) {
                for (int32_t x = 0; x < w; ++x) {
                    const int32_t u = x * 256 / w, v = y * 256 / h, cx = 90 + 6 * index, cy = 128;
                    int32_t value = p == 0 ? (u + v) / 2 : 112 + (p == 1 ? u : v) / 8;
                    if (p == 0 && (u - cx) * (u - cx) + (v - cy) * (v - cy) < 50 * 50)
                        value = 190 + (x / 8 + y / 8) % 2 * 30;
                    if (p == 0 && u / 12 == index) value = 25;
                    noise = noise * 1664525U + 1013904223U;
                    value += static_cast<int32_t>(noise >> 29) - 3;
                    image.Plane[p][y * w + x] = static_cast<uint8_t>(std::clamp(value, 0, 255));
                }
            }
        }
    }

    int32_t width, height;
    std::vector<uint8_t> bytes;
    ImageRecord image{};
    FrameRecord record{};
};

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void RunEffect(benchmark::State& state, const CatalogueRow& row, int32_t width, int32_t height) {
    std::vector<std::unique_ptr<Frame>> scene;
    for (int i = 0; i < kPictures; ++i) {
        scene.push_back(std::make_unique<Frame>(width, height));
        scene.back()->Draw(i);
    }
    Frame frame(width, height);
    std::vector<uint8_t> copy(frame.bytes.size());

    std::srand(1);
    CSpecialEffectFilter* const effect = row.create();
    StreamDescription stream{0, width, height, kFormatPlanar};
    effect->Configure(&stream);

    using Clock = std::chrono::steady_clock;
    const auto seconds = [](Clock::duration d) { return std::chrono::duration<double>(d).count(); };
    std::vector<double> effectTimes, copyTimes;
    size_t index = 0;
    // Past every effect's warm-up.
    for (; index < 40; ++index) {
        std::memcpy(frame.bytes.data(), scene[index % kPictures]->bytes.data(), frame.bytes.size());
        effect->ProcessFrame(&frame.record);
    }
    for ([[maybe_unused]] auto _ : state) {
        std::memcpy(frame.bytes.data(), scene[index++ % kPictures]->bytes.data(), frame.bytes.size());
        const auto start = Clock::now();
        std::memcpy(copy.data(), frame.bytes.data(), copy.size());
        benchmark::ClobberMemory();
        const auto copied = Clock::now();
        effect->ProcessFrame(&frame.record);
        benchmark::ClobberMemory();
        const auto done = Clock::now();
        copyTimes.push_back(seconds(copied - start));
        effectTimes.push_back(seconds(done - copied));
        state.SetIterationTime(effectTimes.back());
    }
    effect->Shutdown();
    effect->DeletingDestructor(1);

    const double time = Median(effectTimes);
    state.counters["ms"] = time * 1e3;
    state.counters["Mpx_per_s"] = width * height / time * 1e-6;
    state.counters["x_memcpy"] = time / Median(copyTimes);
}

std::string NameOf(const CatalogueRow& row) {
    CSpecialEffectFilter* const effect = row.create();
    char name[64] = "";
    effect->GetInternalInfo()->GetName(name, sizeof name);
    effect->DeletingDestructor(1);
    return name;
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    int number = 0;
    for (const CatalogueRow& row : EffectCatalogue()) {
        ++number;
        for (const auto& [w, h] : {std::pair{1280, 720}, {1920, 1080}}) {
            const std::string name = std::to_string(number) + " " + NameOf(row) + "/" + std::to_string(w) +
                                     "x" + std::to_string(h);
            benchmark::RegisterBenchmark(
                name.c_str(), [&row, w = w, h = h](benchmark::State& state) { RunEffect(state, row, w, h); })
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->MinTime(0.3);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
