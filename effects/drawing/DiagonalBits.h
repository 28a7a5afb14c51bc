// The pixels of a page as bits, laid out along the diagonals.
//
// Strokes run along diagonals. In a plane each pixel of a stroke lies in a row of its own, and with hundreds
// of thousands of strokes at random places nearly every one misses the cache. Here the pixels of a stroke are
// neighbours: the bits of one word, or of two.
#ifndef SPECIALEFFECTS_EFFECTS_DRAWING_DIAGONALBITS_H
#define SPECIALEFFECTS_EFFECTS_DRAWING_DIAGONALBITS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/PerLevel.h"
#include "imaging/Plane8u.h"

/// From the upper end of a diagonal to its left or to its right.
enum class Leaning { kLeft, kRight };

/// A word holds the pixels of one diagonal in 32 rows, one bit each; the rest of it is free for other use.
template <class Word>
class DiagonalBits {
  public:
    DiagonalBits(const CPlane8u& page, Leaning leaning)
        : leftward_(leaning == Leaning::kLeft),
          diagonals_(size_t{kRows} + static_cast<size_t>(page.width)),
          words_((static_cast<size_t>(page.height) / kRows + 2) * diagonals_ + kRows) {}

    /// The words of a row's pixels, one after the other. In all of them the row has bit `BitOf(y)`.
    SE_INLINE Word* Row(int32_t y) { return &words_[Place({0, y})]; }
    SE_INLINE static uint32_t BitOf(int32_t y) { return uint32_t{1} << y % kRows; }

    /// Calls change(word, bits) for the words that hold the `length` pixels from `upper` down, 32 at most.
    template <class Change>
    SE_INLINE void ForStroke(PlanePoint upper, int32_t length, Change change) {
        const uint64_t bits = ((uint64_t{1} << length) - 1) << upper.y % kRows;
        const size_t place = Place(upper);
        // In the next rows the diagonal starts 32 columns further on.
        const size_t next = place + diagonals_ + (leftward_ ? size_t{0} - kRows : size_t{kRows});
        change(words_[place], static_cast<uint32_t>(bits));
        change(words_[next], static_cast<uint32_t>(bits >> kRows));
    }

  private:
    static constexpr int32_t kRows = 32;

    SE_INLINE size_t Place(PlanePoint point) const {
        const int32_t row = point.y % kRows;
        const int32_t diagonal = point.x + (leftward_ ? row : kRows - 1 - row);
        return static_cast<size_t>(point.y / kRows) * diagonals_ + static_cast<size_t>(diagonal);
    }

    bool leftward_;
    size_t diagonals_;         ///< that cross 32 rows
    std::vector<Word> words_;  ///< of the first 32 rows, then of the next
};

/// Strokes that are drawn together, at most.
inline constexpr int64_t kBatch = 1024;

/// How many strokes it takes at least to use up `rest`, if none takes more than `most`.
inline int64_t FewestStrokes(int64_t rest, int64_t most) {
    return (rest + most - 1) / most;
}

#endif
