// The plugins in the programs that people use them with.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "Services.h"

namespace {

constexpr int32_t kWidth = 256, kHeight = 94, kFrames = 6;

std::string Output(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    char buffer[65536];
    for (size_t count = 0; (count = fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) {
        output.append(buffer, count);
    }
    return output;
}

std::string FfmpegFrames(const std::string& filter) {
    return Output("ffmpeg -v error -f lavfi -i testsrc2=size=" + std::to_string(kWidth) + "x" +
                  std::to_string(kHeight) + ":rate=25 -frames:v " + std::to_string(kFrames) +
                  " -vf format=rgba" + filter + " -f rawvideo -pix_fmt rgba - < /dev/null");
}

TEST(Frei0rInFfmpeg, GivesTheFramesOfTheLibraryForEveryEffect) {
    const std::string in = FfmpegFrames("");
    const size_t frameBytes = size_t{4} * kWidth * kHeight;
    ASSERT_EQ(in.size(), kFrames * frameBytes);
    size_t changed = 0;
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        SCOPED_TRACE(info.id);
        const std::string out = FfmpegFrames(",frei0r=" + ServiceOf(info));
        ASSERT_EQ(out.size(), in.size());

        sfx_effect* effect = nullptr;
        ASSERT_GE(sfx_create(info.id, &effect), 0);
        std::string expected = in;
        for (int frame = 0; frame < kFrames; ++frame) {
            sfx_picture picture;
            sfx_picture_layout(&picture, SFX_RGBA, kWidth, kHeight,
                               expected.data() + static_cast<size_t>(frame) * frameBytes);
            sfx_process(effect, &picture, int64_t{frame} * 40000000);
        }
        sfx_destroy(effect);
        EXPECT_TRUE(out == expected) << "the frames differ";
        changed += out != in ? 1 : 0;
    }
    // Picture Me sees no face, and a few effects need more frames.
    EXPECT_GT(changed, sfx_effect_count() * 9 / 10);
}

TEST(Frei0rInFfmpeg, TakesParameters) {
    const std::string plain = FfmpegFrames(",frei0r=sfx_fish_eye");
    EXPECT_EQ(FfmpegFrames(",frei0r=sfx_fish_eye:y").size(), plain.size());
    EXPECT_TRUE(FfmpegFrames(",frei0r=sfx_fish_eye:n") != FfmpegFrames(",frei0r=sfx_fish_eye:y"));
}

TEST(Frei0rInMelt, ListsEveryPlugin) {
    const std::string filters = Output("melt -query filters 2>/dev/null");
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const std::string service = "frei0r." + ServiceOf(*sfx_effect_at(i));
        EXPECT_NE(filters.find(service + "\n"), std::string::npos) << service;
    }
    const std::string query = Output("melt -query filter=frei0r.sfx_rain 2>/dev/null");
    const sfx_effect_info& rain = *sfx_find("rain");
    EXPECT_NE(query.find(rain.description), std::string::npos) << query;
    EXPECT_NE(query.find(rain.properties[0]->description), std::string::npos) << query;
}

TEST(Frei0rInMelt, Renders) {
    std::string folder = (std::filesystem::temp_directory_path() / "frei0r_test_XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const std::filesystem::path file = std::filesystem::path(folder) / "out.yuv";
    const std::string render =
        "melt -silent color:red out=11 -filter frei0r.sfx_camera_flashes_1 -consumer avformat:" +
        file.string() +
        " f=rawvideo vcodec=rawvideo pix_fmt=yuv420p an=1 width=320 "
        "height=240 real_time=-1 terminate_on_pause=1 > /dev/null 2>&1";
    ASSERT_EQ(std::system(render.c_str()), 0);
    std::ifstream stream(file, std::ios::binary);
    const std::string movie{std::istreambuf_iterator<char>(stream), {}};
    std::filesystem::remove_all(folder);
    ASSERT_GE(movie.size(), 12U * 320 * 240 * 3 / 2);
    // Flashes on a red field: the luma of the last frame is not flat.
    const std::string luma = movie.substr(movie.size() - 320 * 240 * 3 / 2, 320 * 240);
    EXPECT_NE(luma.find_first_not_of(luma[0]), std::string::npos);
}

TEST(Frei0rInKdenlive, HasAWellFormedDescriptionForEveryEffect) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        const std::string file = EDITOR_FOLDER "/kdenlive/frei0r_" + ServiceOf(info) + ".xml";
        ASSERT_TRUE(std::filesystem::exists(file)) << file;
        const std::string names =
            Output("xmllint --xpath 'concat(/effect/@tag, \" \", count(/effect/parameter))' " + file);
        EXPECT_EQ(names, "frei0r." + ServiceOf(info) + " " + std::to_string(info.property_count) + "\n");
    }
}

TEST(Frei0rInShotcut, HasAPanelThatParsesForEveryEffect) {
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info& info = *sfx_effect_at(i);
        const std::filesystem::path folder = EDITOR_FOLDER "/shotcut/" + ServiceOf(info);
        EXPECT_EQ(std::system(("qmllint " + (folder / "meta.qml").string()).c_str()), 0);
        EXPECT_EQ(std::system(("qmllint " + (folder / "ui.qml").string()).c_str()), 0);
    }
}

}  // namespace
