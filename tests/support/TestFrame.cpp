#include "tests/support/TestFrame.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>

TestFrame::TestFrame(int32_t width, int32_t height, int32_t format)
    : width_(width), height_(height), format_(format) {
    const auto w = static_cast<size_t>(std::max(width, 0));
    const auto h = static_cast<size_t>(std::max(height, 0));
    const size_t bytes[3] = {format == kFormatPacked ? 3 * w * h : w * h,
                             format == kFormatPacked ? 0 : (w / 2) * (h / 2),
                             format == kFormatPacked ? 0 : (w / 2) * (h / 2)};
    for (int i = 0; i < 3; ++i) {
        storage_[i].reserve(1);  // an empty plane still has an address
        storage_[i].assign(bytes[i] + 2 * kGuard, kGuardByte);
        std::fill(plane(i).begin(), plane(i).end(), uint8_t{0});
    }
}

TestFrame::TestFrame(const TestFrame& other)
    : width_(other.width_), height_(other.height_), format_(other.format_) {
    for (int i = 0; i < 3; ++i) {
        storage_[i].reserve(1);
        storage_[i] = other.storage_[i];
    }
}

TestFrame& TestFrame::operator=(const TestFrame& other) {
    if (this == &other) return *this;
    width_ = other.width_;
    height_ = other.height_;
    format_ = other.format_;
    for (int i = 0; i < 3; ++i) storage_[i] = other.storage_[i];
    recordMade_ = false;
    return *this;
}

std::span<uint8_t> TestFrame::plane(int index) {
    return std::span(storage_[index]).subspan(kGuard, storage_[index].size() - 2 * kGuard);
}

std::span<const uint8_t> TestFrame::plane(int index) const {
    return std::span(storage_[index]).subspan(kGuard, storage_[index].size() - 2 * kGuard);
}

TestFrame& TestFrame::Fill(uint8_t y, uint8_t u, uint8_t v) {
    const uint8_t values[3] = {y, u, v};
    for (int i = 0; i < 3; ++i) std::fill(plane(i).begin(), plane(i).end(), values[i]);
    return *this;
}

TestFrame& TestFrame::Randomize(uint64_t seed) {
    TestRandom random(seed);
    for (int i = 0; i < 3; ++i) {
        for (uint8_t& byte : plane(i)) byte = random.Byte();
    }
    return *this;
}

namespace {

/// One sample of the scene at a place of the unit square, in 0..255, before noise.
int32_t SceneSample(int32_t x, int32_t y, int32_t width, int32_t height, int index, int channel) {
    const int32_t u = x * 256 / width;
    const int32_t v = y * 256 / height;
    if (channel > 0) {
        return 128 + ((channel == 1 ? u - 128 : v - 128) / 2 + (index * 3 + u + v) % 32 - 16) / 2;
    }
    // A disc and a bar that move over a gradient with a checkered quarter and a flat quarter.
    const int32_t cx = 64 + (index * 5) % 128, cy = 96 + (index * 3) % 64;
    if ((u - cx) * (u - cx) + (v - cy) * (v - cy) < 40 * 40) return 215;
    if (u > (index * 7) % 256 && u < (index * 7) % 256 + 14) return 30;
    if (u < 96 && v > 160) return ((x / 4 + y / 4) % 2) != 0 ? 200 : 60;
    if (u > 170 && v < 80) return 128;
    return (u + v) / 2;
}

}  // namespace

TestFrame& TestFrame::DrawScene(int index) {
    TestRandom noise(static_cast<uint64_t>(index) + 77);
    const auto noisy = [&](int32_t sample) {
        return static_cast<uint8_t>(std::clamp(sample + static_cast<int32_t>(noise.Next() % 7) - 3, 0, 255));
    };
    if (format_ == kFormatPacked) {
        uint8_t* pixel = y();
        for (int32_t row = 0; row < height_; ++row) {
            for (int32_t x = 0; x < width_; ++x) {
                for (int c = 0; c < 3; ++c) *pixel++ = noisy(SceneSample(x, row, width_, height_, index, c));
            }
        }
        return *this;
    }
    for (int p = 0; p < 3; ++p) {
        const int32_t w = p == 0 ? width_ : width_ / 2;
        const int32_t h = p == 0 ? height_ : height_ / 2;
        uint8_t* pixel = plane(p).data();
        for (int32_t row = 0; row < h; ++row) {
            for (int32_t x = 0; x < w; ++x) *pixel++ = noisy(SceneSample(x, row, w, h, index, p));
        }
    }
    return *this;
}

const std::vector<TestFrame>& Scene(int32_t width, int32_t height, int count) {
    static std::map<std::tuple<int32_t, int32_t, int>, std::vector<TestFrame>> scenes;
    std::vector<TestFrame>& scene = scenes[{width, height, count}];
    for (int i = static_cast<int>(scene.size()); i < count; ++i) {
        scene.push_back(TestFrame(width, height).DrawScene(i));
    }
    return scene;
}

FrameRecord* TestFrame::record() {
    if (!recordMade_) {
        image_ = {};
        image_.Format = format_;
        for (int i = 0; i < 3; ++i) {
            image_.Plane[i] = format_ == kFormatPacked && i > 0 ? nullptr : plane(i).data();
            image_.PlaneSize[i] = static_cast<int32_t>(plane(i).size());
        }
        record_ = {};
        record_.Image = &image_;
        recordMade_ = true;
    }
    return &record_;
}

bool TestFrame::GuardsIntact() const {
    return std::all_of(std::begin(storage_), std::end(storage_), [](const std::vector<uint8_t>& bytes) {
        const auto isGuard = [](uint8_t byte) { return byte == kGuardByte; };
        return std::all_of(bytes.begin(), bytes.begin() + ptrdiff_t{kGuard}, isGuard) &&
               std::all_of(bytes.end() - ptrdiff_t{kGuard}, bytes.end(), isGuard);
    });
}

uint64_t TestFrame::Checksum() const {
    uint64_t hash = 0xCBF29CE484222325ULL;
    for (int i = 0; i < 3; ++i) {
        for (const uint8_t byte : plane(i)) hash = (hash ^ byte) * 0x100000001B3ULL;
    }
    return hash;
}

bool TestFrame::operator==(const TestFrame& other) const {
    return width_ == other.width_ && height_ == other.height_ && format_ == other.format_ &&
           FirstDifference(*this, other).empty();
}

std::string FirstDifference(const TestFrame& a, const TestFrame& b) {
    for (int i = 0; i < 3; ++i) {
        const auto pa = a.plane(i);
        const auto pb = b.plane(i);
        if (pa.size() != pb.size()) return "plane " + std::to_string(i) + " differs in size";
        const auto [at, other] = std::mismatch(pa.begin(), pa.end(), pb.begin());
        if (at == pa.end()) continue;
        const auto offset = static_cast<int32_t>(at - pa.begin());
        const int32_t step = a.format() == kFormatPacked ? 3 * a.width() : i == 0 ? a.width() : a.width() / 2;
        return "plane " + std::to_string(i) + " at (" + std::to_string(offset % std::max(step, 1)) + ", " +
               std::to_string(offset / std::max(step, 1)) + "): " + std::to_string(*at) + " against " +
               std::to_string(*other);
    }
    return {};
}
