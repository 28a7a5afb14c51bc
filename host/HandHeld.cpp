#include "HandHeld.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "PictureInput.h"
#include "PixelNoise.h"
#include "Scaler.h"

namespace host {
namespace {

constexpr double kFramesPerSecond = 30;
constexpr int kLumaNoise = 3;
constexpr int kChromaNoise = 2;

// Where the camera looks. Lengths are parts of the picture's width and height.
struct View {
    double centreX, centreY;
    double zoom;
};

double Wave(double turnsPerSecond, double phase, int64_t frame) {
    return std::sin(2 * std::numbers::pi *
                    (turnsPerSecond * static_cast<double>(frame) / kFramesPerSecond + phase));
}

View ViewAt(int64_t frame) {
    View view{};
    view.zoom = 1.18 - 0.06 * Wave(0.11, 0.25, frame);
    view.centreX =
        0.5 + 0.030 * Wave(0.17, 0, frame) + 0.004 * Wave(1.9, 0.1, frame) + 0.002 * Wave(4.3, 0.7, frame);
    view.centreY =
        0.5 + 0.022 * Wave(0.13, 0.3, frame) + 0.005 * Wave(1.6, 0.5, frame) + 0.002 * Wave(3.7, 0.2, frame);
    return view;
}

constexpr int kFractionBits = 8;
constexpr int kOne = 1 << kFractionBits;

// A place in the source between two samples, in 1/256 of a sample.
struct Place {
    int first, second, fraction;
};

Place PlaceAt(double position, int length) {
    const int fixed = std::clamp(static_cast<int>(std::lround(position * kOne)), 0, (length - 1) * kOne);
    const int first = fixed >> kFractionBits;
    return {first, std::min(first + 1, length - 1), fixed & (kOne - 1)};
}

void SeePlane(const Frame& picture, const View& view, int64_t frame, int plane, Frame& seen) {
    const int sourceWidth = picture.RowBytes(plane), sourceHeight = picture.Rows(plane);
    const int width = seen.RowBytes(plane), height = seen.Rows(plane);
    const double stepX = sourceWidth / view.zoom / width, stepY = sourceHeight / view.zoom / height;
    const double left = view.centreX * sourceWidth - stepX * width / 2;
    const double top = view.centreY * sourceHeight - stepY * height / 2;

    std::vector<Place> columns;
    columns.reserve(static_cast<size_t>(width));
    for (int x = 0; x < width; ++x) columns.push_back(PlaceAt(left + (x + 0.5) * stepX - 0.5, sourceWidth));
    const int sigma = plane == 0 ? kLumaNoise : kChromaNoise;
    for (int y = 0; y < height; ++y) {
        const Place row = PlaceAt(top + (y + 0.5) * stepY - 0.5, sourceHeight);
        const uint8_t* upper = picture.Plane(plane) + static_cast<ptrdiff_t>(row.first) * sourceWidth;
        const uint8_t* lower = picture.Plane(plane) + static_cast<ptrdiff_t>(row.second) * sourceWidth;
        uint8_t* target = seen.Plane(plane) + static_cast<ptrdiff_t>(y) * width;
        PixelNoise noise(frame, plane, y);
        for (int x = 0; x < width; ++x) {
            const Place& column = columns[static_cast<size_t>(x)];
            const int above =
                upper[column.first] * (kOne - column.fraction) + upper[column.second] * column.fraction;
            const int below =
                lower[column.first] * (kOne - column.fraction) + lower[column.second] * column.fraction;
            const int sample = (above * (kOne - row.fraction) + below * row.fraction) >> (2 * kFractionBits);
            target[x] = Saturated(sample + noise.Sample(sigma));
        }
    }
}

}  // namespace

HandHeld::HandHeld(const std::string& file, const InputOptions& options, const Notes& notes) {
    const auto source = OpenMedia(file, {}, notes);
    if (source->Stream().kind != InputKind::Picture)
        throw Failure("{} is a video; still: takes a picture", file);
    stream_ = source->Stream();
    stream_.kind = InputKind::Scene;
    if (options.rate) stream_.frameRate = *options.rate;
    stream_.timeBase = av_inv_q(stream_.frameRate);
    picture_ = FirstFrame(*source);
    // A camera gives luma from 16 to 235, even for a full-range picture file.
    if (IsFullRange(picture_.Picture())) {
        stream_.color.range = AVCOL_RANGE_MPEG;
        Frame limited(picture_.Width(), picture_.Height());
        SetColor(limited.Picture(), stream_.color);
        Scaler().Convert(picture_.Picture(), limited.Picture());
        picture_ = std::move(limited);
    }
    if (options.size) stream_.size = EvenSize(*options.size, notes);
    pool_ = FramePool(stream_.size.width, stream_.size.height);
}

std::optional<InputItem> HandHeld::Next() {
    if (ended_) return std::nullopt;
    const View view = ViewAt(count_);
    Frame frame = pool_.Take();
    for (int plane = 0; plane < Frame::kPlanes; ++plane) SeePlane(picture_, view, count_, plane, frame);
    SetColor(frame.Picture(), stream_.color);
    frame.SetTime(count_++);
    return InputItem{std::move(frame)};
}

}  // namespace host
