// check_kernels: compares every primitive with its plain model, or times both.
#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/Cpu.h"
#include "tests/check_kernels/Trial.h"

namespace {

constexpr const char* kUsage =
    "usage: check_kernels [--group NAME] [--filter TEXT] [--seed N] [--light]\n"
    "       check_kernels --bench [--csv] [--level NAME] [--all] [--size WxH] [--group NAME] [--filter "
    "TEXT]\n"
    "       check_kernels --list\n"
    "\n"
    "Compares each primitive with its plain model on random pictures of many sizes, at every processor "
    "level.\n"
    "  --group NAME   only the kernels of one group\n"
    "  --filter TEXT  only kernels whose name holds TEXT\n"
    "  --seed N       start of the random numbers (default 1)\n"
    "  --light        fewer sizes and parameters, for slow builds\n"
    "  --bench        times instead: primitive, model, ratio to a memcpy of the same plane\n"
    "  --csv          times as comma-separated values\n"
    "  --level NAME   at this processor level (default the highest)\n"
    "  --all          with every combination of parameters, not the chief one alone\n"
    "  --size WxH     of the timed pictures (default 1280x720)\n";

struct Size {
    int32_t width;
    int32_t height;
};

struct Options {
    std::string_view group;
    std::string_view filter;
    uint64_t seed = 1;
    bool light = false;
    bool bench = false;
    bool csv = false;
    bool all = false;
    bool list = false;
    Size size{1280, 720};
    cpu::Level level = cpu::Levels().back();
};

template <typename Number>
bool Parse(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool Parse(std::string_view text, Size& size) {
    const size_t cross = text.find('x');
    return cross != text.npos && Parse(text.substr(0, cross), size.width) &&
           Parse(text.substr(cross + 1), size.height) && size.width > 0 && size.height > 0;
}

bool Parse(std::string_view text, cpu::Level& level) {
    const auto found = std::ranges::find(cpu::Levels(), text, cpu::Name);
    if (found == cpu::Levels().end()) {
        return false;
    }
    level = *found;
    return true;
}

std::optional<Options> ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view name = argv[i];
        if (name == "--light") {
            options.light = true;
        } else if (name == "--bench") {
            options.bench = true;
        } else if (name == "--csv") {
            options.csv = true;
        } else if (name == "--all") {
            options.all = true;
        } else if (name == "--list") {
            options.list = true;
        } else if (i + 1 == argc) {
            return std::nullopt;
        } else {
            const std::string_view value = argv[++i];
            if (name == "--group") {
                options.group = value;
            } else if (name == "--filter") {
                options.filter = value;
            } else if (!(name == "--seed" && Parse(value, options.seed)) &&
                       !(name == "--level" && Parse(value, options.level)) &&
                       !(name == "--size" && Parse(value, options.size))) {
                return std::nullopt;
            }
        }
    }
    return options;
}

std::vector<check::Entry> Chosen(const Options& options) {
    std::vector<check::Entry> chosen;
    for (const check::Entry& entry : check::AllKernels()) {
        if ((options.group.empty() || entry.group == options.group) &&
            entry.kernel.name.find(options.filter) != std::string_view::npos) {
            chosen.push_back(entry);
        }
    }
    return chosen;
}

/// Sizes to compare at, with the number of parameter combinations that each gets.
struct Plan {
    Size size;
    int combinations;
};

std::vector<Plan> MakePlans(bool light) {
    std::vector<Plan> plans;
    for (int32_t height = 1; height <= 40; ++height) {
        for (int32_t width = 1; width <= 40; ++width) {
            if (!light || height <= 3 || height % 12 == 5) {
                plans.push_back({{width, height}, 4});
            }
        }
    }
    plans.push_back({{176, 144}, light ? 16 : 32});
    if (!light) {
        plans.push_back({{641, 479}, 4});
        plans.push_back({{1280, 720}, 2});
    }
    return plans;
}

/// What is being compared, for the message after a crash.
struct {
    std::string_view kernel;
    Size size;
    const check::Trial* trial;
} current;

/// A primitive touched a page that it must not. (Sanitizers report it themselves.)
[[maybe_unused]] void ReportCrash(int) {
    std::printf("FAILED %.*s, %s, at %dx%d%s: reads or writes past its pictures\n",
                static_cast<int>(current.kernel.size()), current.kernel.data(),
                cpu::Name(current.trial->level()), current.size.width, current.size.height,
                current.trial->parameters().c_str());
    std::fflush(stdout);
    std::_Exit(1);
}

void CatchCrashes() {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    std::signal(SIGSEGV, ReportCrash);
    std::signal(SIGBUS, ReportCrash);
#endif
}

struct Tally {
    int64_t runs = 0;                        // at each level
    std::map<cpu::Level, int64_t> failures;  // no entry without one
};

/// Compares one kernel at all sizes, up to the third failure of a level. Sizes share the
/// combinations of parameters: each continues where the previous one stopped.
Tally CheckKernel(const check::Kernel& kernel, const std::vector<Plan>& plans, uint64_t seed) {
    Tally tally;
    check::Trial trial(seed, false);
    CatchCrashes();
    for (const Plan& plan : plans) {
        current = {kernel.name, plan.size, &trial};
        for (int i = 0; i < plan.combinations; ++i) {
            trial.Begin(plan.size.width, plan.size.height, kernel.copyBytesPerPixel);
            kernel.run(trial);
            tally.runs += trial.ran();
            bool enough = false;
            for (const cpu::Level level : cpu::Levels()) {
                const std::string failure = trial.failure(level);
                if (!failure.empty()) {
                    std::printf("FAILED %.*s, %s, at %dx%d%s: %s\n", static_cast<int>(kernel.name.size()),
                                kernel.name.data(), cpu::Name(level), plan.size.width, plan.size.height,
                                trial.parameters().c_str(), failure.c_str());
                    enough = ++tally.failures[level] == 3 || enough;
                }
            }
            if (enough) {
                return tally;
            }
            trial.Advance();
        }
    }
    return tally;
}

int Check(const std::vector<check::Entry>& entries, const Options& options) {
    const std::vector<Plan> plans = MakePlans(options.light);
    bool good = true;
    for (const check::Entry& entry : entries) {
        const Tally tally = CheckKernel(entry.kernel, plans, options.seed);
        for (const cpu::Level level : cpu::Levels()) {
            const bool passed = !tally.failures.contains(level) && tally.runs > 0;
            good = good && passed;
            std::printf("%-40.*s %-9s %7lld runs  %s\n", static_cast<int>(entry.kernel.name.size()),
                        entry.kernel.name.data(), cpu::Name(level), static_cast<long long>(tally.runs),
                        passed ? "ok" : "FAILED");
        }
        std::fflush(stdout);
    }
    return good ? 0 : 1;
}

void PrintTimes(const Options& options, const std::string& kernel, const check::Trial::Times& times) {
    if (options.csv) {
        std::printf("\"%s\",%s,%dx%d,%.4f,%.3f,%.2f\n", kernel.c_str(), cpu::Name(cpu::Current()),
                    options.size.width, options.size.height, times.fast * 1e3, times.model * 1e3,
                    times.fast / times.memcpy);
    } else {
        std::printf("%-64s %10.4f %10.3f %8.2f\n", kernel.c_str(), times.fast * 1e3, times.model * 1e3,
                    times.fast / times.memcpy);
    }
    std::fflush(stdout);
}

int Bench(const std::vector<check::Entry>& entries, const Options& options) {
    cpu::Limit(options.level);
    if (options.csv) {
        std::printf("kernel,level,size,ms,model_ms,x_memcpy\n");
    } else {
        std::printf("%-64s %10s %10s %8s\n", "kernel", "ms", "model ms", "x memcpy");
    }
    for (const check::Entry& entry : entries) {
        check::Trial trial(options.seed, true);
        do {
            trial.Begin(options.size.width, options.size.height, entry.kernel.copyBytesPerPixel);
            entry.kernel.run(trial);
            if (trial.ran()) {
                PrintTimes(options, std::string(entry.kernel.name) + trial.parameters(), trial.times());
            }
        } while (!trial.Advance() && options.all);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::optional<Options> options = ParseOptions(argc, argv);
    if (!options) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    const std::vector<check::Entry> entries = Chosen(*options);
    if (entries.empty()) {
        std::fputs("check_kernels: no such kernel\n", stderr);
        return 2;
    }
    if (options->list) {
        for (const check::Entry& entry : entries) {
            std::printf("%-14.*s %.*s\n", static_cast<int>(entry.group.size()), entry.group.data(),
                        static_cast<int>(entry.kernel.name.size()), entry.kernel.name.data());
        }
        return 0;
    }
    return options->bench ? Bench(entries, *options) : Check(entries, *options);
}
