// The golden run as functions of a WebAssembly module, which golden.test.mjs calls.
#include <iterator>
#include <memory>
#include <string>

#include "tests/support/GoldenRun.h"

extern "C" {

int golden_rows() {
    return GoldenRows();
}
int golden_sizes() {
    return static_cast<int>(std::size(kGoldenSizes));
}

/// "row WxH", as in the file of checksums; valid until the next call.
const char* golden_key(int row, int size) {
    static std::string key;
    key = GoldenKey(row, kGoldenSizes[size]);
    return key.c_str();
}

/// The checksum of a row, counted from 1, at a size, counted from 0. Call it for all sizes of a row in order.
uint64_t golden_run(int row, int size) {
    static std::unique_ptr<TestSurroundings> surroundings;
    if (size == 0) surroundings = std::make_unique<TestSurroundings>();
    return RunGolden(row, kGoldenSizes[size], *surroundings);
}

}  // extern "C"
