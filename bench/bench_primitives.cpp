// Times every image primitive on noisy pictures, one thread, beside a memcpy of the same plane in the same
// run, and beside the matching operation of OpenCV where the build found it.
//
// Counters: ms a call, megapixels a second, and x_memcpy, the ratio of the two medians. What is timed is
// called once before without being timed, so that each operation finds the caches as it leaves them itself.
// The plane that memcpy copies has 8 bits a pixel; for the colour operations it is an I420 frame, for a
// resize the larger of the two planes.
//
// The names of OpenCV's operations tell what was called: most are not the same to the bit.
#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "imaging/GaussKernel1D.h"
#include "imaging/GradientImage.h"
#include "imaging/Lookup.h"
#include "imaging/Plane8u.h"
#include "imaging/Prim.h"

#ifdef SE_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

// ---- pictures -----------------------------------------------------------------------------------

/// A plane with room for masks around it.
template <typename T>
struct Picture {
    static constexpr int32_t kMargin = 32;

    Picture(int32_t w, int32_t h, int32_t channels = 1)
        : width(w),
          height(h),
          elements((w + 2 * kMargin) * channels),
          storage(static_cast<size_t>(elements) * static_cast<size_t>(h + 2 * kMargin)),
          data(storage.data() + static_cast<ptrdiff_t>(elements) * kMargin + kMargin * channels) {}
    Picture(const Picture&) = delete;

    int32_t step() const { return elements * static_cast<int32_t>(sizeof(T)); }

    int32_t width;
    int32_t height;
    int32_t elements;  // of a row
    std::vector<T> storage;
    T* data;
};

/// A number for each pixel that looks like a camera's: slopes, edges and noise.
struct Scene {
    uint8_t operator()(int32_t i) {
        state = state * 1664525u + 1013904223u;
        const int32_t slope = (i >> 3) + (i >> 13);
        return static_cast<uint8_t>((slope & 255) / 2 + ((i >> 6 & 1) != 0 ? 90 : 20) +
                                    static_cast<int32_t>(state >> 28));
    }

    uint32_t state = 1;
};

/// Everything that the operations work on. Planes are made when they are first asked for.
class Workshop {
  public:
    Workshop(int32_t w, int32_t h) : width(w), height(h) {}

    const int32_t width;
    const int32_t height;

    Picture<uint8_t>& Bytes(size_t number, int32_t channels = 1) {
        return Make(bytes_, number, width, height, channels);
    }
    Picture<uint8_t>& Sized(size_t number, int32_t w, int32_t h) { return Make(bytes_, number, w, h, 1); }
    Picture<int16_t>& Words(size_t number) { return Make(words_, number, width, height, 1); }
    Picture<int32_t>& Sums() { return Make(sums_, 0, width + 1, height + 1, 1); }
    Picture<double>& Squares() { return Make(squares_, 0, width + 1, height + 1, 1); }

    Picture<float>& Floats(size_t number) {
        const bool fresh = number >= floats_.size() || floats_[number] == nullptr;
        Picture<float>& picture = Make(floats_, number, width, height, 1);
        if (fresh) {
            Scene scene;
            for (size_t i = 0; i < picture.storage.size(); ++i) {
                picture.storage[i] = static_cast<float>(scene(static_cast<int32_t>(i))) / 200;
            }
        }
        return picture;
    }

    /// Coordinates of a picture turned and bulged a little.
    Picture<float>& Map(bool vertical) {
        Picture<float>& map = Floats(vertical ? 5 : 4);
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                const double u = x - width * 0.5;
                const double v = y - height * 0.5;
                const double bulge = 0.8 + 0.3 * (u * u + v * v) / (width * width * 0.25);
                const double turned =
                    vertical ? height * 0.5 + (0.05 * u + v) * bulge : width * 0.5 + (u - 0.05 * v) * bulge;
                map.data[y * map.elements + x] = static_cast<float>(turned);
            }
        }
        return map;
    }

    /// Packed planes of an I420 frame.
    std::vector<uint8_t>& Frame() {
        if (frame_.empty()) {
            Scene scene;
            frame_.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3 / 2);
            for (size_t i = 0; i < frame_.size(); ++i) {
                frame_[i] = scene(static_cast<int32_t>(i));
            }
        }
        return frame_;
    }
    std::array<uint8_t*, 3> FramePlanes() {
        uint8_t* luma = Frame().data();
        uint8_t* u = luma + static_cast<ptrdiff_t>(width) * height;
        return {luma, u, u + static_cast<ptrdiff_t>(width / 2) * (height / 2)};
    }

    /// Packed three-byte pixels without margins.
    std::vector<uint8_t>& Packed() {
        if (packed_.empty()) {
            Scene scene;
            packed_.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
            for (size_t i = 0; i < packed_.size(); ++i) {
                packed_[i] = scene(static_cast<int32_t>(i / 3));
            }
        }
        return packed_;
    }

    CPlane8u& Plane(size_t number) {
        CPlane8u& plane = planes_[number];
        if (plane.Empty()) {
            plane.Allocate(width, height);
            Scene scene;
            for (size_t i = 0; i < plane.Size(); ++i) {
                plane.data[i] = scene(static_cast<int32_t>(i));
            }
        }
        return plane;
    }

  private:
    template <typename T>
    static Picture<T>& Make(std::vector<std::unique_ptr<Picture<T>>>& pictures, size_t number, int32_t w,
                            int32_t h, int32_t channels) {
        if (pictures.size() <= number) {
            pictures.resize(number + 1);
        }
        if (pictures[number] == nullptr) {
            pictures[number] = std::make_unique<Picture<T>>(w, h, channels);
            if constexpr (sizeof(T) == 1) {
                Scene scene;
                for (size_t i = 0; i < pictures[number]->storage.size(); ++i) {
                    pictures[number]->storage[i] = scene(static_cast<int32_t>(i));
                }
            }
        }
        return *pictures[number];
    }

    std::vector<std::unique_ptr<Picture<uint8_t>>> bytes_;
    std::vector<std::unique_ptr<Picture<int16_t>>> words_;
    std::vector<std::unique_ptr<Picture<int32_t>>> sums_;
    std::vector<std::unique_ptr<Picture<double>>> squares_;
    std::vector<std::unique_ptr<Picture<float>>> floats_;
    std::vector<uint8_t> frame_;
    std::vector<uint8_t> packed_;
    std::array<CPlane8u, 4> planes_;
};

// ---- timing -------------------------------------------------------------------------------------

using Action = std::function<void()>;

/// An operation: makes the action to be timed, with all that it needs in place.
struct Operation {
    std::string name;
    std::function<Action(Workshop&)> prepare;
    /// Size of the memcpy that its time is compared with.
    double bytesPerPixel = 1;
};

/// Processor time of this thread, which other programs do not lengthen.
double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void RunOperation(benchmark::State& state, const Operation& operation, int32_t width, int32_t height) {
    Workshop workshop(width, height);
    const Action action = operation.prepare(workshop);
    const double pixels = static_cast<double>(width) * height;
    const std::vector<uint8_t> plane(static_cast<size_t>(pixels * operation.bytesPerPixel), 1);
    std::vector<uint8_t> copy(plane.size());
    const auto copyPlane = [&] {
        std::memcpy(copy.data(), plane.data(), copy.size());
        benchmark::ClobberMemory();
    };

    std::vector<double> times;
    std::vector<double> copyTimes;
    const auto timed = [](const auto& work, std::vector<double>& results) {
        work();
        const double start = ThreadSeconds();
        work();
        results.push_back(ThreadSeconds() - start);
    };
    for ([[maybe_unused]] auto _ : state) {
        timed(copyPlane, copyTimes);
        timed(action, times);
        state.SetIterationTime(times.back());
    }
    const double time = Median(times);
    state.counters["ms"] = time * 1e3;
    state.counters["Mpx_per_s"] = pixels / time * 1e-6;
    state.counters["x_memcpy"] = time / Median(copyTimes);
}

// ---- our operations -----------------------------------------------------------------------------

constexpr std::array<float, 12> kSepia = {0.393f, 0.769f, 0.189f, 0,      0.349f, 0.686f,
                                          0.168f, 0,      0.272f, 0.534f, 0.131f, 1};
constexpr std::array<int32_t, 7> kTaps = {2, 21, 93, 160, 93, 21, 2};
constexpr int32_t kTapSum = 392;

/// An operation that changes one plane.
template <typename Call>
std::function<Action(Workshop&)> InPlace(Call call) {
    return [call](Workshop& w) -> Action {
        Picture<uint8_t>& data = w.Bytes(0);
        return [call, &data, &w] { call(data.data, data.step(), w.width, w.height); };
    };
}

/// An operation with a source plane and a destination plane.
template <typename Call>
std::function<Action(Workshop&)> FromTo(Call call, int32_t channels = 1) {
    return [call, channels](Workshop& w) -> Action {
        Picture<uint8_t>& src = w.Bytes(0, channels);
        Picture<uint8_t>& dst = w.Bytes(1, channels);
        return
            [call, &src, &dst, &w] { call(src.data, src.step(), dst.data, dst.step(), w.width, w.height); };
    };
}

/// An operation with a source plane and a destination of 16 bits.
template <typename Call>
std::function<Action(Workshop&)> ToWords(Call call) {
    return [call](Workshop& w) -> Action {
        Picture<uint8_t>& src = w.Bytes(0);
        Picture<int16_t>& dst = w.Words(0);
        return
            [call, &src, &dst, &w] { call(src.data, src.step(), dst.data, dst.step(), w.width, w.height); };
    };
}

using Source = const uint8_t*;
using Target = uint8_t*;
using Size = int32_t;

void AddPoints(std::vector<Operation>& list) {
    list.push_back({"PrimSet8uC1",
                    InPlace([](Target p, Size step, Size w, Size h) { PrimSet8uC1(77, p, step, w, h); })});
    list.push_back({"PrimCopy8uC1", FromTo(PrimCopy8uC1)});
    list.push_back({"PrimMean8uC1", InPlace([](Target p, Size step, Size w, Size h) {
                        double mean = 0;
                        PrimMean8uC1(p, step, w, h, &mean);
                        benchmark::DoNotOptimize(mean);
                    })});
    for (const int32_t scale : {0, 1, -4}) {
        const std::string text = "/scale:" + std::to_string(scale);
        list.push_back(
            {"PrimAddSfs8uC1" + text, FromTo([=](Source s, Size ss, Target d, Size ds, Size w, Size h) {
                 PrimAddSfs8uC1(s, ss, d, ds, w, h, scale);
             })});
        list.push_back(
            {"PrimSubSfs8uC1" + text, FromTo([=](Source s, Size ss, Target d, Size ds, Size w, Size h) {
                 PrimSubSfs8uC1(s, ss, d, ds, w, h, scale);
             })});
        list.push_back({"PrimMulCSfs8uC1" + text, InPlace([=](Target p, Size step, Size w, Size h) {
                            PrimMulCSfs8uC1(3, p, step, w, h, scale);
                        })});
    }
    list.push_back({"PrimMulScale8uC1", FromTo(PrimMulScale8uC1)});
    list.push_back({"PrimAnd8uC1", FromTo(PrimAnd8uC1)});
    list.push_back({"PrimNot8uC1", InPlace(PrimNot8uC1)});
    list.push_back({"PrimThresholdLT8uC1", InPlace([](Target p, Size step, Size w, Size h) {
                        PrimThresholdLT8uC1(p, step, w, h, 100);
                    })});
    list.push_back({"PrimThresholdGTVal8uC1", InPlace([](Target p, Size step, Size w, Size h) {
                        PrimThresholdGTVal8uC1(p, step, w, h, 100, 50);
                    })});
    list.push_back(
        {"PrimThresholdLTValGTVal8uC1", FromTo([](Source s, Size ss, Target d, Size ds, Size w, Size h) {
             PrimThresholdLTValGTVal8uC1(s, ss, d, ds, w, h, 60, 0, 180, 255);
         })});
    list.push_back({"PrimThresholdLTValGTValInPlace8uC1", InPlace([](Target p, Size step, Size w, Size h) {
                        PrimThresholdLTValGTValInPlace8uC1(p, step, w, h, 60, 70, 180, 170);
                    })});
    list.push_back({"PrimReduceBits8uC3",
                    FromTo([](Source s, Size ss, Target d, Size ds, Size w,
                              Size h) { PrimReduceBits8uC3(s, ss, d, ds, w, h, 0, 0, 2); },
                           3),
                    3});
    list.push_back({"LookupBytes", FromTo([](Source s, Size ss, Target d, Size ds, Size w, Size h) {
                        static const std::array<uint8_t, 256> table = [] {
                            std::array<uint8_t, 256> t{};
                            for (size_t i = 0; i < 256; ++i) {
                                t[i] = static_cast<uint8_t>(i * i >> 8);
                            }
                            return t;
                        }();
                        for (Size y = 0; y < h; ++y) {
                            LookupBytes(table.data(), s + ptrdiff_t{y} * ss, d + ptrdiff_t{y} * ds,
                                        static_cast<size_t>(w));
                        }
                    })});
    list.push_back({"PrimScale32f8u", [](Workshop& w) -> Action {
                        Picture<float>& src = w.Floats(0);
                        Picture<uint8_t>& dst = w.Bytes(0);
                        return [&] {
                            PrimScale32f8u(src.data, src.step(), dst.data, dst.step(), w.width, w.height,
                                           0.1f, 0.9f);
                        };
                    }});
    list.push_back({"PrimUpdateMotionHistory8u32f", [](Workshop& w) -> Action {
                        Picture<uint8_t>& silhouette = w.Bytes(0);
                        for (uint8_t& v : silhouette.storage) {
                            v = (v & 7) == 0 ? 255 : 0;
                        }
                        Picture<float>& history = w.Floats(0);
                        return [&, now = 1.0f]() mutable {
                            PrimUpdateMotionHistory8u32f(silhouette.data, silhouette.step(), history.data,
                                                         history.step(), w.width, w.height, now, 0.5f);
                            now += 0.04f;
                        };
                    }});
    list.push_back({"PrimAddGaussNoise8uC1", InPlace([](Target p, Size step, Size w, Size h) {
                        uint32_t seed = 544;
                        PrimAddGaussNoise8uC1(p, step, w, h, 0, 17, &seed);
                    })});
}

void AddColour(std::vector<Operation>& list) {
    list.push_back({"PrimYuv420ToRgb",
                    [](Workshop& w) -> Action {
                        const auto planes = w.FramePlanes();
                        uint8_t* packed = w.Packed().data();
                        return [=, &w] {
                            const uint8_t* const sources[3] = {planes[0], planes[1], planes[2]};
                            PrimYuv420ToRgb(sources, packed, w.width, w.height);
                        };
                    },
                    1.5});
    list.push_back({"PrimRgbToYuv420",
                    [](Workshop& w) -> Action {
                        const auto planes = w.FramePlanes();
                        const uint8_t* packed = w.Packed().data();
                        return [=, &w] { PrimRgbToYuv420(packed, planes.data(), w.width, w.height); };
                    },
                    1.5});
    list.push_back({"PrimColorTwist8uC3",
                    [](Workshop& w) -> Action {
                        uint8_t* packed = w.Packed().data();
                        return [=, &w] {
                            PrimColorTwist8uC3(packed, 3 * w.width, w.width, w.height, kSepia.data());
                        };
                    },
                    1.5});
}

/// A resize of the whole of one plane to another; the larger of the two has the benchmark's size.
std::function<Action(Workshop&)> Resize(double factor, int32_t interpolation) {
    return [=](Workshop& w) -> Action {
        const auto smaller = [&](int32_t length) {
            return static_cast<int32_t>(length * std::min(factor, 1 / factor));
        };
        Picture<uint8_t>& large = w.Bytes(0);
        Picture<uint8_t>& small = w.Sized(1, smaller(w.width), smaller(w.height));
        Picture<uint8_t>& src = factor < 1 ? large : small;
        Picture<uint8_t>& dst = factor < 1 ? small : large;
        return [&src, &dst, interpolation] {
            PrimResize8uC1(src.data, src.width, src.height, src.step(), 0, 0, src.width, src.height, dst.data,
                           dst.step(), dst.width, dst.height, 1.0 * dst.width / src.width,
                           1.0 * dst.height / src.height, interpolation);
        };
    };
}

void AddGeometry(std::vector<Operation>& list) {
    for (const auto& [name, interpolation] : {std::pair{"nearest", kPrimNearest}, {"linear", kPrimLinear}}) {
        list.push_back(
            {std::string("PrimRemap8uC1/") + name, [interpolation = interpolation](Workshop& w) -> Action {
                 Picture<uint8_t>& src = w.Bytes(0);
                 Picture<uint8_t>& dst = w.Bytes(1);
                 Picture<float>& xMap = w.Map(false);
                 Picture<float>& yMap = w.Map(true);
                 return [&, interpolation] {
                     PrimRemap8uC1(src.data, w.width, w.height, src.step(), 0, 0, w.width, w.height,
                                   xMap.data, xMap.step(), yMap.data, yMap.step(), dst.data, dst.step(),
                                   w.width, w.height, interpolation);
                 };
             }});
        list.push_back({std::string("PrimRemap8uC3/") + name,
                        [interpolation = interpolation](Workshop& w) -> Action {
                            Picture<uint8_t>& src = w.Bytes(0, 3);
                            Picture<uint8_t>& dst = w.Bytes(1, 3);
                            Picture<float>& xMap = w.Map(false);
                            Picture<float>& yMap = w.Map(true);
                            return [&, interpolation] {
                                PrimRemap8uC3(src.data, w.width, w.height, src.step(), 0, 0, w.width,
                                              w.height, xMap.data, xMap.step(), yMap.data, yMap.step(),
                                              dst.data, dst.step(), w.width, w.height, interpolation);
                            };
                        },
                        3});
    }
    list.push_back({"PrimResize8uC1/linear/half", Resize(0.5, kPrimLinear)});
    list.push_back({"PrimResize8uC1/linear/double", Resize(2, kPrimLinear)});
    list.push_back({"PrimResize8uC1/nearest/half", Resize(0.5, kPrimNearest)});
    list.push_back({"PrimResize8uC1/Lanczos/half", Resize(0.5, kPrimLanczos)});
    for (const auto& [name, interpolation] :
         {std::pair{"nearest", uint32_t{kPrimNearest}},
          {"linear", uint32_t{kPrimLinear}},
          {"cubic, smooth edge", uint32_t{kPrimCubic} | kPrimSmoothEdge}}) {
        list.push_back(
            {std::string("PrimRotate8uC1/") + name, [interpolation = interpolation](Workshop& w) -> Action {
                 Picture<uint8_t>& src = w.Bytes(0);
                 Picture<uint8_t>& dst = w.Bytes(1);
                 return [&, interpolation] {
                     double xShift = 0;
                     double yShift = 0;
                     PrimGetRotateShift(w.width * 0.5, w.height * 0.5, 10, &xShift, &yShift);
                     PrimRotate8uC1(src.data, w.width, w.height, src.step(), 0, 0, w.width, w.height,
                                    dst.data, dst.step(), 0, 0, w.width, w.height, 10, xShift, yShift,
                                    interpolation);
                 };
             }});
    }
    for (const int32_t axis : {kPrimMirrorRows, kPrimMirrorColumns, kPrimMirrorBoth}) {
        list.push_back(
            {"PrimMirror8uC1/axis:" + std::to_string(axis),
             InPlace([=](Target p, Size step, Size w, Size h) { PrimMirror8uC1(p, step, w, h, axis); })});
    }
    list.push_back({"PrimCopyReplicateBorder8uC1", [](Workshop& w) -> Action {
                        Picture<uint8_t>& src = w.Bytes(0);
                        Picture<uint8_t>& dst = w.Sized(1, w.width + 16, w.height + 16);
                        return [&] {
                            PrimCopyReplicateBorder8uC1(src.data, src.step(), src.width, src.height, dst.data,
                                                        dst.step(), dst.width, dst.height, 8, 8);
                        };
                    }});
    list.push_back({"PrimReplicateBorderInPlace8uC1", InPlace([](Target p, Size step, Size w, Size h) {
                        PrimReplicateBorderInPlace8uC1(p + 8 * step + 8, step, w - 16, h - 16, w, h, 8, 8);
                    })});
}

/// An operation that takes a mask code.
template <typename Function>
void AddMasked(std::vector<Operation>& list, const std::string& name, Function function) {
    for (const int32_t mask : {kPrimMask3x3, kPrimMask5x5}) {
        const auto call = [=](Source s, Size ss, auto* d, Size ds, Size w, Size h) {
            function(s, ss, d, ds, w, h, mask);
        };
        using Element =
            std::conditional_t<std::is_invocable_v<Function, Source, Size, int16_t*, Size, Size, Size, Size>,
                               int16_t, uint8_t>;
        const std::string text = name + (mask == kPrimMask3x3 ? "/3x3" : "/5x5");
        if constexpr (std::is_same_v<Element, int16_t>) {
            list.push_back({text, ToWords(call)});
        } else {
            list.push_back({text, FromTo(call)});
        }
    }
}

/// A border operation with its scratch buffer.
template <typename Filter>
std::function<Action(Workshop&)> WithBuffer(PrimStatus (*getSize)(Size, Size, Size*), Filter filter) {
    return [=](Workshop& w) -> Action {
        int32_t size = 0;
        getSize(w.width, w.height, &size);
        const auto buffer = std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(std::max(size, 1)));
        Picture<uint8_t>& src = w.Bytes(0);
        Picture<int16_t>& dst = w.Words(0);
        return [=, &w, &src, &dst] {
            filter(src.data, src.step(), dst.data, dst.step(), w.width, w.height, kPrimBorderReplicate, 0,
                   buffer->data());
        };
    };
}

void AddNeighbourhoods(std::vector<Operation>& list) {
    AddMasked(list, "PrimFilterGauss8uC1", PrimFilterGauss8uC1);
    AddMasked(list, "PrimFilterLowpass8uC1", PrimFilterLowpass8uC1);
    AddMasked(list, "PrimFilterSobelHoriz8u16s", PrimFilterSobelHoriz8u16s);
    AddMasked(list, "PrimFilterSobelVert8u16s", PrimFilterSobelVert8u16s);
    for (const int32_t mask : {3, 5, 21}) {
        list.push_back(
            {"PrimFilterBox8uC1/" + std::to_string(mask), InPlace([=](Target p, Size step, Size w, Size h) {
                 PrimFilterBox8uC1(p, step, w, h, mask, mask, mask / 2, mask / 2);
             })});
    }
    list.push_back(
        {"PrimFilterMedian8uC1/5x5", FromTo([](Source s, Size ss, Target d, Size ds, Size w, Size h) {
             PrimFilterMedian8uC1(s, ss, d, ds, w, h, 5, 5, 2, 2);
         })});
    list.push_back(
        {"PrimFilterColumn8uC1/7", FromTo([](Source s, Size ss, Target d, Size ds, Size w, Size h) {
             PrimFilterColumn8uC1(s, ss, d, ds, w, h, kTaps.data(), 7, 3, kTapSum);
         })});
    list.push_back({"PrimFilterRow8uC1/7", FromTo([](Source s, Size ss, Target d, Size ds, Size w, Size h) {
                        PrimFilterRow8uC1(s, ss, d, ds, w, h, kTaps.data(), 7, 3, kTapSum);
                    })});
    list.push_back({"PrimDilate3x38uC1", InPlace(PrimDilate3x38uC1)});
    list.push_back({"PrimErode3x38uC1", FromTo(PrimErode3x38uC1)});
    list.push_back({"PrimScharrHorizBorder8u16s",
                    WithBuffer(PrimScharrHorizBorderGetBufferSize, PrimScharrHorizBorder8u16s)});
    list.push_back({"PrimScharrVertBorder8u16s",
                    WithBuffer(PrimScharrVertBorderGetBufferSize, PrimScharrVertBorder8u16s)});
    list.push_back(
        {"PrimSobelHorizBorder8u16s/3x3",
         WithBuffer([](Size w, Size h,
                       Size* size) { return PrimSobelHorizBorderGetBufferSize(w, h, kPrimMask3x3, size); },
                    [](Source s, Size ss, int16_t* d, Size ds, Size w, Size h, Size type, uint8_t value,
                       uint8_t* buffer) {
                        PrimSobelHorizBorder8u16s(s, ss, d, ds, w, h, kPrimMask3x3, type, value, buffer);
                    })});
    list.push_back(
        {"PrimSobelVertBorder8u16s/3x3",
         WithBuffer([](Size w, Size h,
                       Size* size) { return PrimSobelVertBorderGetBufferSize(w, h, kPrimMask3x3, size); },
                    [](Source s, Size ss, int16_t* d, Size ds, Size w, Size h, Size type, uint8_t value,
                       uint8_t* buffer) {
                        PrimSobelVertBorder8u16s(s, ss, d, ds, w, h, kPrimMask3x3, type, value, buffer);
                    })});
    list.push_back({"PrimCanny16s8u", [](Workshop& w) -> Action {
                        Picture<uint8_t>& src = w.Bytes(0);
                        Picture<int16_t>& dx = w.Words(0);
                        Picture<int16_t>& dy = w.Words(1);
                        Picture<uint8_t>& dst = w.Bytes(1);
                        PrimFilterSobelVert8u16s(src.data, src.step(), dx.data, dx.step(), w.width, w.height,
                                                 kPrimMask3x3);
                        PrimFilterSobelHoriz8u16s(src.data, src.step(), dy.data, dy.step(), w.width, w.height,
                                                  kPrimMask3x3);
                        int32_t size = 0;
                        PrimCannyGetBufferSize(w.width, w.height, &size);
                        const auto buffer =
                            std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(std::max(size, 1)));
                        return [&, buffer] {
                            PrimCanny16s8u(dx.data, dx.step(), dy.data, dy.step(), dst.data, dst.step(),
                                           w.width, w.height, 100, 300, buffer->data());
                        };
                    }});
    list.push_back({"PrimSqrIntegral8u32s64f", [](Workshop& w) -> Action {
                        Picture<uint8_t>& src = w.Bytes(0);
                        Picture<int32_t>& sum = w.Sums();
                        Picture<double>& sqr = w.Squares();
                        return [&] {
                            PrimSqrIntegral8u32s64f(src.data, src.step(), sum.data, sum.step(), sqr.data,
                                                    sqr.step(), w.width, w.height, 0, 0);
                        };
                    }});
    list.push_back({"PrimRectStdDev32s32f", [](Workshop& w) -> Action {
                        Picture<uint8_t>& src = w.Bytes(0);
                        Picture<int32_t>& sum = w.Sums();
                        Picture<double>& sqr = w.Squares();
                        Picture<float>& dst = w.Floats(0);
                        PrimSqrIntegral8u32s64f(src.data, src.step(), sum.data, sum.step(), sqr.data,
                                                sqr.step(), w.width, w.height, 0, 0);
                        return [&] {
                            PrimRectStdDev32s32f(sum.data, sum.step(), sqr.data, sqr.step(), dst.data,
                                                 dst.step(), w.width - 20, w.height - 20, 0, 0, 18, 18);
                        };
                    }});
    list.push_back({"PrimApplyHaarClassifier32s32f", [](Workshop& w) -> Action {
                        Picture<uint8_t>& src = w.Bytes(0);
                        Picture<int32_t>& sum = w.Sums();
                        Picture<double>& sqr = w.Squares();
                        Picture<float>& norm = w.Floats(0);
                        Picture<uint8_t>& mask = w.Bytes(1);
                        PrimSqrIntegral8u32s64f(src.data, src.step(), sum.data, sum.step(), sqr.data,
                                                sqr.step(), w.width, w.height, 0, 0);
                        // A stage of nine classifiers of two rectangles that refuses nothing.
                        std::vector<PrimRect> rects;
                        std::vector<float> weights;
                        for (int32_t i = 0; i < 9; ++i) {
                            rects.push_back({i, i, 10, 8});
                            rects.push_back({i, i + 4, 10, 4});
                            weights.insert(weights.end(), {-1.0f / 400, 2.0f / 400});
                        }
                        const std::vector<float> values(9, 1);
                        const std::vector<int32_t> counts(9, 2);
                        PrimHaarState* state = nullptr;
                        PrimHaarClassifierInit(&state, rects.data(), weights.data(), values.data(),
                                               values.data(), values.data(), counts.data(), 9);
                        const std::shared_ptr<PrimHaarState> owned(state, PrimHaarClassifierFree);
                        return [&, owned] {
                            int32_t positive = 0;
                            PrimApplyHaarClassifier32s32f(sum.data, sum.step(), norm.data, norm.step(),
                                                          mask.data, mask.step(), w.width - 20, w.height - 20,
                                                          &positive, 0, owned.get());
                            benchmark::DoNotOptimize(positive);
                        };
                    }});
}

void AddPlanes(std::vector<Operation>& list) {
    const auto onPlane = [](auto call) {
        return [=](Workshop& w) -> Action { return [=, &plane = w.Plane(0)] { call(plane); }; };
    };
    const auto onPlanes = [](auto call) {
        return [=](Workshop& w) -> Action {
            return [=, &src = w.Plane(0), &dst = w.Plane(1)] { call(src, dst); };
        };
    };
    list.push_back({"EqualizeHistogram", onPlane([](CPlane8u& plane) { EqualizeHistogram(plane); })});
    list.push_back(
        {"SumPixels", onPlane([](CPlane8u& plane) { benchmark::DoNotOptimize(SumPixels(plane)); })});
    list.push_back({"CPlane8u::ReplicateBorder", onPlane([](CPlane8u& plane) { plane.ReplicateBorder(5); })});
    list.push_back(
        {"CPlane8u::SubtractBoost", onPlanes([](CPlane8u& src, CPlane8u& dst) { dst.SubtractBoost(src); })});
    list.push_back({"DisplaceByGradient", [](Workshop& w) -> Action {
                        return [&bump = w.Plane(2), &src = w.Plane(0), &dst = w.Plane(1)] {
                            DisplaceByGradient(bump, src, dst);
                        };
                    }});
    list.push_back(
        {"ShadeByGradient", onPlanes([](CPlane8u& src, CPlane8u& dst) { ShadeByGradient(src, dst, 0); })});
    list.push_back({"CGradientImage::ComputeSobel", [](Workshop& w) -> Action {
                        const auto gradient = std::make_shared<CGradientImage>();
                        gradient->Allocate(w.width, w.height);
                        return [gradient, &plane = w.Plane(0)] { gradient->ComputeSobel(plane); };
                    }});
    const auto kernel = std::make_shared<CGaussKernel1D>();
    kernel->Build(1, 0);
    list.push_back({"CGaussKernel1D::FilterColumns",
                    onPlanes([=](CPlane8u& src, CPlane8u& dst) { kernel->FilterColumns(src, dst); })});
    list.push_back({"CGaussKernel1D::FilterRows",
                    onPlanes([=](CPlane8u& src, CPlane8u& dst) { kernel->FilterRows(src, dst); })});
}

// ---- OpenCV's -----------------------------------------------------------------------------------

#ifdef SE_BENCH_OPENCV

cv::Mat MatOf(Picture<uint8_t>& p, int channels = 1) {
    return {p.height, p.width, CV_MAKETYPE(CV_8U, channels), p.data, static_cast<size_t>(p.step())};
}
cv::Mat MatOf(Picture<int16_t>& p) {
    return {p.height, p.width, CV_16S, p.data, static_cast<size_t>(p.step())};
}
cv::Mat MatOf(Picture<float>& p) {
    return {p.height, p.width, CV_32F, p.data, static_cast<size_t>(p.step())};
}

/// An operation from one matrix to another.
template <typename Call>
std::function<Action(Workshop&)> CvFromTo(Call call, int channels = 1) {
    return [=](Workshop& w) -> Action {
        return [call, src = MatOf(w.Bytes(0, channels), channels),
                dst = MatOf(w.Bytes(1, channels), channels)]() mutable { call(src, dst); };
    };
}

template <typename Call>
std::function<Action(Workshop&)> CvToWords(Call call) {
    return [=](Workshop& w) -> Action {
        return [call, src = MatOf(w.Bytes(0)), dst = MatOf(w.Words(0))]() mutable { call(src, dst); };
    };
}

std::function<Action(Workshop&)> CvResize(double factor, int interpolation) {
    return [=](Workshop& w) -> Action {
        const auto smaller = [&](int32_t length) {
            return static_cast<int32_t>(length * std::min(factor, 1 / factor));
        };
        cv::Mat large = MatOf(w.Bytes(0));
        cv::Mat small = MatOf(w.Sized(1, smaller(w.width), smaller(w.height)));
        return [=]() mutable {
            cv::Mat& dst = factor < 1 ? small : large;
            cv::resize(factor < 1 ? large : small, dst, dst.size(), 0, 0, interpolation);
        };
    };
}

void AddOpenCv(std::vector<Operation>& list) {
    using cv::Mat;
    cv::setNumThreads(1);
    const auto add = [&](const char* name, std::function<Action(Workshop&)> prepare,
                         double bytesPerPixel = 1) {
        list.push_back({std::string("OpenCV/") + name, std::move(prepare), bytesPerPixel});
    };
    add("setTo", CvFromTo([](Mat&, Mat& d) { d.setTo(77); }));
    add("copyTo", CvFromTo([](Mat& s, Mat& d) { s.copyTo(d); }));
    add("mean", CvFromTo([](Mat& s, Mat&) { benchmark::DoNotOptimize(cv::mean(s)); }));
    add("add", CvFromTo([](Mat& s, Mat& d) { cv::add(s, d, d); }));
    add("subtract", CvFromTo([](Mat& s, Mat& d) { cv::subtract(d, s, d); }));
    add("convertTo, times 3", CvFromTo([](Mat&, Mat& d) { d.convertTo(d, CV_8U, 3); }));
    add("multiply, scale 1/255", CvFromTo([](Mat& s, Mat& d) { cv::multiply(s, d, d, 1 / 255.0); }));
    add("bitwise_and", CvFromTo([](Mat& s, Mat& d) { cv::bitwise_and(s, d, d); }));
    add("bitwise_not", CvFromTo([](Mat&, Mat& d) { cv::bitwise_not(d, d); }));
    add("max with a number", CvFromTo([](Mat&, Mat& d) { cv::max(d, 100, d); }));
    add("threshold, truncate", CvFromTo([](Mat&, Mat& d) { cv::threshold(d, d, 100, 0, cv::THRESH_TRUNC); }));
    add("LUT", [](Workshop& w) -> Action {
        Mat table(1, 256, CV_8U);
        for (int i = 0; i < 256; ++i) {
            table.at<uint8_t>(i) = static_cast<uint8_t>(i * i >> 8);
        }
        return [=, s = MatOf(w.Bytes(0)), d = MatOf(w.Bytes(1))]() mutable { cv::LUT(s, table, d); };
    });
    add("convertTo, float to bytes", [](Workshop& w) -> Action {
        return [s = MatOf(w.Floats(0)), d = MatOf(w.Bytes(0))]() mutable {
            s.convertTo(d, CV_8U, 318.75, -31.875);
        };
    });
    add(
        "cvtColor, I420 to RGB",
        [](Workshop& w) -> Action {
            const Mat frame(w.height * 3 / 2, w.width, CV_8U, w.Frame().data());
            Mat packed(w.height, w.width, CV_8UC3, w.Packed().data());
            return [=]() mutable { cv::cvtColor(frame, packed, cv::COLOR_YUV2RGB_I420); };
        },
        1.5);
    add(
        "cvtColor, RGB to I420",
        [](Workshop& w) -> Action {
            Mat frame(w.height * 3 / 2, w.width, CV_8U, w.Frame().data());
            const Mat packed(w.height, w.width, CV_8UC3, w.Packed().data());
            return [=]() mutable { cv::cvtColor(packed, frame, cv::COLOR_RGB2YUV_I420); };
        },
        1.5);
    add(
        "transform, 3 by 4",
        [](Workshop& w) -> Action {
            Mat packed(w.height, w.width, CV_8UC3, w.Packed().data());
            const Mat matrix = Mat(3, 4, CV_32F, const_cast<float*>(kSepia.data())).clone();
            return [=]() mutable { cv::transform(packed, packed, matrix); };
        },
        1.5);
    add("equalizeHist", CvFromTo([](Mat&, Mat& d) { cv::equalizeHist(d, d); }));
    for (const auto& [name, interpolation] :
         {std::pair{"remap, nearest", cv::INTER_NEAREST}, {"remap, linear", cv::INTER_LINEAR}}) {
        add(name, [interpolation = interpolation](Workshop& w) -> Action {
            return [=, s = MatOf(w.Bytes(0)), d = MatOf(w.Bytes(1)), x = MatOf(w.Map(false)),
                    y = MatOf(w.Map(true))]() mutable {
                cv::remap(s, d, x, y, interpolation, cv::BORDER_TRANSPARENT);
            };
        });
    }
    add("resize, linear, half", CvResize(0.5, cv::INTER_LINEAR));
    add("resize, linear exact, half", CvResize(0.5, cv::INTER_LINEAR_EXACT));
    add("resize, linear, double", CvResize(2, cv::INTER_LINEAR));
    add("resize, linear exact, double", CvResize(2, cv::INTER_LINEAR_EXACT));
    add("resize, nearest, half", CvResize(0.5, cv::INTER_NEAREST));
    add("resize, Lanczos of 8, half", CvResize(0.5, cv::INTER_LANCZOS4));
    for (const auto& [name, interpolation] : {std::pair{"warpAffine, nearest", cv::INTER_NEAREST},
                                              {"warpAffine, linear", cv::INTER_LINEAR},
                                              {"warpAffine, cubic", cv::INTER_CUBIC}}) {
        add(name, CvFromTo([interpolation = interpolation](Mat& s, Mat& d) {
                const cv::Point2f centre(static_cast<float>(s.cols) / 2, static_cast<float>(s.rows) / 2);
                cv::warpAffine(s, d, cv::getRotationMatrix2D(centre, 10, 1), d.size(), interpolation,
                               cv::BORDER_TRANSPARENT);
            }));
    }
    add("flip, upside down", CvFromTo([](Mat&, Mat& d) { cv::flip(d, d, 0); }));
    add("flip, left to right", CvFromTo([](Mat&, Mat& d) { cv::flip(d, d, 1); }));
    add("flip, both", CvFromTo([](Mat&, Mat& d) { cv::flip(d, d, -1); }));
    add("copyMakeBorder", [](Workshop& w) -> Action {
        return [s = MatOf(w.Bytes(0)), d = MatOf(w.Sized(1, w.width + 16, w.height + 16))]() mutable {
            cv::copyMakeBorder(s, d, 8, 8, 8, 8, cv::BORDER_REPLICATE | cv::BORDER_ISOLATED);
        };
    });
    for (const int size : {3, 5}) {
        const std::string mask = size == 3 ? ", 3x3" : ", 5x5";
        const auto addMasked = [&](const char* name, std::function<Action(Workshop&)> prepare) {
            add((name + mask).c_str(), std::move(prepare));
        };
        addMasked("GaussianBlur", CvFromTo([=](Mat& s, Mat& d) { cv::GaussianBlur(s, d, {size, size}, 0); }));
        addMasked("Sobel, rows", CvToWords([=](Mat& s, Mat& d) { cv::Sobel(s, d, CV_16S, 0, 1, size); }));
        addMasked("Sobel, columns", CvToWords([=](Mat& s, Mat& d) { cv::Sobel(s, d, CV_16S, 1, 0, size); }));
    }
    for (const int size : {3, 5, 21}) {
        add(("blur, " + std::to_string(size)).c_str(), CvFromTo([=](Mat& s, Mat& d) {
                cv::blur(s, d, {size, size});
            }));
    }
    add("medianBlur, 5x5", CvFromTo([](Mat& s, Mat& d) { cv::medianBlur(s, d, 5); }));
    const Mat taps = (cv::Mat_<float>(1, 7) << 2, 21, 93, 160, 93, 21, 2) / kTapSum;
    add("filter2D, 7 along columns", CvFromTo([=](Mat& s, Mat& d) { cv::filter2D(s, d, CV_8U, taps.t()); }));
    add("filter2D, 7 along rows", CvFromTo([=](Mat& s, Mat& d) { cv::filter2D(s, d, CV_8U, taps); }));
    add("dilate, 3x3", CvFromTo([](Mat&, Mat& d) { cv::dilate(d, d, Mat()); }));
    add("erode, 3x3", CvFromTo([](Mat& s, Mat& d) { cv::erode(s, d, Mat()); }));
    add("Scharr, rows", CvToWords([](Mat& s, Mat& d) { cv::Scharr(s, d, CV_16S, 0, 1); }));
    add("Scharr, columns", CvToWords([](Mat& s, Mat& d) { cv::Scharr(s, d, CV_16S, 1, 0); }));
    add("Canny of gradients", [](Workshop& w) -> Action {
        Mat dx = MatOf(w.Words(0));
        Mat dy = MatOf(w.Words(1));
        cv::Sobel(MatOf(w.Bytes(0)), dx, CV_16S, 1, 0, 3);
        cv::Sobel(MatOf(w.Bytes(0)), dy, CV_16S, 0, 1, 3);
        return [=, d = MatOf(w.Bytes(1))]() mutable { cv::Canny(dx, dy, d, 100, 300, true); };
    });
    add("integral, with squares", [](Workshop& w) -> Action {
        Mat sum(w.height + 1, w.width + 1, CV_32S);
        Mat squares(w.height + 1, w.width + 1, CV_64F);
        return [=, s = MatOf(w.Bytes(0))]() mutable { cv::integral(s, sum, squares, CV_32S, CV_64F); };
    });
}

#endif

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    std::vector<Operation> operations;
    AddPoints(operations);
    AddColour(operations);
    AddGeometry(operations);
    AddNeighbourhoods(operations);
    AddPlanes(operations);
#ifdef SE_BENCH_OPENCV
    AddOpenCv(operations);
#endif
    for (const auto& [width, height] : {std::pair{1280, 720}, {1920, 1080}}) {
        for (const Operation& operation : operations) {
            const std::string name =
                operation.name + "/" + std::to_string(width) + "x" + std::to_string(height);
            benchmark::RegisterBenchmark(name.c_str(), RunOperation, operation, width, height)
                ->UseManualTime()
                ->MinTime(0.1)
                ->Unit(benchmark::kMillisecond);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
