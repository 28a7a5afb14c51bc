// A program without FFmpeg, for systems that have none: effects on .y4m streams and on pictures.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/small/Picture.h"
#include "host/small/Y4mStream.h"
#include "sfx/sfx.h"

namespace {

constexpr const char* kUsage =
    "specialeffects list                               the effects\n"
    "specialeffects info EFFECT                        what an effect is and its properties\n"
    "specialeffects apply -e EFFECT [...] INPUT OUTPUT\n"
    "\n"
    "INPUT and OUTPUT are streams (.y4m, 8-bit 4:2:0), or pictures (.png and .bmp; also .jpg as INPUT).\n"
    "  -e EFFECT   an effect with settings, such as rain:drop-size=9 or preset:noir; several in a row\n"
    "  --frames N  of a stream: process N frames; of a picture: process it N times, for effects with a "
    "memory\n"
    "  --data DIR  folder of data files\n"
    "  -y          replace OUTPUT\n";

struct Destroy {
    void operator()(sfx_effect* effect) const { sfx_destroy(effect); }
};
using Effect = std::unique_ptr<sfx_effect, Destroy>;

/// Throws for an error of the library; prints its notes.
void Check(sfx_status status) {
    if (status < 0) throw std::runtime_error(sfx_message());
    if (status > 0) std::fprintf(stderr, "specialeffects: %s\n", sfx_message());
}

void List() {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        std::printf("%-22s %s\n", info.id, info.description);
    }
    for (size_t i = 0; i < sfx_preset_count(); ++i) {
        const sfx_preset_info& info = *sfx_preset_at(i);
        std::printf("preset:%-15s %s\n", info.id, info.description);
    }
}

void Info(const char* name) {
    const sfx_effect_info* const info = sfx_find(name);
    if (info == nullptr) throw std::runtime_error(sfx_message());
    std::printf("%s: %s\n%s\n", info->id, info->title, info->description);
    for (size_t i = 0; i < info->property_count; ++i) {
        const sfx_property_info& property = *info->properties[i];
        std::printf("  %-16s from %d to %d, at first %d: %s\n", property.id, property.minimum,
                    property.maximum, property.start, property.description);
    }
}

struct Task {
    std::string effects, input, output, data;
    long frames = 0;  ///< 0: all of a stream, one of a picture
    bool replace = false;
};

Task ReadTask(const std::vector<std::string>& words) {
    Task task;
    std::vector<std::string> files;
    for (size_t i = 0; i < words.size(); ++i) {
        const auto value = [&] {
            if (i + 1 == words.size()) throw std::runtime_error(words[i] + " needs a value");
            return words[++i];
        };
        if (words[i] == "-e") {
            if (!task.effects.empty()) task.effects.push_back('+');
            task.effects.append(value());
        } else if (words[i] == "--frames") {
            task.frames = std::strtol(value().c_str(), nullptr, 10);
            if (task.frames < 1) throw std::runtime_error("--frames needs a number above 0");
        } else if (words[i] == "--data") {
            task.data = value();
        } else if (words[i] == "-y") {
            task.replace = true;
        } else if (words[i].size() > 1 && words[i][0] == '-') {
            throw std::runtime_error("there is no option " + words[i]);
        } else {
            files.push_back(words[i]);
        }
    }
    if (files.size() != 2 || task.effects.empty())
        throw std::runtime_error("apply needs an effect and two files");
    task.input = files[0];
    task.output = files[1];
    return task;
}

bool IsStream(const std::string& path) {
    return path.ends_with(".y4m");
}

void ApplyToStream(sfx_effect* effect, const Task& task) {
    Y4mReader reader(task.input);
    Y4mWriter writer(task.output, reader.Header());
    std::vector<uint8_t> pixels;
    sfx_picture picture;
    pixels.resize(sfx_picture_layout(nullptr, SFX_I420, reader.Width(), reader.Height(), nullptr));
    if (pixels.empty()) throw std::runtime_error(task.input + ": the size is refused");
    sfx_picture_layout(&picture, SFX_I420, reader.Width(), reader.Height(), pixels.data());
    for (long frame = 0; (task.frames == 0 || frame < task.frames) && reader.Read(pixels); ++frame) {
        Check(sfx_process(effect, &picture, reader.Nanoseconds(frame)));
        writer.Write(pixels);
    }
    writer.Close();
}

void ApplyToPicture(sfx_effect* effect, const Task& task) {
    const Picture original = ReadPicture(task.input);
    Picture changed = original;
    for (long frame = 0; frame < std::max(task.frames, 1L); ++frame) {
        changed = original;
        sfx_picture picture;
        if (sfx_picture_layout(&picture, SFX_RGBA, changed.width, changed.height, changed.rgba.data()) == 0) {
            throw std::runtime_error(task.input + ": the size is refused");
        }
        picture.range = SFX_FULL;
        Check(sfx_process(effect, &picture, SFX_NO_TIME));
    }
    WritePicture(task.output, changed);
}

void Apply(const Task& task) {
    sfx_effect* made = nullptr;
    Check(sfx_create(task.effects.c_str(), &made));
    const Effect effect(made);
    if (!task.data.empty()) Check(sfx_set_data_folder(effect.get(), task.data.c_str()));
    if (IsStream(task.input) != IsStream(task.output)) {
        throw std::runtime_error("INPUT and OUTPUT are both streams or both pictures");
    }
    if (!task.replace) {
        if (std::FILE* const there = std::fopen(task.output.c_str(), "rb")) {
            std::fclose(there);
            throw std::runtime_error(task.output + " exists; -y replaces it");
        }
    }
    if (IsStream(task.input)) {
        ApplyToStream(effect.get(), task);
    } else {
        ApplyToPicture(effect.get(), task);
    }
}

}  // namespace

int main(int argc, char** argv) try {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 1 && words[0] == "list") {
        List();
    } else if (words.size() == 2 && words[0] == "info") {
        Info(words[1].c_str());
    } else if (words.size() == 1 && words[0] == "--version") {
        std::printf("specialeffects %s\n", sfx_version_text());
    } else if (!words.empty() && words[0] == "apply") {
        Apply(ReadTask({words.begin() + 1, words.end()}));
    } else {
        const bool asked = words.size() == 1 && words[0] == "--help";
        std::fputs(kUsage, asked ? stdout : stderr);
        return asked ? 0 : 2;
    }
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "specialeffects: %s\n", error.what());
    return 1;
}
