// Stages of a cascade of boosted classifiers on rectangle sums.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <numeric>
#include <span>
#include <vector>

#include "imaging/Prim.h"
#include "imaging/PrimCheck.h"
#include "imaging/PrimRow.h"

using prim::CheckAlignment;
using prim::CheckPointers;
using prim::CheckRect;
using prim::CheckSize;
using prim::CheckStep;
using prim::FirstError;
using prim::kSize;
using prim::Row;

struct PrimHaarState {
    struct Feature {
        PrimRect rect;
        double weight;
    };
    struct Classifier {
        size_t featureCount;
        double threshold;
        double below;
        double above;
    };
    std::vector<Feature> features;  ///< of all classifiers, one after the other
    std::vector<Classifier> classifiers;
};

namespace {

using Feature = PrimHaarState::Feature;
using Classifier = PrimHaarState::Classifier;

/// Weighted sum of a rectangle's pixels, at the window whose corner is at `table`; wrap-around cancels.
double Response(const Feature& feature, const uint32_t* table, ptrdiff_t entriesPerRow) {
    const PrimRect& rect = feature.rect;
    const uint32_t* const top = table + rect.y * entriesPerRow + rect.x;
    const uint32_t* const bottom = top + rect.height * entriesPerRow;
    const uint32_t sum = bottom[rect.width] - bottom[0] - top[rect.width] + top[0];
    return feature.weight * static_cast<int32_t>(sum);
}

double Total(const PrimHaarState& stage, const uint32_t* table, ptrdiff_t entriesPerRow, double deviation) {
    double total = 0;
    const Feature* feature = stage.features.data();
    for (const Classifier& classifier : stage.classifiers) {
        double response = 0;
        for (const Feature* const end = feature + classifier.featureCount; feature != end; ++feature) {
            response += Response(*feature, table, entriesPerRow);
        }
        total += classifier.threshold * deviation <= response ? classifier.above : classifier.below;
    }
    return total;
}

}  // namespace

PrimStatus PrimHaarClassifierInit(PrimHaarState** state, const PrimRect* rects, const float* weights,
                                  const float* thresholds, const float* val1, const float* val2,
                                  const int32_t* counts, int32_t length) {
    if (const PrimStatus status = FirstError(CheckPointers(state), CheckPointers(rects),
                                             CheckPointers(weights, thresholds, val1, val2),
                                             CheckPointers(counts), length < 0 ? kPrimSizeError : kPrimOk)) {
        return status;
    }
    const std::span featureCounts(counts, static_cast<size_t>(length));
    if (std::ranges::any_of(featureCounts, [](int32_t count) { return count < 1; })) {
        return kPrimSizeError;
    }
    const std::span features(rects, std::accumulate(featureCounts.begin(), featureCounts.end(), size_t{0}));
    if (std::ranges::any_of(features, [](const PrimRect& rect) { return CheckRect(rect) != kPrimOk; })) {
        return kPrimSizeError;
    }
    try {
        auto stage = std::make_unique<PrimHaarState>();
        stage->features.reserve(features.size());
        for (size_t i = 0; i < features.size(); ++i) {
            stage->features.push_back({features[i], weights[i]});
        }
        stage->classifiers.reserve(featureCounts.size());
        for (size_t i = 0; i < featureCounts.size(); ++i) {
            stage->classifiers.push_back(
                {static_cast<size_t>(featureCounts[i]), thresholds[i], val1[i], val2[i]});
        }
        *state = stage.release();
    } catch (const std::bad_alloc&) {
        return kPrimMemoryError;
    }
    return kPrimOk;
}

PrimStatus PrimHaarClassifierFree(PrimHaarState* state) {
    if (const PrimStatus status = CheckPointers(state)) {
        return status;
    }
    delete state;
    return kPrimOk;
}

PrimStatus PrimHaarClassifierGetSize(const PrimHaarState* state, int32_t* size) {
    if (const PrimStatus status = FirstError(CheckPointers(state), CheckPointers(size))) {
        return status;
    }
    size[0] = 0;
    size[1] = 0;
    for (const Feature& feature : state->features) {
        size[0] = std::max(size[0], feature.rect.x + feature.rect.width);
        size[1] = std::max(size[1], feature.rect.y + feature.rect.height);
    }
    return kPrimOk;
}

PrimStatus PrimApplyHaarClassifier32s32f(const int32_t* sum, int32_t sumStep, const float* norm,
                                         int32_t normStep, uint8_t* mask, int32_t maskStep, int32_t width,
                                         int32_t height, int32_t* positive, float threshold,
                                         const PrimHaarState* state) {
    if (const PrimStatus status = FirstError(
            CheckPointers(sum, positive), CheckPointers(norm), CheckPointers(mask), CheckPointers(state),
            CheckSize(width, height), CheckStep(sumStep, width, kSize<int32_t>),
            CheckStep(normStep, width, kSize<float>), CheckStep(maskStep, width),
            CheckAlignment(sumStep, kSize<int32_t>), CheckAlignment(normStep, kSize<float>))) {
        return status;
    }
    const ptrdiff_t entriesPerRow = sumStep / kSize<int32_t>;
    int32_t survivors = 0;
    for (ptrdiff_t y = 0; y < height; ++y) {
        const auto* const table = reinterpret_cast<const uint32_t*>(Row(sum, sumStep, y));
        const float* const deviations = Row(norm, normStep, y);
        uint8_t* const candidates = Row(mask, maskStep, y);
        for (ptrdiff_t x = 0; x < width; ++x) {
            if (candidates[x] == 0) {
                continue;
            }
            if (Total(*state, table + x, entriesPerRow, deviations[x]) < threshold) {
                candidates[x] = 0;
            } else {
                ++survivors;
            }
        }
    }
    *positive = survivors;
    return kPrimOk;
}
