// Divisions that are done as products, and what they rest on. Each has been compared with the division that
// it stands for over all arguments that occur.
#ifndef SPECIALEFFECTS_IMAGING_PRIMDIVIDE_H
#define SPECIALEFFECTS_IMAGING_PRIMDIVIDE_H

#include <cstdint>
#include <optional>

#include "imaging/PerLevel.h"

namespace prim {

/// The high half of a product of 16-bit numbers.
SE_INLINE constexpr uint16_t MulHigh(uint16_t a, uint16_t b) {
    return static_cast<uint16_t>((uint32_t{a} * b) >> 16);
}

/// (s * 455) >> 12 for s up to 9 * 255 + 5.
SE_INLINE constexpr uint16_t NinthOf(uint16_t s) {
    return MulHigh(s, 455 << 4);
}

/// (s * 10485) >> 18 for s up to 25 * 255 + 13.
SE_INLINE constexpr uint16_t TwentyFifthOf(uint16_t s) {
    return static_cast<uint16_t>(MulHigh(s, 10485) >> 2);
}

/// s / 571 for s up to 571 * 255 + 285, which is 18 bits long, in 16 bits: `low` is s modulo 2^16 and
/// `quarter` is s / 4, or up to 3 less. The quarter yields the quotient or one less; the rest shows which.
SE_INLINE constexpr uint16_t By571(uint16_t low, uint16_t quarter) {
    const uint16_t guess = MulHigh(quarter, 459);
    const auto rest = static_cast<int16_t>(low - guess * 571);
    return static_cast<uint16_t>(guess + (rest >= 571 ? 1 : 0));
}

/// The mean (sum + n / 2) / n of n = kSide * kSide bytes for 3 and 5, in 16 bits.
template <int kSide>
SE_INLINE constexpr uint16_t MeanOfSquare(uint16_t sum) {
    static_assert(kSide == 3 || kSide == 5);
    return kSide == 3 ? MulHigh(static_cast<uint16_t>(sum + 4), 7282)
                      : static_cast<uint16_t>(MulHigh(static_cast<uint16_t>(sum + 12), 10486) >> 2);
}

/// The mean (sum + n / 2) / n of n bytes. The argument of the division is moved up by a half, so that it
/// keeps 1 / (2 n) away from the next whole result on either side; the error of the product has to stay below
/// that.
template <typename Real>
class Mean {
  public:
    /// The product is exact enough up to this n.
    static constexpr int64_t kMaxCount = sizeof(Real) == sizeof(float) ? (1 << 14) - 1 : (1 << 23) - 1;

    constexpr explicit Mean(int64_t n)
        : half_(static_cast<int32_t>(n / 2)), reciprocal_(Real{1} / static_cast<Real>(n)) {}

    SE_INLINE constexpr uint8_t operator()(int32_t sum) const {
        const Real mean = (static_cast<Real>(sum + half_) + Real{0.5}) * reciprocal_;
        return static_cast<uint8_t>(static_cast<int32_t>(mean));
    }

  private:
    int32_t half_;
    Real reciprocal_;
};

// ---- sums of weighted pixels -----------------------------------------------------------------------------
//
// A sum s is divided by any divisor as s * r, with r the reciprocal in single precision and the product in
// double, rounded to the nearest and saturated. For a power of two that is (s + half) >> n, since both steps
// are exact as long as s has less than 53 bits; and one that has more is far above 255 or below 0.

inline double SingleReciprocal(int32_t divisor) {
    return static_cast<double>(1.0f / static_cast<float>(divisor));
}

SE_INLINE constexpr uint8_t Quotient(double sum, double reciprocal) {
    const double rounded = sum * reciprocal + 0.5;
    const double positive = rounded > 0.0 ? rounded : 0.0;
    return static_cast<uint8_t>(static_cast<int32_t>(positive < 255.0 ? positive : 255.0));
}

/// The same as sat8(trunc(sum * reciprocal + bias)) in single precision, for sums of a magnitude of up to
/// kMaxSum.
struct SingleQuotient {
    static constexpr int32_t kMaxSum = 1 << 29;

    /// Nothing when there is no such form. Both forms rise with the sum, so they are the same when every
    /// result from 1 to 255 first comes up at the same sum. The exact form's products that end in a half all
    /// fall to the same side, the one to which r was rounded; a bias of a little less or more than a half
    /// does that too.
    static std::optional<SingleQuotient> By(int32_t divisor);

    SE_INLINE constexpr uint8_t operator()(int32_t sum) const {
        const float rounded = static_cast<float>(sum) * reciprocal + bias;
        const float positive = rounded > 0.0f ? rounded : 0.0f;
        return static_cast<uint8_t>(static_cast<int32_t>(positive < 255.0f ? positive : 255.0f));
    }

    float reciprocal;
    float bias;
};

}  // namespace prim

#endif
