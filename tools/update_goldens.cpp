// Writes the checksums of all effects' frames: update_goldens FILE [EFFECT...]
// With effects, by row or short name, updates only theirs.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include "framework/Catalogue.h"
#include "tests/support/GoldenRun.h"

namespace {

/// The row of a number or a short name; 0 if there is no such row.
int RowOf(const std::string& text) {
    const auto rows = EffectCatalogue();
    for (int row = 1; row <= GoldenRows(); ++row) {
        if (text == std::to_string(row) || text == rows[static_cast<size_t>(row - 1)].shortName) return row;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: update_goldens FILE [EFFECT...]\n");
        return 2;
    }
    const std::string path = std::filesystem::absolute(argv[1]).string();
    std::set<int> wanted;
    for (int i = 2; i < argc; ++i) {
        const int row = RowOf(argv[i]);
        if (row == 0) {
            std::fprintf(stderr, "update_goldens: there is no effect \"%s\"; nothing is written\n", argv[i]);
            return 2;
        }
        wanted.insert(row);
    }
    for (int row = 1; argc == 2 && row <= GoldenRows(); ++row) wanted.insert(row);

    GoldenTable table = ReadGoldens(path);
    const GoldenTable before = table;
    {
        const TemporaryDirectory directory;
        for (const int row : wanted) {
            TestSurroundings surroundings;
            for (const GoldenSize& size : kGoldenSizes) {
                table[GoldenKey(row, size)] = RunGolden(row, size, surroundings);
            }
        }
    }
    if (!WriteGoldens(path, table)) {
        std::fprintf(stderr, "update_goldens: cannot write %s\n", path.c_str());
        return 1;
    }
    const auto changed = std::count_if(table.begin(), table.end(), [&](const auto& entry) {
        const auto old = before.find(entry.first);
        return old == before.end() || old->second != entry.second;
    });
    std::printf("%zu effects, %td checksums changed\n", wanted.size(), changed);
    return 0;
}
