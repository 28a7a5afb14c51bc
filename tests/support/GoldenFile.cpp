// The checksums on record, and the folder of a golden run. Not in GoldenRun.cpp, which runs in WebAssembly
// too, without std::filesystem.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "tests/support/GoldenRun.h"

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
