#include "effects/drawing/LineArt.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <optional>

#include "effects/drawing/Edges.h"
#include "imaging/Files.h"
#include "imaging/ScalarColor.h"

namespace {

constexpr int32_t kBlurSize = 10;
constexpr int32_t kMargin = kBlurSize / 2;

bool IsSpace(int character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}
bool IsDigit(int character) {
    return character >= '0' && character <= '9';
}

/// The next whole number of a settings file; the nearest bound if it overflows an integer. Nothing if
/// something else comes first.
std::optional<int32_t> ReadNumber(std::FILE* file) {
    int character = std::getc(file);
    while (IsSpace(character)) character = std::getc(file);
    const bool negative = character == '-';
    if (negative || character == '+') character = std::getc(file);
    if (!IsDigit(character)) return std::nullopt;
    int64_t number = 0;
    for (; IsDigit(character); character = std::getc(file)) {
        const int64_t digit = character - '0';
        number =
            std::clamp<int64_t>(10 * number + (negative ? -digit : digit),
                                std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max());
    }
    std::ungetc(character, file);
    return static_cast<int32_t>(number);
}

/// Three numbers, the channels of a packed colour; 0 for those after the first that cannot be read.
uint32_t ReadColor(std::FILE* file) {
    uint32_t color = 0;
    for (uint32_t channel = 0; channel < 3; ++channel) {
        const std::optional<int32_t> number = ReadNumber(file);
        if (!number) break;
        color |= static_cast<uint32_t>(std::clamp(*number, 0, 255)) << (8 * channel);
    }
    return color;
}

SE_INLINE void DrawLines(const uint8_t* row, ptrdiff_t step, uint8_t* luma, ptrdiff_t width, bool inside,
                         int16_t threshold, uint8_t background) {
    constexpr uint8_t kLine = 255;
    ForEdgesOfRow(row, step, width, inside, [=](ptrdiff_t x, int16_t strength) {
        luma[x] = strength < threshold ? background : kLine;
    });
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
    const files::File file = files::OpenToRead(settings->Path);
    if (file == nullptr) return kFailure;
    BackgroundColor = ReadColor(file.get());
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
    CPlane8u luma = CPlane8u::Over(frame.y.data, frame.y.width, frame.y.height);
    for (int32_t y = 0; y < luma.height; ++y) {
        AtLevel<DrawLines>(Padded.Row(kMargin + y) + kMargin, Padded.width, luma.Row(y), luma.width,
                           IsInside(luma.height, y), EdgeThreshold, PackedToY(BackgroundColor));
    }
}

template struct EffectClass<CLineArtSpecialEffectFilter>;
