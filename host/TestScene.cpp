#include "TestScene.h"

#include <array>
#include <cmath>
#include <numbers>

#include "PixelNoise.h"

namespace host {
namespace {

constexpr Size kDefaultSize{640, 480};
constexpr int kNoiseSigma = 3;

struct Yuv {
    int y, u, v;
};

// A disc that swings; positions and sizes in parts of the frame's height, speeds in turns a second.
struct Body {
    double centreX, centreY, swingX, swingY, speedX, speedY, radius;
    Yuv color;
};

constexpr std::array<Body, 4> kBodies = {{
    {0.45, 0.50, 0.30, 0.15, 0.21, 0.34, 0.16, {180, 110, 160}},
    {0.90, 0.40, 0.25, 0.30, 0.37, 0.17, 0.10, {90, 190, 100}},
    {0.70, 0.75, 0.50, 0.10, 0.13, 0.53, 0.07, {215, 60, 140}},
    {0.25, 0.25, 0.15, 0.20, 0.47, 0.41, 0.05, {60, 130, 210}},
}};

constexpr double kFramesPerSecond = 30;

double Swing(double turnsPerSecond, int64_t frame) {
    return std::sin(2 * std::numbers::pi * turnsPerSecond * static_cast<double>(frame) / kFramesPerSecond);
}

// Triangle wave between 0 and 255 with a period of 512.
int Triangle(int64_t x) {
    const int phase = static_cast<int>(x & 511);
    return phase < 256 ? phase : 511 - phase;
}

// A slowly drifting gradient, with a woven texture on the left and stripes with hard edges at the bottom.
int BackgroundLuma(int x, int y, int width, int height, int64_t frame) {
    int luma = 48 + Triangle(static_cast<int64_t>(x) * 200 / width + static_cast<int64_t>(y) * 180 / height +
                             frame / 2) /
                        2;
    if (x * 3 < width) luma += (((x >> 1) ^ (y >> 1)) & 3) * 8 - 12;
    if (y * 8 > height * 7) luma += (((x + static_cast<int>(frame % 64) * 2) / 32) & 1) != 0 ? 40 : -30;
    return luma;
}

template <class Paint>
void PaintDisc(double centreX, double centreY, double radius, int width, int height, Paint paint) {
    const int top = std::max(static_cast<int>(std::ceil(centreY - radius)), 0);
    const int bottom = std::min(static_cast<int>(std::floor(centreY + radius)), height - 1);
    for (int y = top; y <= bottom; ++y) {
        const double dy = y - centreY;
        const double half = std::sqrt(std::max(radius * radius - dy * dy, 0.0));
        const int left = std::max(static_cast<int>(std::ceil(centreX - half)), 0);
        const int right = std::min(static_cast<int>(std::floor(centreX + half)), width - 1);
        for (int x = left; x <= right; ++x) paint(x, y);
    }
}

}  // namespace

TestScene::TestScene(const InputOptions& options, const Notes& notes) {
    stream_.kind = InputKind::Scene;
    stream_.size = EvenSize(options.size.value_or(kDefaultSize), notes);
    stream_.color.matrix = MatrixForHeight(stream_.size.height);
    stream_.color.range = AVCOL_RANGE_MPEG;
    if (options.rate) stream_.frameRate = *options.rate;
    stream_.timeBase = av_inv_q(stream_.frameRate);
    pool_ = FramePool(stream_.size.width, stream_.size.height);
}

std::optional<InputItem> TestScene::Next() {
    if (ended_) return std::nullopt;
    Frame frame = pool_.Take();
    DrawTestScene(count_, frame);
    SetColor(frame.Picture(), stream_.color);
    frame.SetTime(count_++);
    return InputItem{std::move(frame)};
}

void DrawTestScene(int64_t number, Frame& frame) {
    const int width = frame.Width(), height = frame.Height();
    for (int y = 0; y < height; ++y) {
        uint8_t* row = frame.Plane(0) + static_cast<ptrdiff_t>(y) * width;
        for (int x = 0; x < width; ++x) row[x] = Saturated(BackgroundLuma(x, y, width, height, number));
    }
    for (int y = 0; y < height / 2; ++y) {
        const ptrdiff_t row = static_cast<ptrdiff_t>(y) * (width / 2);
        for (int x = 0; x < width / 2; ++x) {
            frame.Plane(1)[row + x] = Saturated(96 + 128 * x / width);
            frame.Plane(2)[row + x] =
                Saturated(104 + 96 * y / height + static_cast<int>(Triangle(number) / 16));
        }
    }
    for (const Body& body : kBodies) {
        const double centreX = (body.centreX + body.swingX * Swing(body.speedX, number)) * height;
        const double centreY = (body.centreY + body.swingY * Swing(body.speedY, number)) * height;
        const double radius = body.radius * height;
        PaintDisc(centreX, centreY, radius, width, height, [&](int x, int y) {
            const double dx = x - centreX, dy = y - centreY;
            const int shade = static_cast<int>(40 * (dx + dy) / radius);  // lit from the upper left
            frame.Plane(0)[static_cast<ptrdiff_t>(y) * width + x] = Saturated(body.color.y - shade);
        });
        PaintDisc(centreX / 2, centreY / 2, radius / 2, width / 2, height / 2, [&](int x, int y) {
            const ptrdiff_t at = static_cast<ptrdiff_t>(y) * (width / 2) + x;
            frame.Plane(1)[at] = Saturated(body.color.u);
            frame.Plane(2)[at] = Saturated(body.color.v);
        });
    }
    for (int y = 0; y < height; ++y) {
        PixelNoise noise(number, 0, y);
        uint8_t* row = frame.Plane(0) + static_cast<ptrdiff_t>(y) * width;
        for (int x = 0; x < width; ++x) row[x] = Saturated(row[x] + noise.Sample(kNoiseSigma));
    }
}

}  // namespace host
