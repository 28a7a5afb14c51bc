// Golden frames: checksums of every effect's output for a fixed scene.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_GOLDENRUN_H
#define SPECIALEFFECTS_TESTS_SUPPORT_GOLDENRUN_H

#include <cstdint>
#include <map>
#include <string>

#include "tests/support/TestSurroundings.h"

struct GoldenSize {
    int32_t width, height, frames;
};
/// The small sizes run past the longest warm-up of an effect with a history.
inline constexpr GoldenSize kGoldenSizes[] = {{320, 240, 40}, {177, 143, 40}, {640, 480, 8}, {1280, 720, 4}};

/// Rows of the catalogue are counted from 1.
int GoldenRows();
std::string GoldenRowName(int row);

/// Runs the effect of a row over its frames at one size and returns a checksum of all that came out, of the
/// result codes, of writes outside the planes and of the state in which the generator was left. Clock and
/// generator are set to fixed values first. Works in the current directory, which should be empty. The sizes
/// on record were run in their order in the same surroundings, so Clouds continued at its place.
uint64_t RunGolden(int row, const GoldenSize& size, TestClock& surroundings);

/// "row WxH" to checksum, from the text file that the tool `update_goldens` writes.
using GoldenTable = std::map<std::string, uint64_t>;
std::string GoldenKey(int row, const GoldenSize& size);
GoldenTable ReadGoldens(const std::string& path);
/// False when the file cannot be written.
[[nodiscard]] bool WriteGoldens(const std::string& path, const GoldenTable& table);

/// Makes an empty directory and changes to it; changes back and removes it at the end.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_, before_;
};

#endif
