#include "imaging/PrimDivide.h"

#include <algorithm>
#include <cmath>

namespace prim {
namespace {

/// The smallest sum with a result of at least `value`, if it is not above kMaxSum. Up to there the products
/// with the reciprocal, which has 24 bits, are exact: rounding moves no result.
std::optional<int32_t> FirstSum(int32_t value, double reciprocal) {
    const double near = std::ceil((value - 0.5) / reciprocal);
    if (near > SingleQuotient::kMaxSum) {
        return std::nullopt;
    }
    return static_cast<int32_t>(near);
}

bool IsExact(const SingleQuotient& quotient, double reciprocal) {
    for (int32_t value = 1; value <= 255; ++value) {
        const std::optional<int32_t> first = FirstSum(value, reciprocal);
        if (first && (quotient(*first) < value || quotient(*first - 1) >= value)) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<SingleQuotient> SingleQuotient::By(int32_t divisor) {
    if (divisor < 1) {
        return std::nullopt;
    }
    const double exact = SingleReciprocal(divisor);
    const auto single = static_cast<float>(exact);
    for (const float bias : {0.5f + single / 4, 0.5f - single / 4}) {
        const SingleQuotient quotient = {single, bias};
        if (IsExact(quotient, exact)) {
            return quotient;
        }
    }
    return std::nullopt;
}

}  // namespace prim
