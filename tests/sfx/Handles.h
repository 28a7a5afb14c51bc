// What tests of libsfx's functions share.
#ifndef SPECIALEFFECTS_TESTS_SFX_HANDLES_H
#define SPECIALEFFECTS_TESTS_SFX_HANDLES_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "sfx/sfx.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/System.h"
#include "tests/support/TestFrame.h"

struct DestroyEffect {
    void operator()(sfx_effect* effect) const { sfx_destroy(effect); }
};
using EffectHandle = std::unique_ptr<sfx_effect, DestroyEffect>;

inline EffectHandle Create(const std::string& text) {
    sfx_effect* effect = nullptr;
    EXPECT_GE(sfx_create(text.c_str(), &effect), 0) << text << ": " << sfx_message();
    return EffectHandle(effect);
}

inline std::string Print(const sfx_effect* effect) {
    const int length = sfx_print(effect, nullptr, 0);
    EXPECT_GE(length, 0);
    std::string text(static_cast<size_t>(length) + 1, 'x');
    EXPECT_EQ(sfx_print(effect, text.data(), text.size()), length);
    text.pop_back();
    return text;
}

inline std::string Get(const EffectHandle& effect, const char* property) {
    char text[SFX_VALUE_SIZE] = "";
    EXPECT_EQ(sfx_get(effect.get(), property, text, sizeof text), SFX_OK) << sfx_message();
    return text;
}

/// A planar frame as a picture.
inline sfx_picture PictureOf(TestFrame& frame) {
    sfx_picture picture = SFX_PICTURE_INIT;
    picture.format = SFX_I420;
    picture.width = frame.width();
    picture.height = frame.height();
    for (int plane = 0; plane < 3; ++plane) {
        picture.planes[plane] = frame.plane(plane).data();
        picture.sizes[plane] = frame.plane(plane).size();
    }
    return picture;
}

/// Changes a frame, 40 ms after the one before.
inline sfx_status Process(const EffectHandle& effect, TestFrame& frame, int index) {
    const sfx_picture picture = PictureOf(frame);
    return sfx_process(effect.get(), &picture, int64_t{index} * 40000000);
}

/// A sum over the first frames of the test scene after an effect.
inline uint64_t ChecksumOf(const EffectHandle& effect, int frames = 6) {
    uint64_t sum = 0;
    for (int i = 0; i < frames; ++i) {
        TestFrame frame = TestFrame(160, 120).DrawScene(i);
        EXPECT_GE(Process(effect, frame, i), 0);
        sum = sum * 31 + frame.Checksum();
    }
    return sum;
}

/// Writes a file, with the folders that lead to it. The result is its path.
inline std::string WriteFile(const std::string& path, const std::string& content) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) {
        std::filesystem::create_directories(folder);
    }
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

/// An environment variable with another value, for a scope.
class Variable {
  public:
    Variable(const char* name, const std::string& value) : name_(name) {
        const char* const old = std::getenv(name);
        was_ = old != nullptr ? old : "";
        hadOne_ = old != nullptr;
        SetVariable(name, value.c_str());
    }
    ~Variable() { SetVariable(name_, hadOne_ ? was_.c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
    std::string was_;
    bool hadOne_;
};

/// A home of its own for the test, in an empty folder.
class Home {
  public:
    std::string Path(const std::string& name) const { return folder_.path() + "/" + name; }

  private:
    TemporaryDirectory folder_;
    Variable home_{"HOME", folder_.path()};
    Variable cache_{kCacheVariable, folder_.path() + "/cache"};
    Variable config_{kConfigVariable, folder_.path() + "/config"};
};

#endif
