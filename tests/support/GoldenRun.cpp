#include "tests/support/GoldenRun.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "framework/Catalogue.h"
#include "imaging/GradientNoise.h"
#include "tests/support/EffectDriver.h"

namespace {

uint64_t Mix(uint64_t hash, uint64_t value) {
    return (hash ^ value) * 0x100000001B3ULL;
}

const CatalogueRow& Row(int row) {
    return EffectCatalogue()[static_cast<size_t>(row - 1)];
}

/// Scene pictures of one size, drawn once.
const std::vector<TestFrame>& Scene(const GoldenSize& size) {
    static std::map<std::pair<int32_t, int32_t>, std::vector<TestFrame>> scenes;
    std::vector<TestFrame>& frames = scenes[{size.width, size.height}];
    while (frames.size() < static_cast<size_t>(size.frames)) {
        frames.push_back(TestFrame(size.width, size.height).DrawScene(static_cast<int>(frames.size())));
    }
    return frames;
}

}  // namespace

int GoldenRows() {
    return static_cast<int>(EffectCatalogue().size());
}
std::string GoldenRowName(int row) {
    return EffectDriver(Row(row).create()).Name();
}

uint64_t RunGolden(int row, const GoldenSize& size, TestClock& surroundings) {
    const SurroundingsScope scope(surroundings);
    // The noise tables are drawn when they are first needed: draw them from a fixed state.
    surroundings.Srand(1);
    surroundings.Shared<GradientNoise>(Rand);

    surroundings.Srand(20040229);
    surroundings.now = kClockAtLoading;
    EffectDriver effect(Row(row).create());
    uint64_t hash = 0xCBF29CE484222325ULL;
    hash = Mix(hash, effect.Configure(size.width, size.height));
    for (const TestFrame& picture : Scene(size)) {
        TestFrame frame = picture;
        surroundings.now += 40;
        hash = Mix(hash, effect.Process(frame));
        hash = Mix(hash, frame.Checksum());
        EXPECT_TRUE(frame.GuardsIntact()) << "row " << row;
    }
    return Mix(hash, static_cast<uint64_t>(surroundings.Rand()));
}

std::string GoldenKey(int row, const GoldenSize& size) {
    return std::to_string(row) + " " + std::to_string(size.width) + "x" + std::to_string(size.height);
}

GoldenTable ReadGoldens(const std::string& path) {
    GoldenTable table;
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string row, size, checksum;
        if (words >> row >> size >> checksum && row[0] != '#') {
            table[row + " " + size] = std::stoull(checksum, nullptr, 16);
        }
    }
    return table;
}

bool WriteGoldens(const std::string& path, const GoldenTable& table) {
    std::ofstream file(path);
    file << "# Checksums of every effect's frames: catalogue row, size, checksum, name. Written by "
            "update_goldens.\n";
    for (int row = 1; row <= GoldenRows(); ++row) {
        for (const GoldenSize& size : kGoldenSizes) {
            const auto entry = table.find(GoldenKey(row, size));
            if (entry == table.end()) continue;
            char checksum[20];
            std::snprintf(checksum, sizeof checksum, "%016llx",
                          static_cast<unsigned long long>(entry->second));
            file << entry->first << " " << checksum << " " << GoldenRowName(row) << "\n";
        }
    }
    file.close();
    return file.good();
}

TemporaryDirectory::TemporaryDirectory() : before_(std::filesystem::current_path().string()) {
    const std::filesystem::path temporary = std::filesystem::temp_directory_path();
    std::random_device random;
    do {
        path_ = (temporary / ("specialeffects-" + std::to_string(random()))).string();
    } while (!std::filesystem::create_directory(path_));
    std::filesystem::current_path(path_);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(path_);
}
