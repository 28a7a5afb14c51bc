// bench_effects: times every effect on moving pictures, on one thread, beside a memcpy of the same frame.
//
// The frame that the memcpy copies is the one that the effect then works on, so that both find it in the same
// cache. Effects are timed past their warm-up.
#include <malloc.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bench/Scenes.h"
#include "bench/Timing.h"
#include "framework/Catalogue.h"
#include "imaging/Cpu.h"

namespace {

constexpr const char* kUsage =
    "usage: bench_effects [--size WxH]... [--filter TEXT]... [--seconds S] [--scene NAME] [--level NAME] "
    "[--cascade FILE] [--csv]\n"
    "\n"
    "Times every effect on one thread. Of each it prints the median of a frame in ms, megapixels a second, "
    "the ratio\n"
    "to a memcpy of the frame, the slowest frame in ms, the median of Configure in ms, and the memory it "
    "holds in MB.\n"
    "  --size WxH      of the frames, even numbers (default 1280x720, 1920x1080 and 3840x2160)\n"
    "  --filter TEXT   only effects whose number and name, as in \"61 Bulge\", hold TEXT\n"
    "  --level NAME    at this processor level: baseline, avx2 or avx512 (default the highest)\n"
    "  --seconds S     of timed frames for each effect and size (default 0.3), and 40 frames at least\n"
    "  --scene NAME    what the frames show (default the first):\n";

struct Size {
    int32_t width;
    int32_t height;
};

struct Options {
    std::vector<Size> sizes;
    std::vector<std::string_view> filters;
    const bench::Scene* scene = &bench::Scenes().front();
    std::string cascade = SE_BINARY_DIR "/share/specialeffects/haar.txt";
    cpu::Level level = cpu::Levels().back();
    double seconds = 0.3;
    bool csv = false;
};

template <typename Number>
bool Parse(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool Parse(std::string_view text, Size& size) {
    const size_t cross = text.find('x');
    return cross != text.npos && Parse(text.substr(0, cross), size.width) &&
           Parse(text.substr(cross + 1), size.height) && size.width >= 2 && size.height >= 2 &&
           size.width % 2 == 0 && size.height % 2 == 0 && size.width <= 16384 && size.height <= 16384;
}

bool Parse(std::string_view text, cpu::Level& level) {
    const auto found = std::ranges::find(cpu::Levels(), text, cpu::Name);
    if (found == cpu::Levels().end()) return false;
    level = *found;
    return true;
}

std::optional<Options> ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view name = argv[i];
        if (name == "--csv") {
            options.csv = true;
            continue;
        }
        if (i + 1 == argc) return std::nullopt;
        const std::string_view value = argv[++i];
        if (name == "--size") {
            if (!Parse(value, options.sizes.emplace_back())) return std::nullopt;
        } else if (name == "--filter") {
            options.filters.push_back(value);
        } else if (name == "--seconds") {
            if (!Parse(value, options.seconds)) return std::nullopt;
        } else if (name == "--level") {
            if (!Parse(value, options.level)) return std::nullopt;
        } else if (name == "--cascade") {
            options.cascade = value;
        } else if (name == "--scene") {
            const auto scenes = bench::Scenes();
            const auto found =
                std::ranges::find_if(scenes, [&](const bench::Scene& scene) { return scene.name == value; });
            if (found == scenes.end()) return std::nullopt;
            options.scene = &*found;
        } else {
            return std::nullopt;
        }
    }
    if (options.sizes.empty()) options.sizes = {{1280, 720}, {1920, 1080}, {3840, 2160}};
    return options;
}

void PrintUsage() {
    std::fputs(kUsage, stderr);
    for (const bench::Scene& scene : bench::Scenes()) {
        std::fprintf(stderr, "      %-9s %s\n", scene.name, scene.about);
    }
    std::fputs(
        "  --cascade FILE  of Picture Me (default the one that the build makes)\n"
        "  --csv           comma-separated values\n",
        stderr);
}

struct Deleter {
    void operator()(CSpecialEffectFilter* effect) const {
        effect->Shutdown();
        effect->DeletingDestructor(1);
    }
};
using Effect = std::unique_ptr<CSpecialEffectFilter, Deleter>;

std::string NameOf(CSpecialEffectFilter& effect) {
    char name[64] = "";
    effect.GetInternalInfo()->GetName(name, sizeof name);
    return name;
}

/// Bytes that the process has allocated, large blocks included.
double AllocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

struct Result {
    double frame;  // seconds
    double slowest;
    double copy;
    double configure;
    double bytes;
};

Result Measure(const CatalogueRow& row, Size size, const std::vector<bench::Frame>& clip, Options& options) {
    constexpr size_t kWarmUp = 40, kFewest = 40, kMost = 2000;
    bench::Frame frame = clip.front();
    bench::Copy copy(frame.size());
    const auto luma = static_cast<int32_t>(size.width * size.height), chroma = luma / 4;
    uint8_t* const data = frame.data();
    ImageRecord image = {kFormatPlanar, {data, data + luma, data + luma + chroma}, 0, {luma, chroma, chroma}};
    FrameRecord record = {{}, &image};

    std::srand(1);
    const double before = AllocatedBytes();
    const Effect effect(row.create());
    StreamDescription stream{0, size.width, size.height, kFormatPlanar};
    std::vector<double> configureTimes(3);
    for (double& time : configureTimes) time = bench::Timed([&] { effect->Configure(&stream); });
    SettingsRecord settings{0, nullptr, options.cascade.data(), {0, 0}};
    effect->LoadSettings(&settings);  // of Picture Me; others have none

    std::vector<double> times, copyTimes;
    double total = 0;
    for (size_t i = 0; i < kWarmUp + kFewest || (total < options.seconds && times.size() < kMost); ++i) {
        const bench::Frame& picture = clip[i % clip.size()];
        std::memcpy(data, picture.data(), picture.size());
        const double copyTime = copy.Time(data);
        const double time = bench::Timed([&] { effect->ProcessFrame(&record); });
        if (i < kWarmUp) continue;
        copyTimes.push_back(copyTime);
        times.push_back(time);
        total += time;
    }
    const double slowest = *std::ranges::max_element(times);
    return {bench::Median(std::move(times)), slowest, bench::Median(std::move(copyTimes)),
            bench::Median(std::move(configureTimes)), AllocatedBytes() - before};
}

bool Chosen(const Options& options, std::string_view name) {
    return options.filters.empty() || std::ranges::any_of(options.filters, [&](std::string_view filter) {
               return name.find(filter) != name.npos;
           });
}

void Run(Options& options) {
    cpu::Limit(options.level);
    if (options.csv) {
        std::printf("effect,size,ms,mpx_per_s,x_memcpy,slowest_ms,configure_ms,megabytes\n");
    } else {
        std::printf("%-24s %9s %9s %9s %9s %11s %13s %8s\n", "effect", "size", "ms", "Mpx/s", "x memcpy",
                    "slowest ms", "Configure ms", "MB");
    }
    for (const Size size : options.sizes) {
        const std::vector<bench::Frame> clip = bench::DrawClip(*options.scene, size.width, size.height);
        const std::string sizeText = std::to_string(size.width) + "x" + std::to_string(size.height);
        double logarithms = 0;
        int rows = 0, number = 0;
        for (const CatalogueRow& row : EffectCatalogue()) {
            const std::string name = std::to_string(++number) + " " + NameOf(*Effect(row.create()));
            if (!Chosen(options, name)) continue;
            const Result result = Measure(row, size, clip, options);
            std::printf(options.csv ? "%s,%s,%.4f,%.0f,%.2f,%.4f,%.3f,%.1f\n"
                                    : "%-24s %9s %9.3f %9.0f %9.2f %11.3f %13.3f %8.1f\n",
                        name.c_str(), sizeText.c_str(), result.frame * 1e3,
                        size.width * size.height / result.frame * 1e-6, result.frame / result.copy,
                        result.slowest * 1e3, result.configure * 1e3, result.bytes * 1e-6);
            std::fflush(stdout);
            logarithms += std::log(result.frame);
            ++rows;
        }
        if (!options.csv && rows > 1) {
            std::printf("%-24s %9s %9.3f\n\n", "geometric mean", sizeText.c_str(),
                        std::exp(logarithms / rows) * 1e3);
        }
    }
}

/// An empty directory to work in: Clouds keeps a file where it runs.
class WorkDirectory {
  public:
    WorkDirectory() : path_(std::filesystem::temp_directory_path() / "bench_effects.XXXXXX") {
        std::string name = path_.string();
        if (mkdtemp(name.data()) == nullptr) throw std::filesystem::filesystem_error("mkdtemp", path_, {});
        path_ = name;
        std::filesystem::current_path(path_);
    }
    ~WorkDirectory() {
        std::error_code ignored;
        std::filesystem::current_path("/", ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

  private:
    std::filesystem::path path_;
};

}  // namespace

int main(int argc, char** argv) {
    try {
        std::optional<Options> options = ParseOptions(argc, argv);
        if (!options) {
            PrintUsage();
            return 2;
        }
        options->cascade = std::filesystem::absolute(options->cascade);
        const WorkDirectory directory;
        Run(*options);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_effects: %s\n", error.what());
        return 1;
    }
}
