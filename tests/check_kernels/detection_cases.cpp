// The primitives of object detection: edge maps, integral images, classifier stages.
#include <algorithm>
#include <utility>
#include <vector>

#include "imaging/Prim.h"
#include "tests/check_kernels/Trial.h"
#include "tests/imaging/models/DetectionModels.h"

namespace check {
namespace {

void Canny(Trial& t) {
    // From gradients of a picture that has edges to small numbers full of ties and ones that fill 16 bits.
    const int32_t reach = t.Pick("reach", {300, 3, 20, 32768});
    const float low = t.Pick("low", {60.0f, 0.0f, 1.5f, 250.0f, 20000.0f});
    const float range = t.Pick("range", {120.0f, 0.0f, 0.5f, 10000.0f});
    const auto gradient = [=](Random& random) {
        return static_cast<int16_t>(random.Whole(0, 3) == 0 ? 0 : random.Whole(-reach, reach - 1));
    };
    const auto dx = t.Source<int16_t>({.element = gradient});
    const auto dy = t.Source<int16_t>({.element = gradient});
    const auto dst = t.Target<uint8_t>();
    int32_t size = 0;
    PrimCannyGetBufferSize(t.width(), t.height(), &size);
    std::vector<uint8_t> buffer(static_cast<size_t>(size));
    t.Run(PrimCanny16s8u, model::PrimCanny16s8u, [&](auto canny, Side side) {
        return canny(dx.at(side), dx.step(), dy.at(side), dy.step(), dst.at(side), dst.step(), t.width(),
                     t.height(), low, low + range, buffer.data());
    });
}

void SqrIntegral(Trial& t) {
    const int32_t val = t.Pick("val", {-16777216, 0, 2147483647});
    const double valSqr = t.Pick("valSqr", {0.0, -7.5});
    const auto src = t.Source<uint8_t>();
    const auto sum = t.Target<int32_t>({.width = t.width() + 1, .height = t.height() + 1});
    const auto sqr = t.Target<double>({.width = t.width() + 1, .height = t.height() + 1});
    t.Run(PrimSqrIntegral8u32s64f, model::PrimSqrIntegral8u32s64f, [&](auto integral, Side side) {
        return integral(src.at(side), src.step(), sum.at(side), sum.step(), sqr.at(side), sqr.step(),
                        t.width(), t.height(), val, valSqr);
    });
}

/// The two tables of a random picture of a size.
class Tables {
  public:
    Tables(Trial& t, int32_t width, int32_t height) : width_(width + 1), height_(height + 1) {
        const auto pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
        const auto entries = static_cast<size_t>(width_) * static_cast<size_t>(height_);
        std::vector<uint8_t> picture(pixels);
        const int32_t most = t.random().Whole(1, 255);
        for (uint8_t& pixel : picture) {
            pixel = static_cast<uint8_t>(t.random().Whole(most / 2, most));
        }
        sum_.resize(entries);
        sqr_.resize(entries);
        model::PrimSqrIntegral8u32s64f(picture.data(), width, sum_.data(), width_ * 4, sqr_.data(),
                                       width_ * 8, width, height, -16777216, 0);
    }

    Shape<int32_t> sum() const { return Entries(sum_); }
    Shape<double> sqr() const { return Entries(sqr_); }

  private:
    template <typename T>
    Shape<T> Entries(const std::vector<T>& table) const {
        return {.width = width_, .height = height_, .element = [entry = table.begin()](Random&) mutable {
                    return *entry++;
                }};
    }

    int32_t width_;
    int32_t height_;
    std::vector<int32_t> sum_;
    std::vector<double> sqr_;
};

void RectStdDev(Trial& t) {
    const int32_t wide = t.Pick("rectWidth", {22, 1, 2, 7});
    const int32_t x = t.Any("rectX", 0, 3, 0);
    const int32_t y = t.Any("rectY", 0, 3, 0);
    const PrimRect rect = {x, y, wide, t.Any("rectHeight", 1, 30, wide)};
    const Tables tables(t, t.width() + rect.x + rect.width - 1, t.height() + rect.y + rect.height - 1);
    const auto sum = t.Source<int32_t>(tables.sum());
    const auto sqr = t.Source<double>(tables.sqr());
    const auto dst = t.Target<float>();
    t.Run(PrimRectStdDev32s32f, model::PrimRectStdDev32s32f, [&](auto deviation, Side side) {
        return deviation(sum.at(side), sum.step(), sqr.at(side), sqr.step(), dst.at(side), dst.step(),
                         t.width(), t.height(), rect.x, rect.y, rect.width, rect.height);
    });
}

constexpr int32_t kWindow = 20;

model::Stage MakeStage(Random& random, int32_t length) {
    model::Stage stage;
    for (int32_t i = 0; i < length; ++i) {
        const int32_t count = random.Whole(2, 3);
        stage.counts.push_back(count);
        for (int32_t k = 0; k < count; ++k) {
            const int32_t x = random.Whole(0, kWindow - 2);
            const int32_t y = random.Whole(0, kWindow - 2);
            stage.rects.push_back({x, y, random.Whole(1, kWindow - 1 - x), random.Whole(1, kWindow - 1 - y)});
            stage.weights.push_back(static_cast<float>(random.Real(-0.01, 0.01)));
        }
        stage.thresholds.push_back(static_cast<float>(random.Real(-0.1, 0.1)));
        stage.below.push_back(static_cast<float>(random.Real(-1, 1)));
        stage.above.push_back(static_cast<float>(random.Real(-1, 1)));
    }
    return stage;
}

/// The primitive with a stage made of the same parts that the model takes.
PrimStatus ApplyStage(const model::Stage& stage, const int32_t* sum, int32_t sumStep, const float* norm,
                      int32_t normStep, uint8_t* mask, int32_t maskStep, int32_t width, int32_t height,
                      int32_t* positive, float threshold) {
    PrimHaarState* state = nullptr;
    PrimStatus status = PrimHaarClassifierInit(
        &state, stage.rects.data(), stage.weights.data(), stage.thresholds.data(), stage.below.data(),
        stage.above.data(), stage.counts.data(), static_cast<int32_t>(stage.counts.size()));
    if (status == kPrimOk) {
        status = PrimApplyHaarClassifier32s32f(sum, sumStep, norm, normStep, mask, maskStep, width, height,
                                               positive, threshold, state);
        PrimHaarClassifierFree(state);
    }
    return status;
}

void HaarClassifier(Trial& t) {
    const int32_t length = t.Pick("length", {12, 1, 3, 60});
    const int32_t dense = t.Pick("dense", {1, 0});
    const model::Stage stage = MakeStage(t.random(), length);
    const float threshold = t.Pick("threshold", {0.0f, -1000.0f, 1000.0f, 0.25f});
    const Tables tables(t, t.width() + kWindow, t.height() + kWindow);
    const auto sum = t.Source<int32_t>(tables.sum());
    const auto norm =
        t.Source<float>({.element = [](Random& random) { return static_cast<float>(random.Real(0, 60)); }});
    const auto mask = t.Target<uint8_t>({.element = [=](Random& random) {
        return static_cast<uint8_t>(random.Whole(0, 9) < 1 + 8 * dense ? random.Whole(1, 255) : 0);
    }});
    t.Run(ApplyStage, model::ApplyStage, [&](auto apply, Side side) {
        int32_t positive = -1;
        const PrimStatus status =
            apply(stage, sum.at(side), sum.step(), norm.at(side), norm.step(), mask.at(side), mask.step(),
                  t.width(), t.height(), &positive, threshold);
        return std::pair(status, positive);
    });
}

const Register kernels("detection", {
                                        {"PrimCanny16s8u", Canny},
                                        {"PrimSqrIntegral8u32s64f", SqrIntegral},
                                        {"PrimRectStdDev32s32f", RectStdDev},
                                        {"PrimApplyHaarClassifier32s32f", HaarClassifier},
                                    });

}  // namespace
}  // namespace check
