// The detector and the tracker against a plain model, with a synthetic cascade.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <tuple>
#include <vector>

#include "facetrack/FaceDetector.h"
#include "tests/imaging/models/DetectionModels.h"
#include "tests/imaging/models/NeighbourhoodModels.h"
#include "tests/support/GoldenRun.h"
#include "tests/support/PlainPlane.h"

namespace {

// Not square, to show which side is used where.
constexpr int kWindowWidth = 12, kWindowHeight = 9;

/// Stages as the file has them: y counted from the window's bottom, weights and thresholds as trained.
struct RawStage {
    model::Stage stage;
    float threshold;
};

/// Three stages of random features that let a part of all windows through.
std::vector<RawStage> MakeStages() {
    TestRandom random(6);
    std::vector<RawStage> stages;
    for (int s = 0; s < 3; ++s) {
        RawStage raw{};
        for (int c = 0; c < 3 + s; ++c) {
            raw.stage.counts.push_back(2);
            // A rectangle, and the right or lower half of it counted double against it.
            const int w = 2 * (1 + random.Below(4)), h = 2 * (1 + random.Below(3));
            const int x = random.Below(kWindowWidth - w + 1), y = random.Below(kWindowHeight - h + 1);
            raw.stage.rects.push_back({x, y, w, h});
            raw.stage.weights.push_back(-1);
            const bool right = random.Below(2) == 0;
            raw.stage.rects.push_back(right ? PrimRect{x + w / 2, y, w / 2, h} : PrimRect{x, y, w, h / 2});
            raw.stage.weights.push_back(2);
            raw.stage.thresholds.push_back(static_cast<float>(random.Below(100) - 50) / 4000.0F);
            raw.stage.below.push_back(-0.25F - static_cast<float>(c) / 8);
            raw.stage.above.push_back(0.5F);
        }
        raw.threshold = -0.25F;
        stages.push_back(raw);
    }
    return stages;
}

void WriteCascade(const std::vector<RawStage>& stages, const char* path) {
    size_t classifiers = 0, rects = 0;
    for (const RawStage& raw : stages) {
        classifiers += raw.stage.counts.size();
        rects += raw.stage.rects.size();
    }
    std::ofstream file(path);
    file.precision(9);
    file << kWindowWidth << ' ' << kWindowHeight << ' ' << stages.size() << ' ' << classifiers << ' ' << rects
         << '\n';
    for (const auto& [stage, threshold] : stages) {
        file << stage.counts.size() << ' ' << threshold << '\n';
        for (size_t c = 0; c < stage.counts.size(); ++c) {
            file << stage.counts[c] << '\n';
            for (size_t r = 2 * c; r < 2 * c + 2; ++r) {
                const PrimRect& rect = stage.rects[r];
                file << rect.x << ' ' << rect.y << ' ' << rect.width << ' ' << rect.height << ' '
                     << stage.weights[r] << '\n';
            }
            file << stage.thresholds[c] << ' ' << stage.below[c] << ' ' << stage.above[c] << '\n';
        }
    }
}

using Rows = std::vector<std::vector<Hit>>;

class Model {
  public:
    Model(std::vector<RawStage> stages, int width, int height) : stages_(std::move(stages)) {
        const float scale = 1.0F / ((kWindowWidth - 2) * (kWindowHeight - 2));
        featureWidth_ = kWindowWidth - 2;
        featureHeight_ = kWindowHeight - 2;
        for (auto& [stage, threshold] : stages_) {
            threshold = static_cast<float>(threshold - 0.0001);
            for (float& weight : stage.weights) weight *= scale;
            for (PrimRect& rect : stage.rects) {
                rect.y = kWindowHeight - rect.height - rect.y;
                featureWidth_ = std::max(featureWidth_, rect.x + rect.width);
                featureHeight_ = std::max(featureHeight_, rect.y + rect.height);
            }
        }
        const float first = static_cast<float>(width / 5) / kWindowWidth;
        mask_ = PlainPlane(static_cast<int>(static_cast<float>(width) / first),
                           static_cast<int>(static_cast<float>(height) / first));
    }

    void Track(const PlainPlane& plane, const std::vector<CScaleEntry>& scales) {
        std::fill(mask_.pixels.begin(), mask_.pixels.end(), uint8_t{0});
        for (const CScaleEntry& entry : scales) {
            if (entry.group == phase_) Detect(plane, entry.scale);
        }
        if (++phase_ < 4) return;
        phase_ = 0;
        Merge();
        hits.clear();
    }

    Rows hits;
    std::vector<CFaceRect> faces, previous;
    int tried = 0, passed = 0;

  private:
    static void Add(Rows& rows, const Hit& hit) {
        for (std::vector<Hit>& row : rows) {
            for (const Hit& m : row) {
                const int dx = hit.x - m.x, dy = hit.y - m.y;
                if (dx * dx + dy * dy > 25) continue;
                if (static_cast<float>(m.size) * 1.3F < static_cast<float>(hit.size)) continue;
                row.push_back(hit);
                return;
            }
        }
        rows.push_back({hit});
    }

    static Hit Mean(const std::vector<Hit>& row) {
        const int n = static_cast<int>(row.size());
        Hit sum{0, 0, 0};
        for (const Hit& hit : row) sum = {sum.x + hit.x, sum.y + hit.y, sum.size + hit.size};
        return {sum.x / n, sum.y / n, sum.size / n};
    }

    void Detect(const PlainPlane& plane, float scale) {
        const int sw = static_cast<int>(static_cast<float>(plane.width) / scale);
        const int sh = static_cast<int>(static_cast<float>(plane.height) / scale);
        PlainPlane scaled(sw, sh);
        model::PrimResize8uC1(plane.pixels.data(), plane.width, plane.height, plane.width, 0, 0, plane.width,
                              plane.height, scaled.pixels.data(), sw, sw, sh, 1.0 / scale, 1.0 / scale, 16);
        std::vector<int32_t> sum(static_cast<size_t>((sw + 1) * (sh + 1)));
        std::vector<double> sqr(sum.size());
        const int sumStep = (sw + 1) * 4, sqrStep = (sw + 1) * 8;
        model::PrimSqrIntegral8u32s64f(scaled.pixels.data(), sw, sum.data(), sumStep, sqr.data(), sqrStep, sw,
                                       sh, -16777216, 0.0);
        const int rw = sw - featureWidth_ + 1, rh = sh - featureHeight_ + 1;
        if (rw < 1 || rh < 1) return;
        std::vector<float> norm(static_cast<size_t>(rw * rh));
        model::PrimRectStdDev32s32f(sum.data(), sumStep, sqr.data(), sqrStep, norm.data(), rw * 4, rw, rh, 0,
                                    0, kWindowWidth - 2, kWindowHeight - 2);
        std::vector<int16_t> dx(norm.size()), dy(norm.size());
        model::PrimScharrVertBorder8u16s(scaled.pixels.data(), sw, dx.data(), rw * 2, rw, rh, 1, 0, nullptr);
        model::PrimScharrHorizBorder8u16s(scaled.pixels.data(), sw, dy.data(), rw * 2, rw, rh, 1, 0, nullptr);
        model::PrimCanny16s8u(dx.data(), rw * 2, dy.data(), rw * 2, mask_.pixels.data(), mask_.width, rw, rh,
                              32, 96, nullptr);
        int32_t positive = rw * rh;
        for (const auto& [stage, threshold] : stages_) {
            model::ApplyStage(stage, sum.data(), sumStep, norm.data(), rw * 4, mask_.pixels.data(),
                              mask_.width, rw, rh, &positive, threshold);
            if (positive == 0) return;
        }
        tried += rw * rh;
        passed += positive;
        // The whole mask, with what a larger pass of the same frame has left around this one's region.
        const int size = static_cast<int>(kWindowWidth * scale);
        for (int y = 0; y < mask_.height; ++y) {
            for (int x = 0; x < mask_.width; ++x) {
                if (mask_.At(x, y) == 0) continue;
                Add(hits, {static_cast<int>(static_cast<float>(kWindowWidth / 2 + x) * scale),
                           static_cast<int>(static_cast<float>(kWindowWidth / 2 + y) * scale), size});
            }
        }
    }

    void Merge() {
        std::swap(faces, previous);
        faces.clear();
        Rows groups;
        for (const std::vector<Hit>& row : hits) Add(groups, Mean(row));
        for (const std::vector<Hit>& row : groups) {
            const Hit mean = Mean(row);
            const int s = mean.size, x = mean.x - s / 2, y = mean.y - s / 2;
            bool matched = false;
            for (CFaceRect& r : faces) {
                const int w = std::min(r.x + r.width, x + s) - std::max(r.x, x);
                const int h = std::min(r.y + r.height, y + s) - std::max(r.y, y);
                const int shared = w > 0 && h > 0 ? w * h : 0, a = s * s, b = r.width * r.height;
                if (a - shared >= a / 5 && b - shared >= b / 5) continue;
                const int right = std::max(r.x + r.width, x + s), bottom = std::max(r.y + r.height, y + s);
                r.x = std::min(r.x, x);
                r.y = std::min(r.y, y);
                r.width = right - r.x;
                r.height = bottom - r.y;
                matched = true;
                break;
            }
            if (!matched) faces.push_back({x, y, s, s});
        }
    }

    std::vector<RawStage> stages_;
    int featureWidth_, featureHeight_, phase_ = 0;
    PlainPlane mask_;
};

std::string Text(const std::vector<CHitStore::Row>& rows) {
    std::ostringstream text;
    for (const CHitStore::Row& row : rows) {
        text << row.count << ": " << row.x << ',' << row.y << ',' << row.size << '\n';
    }
    return text.str();
}

std::string Text(const Rows& rows) {
    std::vector<CHitStore::Row> sums;
    for (const std::vector<Hit>& row : rows) {
        CHitStore::Row& sum = sums.emplace_back();
        for (const Hit& hit : row) {
            sum = {sum.x + hit.x, sum.y + hit.y, sum.size + hit.size, sum.count + 1};
        }
    }
    return Text(sums);
}

std::string Text(const std::vector<CFaceRect>& faces) {
    std::ostringstream text;
    for (const CFaceRect& f : faces) text << f.x << ',' << f.y << ' ' << f.width << 'x' << f.height << '\n';
    return text.str();
}

TEST(DetectorModel, EqualsThePlainWayFromFrameToFrame) {
    const TemporaryDirectory directory;
    const std::vector<RawStage> stages = MakeStages();
    WriteCascade(stages, "haar.txt");
    constexpr int kFrames = SE_SANITIZED ? 8 : 16;
    for (const auto& [width, height] : {std::pair{160, 120}, {121, 143}, {55, 40}}) {
        SCOPED_TRACE(testing::Message() << width << " by " << height);
        CFaceDetector detector;
        ASSERT_TRUE(detector.Initialize(width, height));
        Model model(stages, width, height);
        size_t most = 0;
        for (int i = 0; i < kFrames; ++i) {
            TestFrame frame = TestFrame(width, height).DrawScene(i);
            model.Track(LumaOf(frame), detector.Scales());
            CPlane8u luma = CPlane8u::Over(frame.y(), width, height);
            detector.TrackFrame(luma);
            ASSERT_EQ(Text(detector.Hits()->Rows()), Text(model.hits)) << "frame " << i;
            ASSERT_EQ(Text(detector.Faces()), Text(model.faces)) << "frame " << i;
            ASSERT_EQ(Text(detector.PreviousFaces()), Text(model.previous)) << "frame " << i;
            most = std::max(most, model.faces.size());
        }
        // The cascade has to keep some windows and refuse others for the test to mean anything.
        EXPECT_GT(most, 0U);
        EXPECT_LT(model.passed, model.tried / 4);
    }
}

TEST(DetectorModel, APassServesOtherScalesAndPlanes) {
    const TemporaryDirectory directory;
    const std::vector<RawStage> stages = MakeStages();
    WriteCascade(stages, "haar.txt");
    constexpr int32_t kWidth = 160, kHeight = 120;
    CFaceDetector detector;
    ASSERT_TRUE(detector.Initialize(kWidth, kHeight));
    const float first = detector.Scales().front().scale;
    // A scale between two of the list, and one of the list on a smaller plane.
    for (const auto& [width, height, scale] :
         {std::tuple{kWidth, kHeight, first * 1.05F}, {kWidth - 21, kHeight - 8, first}}) {
        SCOPED_TRACE(width);
        ASSERT_TRUE(detector.Initialize(kWidth, kHeight));
        Model model(stages, kWidth, kHeight);
        TestFrame frame = TestFrame(width, height).DrawScene(3);
        model.Track(LumaOf(frame), {{scale, 0, 0, 0}});
        EXPECT_EQ(detector.DetectAtScale(CPlane8u::Over(frame.y(), width, height), scale), 0);
        EXPECT_GT(model.passed, 0);
        EXPECT_EQ(Text(detector.Hits()->Rows()), Text(model.hits));
    }
    // Pictures beyond the tables, below a window, and without a pixel.
    TestFrame frame = TestFrame(kWidth, kHeight).DrawScene(3);
    const size_t hits = detector.Hits()->Rows().size();
    for (const float scale : {first / 2, kWidth / 8.0F, 2.0F * kWidth}) {
        EXPECT_EQ(detector.DetectAtScale(CPlane8u::Over(frame.y(), kWidth, kHeight), scale), -1) << scale;
    }
    EXPECT_EQ(detector.DetectAtScale(CPlane8u(), first), -1);
    EXPECT_EQ(detector.Hits()->Rows().size(), hits);
}

TEST(DetectorModel, EqualRectanglesBecomeOne) {
    // Four clusters in one place: the third and the fourth join the first, whose mean is then the second's.
    CHitStore store(5.0F, 0.0F);
    for (const int size : {60, 79, 78, 99}) store.Add({100, 100, size});
    ASSERT_EQ(store.Rows().size(), 4U);
    CFaceDetector detector;
    detector.MergeFaces(store);
    EXPECT_EQ(Text(detector.Faces()), "61,61 79x79\n");
}

}  // namespace
