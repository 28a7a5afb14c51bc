#include "facetrack/Cascade.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <locale>
#include <system_error>

int32_t Cascade::Load(const std::string& path) {
    Clear();
    if (Read(path)) return kLoaded;
    Clear();
    return kBadFile;
}

bool Cascade::Read(const std::string& path) {
    constexpr int32_t kSmallestWindow = 3;
    // Only a regular file: opening a pipe could block for ever.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return false;
    std::ifstream file(path);
    file.imbue(std::locale::classic());
    int32_t stageCount = 0, classifierCount = 0, rectCount = 0;
    if (!(file >> windowWidth >> windowHeight >> stageCount >> classifierCount >> rectCount)) return false;
    if (windowWidth < kSmallestWindow || windowHeight < kSmallestWindow || stageCount < 0 ||
        classifierCount < 0 || rectCount < 0) {
        return false;
    }
    const auto allClassifiers = static_cast<size_t>(classifierCount),
               allRects = static_cast<size_t>(rectCount);

    for (int32_t s = 0; s < stageCount; ++s) {
        int32_t inStage = 0;
        float stageThreshold = 0;
        if (!(file >> inStage >> stageThreshold) || inStage < 0) return false;
        stages.push_back(
            {classifierRectCount.size(), static_cast<size_t>(inStage), rects.size(), stageThreshold, {}});
        for (int32_t c = 0; c < inStage; ++c) {
            int32_t inClassifier = 0;
            if (!(file >> inClassifier) || inClassifier < 0) return false;
            if (classifierRectCount.size() == allClassifiers) return false;
            for (int32_t r = 0; r < inClassifier; ++r) {
                PrimRect rect{};
                float weight = 0;
                if (!(file >> rect.x >> rect.y >> rect.width >> rect.height >> weight)) return false;
                if (rects.size() == allRects) return false;
                rects.push_back(rect);
                weights.push_back(weight);
            }
            float threshold = 0, below = 0, above = 0;
            if (!(file >> threshold >> below >> above)) return false;
            classifierRectCount.push_back(inClassifier);
            classifierThreshold.push_back(threshold);
            valueBelow.push_back(below);
            valueAbove.push_back(above);
        }
    }
    return classifierRectCount.size() == allClassifiers && rects.size() == allRects;
}

PrimStatus Cascade::Prepare(int32_t border, double bias) {
    const auto scale = static_cast<float>(1.0 / (static_cast<double>(windowWidth - 2 * border) *
                                                 static_cast<double>(windowHeight - 2 * border)));
    for (float& weight : weights) weight *= scale;
    for (PrimRect& rect : rects) {
        const int64_t right = int64_t{rect.x} + rect.width;
        const int64_t turned = int64_t{windowHeight} - rect.height - rect.y;
        if (right > windowWidth || turned + rect.height > windowHeight || turned < 0) return kPrimSizeError;
        rect.y = static_cast<int32_t>(turned);
    }
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
