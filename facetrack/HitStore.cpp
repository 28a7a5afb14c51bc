#include "facetrack/HitStore.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr size_t kFirstCapacity = 4096;  // more than a trained cascade finds in a cycle

}  // namespace

Hit CHitStore::Row::Mean() const {
    return {static_cast<int32_t>(x / count), static_cast<int32_t>(y / count),
            static_cast<int32_t>(size / count)};
}

CHitStore::CHitStore(float mergeRadius, float sizeRatio)
    : mergeRadius_(mergeRadius),
      sizeRatio_(sizeRatio),
      squareSide_(std::max(static_cast<int32_t>(std::ceil(mergeRadius)), 1)),
      lists_(kFirstCapacity, kNone) {
    rows_.reserve(kFirstCapacity);
    members_.reserve(kFirstCapacity);
}

int32_t CHitStore::SquareOf(int32_t coordinate) const {
    const int32_t towardsZero = coordinate / squareSide_;
    return coordinate % squareSide_ < 0 ? towardsZero - 1 : towardsZero;
}

size_t CHitStore::ListIndex(int64_t column, int64_t line) const {
    const uint64_t key = static_cast<uint64_t>(line) << 32 ^ static_cast<uint32_t>(column);
    const uint64_t mixed = key * 0x9E3779B97F4A7C15U;  // 2^64 over the golden ratio
    return (mixed ^ mixed >> 32) & (lists_.size() - 1);
}

/// The lowest row with a member that the hit belongs to, or the number of rows if no row has one.
uint32_t CHitStore::FindRow(const Hit& hit, int64_t column, int64_t line) {
    struct Offset {
        int32_t column, line;
    };
    // Search the hit's own square first: it usually has the row, and the others then end at once.
    static constexpr std::array<Offset, 9> kSquares = {
        {{0, 0}, {-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}}};
    const double reach = double{mergeRadius_} * mergeRadius_;
    auto row = static_cast<uint32_t>(rows_.size());
    for (const Offset& square : kSquares) {
        for (Link link = lists_[ListIndex(column + square.column, line + square.line)]; link != kNone;) {
            const Member& member = members_[link];
            ++looks_;
            if (member.row >= row) break;
            const double x = static_cast<double>(hit.x) - member.hit.x,
                         y = static_cast<double>(hit.y) - member.hit.y;
            const bool near = x * x + y * y <= reach;
            const bool alike =
                static_cast<float>(member.hit.size) * sizeRatio_ >= static_cast<float>(hit.size);
            if (near && alike) row = member.row;
            link = member.next;
        }
    }
    return row;
}

/// Inserts a member after those of its row and of lower rows. Keeps only the largest member of a row at one
/// place, and none if a lower row has one as large there.
void CHitStore::Remember(const Hit& hit, uint32_t row, int64_t column, int64_t line) {
    Link& first = lists_[ListIndex(column, line)];
    Link before = kNone, behind = first;
    while (behind != kNone) {
        Member& member = members_[behind];
        ++looks_;
        if (member.row > row) break;
        if (member.hit.x == hit.x && member.hit.y == hit.y) {
            if (member.row == row) member.hit.size = std::max(member.hit.size, hit.size);
            if (member.hit.size >= hit.size) return;
        }
        before = behind;
        behind = member.next;
    }
    const auto added = static_cast<Link>(members_.size());
    members_.push_back({hit, row, behind});
    (before == kNone ? first : members_[before].next) = added;
}

size_t CHitStore::Add(const Hit& hit) {
    const int64_t column = SquareOf(hit.x), line = SquareOf(hit.y);
    const uint32_t row = FindRow(hit, column, line);
    if (row == rows_.size()) rows_.emplace_back();
    Row& sums = rows_[row];
    sums.x += hit.x;
    sums.y += hit.y;
    sums.size += hit.size;
    ++sums.count;
    Remember(hit, row, column, line);
    if (members_.size() > lists_.size()) GrowLists();
    return row;
}

/// Doubles the number of lists. Each list splits into two that keep its order.
void CHitStore::GrowLists() {
    const size_t half = lists_.size();
    lists_.resize(2 * half, kNone);
    for (size_t i = 0; i < half; ++i) {
        Link link = lists_[i];
        std::array<Link*, 2> ends = {&lists_[i], &lists_[i + half]};
        while (link != kNone) {
            Member& member = members_[link];
            Link*& end = ends[ListIndex(SquareOf(member.hit.x), SquareOf(member.hit.y)) >= half ? 1 : 0];
            *end = link;
            end = &member.next;
            link = member.next;
        }
        for (Link* const end : ends) *end = kNone;
    }
}

void CHitStore::Clear() {
    rows_.clear();
    members_.clear();
    std::fill(lists_.begin(), lists_.end(), kNone);
}
