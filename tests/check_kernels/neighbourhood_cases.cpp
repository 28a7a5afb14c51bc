// The filters whose pixels depend on a window of pixels.
#include <algorithm>
#include <limits>
#include <vector>

#include "imaging/BitMedian.h"
#include "imaging/Prim.h"
#include "tests/check_kernels/Trial.h"
#include "tests/imaging/models/NeighbourhoodModels.h"

namespace check {
namespace {

template <auto& kFast, auto& kModel, typename Out, int32_t kMask>
void FixedMask(Trial& t) {
    const auto src = t.Source<uint8_t>({.margin = Margin::All(kMask == kPrimMask3x3 ? 1 : 2)});
    const auto dst = t.Target<Out>();
    t.Run(kFast, kModel, [&](auto filter, Side side) {
        return filter(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), kMask);
    });
}

/// A window of a size and the place of the pixel in it.
struct Window {
    int32_t width;
    int32_t height;
    int32_t anchorX;
    int32_t anchorY;

    Margin margin() const { return {anchorX, anchorY, width - 1 - anchorX, height - 1 - anchorY}; }
};

void Box(Trial& t) {
    if (t.width() < 2 || t.height() < 2) {
        return;  // no mask is small enough
    }
    // Up to the largest that the region admits, and even sizes, whose means have ties.
    const int32_t mask = t.Pick("mask", {3, 5, 21, 1, 2, 4, 20, 33, 1000});
    const int32_t stretch = t.Pick("stretch", {0, 1, -1});
    const int32_t mostWide = std::min(t.width() - 1, 60);
    const int32_t mostHigh = std::min(t.height() - 1, 60);
    const int32_t wide = std::clamp(mask, 1, mostWide);
    const int32_t high = std::clamp(mask + stretch, 1, mostHigh);
    const bool centred = t.Pick("centred", {1, 0}) != 0;
    const Window w = {wide, high, centred ? wide / 2 : t.Any("anchorX", 0, wide - 1, 0),
                      centred ? high / 2 : t.Any("anchorY", 0, high - 1, 0)};
    const auto data = t.Target<uint8_t>({.margin = w.margin()});
    t.Run(PrimFilterBox8uC1, model::PrimFilterBox8uC1, [&](auto filter, Side side) {
        return filter(data.at(side), data.step(), t.width(), t.height(), w.width, w.height, w.anchorX,
                      w.anchorY);
    });
}

void FilterMedian(Trial& t, int32_t wide, int32_t high) {
    const bool centred = t.Pick("centred", {1, 0}) != 0;
    const Window w = {wide, high, centred ? wide / 2 : t.Any("anchorX", 0, wide - 1, 0),
                      centred ? high / 2 : t.Any("anchorY", 0, high - 1, 0)};
    const auto src = t.Source<uint8_t>({.margin = w.margin()});
    const auto dst = t.Target<uint8_t>();
    t.Run(PrimFilterMedian8uC1, model::PrimFilterMedian8uC1, [&](auto filter, Side side) {
        return filter(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), w.width,
                      w.height, w.anchorX, w.anchorY);
    });
}

void Median5x5(Trial& t) {
    FilterMedian(t, 5, 5);
}

void MedianAnySize(Trial& t) {
    const int32_t wide = t.Pick("maskWidth", {7, 1, 3, 5, 11});
    const int32_t high = t.Pick("maskHeight", {7, 1, 3, 9});
    FilterMedian(t, wide, high);
}

void Majority(Trial& t) {
    const auto src = t.Source<uint8_t>({.margin = Margin::All(2)});
    const auto dst = t.Target<uint8_t>();
    t.Run(FilterMajority5, model::FilterMajority5, [&](auto filter, Side side) {
        filter(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height());
        return kPrimOk;
    });
}

enum Taps { kGaussian, kOneSided, kRandomSmall, kRandomLarge, kRandomHuge };

std::vector<int32_t> MakeKernel(Trial& t, int32_t taps, int32_t size) {
    std::vector<int32_t> kernel(static_cast<size_t>(size));
    for (int32_t k = 0; k < size; ++k) {
        int32_t& tap = kernel[static_cast<size_t>(k)];
        const int32_t distance = std::abs(2 * k + 1 - size);
        switch (taps) {
            case kGaussian:
                tap = 1 + 1800 / (10 + distance * distance);
                break;
            case kOneSided:
                tap = 3 * k - 1;
                break;
            case kRandomSmall:
                tap = t.random().Whole(-200, 200);
                break;
            case kRandomLarge:
                tap = t.random().Whole(-70000, 70000);
                break;
            default:
                tap = t.random().Whole(std::numeric_limits<int32_t>::min(),
                                       std::numeric_limits<int32_t>::max());
                break;
        }
    }
    return kernel;
}

/// The sum of the taps, which keeps a flat picture as it is, or something else.
int32_t MakeDivisor(Trial& t, const std::vector<int32_t>& kernel) {
    int64_t sum = 0;
    for (const int32_t tap : kernel) {
        sum += tap;
    }
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
    const auto whole = static_cast<int32_t>(std::clamp<int64_t>(sum == 0 ? 1 : sum, -kMost, kMost));
    switch (t.Pick("divisor", {0, 1, 2, 3, 4, 5})) {
        case 0:
            return whole;
        case 1:
            return 1;
        case 2:
            return 1 << t.random().Whole(1, 30);
        case 3:
            return -whole;
        case 4:
            return std::max(whole / 2, 1) * 2;  // even: its halves are whole numbers
        default:
            return t.random().Whole(1, 1 << t.random().Whole(1, 30));
    }
}

template <auto& kFast, auto& kModel, bool kAlongRow>
void LineKernel(Trial& t) {
    const int32_t size = t.Pick("kernelSize", {7, 1, 2, 3, 4, 5, 8, 9, 15, 31});
    const int32_t taps = t.Pick("taps", {kGaussian, kOneSided, kRandomSmall, kRandomLarge, kRandomHuge});
    const std::vector<int32_t> kernel = MakeKernel(t, taps, size);
    const int32_t divisor = MakeDivisor(t, kernel);
    const int32_t anchor = t.Any("anchor", 0, size - 1, size / 2);
    const int32_t before = size - 1 - anchor;
    const auto src = t.Source<uint8_t>(
        {.margin = kAlongRow ? Margin{before, 0, anchor, 0} : Margin{0, before, 0, anchor}});
    const auto dst = t.Target<uint8_t>();
    t.Run(kFast, kModel, [&](auto filter, Side side) {
        return filter(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(),
                      kernel.data(), size, anchor, divisor);
    });
}

void Dilate(Trial& t) {
    const auto data = t.Target<uint8_t>({.margin = Margin::All(1)});
    t.Run(PrimDilate3x38uC1, model::PrimDilate3x38uC1,
          [&](auto dilate, Side side) { return dilate(data.at(side), data.step(), t.width(), t.height()); });
}

void Erode(Trial& t) {
    const auto src = t.Source<uint8_t>({.margin = Margin::All(1)});
    // The step has to have room for the margin on this side as well.
    const auto dst = t.Target<uint8_t>({.margin = Margin::All(1)});
    t.Run(PrimErode3x38uC1, model::PrimErode3x38uC1, [&](auto erode, Side side) {
        return erode(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height());
    });
}

/// Bytes of scratch, from the operation that computes the number.
template <typename GetSize>
std::vector<uint8_t> Scratch(GetSize getSize) {
    int32_t size = -1;
    getSize(&size);
    return std::vector<uint8_t>(static_cast<size_t>(size));
}

template <auto& kFast, auto& kModel, auto& kGetSize>
void SobelBorder(Trial& t) {
    const int32_t mask = t.Pick("mask", {kPrimMask3x3, kPrimMask5x5});
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<int16_t>();
    std::vector<uint8_t> buffer =
        Scratch([&](int32_t* size) { return kGetSize(t.width(), t.height(), mask, size); });
    t.Run(kFast, kModel, [&](auto filter, Side side) {
        return filter(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(), mask,
                      kPrimBorderReplicate, 77, buffer.data());
    });
}

template <auto& kFast, auto& kModel, auto& kGetSize>
void ScharrBorder(Trial& t) {
    const auto src = t.Source<uint8_t>();
    const auto dst = t.Target<int16_t>();
    std::vector<uint8_t> buffer =
        Scratch([&](int32_t* size) { return kGetSize(t.width(), t.height(), size); });
    t.Run(kFast, kModel, [&](auto filter, Side side) {
        return filter(src.at(side), src.step(), dst.at(side), dst.step(), t.width(), t.height(),
                      kPrimBorderReplicate, 77, buffer.data());
    });
}

const Register kernels(
    "neighbourhood",
    {
        {"PrimFilterGauss8uC1 3x3",
         FixedMask<PrimFilterGauss8uC1, model::PrimFilterGauss8uC1, uint8_t, kPrimMask3x3>},
        {"PrimFilterGauss8uC1 5x5",
         FixedMask<PrimFilterGauss8uC1, model::PrimFilterGauss8uC1, uint8_t, kPrimMask5x5>},
        {"PrimFilterLowpass8uC1 3x3",
         FixedMask<PrimFilterLowpass8uC1, model::PrimFilterLowpass8uC1, uint8_t, kPrimMask3x3>},
        {"PrimFilterLowpass8uC1 5x5",
         FixedMask<PrimFilterLowpass8uC1, model::PrimFilterLowpass8uC1, uint8_t, kPrimMask5x5>},
        {"PrimFilterBox8uC1", Box},
        {"PrimFilterMedian8uC1 5x5", Median5x5},
        {"PrimFilterMedian8uC1", MedianAnySize},
        {"FilterMajority5", Majority},
        {"PrimFilterColumn8uC1", LineKernel<PrimFilterColumn8uC1, model::PrimFilterColumn8uC1, false>},
        {"PrimFilterRow8uC1", LineKernel<PrimFilterRow8uC1, model::PrimFilterRow8uC1, true>},
        {"PrimDilate3x38uC1", Dilate},
        {"PrimErode3x38uC1", Erode},
        {"PrimFilterSobelHoriz8u16s 3x3",
         FixedMask<PrimFilterSobelHoriz8u16s, model::PrimFilterSobelHoriz8u16s, int16_t, kPrimMask3x3>},
        {"PrimFilterSobelHoriz8u16s 5x5",
         FixedMask<PrimFilterSobelHoriz8u16s, model::PrimFilterSobelHoriz8u16s, int16_t, kPrimMask5x5>},
        {"PrimFilterSobelVert8u16s 3x3",
         FixedMask<PrimFilterSobelVert8u16s, model::PrimFilterSobelVert8u16s, int16_t, kPrimMask3x3>},
        {"PrimFilterSobelVert8u16s 5x5",
         FixedMask<PrimFilterSobelVert8u16s, model::PrimFilterSobelVert8u16s, int16_t, kPrimMask5x5>},
        {"PrimSobelHorizBorder8u16s", SobelBorder<PrimSobelHorizBorder8u16s, model::PrimSobelHorizBorder8u16s,
                                                  PrimSobelHorizBorderGetBufferSize>},
        {"PrimSobelVertBorder8u16s", SobelBorder<PrimSobelVertBorder8u16s, model::PrimSobelVertBorder8u16s,
                                                 PrimSobelVertBorderGetBufferSize>},
        {"PrimScharrHorizBorder8u16s",
         ScharrBorder<PrimScharrHorizBorder8u16s, model::PrimScharrHorizBorder8u16s,
                      PrimScharrHorizBorderGetBufferSize>},
        {"PrimScharrVertBorder8u16s",
         ScharrBorder<PrimScharrVertBorder8u16s, model::PrimScharrVertBorder8u16s,
                      PrimScharrVertBorderGetBufferSize>},
    });

}  // namespace
}  // namespace check
