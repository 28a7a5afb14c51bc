// Linear scaling in fixed point.
//
// Source rows are scaled along x into lines of 16-bit values with 6 fraction bits, and each destination row
// is blended from two lines. A line is made once and kept while destination rows use it.
//
// Line buffers and tables are padded to whole blocks of columns; values in the padding are computed but never
// used.
#include <array>
#include <bit>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/PrimRoi.h"
#include "imaging/PrimRow.h"
#include "imaging/ResizeAxis.h"
#include "imaging/Simd.h"
#include "imaging/Vector128.h"

namespace resize {
namespace {

using prim::Row;

constexpr int32_t kOne = 1 << 14;  // a weight of 1

int32_t Weight(double fraction) {
    return prim::RoundHalfUp(fraction * kOne);
}

constexpr size_t RoundUp(size_t count, size_t multiple) {
    return (count + multiple - 1) / multiple * multiple;
}

/// The two neighbours of each column, the left one in the low byte.
void FetchPairs(const uint8_t* row, const int32_t* SE_RESTRICT places, int32_t count,
                uint16_t* SE_RESTRICT pairs) {
    static_assert(std::endian::native == std::endian::little);
#pragma GCC unroll 4  // or the speed depends on where the linker puts the loop
    for (int32_t k = 0; k < count; ++k) {
        std::memcpy(&pairs[k], row + places[k], 2);
    }
}

/// Turns pairs of bytes into weighted sums; `weights` are of the right neighbours. The sum is the left byte
/// times 64 plus (difference * weight + 128) >> 8, put together from the two halves of the product, so that
/// vector code never changes its width.
SE_INLINE void WeighPairs(const int16_t* SE_RESTRICT weights, int32_t count, uint16_t* SE_RESTRICT line) {
    for (int32_t k = 0; k < count; ++k) {
        const uint16_t left = line[k] & 255;
        const auto difference = static_cast<int16_t>((line[k] >> 8) - left);
        const int32_t product = difference * weights[k];
        const auto high = static_cast<uint16_t>(product >> 16);
        const auto low = static_cast<uint16_t>(product);
        const auto shifted = static_cast<uint16_t>(high << 8 | low >> 8);
        const uint16_t half = (low >> 7) & 1;
        line[k] = static_cast<uint16_t>(left * 64 + shifted + half);
    }
}

/// Fetches the neighbours of all columns of a row, then weighs them.
class PlainRowScaler {
  public:
    explicit PlainRowScaler(const Axis& axis)
        : count_(axis.count),
          single_(axis.length == 1),
          places_(static_cast<size_t>(axis.count)),
          weights_(static_cast<size_t>(axis.count)) {
        if (!*this) return;
        for (int32_t k = 0; k < count_; ++k) {
            const auto [sample, fraction] = axis.Interpolated(k);
            // The last sample is its own right neighbour. As the right one of the sample before, it is read
            // within the row.
            const bool last = sample == axis.length - 1;
            places_[static_cast<size_t>(k)] = last && !single_ ? sample - 1 : sample;
            weights_[static_cast<size_t>(k)] = static_cast<int16_t>(last ? kOne : Weight(fraction));
        }
    }

    explicit operator bool() const { return places_ && weights_; }

    void Scale(const uint8_t* row, uint16_t* line) {
        const std::array<uint8_t, 2> twice{row[0], row[0]};
        FetchPairs(single_ ? twice.data() : row, places_.data(), count_, line);
        AtLevel<WeighPairs>(weights_.data(), count_, line);
    }

  private:
    int32_t count_;
    bool single_;  // rows of one sample, which has no neighbour
    Buffer<int32_t> places_;
    Buffer<int16_t> weights_;
};

/// Eight blended columns as 16-bit values. A pair of `weights` is of the upper and the lower line.
SE_INLINE vector128::Shorts BlendEight(const uint16_t* upper, const uint16_t* lower,
                                       vector128::Shorts weights) {
    using namespace vector128;
    const auto u = reinterpret_cast<Words>(LoadShorts(upper));
    const auto l = reinterpret_cast<Words>(LoadShorts(lower));
    const Ints a = DotPairs(reinterpret_cast<Shorts>(InterleaveLow(u, l)), weights);
    const Ints b = DotPairs(reinterpret_cast<Shorts>(InterleaveHigh(u, l)), weights);
    return Pack((a + 0x80000) >> 20, (b + 0x80000) >> 20);
}

/// Blends two lines into a destination row.
void BlendPlain(const uint16_t* upper, const uint16_t* lower, int32_t weight, uint8_t* out, int32_t count) {
    using namespace vector128;
    const auto weights = reinterpret_cast<Shorts>(Ints{} + ((weight << 16) | (kOne - weight)));
    const auto blend = [&](int32_t k) {
        return Pack(BlendEight(upper + k, lower + k, weights),
                    BlendEight(upper + k + 8, lower + k + 8, weights));
    };
    int32_t k = 0;
    for (; k + 16 <= count; k += 16) {
        Store(out + k, blend(k));
    }
    if (k < count) {
        std::array<uint8_t, 16> last;
        Store(last.data(), blend(k));
        std::memcpy(out + k, last.data(), static_cast<size_t>(count - k));
    }
}

#if SE_AVX2

constexpr size_t kBlock = 16;        // columns that are scaled at once
constexpr int32_t kWindow = 16;      // source bytes that one shuffle reaches
constexpr int32_t kBlendBlock = 32;  // columns that are blended at once

/// Scales sixteen columns at once: a byte shuffle brings the two neighbours of each column side by side, a
/// multiply-add weighs them. Two shuffles at different places serve columns that lie further apart, for
/// reductions to a quarter at least.
///
/// Within a block, columns 0 to 7 are the lower lane and 8 to 15 the upper one; each lane has windows of its
/// own.
class ShuffleRowScaler {
  public:
    explicit ShuffleRowScaler(const Axis& axis)
        : blockCount_(RoundUp(static_cast<size_t>(axis.count), kBlock) / kBlock), blocks_(blockCount_) {
        if (!blocks_) return;
        for (size_t b = 0; b < blockCount_; ++b) Lay(axis, b);
    }

    explicit operator bool() const { return static_cast<bool>(blocks_); }

    /// False for rows that are too short, and where eight columns reach beyond two windows.
    static bool Suits(const Axis& axis) { return axis.length >= kWindow && axis.step < 4.0; }

    SE_TARGET_AVX2 void Scale(const uint8_t* row, uint16_t* line) {
        const Block* const blocks = blocks_.data();
        size_t b = 0;
        for (; b < narrowBlocks_; ++b) {
            const Block& block = blocks[b];
            const __m256i pairs = Shuffle(row, block.windows[0]);
            Weigh(pairs, block, line + b * kBlock);
        }
        for (; b < blockCount_; ++b) {
            const Block& block = blocks[b];
            const __m256i pairs =
                _mm256_or_si256(Shuffle(row, block.windows[0]), Shuffle(row, block.windows[1]));
            Weigh(pairs, block, line + b * kBlock);
        }
    }

  private:
    struct Window {
        alignas(32) std::array<uint8_t, 32> shuffle;
        std::array<int32_t, 2> first;  // leftmost byte, for either lane
    };
    struct Block {
        std::array<Window, 2> windows;
        // Of the columns 0-3 and 8-11, and of the columns 4-7 and 12-15; each column has two.
        alignas(32) std::array<std::array<int16_t, 16>, 2> weights;
    };

    /// Fills in block b. From the left neighbour of a lane's first column to the right one of its last are
    /// at most 7 * 4 + 2 bytes: all lie in the first window or in the second one.
    void Lay(const Axis& axis, size_t b) {
        constexpr uint8_t kNothing = 0x80;
        Block& block = blocks_[b];
        bool narrow = true;
        for (size_t lane = 0; lane < 2; ++lane) {
            const int32_t leftmost = axis.Interpolated(ColumnAt(axis, b, lane * 8)).sample;
            const int32_t first = std::min(leftmost, axis.length - kWindow);
            const int32_t next = std::min(first + kWindow, axis.length - kWindow);
            block.windows[0].first[lane] = first;
            block.windows[1].first[lane] = next;
            for (size_t i = 0; i < 8; ++i) {
                const auto [sample, fraction] = axis.Interpolated(ColumnAt(axis, b, lane * 8 + i));
                const int32_t weight = Weight(fraction);
                auto* const weights = &block.weights[i / 4][lane * 8 + (i % 4) * 2];
                weights[0] = static_cast<int16_t>(kOne - weight);
                weights[1] = static_cast<int16_t>(weight);
                for (int32_t neighbour = 0; neighbour < 2; ++neighbour) {
                    const int32_t x = std::min(sample + neighbour, axis.length - 1);
                    const size_t byte = lane * 16 + i * 2 + static_cast<size_t>(neighbour);
                    const bool near = x - first < kWindow;
                    block.windows[0].shuffle[byte] = near ? static_cast<uint8_t>(x - first) : kNothing;
                    block.windows[1].shuffle[byte] = near ? kNothing : static_cast<uint8_t>(x - next);
                    narrow = narrow && near;
                }
            }
        }
        if (narrow && narrowBlocks_ == b) ++narrowBlocks_;
    }

    /// The number of a block's column; in the padding it is the last one that is shown.
    static int32_t ColumnAt(const Axis& axis, size_t b, size_t i) {
        return std::min(static_cast<int32_t>(b * kBlock + i), axis.count - 1);
    }

    SE_TARGET_AVX2 static __m256i Shuffle(const uint8_t* row, const Window& window) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + window.first[0]));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + window.first[1]));
        return _mm256_shuffle_epi8(_mm256_set_m128i(high, low),
                                   _mm256_load_si256(reinterpret_cast<const __m256i*>(&window.shuffle)));
    }

    SE_TARGET_AVX2 static void Weigh(__m256i pairs, const Block& block, uint16_t* line) {
        const __m256i zero = _mm256_setzero_si256();
        const __m256i half = _mm256_set1_epi32(128);
        const auto* const weights = reinterpret_cast<const __m256i*>(&block.weights);
        const __m256i a = _mm256_madd_epi16(_mm256_unpacklo_epi8(pairs, zero), _mm256_load_si256(weights));
        const __m256i b =
            _mm256_madd_epi16(_mm256_unpackhi_epi8(pairs, zero), _mm256_load_si256(weights + 1));
        const __m256i values = _mm256_packus_epi32(_mm256_srli_epi32(_mm256_add_epi32(a, half), 8),
                                                   _mm256_srli_epi32(_mm256_add_epi32(b, half), 8));
        _mm256_store_si256(reinterpret_cast<__m256i*>(line), values);
    }

    size_t blockCount_;
    size_t narrowBlocks_ = 0;  // how many of them, from the first on, need only their first windows
    Buffer<Block> blocks_;
};

/// Sixteen blended columns as 16-bit values.
SE_TARGET_AVX2 inline __m256i BlendSixteen(const uint16_t* upper, const uint16_t* lower, __m256i weights) {
    const __m256i half = _mm256_set1_epi32(0x80000);
    const __m256i u = _mm256_load_si256(reinterpret_cast<const __m256i*>(upper));
    const __m256i l = _mm256_load_si256(reinterpret_cast<const __m256i*>(lower));
    const __m256i a = _mm256_madd_epi16(_mm256_unpacklo_epi16(u, l), weights);
    const __m256i b = _mm256_madd_epi16(_mm256_unpackhi_epi16(u, l), weights);
    return _mm256_packs_epi32(_mm256_srli_epi32(_mm256_add_epi32(a, half), 20),
                              _mm256_srli_epi32(_mm256_add_epi32(b, half), 20));
}

SE_TARGET_AVX2 inline __m256i BlendBlock(const uint16_t* upper, const uint16_t* lower, __m256i weights) {
    const __m256i bytes = _mm256_packus_epi16(BlendSixteen(upper, lower, weights),
                                              BlendSixteen(upper + 16, lower + 16, weights));
    return _mm256_permute4x64_epi64(bytes, 0xD8);  // the packing interleaved the lanes
}

SE_TARGET_AVX2
void BlendAvx2(const uint16_t* upper, const uint16_t* lower, int32_t weight, uint8_t* out, int32_t count) {
    const __m256i weights = _mm256_set1_epi32((weight << 16) | (kOne - weight));
    int32_t k = 0;
    for (; k + kBlendBlock <= count; k += kBlendBlock) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + k), BlendBlock(upper + k, lower + k, weights));
    }
    if (k < count) {
        alignas(32) std::array<uint8_t, kBlendBlock> last;
        _mm256_store_si256(reinterpret_cast<__m256i*>(last.data()),
                           BlendBlock(upper + k, lower + k, weights));
        std::memcpy(out + k, last.data(), static_cast<size_t>(count - k));
    }
}

#endif

using Blend = void (*)(const uint16_t* upper, const uint16_t* lower, int32_t weight, uint8_t* out,
                       int32_t count);

/// `RowScaler` makes lines, `blend` makes destination rows of them.
template <class RowScaler, Blend blend>
class LinearPlan final : public Plan {
  public:
    LinearPlan(const Axis& x, const Axis& y)
        : scaler_(x),
          y_(y),
          count_(x.count),
          stride_(RoundUp(static_cast<size_t>(x.count), 32)),
          lines_(2 * stride_) {}

    bool Ready() const { return scaler_ && lines_; }

    void Run(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep) override {
        // Source row i lies in line i % 2, so that the lower row of one destination row can be the upper one
        // of the next.
        std::array<int32_t, 2> held{-1, -1};
        const auto lineOf = [&](int32_t i) {
            const auto slot = static_cast<size_t>(i % 2);
            uint16_t* const line = lines_.data() + slot * stride_;
            if (held[slot] != i) {
                held[slot] = i;
                scaler_.Scale(Row(src, srcStep, i), line);
            }
            return line;
        };
        for (int32_t y = 0; y < y_.count; ++y) {
            const auto [sample, fraction] = y_.Interpolated(y);
            const uint16_t* const upper = lineOf(sample);
            const uint16_t* const lower = lineOf(std::min(sample + 1, y_.length - 1));
            blend(upper, lower, Weight(fraction), Row(dst, dstStep, y), count_);
        }
    }

  private:
    RowScaler scaler_;
    Axis y_;
    int32_t count_;
    size_t stride_;
    Buffer<uint16_t> lines_;
};

}  // namespace

std::unique_ptr<Plan> Linear(const Axis& x, const Axis& y) {
#if SE_AVX2
    if (simd::HasAvx2()) {
        if (ShuffleRowScaler::Suits(x)) return MakePlan<LinearPlan<ShuffleRowScaler, BlendAvx2>>(x, y);
        return MakePlan<LinearPlan<PlainRowScaler, BlendAvx2>>(x, y);
    }
#endif
    return MakePlan<LinearPlan<PlainRowScaler, BlendPlain>>(x, y);
}

}  // namespace resize
