// Integral images, the deviation in a rectangle, and cascade stages that run on both.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <vector>

#include "imaging/Prim.h"

namespace {

/// Row y of an image whose rows lie `step` bytes apart.
template <class T>
T* Row(T* image, int32_t step, ptrdiff_t y) {
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(image) + y * step);
}

template <class T>
bool TooSmall(int32_t step, int64_t width) {
    return step < width * int64_t{sizeof(T)};
}

template <class T>
bool Misaligned(int32_t step) {
    return step % static_cast<int32_t>(sizeof(T)) != 0;
}

bool Illegal(const PrimRect& rect) {
    constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
    return rect.x < 0 || rect.y < 0 || rect.width < 1 || rect.height < 1 || rect.x > kMax - rect.width ||
           rect.y > kMax - rect.height;
}

/// Sum over a rectangle from the four corners of a table, with wrap-around.
int32_t RectSum(const int32_t* table, int32_t step, ptrdiff_t x, ptrdiff_t y, ptrdiff_t width,
                ptrdiff_t height) {
    const auto at = [&](ptrdiff_t column, ptrdiff_t row) {
        return static_cast<uint32_t>(Row(table, step, row)[column]);
    };
    return static_cast<int32_t>(at(x + width, y + height) - at(x, y + height) - at(x + width, y) + at(x, y));
}

}  // namespace

PrimStatus PrimSqrIntegral8u32s64f(const uint8_t* src, int32_t srcStep, int32_t* sum, int32_t sumStep,
                                   double* sqr, int32_t sqrStep, int32_t width, int32_t height, int32_t val,
                                   double valSqr) {
    if (src == nullptr || sum == nullptr || sqr == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (srcStep < width || TooSmall<int32_t>(sumStep, int64_t{width} + 1) ||
        TooSmall<double>(sqrStep, int64_t{width} + 1))
        return kPrimStepError;
    if (Misaligned<int32_t>(sumStep) || Misaligned<double>(sqrStep)) return kPrimAlignmentError;

    std::fill_n(sum, ptrdiff_t{width} + 1, val);
    std::fill_n(sqr, ptrdiff_t{width} + 1, valSqr);
    for (ptrdiff_t y = 0; y < height; ++y) {
        const uint8_t* from = Row(src, srcStep, y);
        const int32_t* sumAbove = Row(sum, sumStep, y);
        const double* sqrAbove = Row(sqr, sqrStep, y);
        int32_t* sumRow = Row(sum, sumStep, y + 1);
        double* sqrRow = Row(sqr, sqrStep, y + 1);
        sumRow[0] = val;
        sqrRow[0] = valSqr;
        uint32_t rowSum = 0;
        uint64_t rowSqr = 0;
        for (ptrdiff_t x = 0; x < width; ++x) {
            const uint32_t pixel = from[x];
            rowSum += pixel;
            rowSqr += pixel * pixel;
            sumRow[x + 1] = static_cast<int32_t>(static_cast<uint32_t>(sumAbove[x + 1]) + rowSum);
            sqrRow[x + 1] = sqrAbove[x + 1] + static_cast<double>(rowSqr);
        }
    }
    return kPrimOk;
}

PrimStatus PrimRectStdDev32s32f(const int32_t* sum, int32_t sumStep, const double* sqr, int32_t sqrStep,
                                float* dst, int32_t dstStep, int32_t width, int32_t height, int32_t rectX,
                                int32_t rectY, int32_t rectWidth, int32_t rectHeight) {
    if (sum == nullptr || sqr == nullptr || dst == nullptr) return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (TooSmall<int32_t>(sumStep, width) || TooSmall<double>(sqrStep, width) ||
        TooSmall<float>(dstStep, width))
        return kPrimStepError;
    if (Misaligned<int32_t>(sumStep) || Misaligned<double>(sqrStep) || Misaligned<float>(dstStep))
        return kPrimAlignmentError;
    if (Illegal({rectX, rectY, rectWidth, rectHeight})) return kPrimSizeError;

    const double area = static_cast<double>(rectWidth) * rectHeight;
    for (ptrdiff_t y = 0; y < height; ++y) {
        float* to = Row(dst, dstStep, y);
        const double* top = Row(sqr, sqrStep, y + rectY) + rectX;
        const double* bottom = Row(sqr, sqrStep, y + rectY + rectHeight) + rectX;
        for (ptrdiff_t x = 0; x < width; ++x) {
            const double mean = RectSum(sum, sumStep, x + rectX, y + rectY, rectWidth, rectHeight) / area;
            const double squares = bottom[x + rectWidth] - bottom[x] - top[x + rectWidth] + top[x];
            const double variance = squares / area - mean * mean;
            to[x] = std::sqrt(static_cast<float>(std::max(variance, 0.0)));
        }
    }
    return kPrimOk;
}

struct PrimHaarState {
    struct Feature {
        PrimRect rect;
        double weight;
    };
    struct Classifier {
        size_t firstFeature;
        size_t featureCount;
        float threshold;
        float below;
        float above;
    };
    std::vector<Feature> features;
    std::vector<Classifier> classifiers;
};

PrimStatus PrimHaarClassifierInit(PrimHaarState** state, const PrimRect* rects, const float* weights,
                                  const float* thresholds, const float* val1, const float* val2,
                                  const int32_t* counts, int32_t length) {
    if (state == nullptr || rects == nullptr || weights == nullptr || thresholds == nullptr ||
        val1 == nullptr || val2 == nullptr || counts == nullptr)
        return kPrimNullError;
    if (length < 0) return kPrimSizeError;
    const std::span<const int32_t> classifierCounts(counts, static_cast<size_t>(length));
    size_t total = 0;
    for (const int32_t count : classifierCounts) {
        if (count < 1) return kPrimSizeError;
        total += static_cast<size_t>(count);
    }
    for (size_t i = 0; i < total; ++i)
        if (Illegal(rects[i])) return kPrimSizeError;

    try {
        auto stage = std::make_unique<PrimHaarState>();
        stage->features.reserve(total);
        stage->classifiers.reserve(classifierCounts.size());
        for (size_t i = 0; i < classifierCounts.size(); ++i) {
            const auto count = static_cast<size_t>(classifierCounts[i]);
            const size_t first = stage->features.size();
            for (size_t k = first; k < first + count; ++k)
                stage->features.push_back({rects[k], double{weights[k]}});
            stage->classifiers.push_back({first, count, thresholds[i], val1[i], val2[i]});
        }
        *state = stage.release();
    } catch (const std::bad_alloc&) {
        return kPrimMemoryError;
    }
    return kPrimOk;
}

PrimStatus PrimHaarClassifierFree(PrimHaarState* state) {
    if (state == nullptr) return kPrimNullError;
    delete state;
    return kPrimOk;
}

PrimStatus PrimHaarClassifierGetSize(const PrimHaarState* state, int32_t* size) {
    if (state == nullptr || size == nullptr) return kPrimNullError;
    size[0] = 0;
    size[1] = 0;
    for (const PrimHaarState::Feature& feature : state->features) {
        size[0] = std::max(size[0], feature.rect.x + feature.rect.width);
        size[1] = std::max(size[1], feature.rect.y + feature.rect.height);
    }
    return kPrimOk;
}

PrimStatus PrimApplyHaarClassifier32s32f(const int32_t* sum, int32_t sumStep, const float* norm,
                                         int32_t normStep, uint8_t* mask, int32_t maskStep, int32_t width,
                                         int32_t height, int32_t* positive, float threshold,
                                         const PrimHaarState* state) {
    if (sum == nullptr || norm == nullptr || mask == nullptr || positive == nullptr || state == nullptr)
        return kPrimNullError;
    if (width < 1 || height < 1) return kPrimSizeError;
    if (TooSmall<int32_t>(sumStep, width) || TooSmall<float>(normStep, width) || maskStep < width)
        return kPrimStepError;
    if (Misaligned<int32_t>(sumStep) || Misaligned<float>(normStep)) return kPrimAlignmentError;

    int32_t survivors = 0;
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* maskRow = Row(mask, maskStep, y);
        const float* normRow = Row(norm, normStep, y);
        for (ptrdiff_t x = 0; x < width; ++x) {
            if (maskRow[x] == 0) continue;
            const double deviation = normRow[x];
            double total = 0;
            for (const PrimHaarState::Classifier& classifier : state->classifiers) {
                double response = 0;
                const std::span features(&state->features[classifier.firstFeature], classifier.featureCount);
                for (const auto& [rect, weight] : features)
                    response +=
                        weight * RectSum(sum, sumStep, x + rect.x, y + rect.y, rect.width, rect.height);
                total += classifier.threshold * deviation <= response ? classifier.above : classifier.below;
            }
            if (total < threshold)
                maskRow[x] = 0;
            else
                ++survivors;
        }
    }
    *positive = survivors;
    return kPrimOk;
}
