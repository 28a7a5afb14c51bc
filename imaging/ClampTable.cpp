#include "imaging/ClampTable.h"

#include <algorithm>
#include <array>

namespace {

constexpr int32_t kReach = 1024;  // entries on either side of the table's zero

constexpr std::array<uint8_t, 2 * kReach> kTable = [] {
    std::array<uint8_t, 2 * kReach> table{};
    int32_t value = -kReach;
    for (uint8_t& entry : table) entry = static_cast<uint8_t>(std::clamp(value++, 0, 255));
    return table;
}();

}  // namespace

const uint8_t* GetClampTable() {
    return kTable.data() + kReach;
}
