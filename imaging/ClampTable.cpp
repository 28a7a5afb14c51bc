#include "imaging/ClampTable.h"

#include <algorithm>
#include <array>

namespace {

constexpr int kReach = 1024;  // entries on either side of the table's zero

constexpr std::array<uint8_t, 2 * kReach> kTable = [] {
    std::array<uint8_t, 2 * kReach> table{};
    for (int i = -kReach; i < kReach; ++i)
        table[static_cast<size_t>(i + kReach)] = static_cast<uint8_t>(std::clamp(i, 0, 255));
    return table;
}();

}  // namespace

const uint8_t* GetClampTable() {
    return kTable.data() + kReach;
}
