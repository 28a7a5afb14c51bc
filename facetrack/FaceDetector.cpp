#include "facetrack/FaceDetector.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "framework/Surroundings.h"

namespace {

/// Limit on the pixels of a pass's tables, for any cascade and frame. Trained cascades need about ten
/// thousand.
constexpr int64_t kLargestTable = int64_t{1} << 20;

/// Positions that a stage skips in the time of one unit of work.
constexpr int64_t kPlacesPerWork = 4;
constexpr size_t kUsualFaces = 64;

int64_t Area(const CFaceRect& rect) {
    return int64_t{rect.width} * rect.height;
}

int64_t SharedArea(const CFaceRect& a, const CFaceRect& b) {
    const int64_t width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const int64_t height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return width > 0 && height > 0 ? width * height : 0;
}

/// Whether one rectangle lies at least four fifths inside the other.
bool Match(const CFaceRect& a, const CFaceRect& b) {
    const int64_t shared = SharedArea(a, b);
    return Area(a) - shared < Area(a) / 5 || Area(b) - shared < Area(b) / 5;
}

CFaceRect BoundingBox(const CFaceRect& a, const CFaceRect& b) {
    const int32_t x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return {x, y, std::max(a.x + a.width, b.x + b.width) - x, std::max(a.y + a.height, b.y + b.height) - y};
}

}  // namespace

void CFaceDetector::SetCascadePath(const char* path) {
    if (path != nullptr) cascadePath = path;
}

bool CFaceDetector::Initialize(int32_t frameWidth, int32_t frameHeight) {
    constexpr int32_t kBorder = 1;
    constexpr double kBias = 0.0001;
    ReleaseCascade();
    minFaceSize = frameWidth / 5;

    const auto refuse = [&](const char* message) {
        std::fputs(message, stderr);
        ReleaseCascade();
        return false;
    };
    if (cascade.LoadCascade(cascadePath.empty() ? CurrentSurroundings().DataFile("haar.txt") : cascadePath) !=
        Cascade::kLoaded) {
        return refuse("ERROR: cascade file is incorrect\n");
    }
    const PrimStatus prepared = cascade.PrepareCascade(kBorder, kBias);
    if (prepared == kPrimMemoryError) throw std::bad_alloc();
    if (prepared != kPrimOk) return refuse("ERROR: cascade is illegal\n");

    const int32_t windowWidth = cascade.windowWidth, windowHeight = cascade.windowHeight;
    if (maxFaceSize < 1) maxFaceSize = frameWidth;
    if (minFaceSize < 1) minFaceSize = windowWidth;
    const int64_t rows = int64_t{frameHeight / windowHeight} * (frameWidth / windowWidth);
    const float capacity =
        mergeRadius * mergeRadius * static_cast<float>(maxFaceSize) / static_cast<float>(minFaceSize);
    const float scale = static_cast<float>(minFaceSize) / static_cast<float>(windowWidth);
    const auto scaledWidth = static_cast<int64_t>(static_cast<float>(frameWidth) / scale);
    const auto scaledHeight = static_cast<int64_t>(static_cast<float>(frameHeight) / scale);
    if (rows < 1 || capacity < 1.0F || (scaledWidth + 2) * (scaledHeight + 2) > kLargestTable) {
        return refuse("ERROR: face size and image size are invalid\n");
    }

    frameWidth_ = frameWidth;
    frameHeight_ = frameHeight;
    hitStore = std::make_unique<CHitStore>(mergeRadius, sizeRatio);
    groupStore = std::make_unique<CHitStore>(mergeRadius, sizeRatio);
    faces.reserve(kUsualFaces);
    previousFaces.reserve(kUsualFaces);
    tableWidth = static_cast<int32_t>(scaledWidth) + 2;
    tableHeight = static_cast<int32_t>(scaledHeight) + 2;
    const size_t entries = static_cast<size_t>(tableWidth) * static_cast<size_t>(tableHeight);
    sumTable.assign(entries, 0);
    sqrTable.assign(entries, 0.0);
    candidateMask = NewPlane(tableWidth - 2, tableHeight - 2);
    scaledPlane = NewPlane(tableWidth - 2, tableHeight - 2);
    normPlane.assign(scaledPlane.Size(), 0.0F);
    phase = 0;
    BuildScales(frameWidth, frameHeight);
    for (const CScaleEntry& entry : scales) scalePlans.push_back(PlanScale(entry.scale));
    return true;
}

void CFaceDetector::ReleaseCascade() {
    std::string path = std::move(cascadePath);
    *this = CFaceDetector();
    cascadePath = std::move(path);
}

void CFaceDetector::BuildScales(int32_t frameWidth, int32_t frameHeight) {
    constexpr int32_t kMargin = 5;
    const auto width = static_cast<float>(frameWidth), height = static_cast<float>(frameHeight);
    const auto windowWidth = static_cast<float>(cascade.windowWidth);
    scales.clear();
    float scale = static_cast<float>(minFaceSize) / windowWidth;
    while (static_cast<float>(cascade.windowWidth + kMargin) < width / scale &&
           static_cast<float>(cascade.windowHeight + kMargin) < height / scale &&
           windowWidth * scale < static_cast<float>(maxFaceSize)) {
        scales.push_back(
            {scale, static_cast<int32_t>(width / scale), static_cast<int32_t>(height / scale), 0});
        scale = static_cast<float>(scale * 1.12);
    }

    const auto areaOf = [](const CScaleEntry& entry) {
        return int64_t{entry.scaledWidth} * entry.scaledHeight;
    };
    int64_t total = 0;
    for (const CScaleEntry& entry : scales) total += areaOf(entry);
    const int64_t quarter = total / 4, slack = quarter / 5;
    int32_t group = 0;
    int64_t run = 0;
    for (CScaleEntry& entry : scales) {
        run += areaOf(entry);
        entry.group = group;
        if (run <= quarter) continue;
        ++group;
        if (run > quarter + slack) {
            // Overshoots by more than a fifth: opens the next group instead of closing its own.
            run = areaOf(entry);
            entry.group = group;
        } else {
            run = 0;
        }
    }
}

std::unique_ptr<resize::Plan> CFaceDetector::PlanScale(float scale) const {
    const double factor = 1.0 / scale;
    const auto axis = [&](int32_t length) {
        return resize::Axis(length, factor, static_cast<int32_t>(static_cast<float>(length) / scale));
    };
    const resize::Axis x = axis(frameWidth_), y = axis(frameHeight_);
    if (x.count < 1 || y.count < 1) return nullptr;
    auto plan = resize::PlanFor(kPrimLanczos, frameWidth_, frameHeight_, x, y);
    Require(plan != nullptr);
    return plan;
}

/// The planned scales allocate nothing; any other scale or plane size builds its own tables.
bool CFaceDetector::ScalePicture(const CPlane8u& plane, float scale, CPlane8u& scaled) {
    const auto entry = std::find_if(scales.begin(), scales.end(),
                                    [=](const CScaleEntry& candidate) { return candidate.scale == scale; });
    const auto index = static_cast<size_t>(entry - scales.begin());
    if (plane.width == frameWidth_ && plane.height == frameHeight_ && index < scalePlans.size()) {
        if (scalePlans[index]) scalePlans[index]->Run(plane.data, plane.width, scaled.data, scaled.width);
        return true;
    }
    const double factor = 1.0 / scale;
    const PrimStatus status =
        PrimResize8uC1(plane.data, plane.width, plane.height, plane.width, 0, 0, plane.width, plane.height,
                       scaled.data, scaled.width, scaled.width, scaled.height, factor, factor, kPrimLanczos);
    Require(status != kPrimMemoryError);
    return status == kPrimOk;
}

bool CFaceDetector::Spend(int64_t work) {
    if (work > kMostFrameWork - frameWork) return false;
    frameWork += work;
    return true;
}

int32_t CFaceDetector::DetectAtScale(const CPlane8u& plane, float scale) {
    constexpr int32_t kFailed = -1;
    constexpr uint8_t kCandidate = 255;  // what edges are marked with
    // Keeps the sums of large planes well inside 32 bits, and cancels in every rectangle.
    constexpr int32_t kSumOffset = -16777216;

    const auto width = static_cast<int32_t>(static_cast<float>(plane.width) / scale);
    const auto height = static_cast<int32_t>(static_cast<float>(plane.height) / scale);
    if (plane.Empty() || width < 1 || height < 1 || width > tableWidth - 2 || height > tableHeight - 2) {
        return kFailed;
    }
    CPlane8u scaled = CPlane8u::Over(scaledPlane.data, width, height);
    scaled.Fill(0);
    if (!ScalePicture(plane, scale, scaled)) return kFailed;

    const int32_t sumStep = tableWidth * static_cast<int32_t>(sizeof(int32_t));
    const int32_t sqrStep = tableWidth * static_cast<int32_t>(sizeof(double));
    const int32_t normStep = scaledPlane.width * static_cast<int32_t>(sizeof(float));
    const int32_t placesX = width - cascade.featureWidth + 1, placesY = height - cascade.featureHeight + 1;
    uint8_t* const mask = candidateMask.data;
    const int32_t maskStep = candidateMask.width;
    // Only windows whose corner lies on an edge are tried.
    if (PrimSqrIntegral8u32s64f(scaled.data, width, sumTable.data(), sumStep, sqrTable.data(), sqrStep, width,
                                height, kSumOffset, 0.0) != kPrimOk ||
        PrimRectStdDev32s32f(sumTable.data(), sumStep, sqrTable.data(), sqrStep, normPlane.data(), normStep,
                             placesX, placesY, 0, 0, cascade.windowWidth - 2,
                             cascade.windowHeight - 2) != kPrimOk ||
        MakeEdgeMask(scaled.data, width, mask, maskStep, placesX, placesY, 2) != kPrimOk) {
        return kFailed;
    }

    const int64_t places = int64_t{placesX} * placesY;
    int32_t positiveCount = 0;
    for (int32_t y = 0; y < placesY; ++y) {
        const uint8_t* const row = candidateMask.Row(y);
        positiveCount += static_cast<int32_t>(std::count(row, row + placesX, kCandidate));
    }
    for (const Cascade::Stage& stage : cascade.stages) {
        const int64_t work =
            places / kPlacesPerWork + positiveCount * static_cast<int64_t>(1 + stage.rectCount);
        if (!Spend(work) || PrimApplyHaarClassifier32s32f(
                                sumTable.data(), sumStep, normPlane.data(), normStep, mask, maskStep, placesX,
                                placesY, &positiveCount, stage.threshold, stage.state.get()) != kPrimOk) {
            return kFailed;
        }
        if (positiveCount == 0) return 0;
    }
    AddHits(scale);
    return 0;
}

PrimStatus CFaceDetector::MakeEdgeMask(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                       int32_t width, int32_t height, int32_t gradientType) {
    constexpr PrimStatus kUnknownType = -2;
    constexpr int32_t kScharr = 2;
    constexpr int32_t kMasks[] = {kPrimMask3x3, kPrimMask5x5};
    constexpr float kLow[] = {8, 96, 32}, kHigh[] = {24, 288, 96};
    if (gradientType < 0 || gradientType > kScharr) return kUnknownType;
    if (width < 1 || height < 1) return kPrimSizeError;

    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    const int32_t step = width * static_cast<int32_t>(sizeof(int16_t));
    gradients.assign(2 * pixels, 0);
    int16_t* const dx = gradients.data();
    int16_t* const dy = dx + pixels;

    int32_t vertical = 0, horizontal = 0, canny = 0;
    if (gradientType == kScharr) {
        PrimScharrVertBorderGetBufferSize(width, height, &vertical);
        PrimScharrHorizBorderGetBufferSize(width, height, &horizontal);
    } else {
        PrimSobelVertBorderGetBufferSize(width, height, kMasks[gradientType], &vertical);
        PrimSobelHorizBorderGetBufferSize(width, height, kMasks[gradientType], &horizontal);
    }
    PrimCannyGetBufferSize(width, height, &canny);
    edgeBuffer.resize(static_cast<size_t>(std::max({vertical, horizontal, canny, 1})));

    PrimStatus status = kPrimOk;
    if (gradientType == kScharr) {
        status = PrimScharrVertBorder8u16s(src, srcStep, dx, step, width, height, kPrimBorderReplicate, 0,
                                           edgeBuffer.data());
        if (status != kPrimOk) return status;
        status = PrimScharrHorizBorder8u16s(src, srcStep, dy, step, width, height, kPrimBorderReplicate, 0,
                                            edgeBuffer.data());
    } else {
        const int32_t mask = kMasks[gradientType];
        status = PrimSobelVertBorder8u16s(src, srcStep, dx, step, width, height, mask, kPrimBorderReplicate,
                                          0, edgeBuffer.data());
        if (status != kPrimOk) return status;
        status = PrimSobelHorizBorder8u16s(src, srcStep, dy, step, width, height, mask, kPrimBorderReplicate,
                                           0, edgeBuffer.data());
    }
    if (status != kPrimOk) return status;
    return PrimCanny16s8u(dx, step, dy, step, dst, dstStep, width, height, kLow[gradientType],
                          kHigh[gradientType], edgeBuffer.data());
}

/// Collects every hit in the mask, including those of an earlier, larger pass of this frame outside the
/// current region.
void CFaceDetector::AddHits(float scale) {
    const int32_t halfWindow = cascade.windowWidth / 2;
    const auto size = static_cast<int32_t>(static_cast<float>(cascade.windowWidth) * scale);
    const auto toFrame = [&](int32_t position) {
        return static_cast<int32_t>(static_cast<float>(halfWindow + position) * scale);
    };
    for (int32_t y = 0; y < candidateMask.height; ++y) {
        const uint8_t* const row = candidateMask.Row(y);
        for (int32_t x = 0; x < candidateMask.width; ++x) {
            if (row[x] != 0) hitStore->Add({toFrame(x), toFrame(y), size});
        }
    }
}

void CFaceDetector::TrackFrame(CPlane8u& plane) {
    candidateMask.Fill(0);
    frameWork = 0;
    if (hitStore != nullptr && plane.width == frameWidth_ && plane.height == frameHeight_) {
        for (const CScaleEntry& entry : scales) {
            // A pass that fails has no hits.
            if (entry.group == phase) static_cast<void>(DetectAtScale(plane, entry.scale));
        }
        if (++phase == kFramesInCycle) {
            MergeFaces(*hitStore);
            phase = 0;
            hitStore->Clear();
        }
    }
    DrawFaces(plane);
}

void CFaceDetector::MergeFaces(const CHitStore& store) {
    std::swap(faces, previousFaces);
    faces.clear();
    // Group the clusters by the same rule that clustered the hits.
    if (groupStore == nullptr) groupStore = std::make_unique<CHitStore>(mergeRadius, sizeRatio);
    groupStore->Clear();
    for (const CHitStore::Row& cluster : store.Rows()) {
        if (cluster.count >= minNeighbours) groupStore->Add(cluster.Mean());
    }
    // Groups to rectangles that do not lie in each other. There are never many, since no face is smaller than
    // a fifth of the frame's width: the walk over all of them is short.
    for (const CHitStore::Row& group : groupStore->Rows()) {
        const Hit mean = group.Mean();
        const int32_t half = mean.size / 2;
        const CFaceRect candidate{mean.x - half, mean.y - half, mean.size, mean.size};
        const auto match = std::find_if(faces.begin(), faces.end(),
                                        [&](const CFaceRect& face) { return Match(candidate, face); });
        if (match == faces.end()) {
            faces.push_back(candidate);
        } else {
            *match = BoundingBox(*match, candidate);
        }
    }
}

CFaceRect CFaceDetector::GetFace() const {
    const std::vector<CFaceRect>& list = faces.empty() ? previousFaces : faces;
    const auto largest = std::max_element(
        list.begin(), list.end(), [](const CFaceRect& a, const CFaceRect& b) { return Area(a) < Area(b); });
    return largest == list.end() ? CFaceRect{} : *largest;
}

void CFaceDetector::DrawFaces(CPlane8u& plane) const {
    constexpr uint8_t kWhite = 255;
    if (plane.Empty()) return;
    const int32_t lastX = plane.width - 1, lastY = plane.height - 1;
    for (const CFaceRect& face : faces) {
        const int32_t faceRight = face.x + face.width - 1, faceBottom = face.y + face.height - 1;
        if (face.x > lastX || face.y > lastY || faceRight < 0 || faceBottom < 0) continue;
        const int32_t left = std::max(face.x, 0), right = std::min(faceRight, lastX);
        const int32_t top = std::max(face.y, 0), bottom = std::min(faceBottom, lastY);
        for (const int32_t y : {top, bottom}) {
            std::fill(plane.Row(y) + left, plane.Row(y) + right + 1, kWhite);
        }
        for (int32_t y = top; y <= bottom; ++y) plane.Row(y)[left] = plane.Row(y)[right] = kWhite;
    }
}
