#include "effects/drawing/LineArt.h"

#include <filesystem>
#include <fstream>
#include <locale>
#include <new>
#include <system_error>

#include "effects/drawing/Edges.h"
#include "imaging/ScalarColor.h"

namespace {

constexpr int32_t kBlurSize = 10;
constexpr int32_t kMargin = kBlurSize / 2;

/// The next number of a settings file. 0 if the file has no more, which ends the reading; the nearest bound
/// if it overflows an integer.
int32_t ReadNumber(std::istream& file) {
    int32_t number = 0;
    file >> number;
    if (number != 0) file.clear(file.rdstate() & ~std::ios::failbit);  // overflow is not a failure
    return number;
}

SE_INLINE void DrawLines(const uint8_t* source, ptrdiff_t sourceStep, uint8_t* luma, ptrdiff_t width,
                         ptrdiff_t height, int32_t threshold, uint8_t background) {
    constexpr uint8_t kLine = 255;
    for (ptrdiff_t y = 0; y < height; ++y) {
        uint8_t* const row = luma + y * width;
        ForEdgesOfRow(source, sourceStep, width, height, y, [=](ptrdiff_t x, int32_t strength) {
            row[x] = strength < threshold ? background : kLine;
        });
    }
}

}  // namespace

std::span<const Property<CLineArtSpecialEffectFilter>> CLineArtSpecialEffectFilter::Properties() {
    static constexpr Property<CLineArtSpecialEffectFilter> rows[] = {
        ColorProperty<&CLineArtSpecialEffectFilter::BackgroundColor>("BackgroundColor", "0,0,0")
            .Says("Background colour, which also tints the lines."),
    };
    return rows;
}

ResultCode CLineArtSpecialEffectFilter::LoadSettings(SettingsRecord* settings) {
    if (settings == nullptr || settings->Path == nullptr) return kFailure;
    try {
        return ReadBackgroundColor(settings->Path);
    } catch (const std::bad_alloc&) {
        return kOutOfMemory;
    }
}

ResultCode CLineArtSpecialEffectFilter::ReadBackgroundColor(const char* path) {
    // Only a regular file: opening a pipe could block for ever.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return kFailure;
    std::ifstream file(path);
    if (!file.is_open()) return kFailure;
    file.imbue(std::locale::classic());

    uint32_t color = 0;
    for (uint32_t channel = 0; channel < 3; ++channel) {
        color |= static_cast<uint32_t>(std::clamp(ReadNumber(file), 0, 255)) << (8 * channel);
    }
    BackgroundColor = color;
    return kSuccess;
}

void CLineArtSpecialEffectFilter::Prepare() {
    const bool large = Width() >= 640;
    Require(Blur.Build(large ? 2.5 : 1.5, kBlurSize));
    EdgeThreshold = large ? 25 : 40;
    Padded = NewPlane(Width() + 2 * kMargin, Height() + 2 * kMargin);
    BlurredRows = NewPlane(Padded.width, Padded.height);
}

void CLineArtSpecialEffectFilter::Release() {
    Blur.Release();
    Padded.Release();
    BlurredRows.Release();
}

void CLineArtSpecialEffectFilter::ProcessPlanar(const PlanarFrame& frame) {
    frame.FillChroma(PackedToU(BackgroundColor), PackedToV(BackgroundColor));
    Padded.CopyWithBorder(CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height), kMargin);
    Blur.FilterRows(Padded, BlurredRows);
    Blur.FilterColumns(BlurredRows, Padded);
    AtLevel<DrawLines>(Padded.Row(kMargin) + kMargin, Padded.width, frame.y.data, frame.y.width,
                       frame.y.height, EdgeThreshold, PackedToY(BackgroundColor));
}

template struct EffectClass<CLineArtSpecialEffectFilter>;
