#include "framework/AdditiveRandom.h"

void AdditiveRandom::Seed(uint32_t seed) {
    constexpr int kDiscarded = 310;
    // The first 31 numbers are those of the "minimal standard" congruential generator (Park and Miller,
    // 1988), computed without a product of more than 31 bits. A negative seed stays negative for one step.
    constexpr int32_t kMultiplier = 16807, kModulus = 2147483647;
    constexpr int32_t kQuotient = kModulus / kMultiplier, kRemainder = kModulus % kMultiplier;
    auto value = static_cast<int32_t>(seed == 0 ? 1 : seed);
    for (uint32_t& entry : state_) {
        entry = static_cast<uint32_t>(value);
        value = kMultiplier * (value % kQuotient) - kRemainder * (value / kQuotient);
        if (value < 0) value += kModulus;
    }
    place_ = kLag;
    for (int i = 0; i < kDiscarded; ++i) Next();
}
