// Divisions computed as products equal real divisions, for all arguments that occur.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "imaging/PrimDivide.h"
#include "tests/support/TestFrame.h"

namespace {

TEST(Divide, NinthOf) {
    for (uint32_t s = 0; s <= 9 * 255 + 5; ++s) {
        ASSERT_EQ(prim::NinthOf(static_cast<uint16_t>(s)), (s * 455) >> 12) << s;
    }
}

TEST(Divide, TwentyFifthOf) {
    for (uint32_t s = 0; s <= 25 * 255 + 13; ++s) {
        ASSERT_EQ(prim::TwentyFifthOf(static_cast<uint16_t>(s)), (s * 10485) >> 18) << s;
    }
}

TEST(Divide, MeanOfSquare) {
    for (uint32_t s = 0; s <= 25 * 255; ++s) {
        const auto sum = static_cast<uint16_t>(s);
        ASSERT_EQ(prim::MeanOfSquare<5>(sum), (s + 12) / 25) << s;
    }
    for (uint32_t s = 0; s <= 9 * 255; ++s) {
        ASSERT_EQ(prim::MeanOfSquare<3>(static_cast<uint16_t>(s)), (s + 4) / 9) << s;
    }
}

TEST(Divide, By571) {
    for (uint32_t s = 0; s <= 571 * 255; ++s) {
        const uint32_t expected = ((s + 286) * 29382) >> 24;
        const uint32_t dividend = s + 285;
        ASSERT_EQ(dividend / 571, expected) << s;
        for (uint32_t missing = 0; missing <= 3 && missing <= dividend / 4; ++missing) {
            const auto quarter = static_cast<uint16_t>(dividend / 4 - missing);
            ASSERT_EQ(prim::By571(static_cast<uint16_t>(dividend), quarter), expected) << s << ' ' << missing;
        }
    }
}

/// Both sides of each step of the quotient, between which it cannot change: the product rises with the sum.
template <typename Real>
bool MeanIsExact(int64_t n) {
    const prim::Mean<Real> mean(n);
    for (int64_t value = 1; value <= 255; ++value) {
        const int64_t first = value * n - n / 2;  // the smallest sum with this mean
        if (mean(static_cast<int32_t>(first)) != value ||
            mean(static_cast<int32_t>(first - 1)) != value - 1) {
            return false;
        }
    }
    return mean(0) == 0 && mean(static_cast<int32_t>(255 * n)) == 255;
}

TEST(Divide, MeanInSinglePrecision) {
    for (int64_t n = 1; n <= prim::Mean<float>::kMaxCount; ++n) {
        ASSERT_TRUE(MeanIsExact<float>(n)) << n;
    }
}

TEST(Divide, MeanInDoublePrecision) {
    constexpr int64_t kMost = prim::Mean<double>::kMaxCount;
    for (int64_t n = 1; n <= kMost; n += 1 + n / 300) {
        ASSERT_TRUE(MeanIsExact<double>(n)) << n;
    }
    for (int64_t n = kMost - 300; n <= kMost; ++n) {
        ASSERT_TRUE(MeanIsExact<double>(n)) << n;
    }
}

TEST(Divide, QuotientInSinglePrecision) {
    // The product form exists for the divisors of blur kernels, where it matters, and is exact.
    for (int32_t divisor = 1; divisor <= 4096; ++divisor) {
        const auto quotient = prim::SingleQuotient::By(divisor);
        ASSERT_TRUE(quotient) << divisor;
        const double reciprocal = prim::SingleReciprocal(divisor);
        for (int32_t sum = -divisor; sum <= 257 * divisor; sum += divisor < 40 ? 1 : 1 + (sum & 63)) {
            ASSERT_EQ((*quotient)(sum), prim::Quotient(sum, reciprocal)) << sum << " / " << divisor;
        }
        for (int32_t value = 0; value <= 256; ++value) {
            const int32_t middle = (2 * value - 1) * divisor / 2;
            for (int32_t sum = middle - 2; sum <= middle + 2; ++sum) {
                ASSERT_EQ((*quotient)(sum), prim::Quotient(sum, reciprocal)) << sum << " / " << divisor;
            }
        }
    }
    for (int32_t shift = 0; shift <= 14; ++shift) {
        EXPECT_TRUE(prim::SingleQuotient::By(1 << shift)) << shift;
    }
    EXPECT_FALSE(prim::SingleQuotient::By(-3));
}

TEST(Divide, QuotientByLargeDivisors) {
    // Where there is a product form, it is exact up to the largest sum.
    constexpr int64_t kMost = prim::SingleQuotient::kMaxSum;
    TestRandom random(4);
    int forms = 0;
    for (int64_t size = 4096; size < int64_t{1} << 30; size *= 2) {
        for (int i = 0; i < 60; ++i) {
            const auto divisor = static_cast<int32_t>(size + (i < 4 ? i : random.Next() % size));
            const auto quotient = prim::SingleQuotient::By(divisor);
            if (!quotient) continue;
            ++forms;
            const double reciprocal = prim::SingleReciprocal(divisor);
            for (int64_t value = 0; value <= 256; ++value) {
                const int64_t middle = (2 * value - 1) * divisor / 2;
                for (int64_t sum = middle - 2; sum <= std::min(middle + 2, kMost); ++sum) {
                    ASSERT_EQ((*quotient)(static_cast<int32_t>(sum)),
                              prim::Quotient(static_cast<double>(sum), reciprocal))
                        << sum << " / " << divisor;
                }
            }
        }
    }
    EXPECT_GT(forms, 20);
}

}  // namespace
