// Scaling with Lanczos' window: six samples in each direction, in single precision.
//
// Source rows are scaled along x into lines of floats, and each destination row is mixed from six lines. A
// line is made once and kept in a ring while destination rows use it. Sums run over the samples in rising
// order.
//
// Line buffers and tables are padded to whole blocks of columns; values in the padding are computed but never
// used.
#include <array>
#include <cmath>
#include <cstring>

#include "imaging/PerLevel.h"
#include "imaging/PrimRow.h"
#include "imaging/ResizeAxis.h"
#include "imaging/Simd.h"
#include "imaging/Vector128.h"

namespace resize {
namespace {

using prim::Row;

// Taps at the offsets -2 to 3 from the sample before the position.
constexpr int32_t kTaps = 6;
constexpr int32_t kTapsBefore = 2;
constexpr int32_t kTapsBehind = 3;

constexpr int32_t kBlock = 8;    // columns that are scaled at once
constexpr int32_t kWindow = 16;  // source bytes that one shuffle reaches

using Weights = std::array<float, kTaps>;

/// The window at 0.00, 0.01, ... 3.00.
const std::array<float, 301>& WindowTable() {
    static const std::array<float, 301> table = [] {
        constexpr double pi = 3.14159265358979323846;
        const auto sinc = [](double t) { return t == 0.0 ? 1.0 : std::sin(pi * t) / (pi * t); };
        std::array<float, 301> values{};  // the last entry stays 0
        for (size_t i = 0; i + 1 < values.size(); ++i) {
            const double d = static_cast<double>(i) / 100.0;
            values[i] = static_cast<float>(sinc(d) * sinc(d / 3.0));
        }
        return values;
    }();
    return table;
}

/// The weights of the taps around a position; their sum is 1.
Weights WeightsAt(double fraction) {
    const std::array<float, 301>& table = WindowTable();
    std::array<double, kTaps> raw{};
    double sum = 0.0;
    for (int32_t t = 0; t < kTaps; ++t) {
        const double position = std::fabs(t - kTapsBefore - fraction) * 100.0;
        const auto i = static_cast<size_t>(position);
        double& weight = raw[static_cast<size_t>(t)];
        if (position < 300.0) {
            weight = table[i] + (position - static_cast<double>(i)) * (table[i + 1] - table[i]);
        }
        sum += weight;
    }
    Weights weights{};
    for (size_t t = 0; t < kTaps; ++t) weights[t] = static_cast<float>(raw[t] / sum);
    return weights;
}

/// Where the columns of a destination row come from. Positions are those of a row that starts two pixels
/// further left: the first tap of a column lies at its sample.
class ColumnTable {
  public:
    explicit ColumnTable(const Axis& axis)
        : count_(axis.count),
          blockCount_((axis.count + kBlock - 1) / kBlock),
          blocks_(static_cast<size_t>(blockCount_)) {
        if (!blocks_) return;
        std::array<int32_t, kBlock> samples{};
        for (int32_t b = 0; b < blockCount_; ++b) {
            Block& block = blocks_[static_cast<size_t>(b)];
            for (int32_t i = 0; i < kBlock; ++i) {
                const auto [sample, fraction] = axis.Interpolated(std::min(b * kBlock + i, count_ - 1));
                samples[static_cast<size_t>(i)] = sample;
                const Weights weights = WeightsAt(fraction);
                for (size_t t = 0; t < kTaps; ++t) block.weights[t][static_cast<size_t>(i)] = weights[t];
            }
            Lay(block, samples);
        }
    }

    explicit operator bool() const { return static_cast<bool>(blocks_); }

    /// Scales a row whose edges have been repeated.
    void ScalePlain(const uint8_t* row, float* line) {
        const Block* block = blocks_.data();
        for (int32_t b = 0; b < blockCount_; ++b, ++block, line += kBlock) {
            vector128::Bytes taps[kTaps / 2];
            Fetch(row, block->samples, taps);
            vector128::Floats low{};
            vector128::Floats high{};
            for (size_t t = 0; t < kTaps; ++t) {
                const vector128::Bytes pair = taps[t / 2];
                const auto tap = reinterpret_cast<vector128::Words>(
                    t % 2 == 0 ? vector128::InterleaveLow(pair, vector128::Bytes{})
                               : vector128::InterleaveHigh(pair, vector128::Bytes{}));
                const float* const weights = block->weights[t].data();
                low += vector128::LoadFloats(weights) * vector128::LowToFloats(tap);
                high += vector128::LoadFloats(weights + 4) * vector128::HighToFloats(tap);
            }
            vector128::StoreFloats(line, low);
            vector128::StoreFloats(line + 4, high);
        }
    }

#if SE_AVX2
    /// The same with byte shuffles; the plain form scales columns that lie too far apart for two shuffles.
    SE_TARGET_AVX2 void ScaleAvx2(const uint8_t* row, float* line) {
        if (!shuffles_) {
            ScalePlain(row, line);
            return;
        }
        const Block* block = blocks_.data();
        for (int32_t b = 0; b < blockCount_; ++b, ++block, line += kBlock) {
            const uint8_t* const first = row + block->samples[0];
            const __m128i near = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
            const __m128i far = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first + kWindow));
            __m256 sum = _mm256_setzero_ps();
            for (size_t pair = 0; pair < kTaps / 2; ++pair) {
                const auto& picks = block->picks[pair];
                __m128i bytes = _mm_shuffle_epi8(near, Load(picks.near));
                bytes = _mm_or_si128(bytes, _mm_shuffle_epi8(far, Load(picks.far)));
                sum = _mm256_add_ps(sum, Weigh(bytes, block->weights[2 * pair]));
                sum = _mm256_add_ps(sum, Weigh(_mm_srli_si128(bytes, 8), block->weights[2 * pair + 1]));
            }
            _mm256_store_ps(line, sum);
        }
    }
#endif

  private:
    struct Block {
        alignas(32) std::array<std::array<float, kBlock>, kTaps> weights;
        /// For two taps at a time: which of the bytes near the first sample, and of those behind them, the
        /// eight columns take; 0x80 where a column takes the other.
        struct Picks {
            alignas(16) std::array<uint8_t, 16> near, far;
        };
        std::array<Picks, kTaps / 2> picks;
        std::array<int32_t, kBlock> samples;
    };

    /// Two taps of all eight columns to a vector. Of each column eight bytes are read, which are turned from
    /// columns to taps.
    SE_INLINE static void Fetch(const uint8_t* row, const std::array<int32_t, kBlock>& samples,
                                vector128::Bytes* taps) {
        using vector128::InterleaveHigh;
        using vector128::InterleaveLow;
        const auto column = [&](size_t i) { return vector128::LoadHalf(row + samples[i]); };
        const vector128::Bytes c04 = InterleaveLow(column(0), column(4));
        const vector128::Bytes c15 = InterleaveLow(column(1), column(5));
        const vector128::Bytes c26 = InterleaveLow(column(2), column(6));
        const vector128::Bytes c37 = InterleaveLow(column(3), column(7));
        const vector128::Bytes even = InterleaveLow(c04, c26);  // of taps 0 to 3
        const vector128::Bytes odd = InterleaveLow(c15, c37);
        const vector128::Bytes laterEven = InterleaveHigh(c04, c26);
        const vector128::Bytes laterOdd = InterleaveHigh(c15, c37);
        taps[0] = InterleaveLow(even, odd);
        taps[1] = InterleaveHigh(even, odd);
        taps[2] = InterleaveLow(laterEven, laterOdd);
    }

    void Lay(Block& block, const std::array<int32_t, kBlock>& samples) {
        constexpr uint8_t kNothing = 0x80;
        block.samples = samples;
        for (size_t t = 0; t < kTaps; ++t) {
            for (size_t i = 0; i < kBlock; ++i) {
                const int32_t x = samples[i] - samples[0] + static_cast<int32_t>(t);
                Block::Picks& picks = block.picks[t / 2];
                const size_t at = t % 2 * kBlock + i;
                picks.near[at] = x < kWindow ? static_cast<uint8_t>(x) : kNothing;
                picks.far[at] = x < kWindow ? kNothing : static_cast<uint8_t>(x - kWindow);
                if (x >= 2 * kWindow) shuffles_ = false;
            }
        }
    }

#if SE_AVX2
    SE_TARGET_AVX2 static __m128i Load(const std::array<uint8_t, 16>& bytes) {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(bytes.data()));
    }

    /// Eight products of the low bytes.
    SE_TARGET_AVX2 static __m256 Weigh(__m128i bytes, const std::array<float, kBlock>& weights) {
        return _mm256_mul_ps(_mm256_load_ps(weights.data()), _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(bytes)));
    }
#endif

    int32_t count_, blockCount_;
    bool shuffles_ = true;
    Buffer<Block> blocks_;
};

/// Mixes six lines into a destination row.
SE_INLINE void MixLines(const std::array<const float*, kTaps>& lines, const Weights& weights,
                        uint8_t* SE_RESTRICT out, int32_t count) {
    const float *l0 = lines[0], *l1 = lines[1], *l2 = lines[2], *l3 = lines[3], *l4 = lines[4],
                *l5 = lines[5];
    const float w0 = weights[0], w1 = weights[1], w2 = weights[2], w3 = weights[3], w4 = weights[4],
                w5 = weights[5];
    for (int32_t k = 0; k < count; ++k) {
        const float sum = w0 * l0[k] + w1 * l1[k] + w2 * l2[k] + w3 * l3[k] + w4 * l4[k] + w5 * l5[k] + 0.5f;
        // No sum comes near the ends of 16 bits, for which every processor has a minimum and a maximum.
        const auto whole = static_cast<int16_t>(static_cast<int32_t>(sum));
        out[k] = static_cast<uint8_t>(std::clamp<int16_t>(whole, 0, 255));
    }
}

class LanczosPlan final : public Plan {
  public:
    LanczosPlan(const Axis& x, const Axis& y)
        : columns_(x),
          y_(y),
          count_(x.count),
          length_(static_cast<size_t>(x.length)),
          stride_((static_cast<size_t>(x.count) + kBlock - 1) / kBlock * kBlock),
          padded_(kTapsBefore + length_ + kTapsBehind + 2 * kWindow),
          lines_(kTaps * stride_) {
        // The shuffles read past the repeated edge; the values are unused.
        if (padded_) std::memset(padded_.data(), 0, kTapsBefore + length_ + kTapsBehind + 2 * kWindow);
    }

    bool Ready() const { return columns_ && padded_ && lines_; }

    void Run(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep) override {
        std::array<int32_t, kTaps> held;
        held.fill(-1);
        const auto lineOf = [&](int32_t y) {
            const auto slot = static_cast<size_t>(y % kTaps);
            float* const line = lines_.data() + slot * stride_;
            if (held[slot] == y) return line;
            held[slot] = y;
            MakeLine(Row(src, srcStep, y), line);
            return line;
        };
        for (int32_t y = 0; y < y_.count; ++y) {
            const auto [sample, fraction] = y_.Interpolated(y);
            std::array<const float*, kTaps> taps{};
            for (int32_t t = 0; t < kTaps; ++t) {
                taps[static_cast<size_t>(t)] = lineOf(std::clamp(sample - kTapsBefore + t, 0, y_.length - 1));
            }
            AtLevel<MixLines>(taps, WeightsAt(fraction), Row(dst, dstStep, y), count_);
        }
    }

  private:
    void MakeLine(const uint8_t* row, float* line) {
        std::memset(padded_.data(), row[0], kTapsBefore);
        std::memcpy(padded_.data() + kTapsBefore, row, length_);
        std::memset(padded_.data() + kTapsBefore + length_, row[length_ - 1], kTapsBehind);
#if SE_AVX2
        if (simd::HasAvx2()) {
            columns_.ScaleAvx2(padded_.data(), line);
            return;
        }
#endif
        columns_.ScalePlain(padded_.data(), line);
    }

    ColumnTable columns_;
    Axis y_;
    int32_t count_;
    size_t length_, stride_;
    Buffer<uint8_t> padded_;
    Buffer<float> lines_;
};

}  // namespace

std::unique_ptr<Plan> Lanczos(const Axis& x, const Axis& y) {
    return MakePlan<LanczosPlan>(x, y);
}

}  // namespace resize
