// The point operations.
#include <cstring>
#include <utility>

#include "imaging/Lookup.h"
#include "tests/check_kernels/Trial.h"
#include "tests/imaging/models/PointModels.h"

namespace check {
namespace {

void Set(Trial& t) {
    const auto value = static_cast<uint8_t>(t.Pick("value", {77, 0, 255}));
    const auto dst = t.Target<uint8_t>();
    t.Run(PrimSet8uC1, model::PrimSet8uC1,
          [&](auto set, Side side) { return set(value, dst.at(side), dst.step(), t.width(), t.height()); });
}

void Copy(Trial& t) {
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>();
    t.Run(PrimCopy8uC1, model::PrimCopy8uC1, [&](auto copy, Side side) {
        return copy(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height());
    });
}

void Mean(Trial& t) {
    const auto src = t.Source<uint8_t>();
    t.Run(PrimMean8uC1, model::PrimMean8uC1, [&](auto mean, Side side) {
        double result = -1;
        const PrimStatus status = mean(src.at(side), src.step(), t.width(), t.height(), &result);
        return std::pair(status, result);
    });
}

template <auto& kFast, auto& kModel>
void TwoImages(Trial& t) {
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>();
    t.Run(kFast, kModel, [&](auto combine, Side side) {
        return combine(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height());
    });
}

template <auto& kFast, auto& kModel>
void TwoImagesScaled(Trial& t) {
    const int32_t scale =
        t.Pick("scale", {0, 1, -4, 2, 3, 4, 5, 6, 7, 8, 9, 10, 99, -1, -2, -3, -5, -6, -7, -8, -9, -99});
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>();
    t.Run(kFast, kModel, [&](auto combine, Side side) {
        return combine(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), scale);
    });
}

/// Both images are one.
void AddToItself(Trial& t) {
    const int32_t scale = t.Pick("scale", {0, 1, -4});
    const auto data = t.Target<uint8_t>();
    t.Run(PrimAddSfs8uC1, model::PrimAddSfs8uC1, [&](auto add, Side side) {
        return add(data.at(side), data.step(), data.at(side), data.step(), t.width(), t.height(), scale);
    });
}

void MulC(Trial& t) {
    const int32_t scale = t.Pick("scale", {0,  8,  1,  -1, 2,  3,  4,  5,  6,  7,  9,  10, 11, 12, 13,
                                           14, 15, 16, 17, 99, -2, -3, -4, -5, -6, -7, -8, -9, -99});
    const auto value = static_cast<uint8_t>(t.Any("value", 0, 255, 3));
    const auto data = t.Target<uint8_t>();
    t.Run(PrimMulCSfs8uC1, model::PrimMulCSfs8uC1, [&](auto mul, Side side) {
        return mul(value, data.at(side), data.step(), t.width(), t.height(), scale);
    });
}

void Not(Trial& t) {
    const auto data = t.Target<uint8_t>();
    t.Run(PrimNot8uC1, model::PrimNot8uC1,
          [&](auto invert, Side side) { return invert(data.at(side), data.step(), t.width(), t.height()); });
}

void ThresholdLT(Trial& t) {
    const auto threshold = static_cast<uint8_t>(t.Any("threshold", 0, 255, 100));
    const auto data = t.Target<uint8_t>();
    t.Run(PrimThresholdLT8uC1, model::PrimThresholdLT8uC1, [&](auto apply, Side side) {
        return apply(data.at(side), data.step(), t.width(), t.height(), threshold);
    });
}

void ThresholdGTVal(Trial& t) {
    const auto threshold = static_cast<uint8_t>(t.Any("threshold", 0, 255, 100));
    const auto value = static_cast<uint8_t>(t.Any("value", 0, 255, 200));
    const auto data = t.Target<uint8_t>();
    t.Run(PrimThresholdGTVal8uC1, model::PrimThresholdGTVal8uC1, [&](auto apply, Side side) {
        return apply(data.at(side), data.step(), t.width(), t.height(), threshold, value);
    });
}

struct Levels {
    uint8_t lo;
    uint8_t loValue;
    uint8_t hi;
    uint8_t hiValue;
};

Levels PickLevels(Trial& t) {
    const int32_t lo = t.Any("lo", 0, 255, 60);
    const int32_t loValue = t.Any("loValue", 0, 255, 0);
    const int32_t hi = t.Any("hi", lo, 255, 180);
    const int32_t hiValue = t.Any("hiValue", 0, 255, 255);
    return {static_cast<uint8_t>(lo), static_cast<uint8_t>(loValue), static_cast<uint8_t>(hi),
            static_cast<uint8_t>(hiValue)};
}

void ThresholdBoth(Trial& t) {
    const Levels levels = PickLevels(t);
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<uint8_t>();
    t.Run(PrimThresholdLTValGTVal8uC1, model::PrimThresholdLTValGTVal8uC1, [&](auto apply, Side side) {
        return apply(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), levels.lo,
                     levels.loValue, levels.hi, levels.hiValue);
    });
}

void ThresholdBothInPlace(Trial& t) {
    const Levels levels = PickLevels(t);
    const auto data = t.Target<uint8_t>();
    t.Run(PrimThresholdLTValGTValInPlace8uC1, model::PrimThresholdLTValGTValInPlace8uC1,
          [&](auto apply, Side side) {
              return apply(data.at(side), data.step(), t.width(), t.height(), levels.lo, levels.loValue,
                           levels.hi, levels.hiValue);
          });
}

void ReduceBits(Trial& t) {
    const int32_t levels = t.Pick("levels", {2, 3, 4, 5, 8, 16, 17, 100, 255, 256});
    const auto src = t.Source<uint8_t>({.channels = 3});
    const auto dst = t.Target<uint8_t>({.channels = 3});
    t.Run(PrimReduceBits8uC3, model::PrimReduceBits8uC3, [&](auto reduce, Side side) {
        return reduce(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), 0, 0,
                      levels);
    });
}

void Scale(Trial& t) {
    // The lower end is hit exactly, the numbers between fall on ties where hi - lo is 255, and some lie
    // outside.
    const float lo = t.Pick("lo", {0.5f, 0.0f, -100.0f});
    const float range = t.Pick("range", {1.5f, 255.0f, 510.0f, 1e-3f, 1e30f});
    const float hi = lo + range;
    const auto element = [=](Random& random) {
        switch (random.Whole(0, 15)) {
            case 0:
                return std::bit_cast<float>(static_cast<uint32_t>(random.Bits()));
            case 1:
                return lo + range * static_cast<float>(random.Whole(0, 510)) / 510;
            default:
                return static_cast<float>(random.Real(lo - 0.1 * range, hi + 0.1 * range));
        }
    };
    const auto src = t.Source<float>({.element = element});
    const auto dst = t.Target<uint8_t>();
    t.Run(PrimScale32f8u, model::PrimScale32f8u, [&](auto scale, Side side) {
        return scale(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), lo, hi);
    });
}

void MotionHistory(Trial& t) {
    const float timestamp = t.Pick("timestamp", {12.5f, 0.25f, 0.0f});
    const float duration = t.Pick("duration", {1.0f, 0.0f, 20.0f});
    const auto silhouette = t.Source<uint8_t>({.element = [](Random& random) {
        return static_cast<uint8_t>(random.Whole(0, 1) * random.Whole(0, 255));
    }});
    const auto history = t.Target<float>({.element = [=](Random& random) {
        return random.Whole(0, 7) == 0   ? std::bit_cast<float>(static_cast<uint32_t>(random.Bits()))
               : random.Whole(0, 7) == 0 ? timestamp - duration
                                         : static_cast<float>(random.Real(timestamp - 3, timestamp));
    }});
    t.Run(PrimUpdateMotionHistory8u32f, model::PrimUpdateMotionHistory8u32f, [&](auto update, Side side) {
        return update(silhouette.at(side), silhouette.step(), history.at(side), history.step(), t.width(),
                      t.height(), timestamp, duration);
    });
}

void GaussNoise(Trial& t) {
    const double mean = t.Pick("mean", {20.0, 0.0, -300.0});
    const double stdDev = t.Pick("stdDev", {17.0, 0.0, 0.7, 1000.0});
    const auto seed = static_cast<uint32_t>(t.Any("seed", 0, 1 << 30, 544));
    const auto data = t.Target<uint8_t>();
    t.Run(PrimAddGaussNoise8uC1, model::PrimAddGaussNoise8uC1, [&](auto add, Side side) {
        uint32_t state = seed;
        const PrimStatus status =
            add(data.at(side), data.step(), t.width(), t.height(), mean, stdDev, &state);
        return std::pair(status, state);
    });
}

PrimStatus LookupModel(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = table[src[i]];
    }
    return 0;
}

PrimStatus LookupFast(const uint8_t* table, const uint8_t* src, uint8_t* dst, size_t count) {
    LookupBytes(table, src, dst, count);
    return 0;
}

void Lookup(Trial& t) {
    const bool inPlace = t.Pick("inPlace", {0, 1}) != 0;
    const auto table = t.Source<uint8_t>({.width = 256, .height = 1});
    const auto src = t.Source<uint8_t>({.packed = true});
    const auto dst = t.Target<uint8_t>({.packed = true});
    const auto count = static_cast<size_t>(t.width()) * static_cast<size_t>(t.height());
    t.Run(LookupFast, LookupModel, [&](auto lookup, Side side) {
        return lookup(table.at(side), inPlace ? dst.at(side) : src.at(side), dst.at(side), count);
    });
}

const Register kernels("points",
                       {
                           {"PrimSet8uC1", Set},
                           {"PrimCopy8uC1", Copy},
                           {"PrimMean8uC1", Mean},
                           {"PrimAddSfs8uC1", TwoImagesScaled<PrimAddSfs8uC1, model::PrimAddSfs8uC1>},
                           {"PrimAddSfs8uC1 to itself", AddToItself},
                           {"PrimSubSfs8uC1", TwoImagesScaled<PrimSubSfs8uC1, model::PrimSubSfs8uC1>},
                           {"PrimMulCSfs8uC1", MulC},
                           {"PrimMulScale8uC1", TwoImages<PrimMulScale8uC1, model::PrimMulScale8uC1>},
                           {"PrimAnd8uC1", TwoImages<PrimAnd8uC1, model::PrimAnd8uC1>},
                           {"PrimNot8uC1", Not},
                           {"PrimThresholdLT8uC1", ThresholdLT},
                           {"PrimThresholdGTVal8uC1", ThresholdGTVal},
                           {"PrimThresholdLTValGTVal8uC1", ThresholdBoth},
                           {"PrimThresholdLTValGTValInPlace8uC1", ThresholdBothInPlace},
                           {"PrimReduceBits8uC3", ReduceBits, 3},
                           {"PrimScale32f8u", Scale},
                           {"PrimUpdateMotionHistory8u32f", MotionHistory},
                           {"PrimAddGaussNoise8uC1", GaussNoise},
                           {"LookupBytes", Lookup},
                       });

}  // namespace
}  // namespace check
