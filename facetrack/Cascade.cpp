#include "facetrack/Cascade.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <limits>

#include "imaging/Files.h"

namespace {

/// Makes scanf in this thread read numbers with a decimal point, independent of the process's locale.
class ClassicNumbers {
  public:
    ClassicNumbers(const ClassicNumbers&) = delete;
    ClassicNumbers& operator=(const ClassicNumbers&) = delete;
#ifdef _WIN32
    ClassicNumbers() : mode_(_configthreadlocale(_ENABLE_PER_THREAD_LOCALE)) {
        if (const char* const name = std::setlocale(LC_NUMERIC, nullptr)) former_ = name;
        std::setlocale(LC_NUMERIC, "C");
    }
    ~ClassicNumbers() {
        std::setlocale(LC_NUMERIC, former_.c_str());
        _configthreadlocale(mode_);
    }

  private:
    int mode_;
    std::string former_ = "C";
#elif defined(__wasm__)
    ClassicNumbers() {}  // the only locale there is
#else
    ClassicNumbers() : classic_(newlocale(LC_ALL_MASK, "C", locale_t{})), former_(uselocale(classic_)) {}
    ~ClassicNumbers() {
        uselocale(former_);
        if (classic_ != locale_t{}) freelocale(classic_);
    }

  private:
    locale_t classic_, former_;
#endif
};

/// True if all numbers of the format were read.
template <class... Numbers>
bool Scan(std::FILE* file, const char* format, Numbers*... numbers) {
    return std::fscanf(file, format, numbers...) == static_cast<int>(sizeof...(numbers));
}

}  // namespace

int32_t Cascade::LoadCascade(const std::string& path) {
    Clear();
    if (Read(path)) return kLoaded;
    Clear();
    return kBadFile;
}

bool Cascade::Read(const std::string& path) {
    constexpr int32_t kSmallestWindow = 3;
    const files::File opened = files::OpenToRead(path.c_str());
    std::FILE* const file = opened.get();
    if (file == nullptr) return false;
    const ClassicNumbers classic;

    int32_t stageCount = 0, classifierCount = 0, rectCount = 0;
    if (!Scan(file, "%d %d %d %d %d", &windowWidth, &windowHeight, &stageCount, &classifierCount,
              &rectCount)) {
        return false;
    }
    const auto isCount = [](int32_t count) { return count >= 0 && count <= kMostEntries; };
    if (windowWidth < kSmallestWindow || windowHeight < kSmallestWindow || !isCount(stageCount) ||
        !isCount(classifierCount) || !isCount(rectCount)) {
        return false;
    }
    const auto allClassifiers = static_cast<size_t>(classifierCount),
               allRects = static_cast<size_t>(rectCount);

    for (int32_t s = 0; s < stageCount; ++s) {
        int32_t inStage = 0;
        float stageThreshold = 0;
        if (!Scan(file, "%d %g", &inStage, &stageThreshold) || inStage < 0) return false;
        stages.push_back(
            {classifierRectCount.size(), static_cast<size_t>(inStage), rects.size(), 0, stageThreshold, {}});
        for (int32_t c = 0; c < inStage; ++c) {
            int32_t inClassifier = 0;
            if (!Scan(file, "%d", &inClassifier) || inClassifier < 0) return false;
            if (classifierRectCount.size() == allClassifiers) return false;
            for (int32_t r = 0; r < inClassifier; ++r) {
                PrimRect rect{};
                float weight = 0;
                if (!Scan(file, "%d %d %d %d %g", &rect.x, &rect.y, &rect.width, &rect.height, &weight)) {
                    return false;
                }
                if (rects.size() == allRects) return false;
                rects.push_back(rect);
                weights.push_back(weight);
            }
            float threshold = 0, below = 0, above = 0;
            if (!Scan(file, "%g %g %g", &threshold, &below, &above)) return false;
            classifierRectCount.push_back(inClassifier);
            classifierThreshold.push_back(threshold);
            valueBelow.push_back(below);
            valueAbove.push_back(above);
        }
        stages.back().rectCount = rects.size() - stages.back().firstRect;
    }
    return classifierRectCount.size() == allClassifiers && rects.size() == allRects;
}

PrimStatus Cascade::PrepareCascade(int32_t border, double bias) {
    if (stages.empty()) return kPrimSizeError;
    const auto scale = static_cast<float>(1.0 / (static_cast<double>(windowWidth - 2 * border) *
                                                 static_cast<double>(windowHeight - 2 * border)));
    for (float& weight : weights) weight *= scale;
    for (PrimRect& rect : rects) {
        const int64_t turned = int64_t{windowHeight} - rect.height - rect.y;
        if (turned < 0 || turned > std::numeric_limits<int32_t>::max()) return kPrimSizeError;
        rect.y = static_cast<int32_t>(turned);
    }
    // A cascade with only empty stages still needs non-null arrays.
    rects.reserve(1);
    weights.reserve(1);
    classifierThreshold.reserve(1);
    valueBelow.reserve(1);
    valueAbove.reserve(1);
    classifierRectCount.reserve(1);
    featureWidth = windowWidth - 2;
    featureHeight = windowHeight - 2;
    for (Stage& stage : stages) {
        stage.threshold = static_cast<float>(stage.threshold - bias);
        const size_t c = stage.firstClassifier, r = stage.firstRect;
        PrimHaarState* state = nullptr;
        const PrimStatus status = PrimHaarClassifierInit(
            &state, rects.data() + r, weights.data() + r, classifierThreshold.data() + c,
            valueBelow.data() + c, valueAbove.data() + c, classifierRectCount.data() + c,
            static_cast<int32_t>(stage.classifierCount));
        if (status != kPrimOk) return status;
        stage.state.reset(state);
        int32_t size[2] = {};
        PrimHaarClassifierGetSize(state, size);
        featureWidth = std::max(featureWidth, size[0]);
        featureHeight = std::max(featureHeight, size[1]);
    }
    return kPrimOk;
}

void Cascade::Clear() {
    *this = Cascade();
}
