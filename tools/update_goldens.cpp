// Writes the checksums of all effects' frames: update_goldens FILE [ROW...]
// With rows, only theirs are made anew.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/GoldenRun.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: update_goldens FILE [ROW...]\n");
        return 2;
    }
    const std::string path = std::filesystem::absolute(argv[1]);
    GoldenTable table = ReadGoldens(path);
    {
        const TemporaryDirectory directory;
        for (int row = 1; row <= GoldenRows(); ++row) {
            bool wanted = argc == 2;
            for (int i = 2; i < argc; ++i) wanted = wanted || std::atoi(argv[i]) == row;
            if (!wanted) continue;
            TestSurroundings surroundings;
            for (const GoldenSize& size : kGoldenSizes) {
                table[GoldenKey(row, size)] = RunGolden(row, size, surroundings);
            }
        }
    }
    WriteGoldens(path, table);
    return 0;
}
