// Every frei0r plugin, loaded and driven as a host does.
#include <dlfcn.h>
#include <frei0r.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Services.h"

namespace {

class Plugin {
  public:
    explicit Plugin(const sfx_effect_info& info) : Plugin(FREI0R_FOLDER "/" + ServiceOf(info) + ".so") {}
    explicit Plugin(const std::string& path)
        : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL), dlclose) {
        EXPECT_NE(library_, nullptr) << dlerror();
        if (library_ == nullptr) return;
        Find(init, "f0r_init");
        Find(deinit, "f0r_deinit");
        Find(info_, "f0r_get_plugin_info");
        Find(paramInfo, "f0r_get_param_info");
        Find(construct, "f0r_construct");
        Find(destruct, "f0r_destruct");
        Find(set, "f0r_set_param_value");
        Find(get, "f0r_get_param_value");
        Find(update, "f0r_update");
    }

    f0r_plugin_info_t Info() const {
        f0r_plugin_info_t info = {};
        info_(&info);
        return info;
    }
    bool Loaded() const { return library_ != nullptr; }

    decltype(&f0r_init) init = nullptr;
    decltype(&f0r_deinit) deinit = nullptr;
    decltype(&f0r_get_param_info) paramInfo = nullptr;
    decltype(&f0r_construct) construct = nullptr;
    decltype(&f0r_destruct) destruct = nullptr;
    decltype(&f0r_set_param_value) set = nullptr;
    decltype(&f0r_get_param_value) get = nullptr;
    decltype(&f0r_update) update = nullptr;

  private:
    template <class Function>
    void Find(Function& function, const char* name) {
        function = reinterpret_cast<Function>(dlsym(library_.get(), name));
        EXPECT_NE(function, nullptr) << name;
    }

    std::unique_ptr<void, int (*)(void*)> library_;
    decltype(&f0r_get_plugin_info) info_ = nullptr;
};

using Pixels = std::vector<uint32_t>;

/// A noisy gradient that moves; alpha is noise as well.
Pixels Picture(unsigned width, unsigned height, unsigned index) {
    Pixels pixels(size_t{width} * height);
    uint32_t noise = index * 2654435761U + 1;
    for (size_t i = 0; i < pixels.size(); ++i) {
        noise = noise * 1664525 + 1013904223;
        const auto x = static_cast<uint32_t>(i % width), y = static_cast<uint32_t>(i / width);
        const uint32_t red = (x * 3 + index * 60) & 255, green = (y * 5) & 255, blue = (noise >> 20) & 127;
        pixels[i] = red | green << 8 | blue << 16 | (noise & 0xFF000000U);
    }
    return pixels;
}

/// What libsfx itself makes of a frame.
class Reference {
  public:
    explicit Reference(const char* text) { EXPECT_GE(sfx_create(text, &effect_), 0) << sfx_message(); }
    ~Reference() { sfx_destroy(effect_); }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    Pixels Process(Pixels pixels, unsigned width, unsigned height, int64_t time) {
        sfx_picture picture;
        sfx_picture_layout(&picture, SFX_RGBA, static_cast<int32_t>(width), static_cast<int32_t>(height),
                           pixels.data());
        EXPECT_GE(sfx_process(effect_, &picture, time), 0) << sfx_message();
        return pixels;
    }
    sfx_effect* get() const { return effect_; }

  private:
    sfx_effect* effect_ = nullptr;
};

class Frei0r : public testing::TestWithParam<size_t> {
  protected:
    const sfx_effect_info& Effect() const { return *sfx_effect_at(GetParam()); }
};

TEST_P(Frei0r, DescribesItselfBeforeItIsInitialised) {
    const Plugin plugin(Effect());
    ASSERT_TRUE(plugin.Loaded());
    const f0r_plugin_info_t info = plugin.Info();
    EXPECT_STREQ(info.name, Effect().title);
    EXPECT_STREQ(info.explanation, Effect().description);
    EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_FILTER);
    EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
    EXPECT_EQ(info.frei0r_version, FREI0R_MAJOR_VERSION);
    ASSERT_EQ(info.num_params, static_cast<int>(Effect().property_count));
    std::set<std::string> names;
    for (int i = 0; i < info.num_params; ++i) {
        f0r_param_info_t param = {};
        plugin.paramInfo(&param, i);
        const sfx_property_info& property = *Effect().properties[i];
        EXPECT_STREQ(param.name, property.name);
        EXPECT_TRUE(names.insert(param.name).second) << param.name;
        EXPECT_EQ(std::string(param.explanation).rfind(property.description, 0), 0U) << param.explanation;
        for (size_t k = 0; k < (property.type == SFX_CHOICE ? property.choice_count : 0); ++k) {
            EXPECT_NE(std::string(param.explanation).find(property.choices[k].id), std::string::npos);
        }
    }
    // What is out of range changes nothing.
    f0r_param_info_t untouched = {"untouched", 77, nullptr};
    plugin.paramInfo(&untouched, info.num_params);
    plugin.paramInfo(&untouched, -1);
    EXPECT_EQ(untouched.type, 77);
}

TEST_P(Frei0r, StartsWithTheEffectsValuesAndTakesTheEnds) {
    const Plugin plugin(Effect());
    ASSERT_TRUE(plugin.Loaded());
    ASSERT_EQ(plugin.init(), 1);
    const f0r_instance_t instance = plugin.construct(64, 48);
    ASSERT_NE(instance, nullptr);
    for (int i = 0; i < static_cast<int>(Effect().property_count); ++i) {
        const sfx_property_info& property = *Effect().properties[i];
        SCOPED_TRACE(property.id);
        if (property.type == SFX_COLOR) {
            f0r_param_color_t color = {};
            plugin.get(instance, &color, i);
            EXPECT_EQ(std::lround(color.r * 255) << 16 | std::lround(color.g * 255) << 8 |
                          std::lround(color.b * 255),
                      property.start);
            f0r_param_color_t wild = {2.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()};
            plugin.set(instance, &wild, i);
            plugin.get(instance, &color, i);
            EXPECT_EQ(color.r, 1.0F);
            EXPECT_EQ(color.g, 0.0F);
            EXPECT_EQ(color.b, 0.0F);
            continue;
        }
        double value = -1;
        plugin.get(instance, &value, i);
        const double room = static_cast<double>(property.maximum) - property.minimum;
        EXPECT_EQ(value, room > 0 ? (property.start - property.minimum) / room : 0);
        const double tries[][2] = {{0, 0},         {1, 1},       {-5, 0}, {7, 1}, {std::nan(""), 0},
                                   {-INFINITY, 0}, {INFINITY, 1}};
        for (const auto& [given, expected] : tries) {
            double number = given;
            plugin.set(instance, &number, i);
            plugin.get(instance, &value, i);
            EXPECT_EQ(value, room > 0 ? expected : 0) << given;
        }
    }
    double value = 0.5;
    plugin.set(instance, &value, -1);
    plugin.set(instance, &value, 99);
    plugin.get(instance, &value, 99);
    EXPECT_EQ(value, 0.5);
    plugin.destruct(instance);
    plugin.deinit();
}

TEST_P(Frei0r, GivesTheFramesOfTheLibrary) {
    const Plugin plugin(Effect());
    ASSERT_TRUE(plugin.Loaded());
    for (const auto& [width, height] : {std::pair(96U, 64U), {161U, 91U}, {1U, 1U}, {3U, 2U}}) {
        SCOPED_TRACE(testing::Message() << width << "x" << height);
        const f0r_instance_t instance = plugin.construct(width, height);
        ASSERT_NE(instance, nullptr);
        Reference reference(Effect().id);
        for (unsigned frame = 0; frame < 5; ++frame) {
            const Pixels in = Picture(width, height, frame);
            Pixels out(in.size() + 1, 0xDEADBEEF);
            plugin.update(instance, frame * 0.04, in.data(), out.data());
            EXPECT_EQ(out.back(), 0xDEADBEEF) << "wrote past the frame";
            out.pop_back();
            EXPECT_TRUE(out == reference.Process(in, width, height, int64_t{frame} * 40000000)) << frame;
            for (size_t i = 0; i < out.size(); ++i) {
                ASSERT_EQ(out[i] >> 24, in[i] >> 24) << "alpha";
            }
        }
        plugin.destruct(instance);
    }
}

TEST_P(Frei0r, InstancesOnSeveralThreadsDoNotDisturbEachOther) {
    const Plugin plugin(Effect());
    ASSERT_TRUE(plugin.Loaded());
    const auto run = [&](Pixels& last) {
        const f0r_instance_t instance = plugin.construct(80, 60);
        for (unsigned frame = 0; frame < 6; ++frame) {
            last = Picture(80, 60, frame);
            plugin.update(instance, frame * 0.04, last.data(), last.data());  // in place
        }
        plugin.destruct(instance);
    };
    Pixels expected;
    run(expected);
    std::vector<Pixels> results(4);
    std::vector<std::thread> threads;
    for (Pixels& result : results) threads.emplace_back(run, std::ref(result));
    for (std::thread& thread : threads) thread.join();
    for (const Pixels& result : results) EXPECT_EQ(result, expected);
}

INSTANTIATE_TEST_SUITE_P(All, Frei0r, testing::Range<size_t>(0, sfx_effect_count()),
                         [](const auto& effect) { return ServiceOf(*sfx_effect_at(effect.param)); });

const sfx_effect_info& MotionDetector() {
    return *sfx_find("motion-detector");
}

/// The last of some frames whose times are `step` apart.
Pixels AfterSteps(double step) {
    const Plugin plugin(MotionDetector());
    const f0r_instance_t instance = plugin.construct(64, 48);
    Pixels out;
    for (unsigned frame = 0; frame < 20; ++frame) {
        const Pixels in = Picture(64, 48, frame < 4 ? frame : 4);
        out.resize(in.size());
        plugin.update(instance, frame * step, in.data(), out.data());
    }
    plugin.destruct(instance);
    return out;
}

TEST(Frei0rTime, IsReadInSecondsAndInMilliseconds) {
    EXPECT_TRUE(AfterSteps(0.04) == AfterSteps(40));
    EXPECT_TRUE(AfterSteps(0.04) != AfterSteps(0.08)) << "the effect does not look at the time";
}

TEST(Frei0rTime, ThatMakesNoSenseIsAThirtiethOfASecondLater) {
    const auto run = [](auto timeOf) {
        const Plugin plugin(MotionDetector());
        const f0r_instance_t instance = plugin.construct(64, 48);
        Pixels out;
        for (unsigned frame = 0; frame < 20; ++frame) {
            const Pixels in = Picture(64, 48, frame < 4 ? frame : 4);
            out.resize(in.size());
            plugin.update(instance, timeOf(frame), in.data(), out.data());
        }
        plugin.destruct(instance);
        return out;
    };
    const Pixels expected = run([](unsigned frame) { return frame * 0.033333333; });
    for (const double time : {std::nan(""), static_cast<double>(INFINITY), -3.7e20}) {
        EXPECT_TRUE(run([=](unsigned) { return time; }) == expected) << time;
    }
    EXPECT_TRUE(run([](unsigned frame) { return 10.0 - frame; }) != expected) << "the clock runs backwards";
}

TEST(Frei0rSizes, OutOfRangeAreRefused) {
    const Plugin plugin(*sfx_find("sepia"));
    EXPECT_EQ(plugin.construct(0, 10), nullptr);
    EXPECT_EQ(plugin.construct(10, 0), nullptr);
    EXPECT_EQ(plugin.construct(16385, 10), nullptr);
    EXPECT_EQ(plugin.construct(0xFFFFFFFFU, 10), nullptr);
    plugin.destruct(nullptr);
    plugin.update(nullptr, 0, nullptr, nullptr);
}

// As after an update of the plugins alone. Hosts query every plugin that they find.
TEST(Frei0rFolder, MayHavePluginsForEffectsThatTheLibraryDoesNotHave) {
    const Plugin plugin(UNKNOWN_PLUGIN);
    ASSERT_TRUE(plugin.Loaded());
    const f0r_plugin_info_t info = plugin.Info();
    EXPECT_STREQ(info.name, "no-such-effect");
    EXPECT_EQ(info.num_params, 0);
    EXPECT_EQ(plugin.init(), 0);
    f0r_param_info_t param = {};
    plugin.paramInfo(&param, 0);
    EXPECT_EQ(param.name, nullptr);
    EXPECT_EQ(plugin.construct(64, 48), nullptr);
    plugin.deinit();
}

TEST(Frei0rFolder, HoldsOnePluginAnEffectAndLittleElse) {
    std::set<std::string> files, expected;
    uintmax_t bytes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(FREI0R_FOLDER)) {
        files.insert(entry.path().filename());
        bytes += entry.file_size();
    }
    for (size_t i = 0; i < sfx_effect_count(); ++i) expected.insert(ServiceOf(*sfx_effect_at(i)) + ".so");
    EXPECT_EQ(files, expected);
#ifdef NDEBUG
    EXPECT_LT(bytes, 1000000U);
#endif
}

}  // namespace
