#include "sfx/WorkFrame.h"

#include <algorithm>
#include <cstring>

namespace sfx {
namespace {

constexpr size_t kScratchRows = 8;

/// Makes room for exactly `size` bytes; those of an earlier, larger size are given back.
void Resize(std::vector<uint8_t>& bytes, size_t size) {
    if (bytes.size() != size) {
        bytes = {};
        bytes.resize(size);
    }
}

bool IsEven(const Picture& picture) {
    return picture.width % 2 == 0 && picture.height % 2 == 0;
}

/// Repeats the last of `count` bytes where a row of even length has one more.
void Pad(uint8_t* row, size_t count, size_t padded) {
    if (count < padded) {
        row[count] = row[count - 1];
    }
}

}  // namespace

WorkFrame::Planes WorkFrame::Load(const Picture& picture) {
    TakeMemory(picture);
    switch (picture.format->layout) {
        case Layout::kPlanar:
        case Layout::kSemiPlanar:
            LoadPlanar(picture);
            break;
        case Layout::kPackedYuv:
            LoadPackedYuv(picture);
            break;
        case Layout::kPackedRgb:
            LoadRgb(picture);
            break;
    }
    if (keepsChroma_) {
        std::copy(chroma_.begin(), chroma_.end(), chromaBefore_.begin());
    }
    return planes_;
}

void WorkFrame::Store(const Picture& picture) {
    switch (picture.format->layout) {
        case Layout::kPlanar:
        case Layout::kSemiPlanar:
            StorePlanar(picture);
            break;
        case Layout::kPackedYuv:
            StorePackedYuv(picture);
            break;
        case Layout::kPackedRgb:
            StoreRgb(picture);
            break;
    }
}

void WorkFrame::TakeMemory(const Picture& picture) {
    const FormatInfo& format = *picture.format;
    planes_.width = EvenSide(picture.width);
    planes_.height = EvenSide(picture.height);

    const bool planar = format.layout == Layout::kPlanar || format.layout == Layout::kSemiPlanar;
    const bool isI420 =
        format.layout == Layout::kPlanar && format.chromaShiftX == 1 && format.chromaShiftY == 1;
    ownLuma_ = !planar || !IsEven(picture) || !picture.IsTight(0);
    ownChroma_ = !isI420 || !picture.IsTight(1) || !picture.IsTight(2);
    keepsChroma_ = format.chromaShiftX == 0 || format.chromaShiftY == 0;

    Resize(luma_, ownLuma_ ? planes_.LumaSize() : 0);
    Resize(chroma_, ownChroma_ ? 2 * planes_.ChromaSize() : 0);
    Resize(chromaBefore_, keepsChroma_ ? chroma_.size() : 0);
    Resize(scratch_, ownLuma_ || ownChroma_ ? kScratchRows * Width() : 0);

    planes_.y = ownLuma_ ? luma_.data() : picture.planes[0];
    planes_.u = ownChroma_ ? chroma_.data() : picture.planes[format.places[1]];
    planes_.v = ownChroma_ ? chroma_.data() + planes_.ChromaSize() : picture.planes[format.places[2]];
}

bool WorkFrame::ChromaChanged() const {
    return !keepsChroma_ || chroma_ != chromaBefore_;
}

// ---- planar and semi-planar --------------------------------------------------------------------------

void WorkFrame::LoadPlanar(const Picture& picture) {
    const FormatInfo& format = *picture.format;
    if (ownLuma_) {
        LoadLuma(picture);
    }
    if (!ownChroma_) {
        return;
    }
    if (format.layout == Layout::kPlanar) {
        LoadChroma(picture, format.places[1], planes_.u);
        LoadChroma(picture, format.places[2], planes_.v);
        return;
    }
    uint8_t* const first = format.places[1] == 0 ? planes_.u : planes_.v;
    uint8_t* const second = format.places[1] == 0 ? planes_.v : planes_.u;
    for (int32_t line = 0; line < Lines(); ++line) {
        SplitPairs(picture.Row(1, line), first + ChromaAt(line), second + ChromaAt(line), Columns());
    }
}

void WorkFrame::LoadLuma(const Picture& picture) {
    const auto width = static_cast<size_t>(picture.width);
    for (int32_t y = 0; y < planes_.height; ++y) {
        std::memcpy(LumaRow(y), picture.Row(0, std::min(y, picture.height - 1)), width);
        Pad(LumaRow(y), width, Width());
    }
}

void WorkFrame::LoadChroma(const Picture& picture, int plane, uint8_t* samples) {
    const FormatInfo& format = *picture.format;
    const auto width = static_cast<size_t>(picture.width);
    const auto padded = [&](int32_t y, size_t scratchRow) -> const uint8_t* {
        const uint8_t* const row = picture.Row(plane, std::min(y, picture.height - 1));
        if (width == Width()) {
            return row;
        }
        uint8_t* const copy = Scratch(scratchRow);
        std::memcpy(copy, row, width);
        Pad(copy, width, Width());
        return copy;
    };
    for (int32_t line = 0; line < Lines(); ++line) {
        uint8_t* const out = samples + ChromaAt(line);
        const int32_t y0 = 2 * line, y1 = std::min(2 * line + 1, picture.height - 1);
        if (format.chromaShiftY == 1) {
            std::memcpy(out, picture.Row(plane, line), Columns());
        } else if (format.chromaShiftX == 1) {
            MeanOfRows(picture.Row(plane, y0), picture.Row(plane, y1), out, Columns());
        } else {
            MeanOfBlocks(padded(y0, 0), padded(y1, 1), out, Columns());
        }
    }
}

void WorkFrame::StorePlanar(const Picture& picture) {
    const FormatInfo& format = *picture.format;
    if (ownLuma_) {
        for (int32_t y = 0; y < picture.height; ++y) {
            std::memcpy(picture.Row(0, y), LumaRow(y), static_cast<size_t>(picture.width));
        }
    }
    if (!ownChroma_ || !ChromaChanged()) {
        return;
    }
    if (format.layout == Layout::kPlanar) {
        StoreChroma(picture, format.places[1], planes_.u);
        StoreChroma(picture, format.places[2], planes_.v);
        return;
    }
    const uint8_t* const first = format.places[1] == 0 ? planes_.u : planes_.v;
    const uint8_t* const second = format.places[1] == 0 ? planes_.v : planes_.u;
    for (int32_t line = 0; line < Lines(); ++line) {
        JoinPairs(first + ChromaAt(line), second + ChromaAt(line), picture.Row(1, line), Columns());
    }
}

void WorkFrame::StoreChroma(const Picture& picture, int plane, const uint8_t* samples) {
    const FormatInfo& format = *picture.format;
    const int32_t rows = PlaneRows(format, plane, picture.height);
    const size_t rowBytes = PlaneRowBytes(format, plane, picture.width);
    for (int32_t y = 0; y < rows; ++y) {
        const uint8_t* const row = samples + ChromaAt(format.chromaShiftY == 1 ? y : y / 2);
        if (format.chromaShiftX == 1) {
            std::memcpy(picture.Row(plane, y), row, rowBytes);
        } else {
            RepeatBytes(row, Scratch(0), Columns());
            std::memcpy(picture.Row(plane, y), Scratch(0), rowBytes);
        }
    }
}

// ---- packed YUV --------------------------------------------------------------------------------------

void WorkFrame::LoadPackedYuv(const Picture& picture) {
    const bool lumaFirst = picture.format->places[0] == 0;
    // Luma to its plane, and the chroma of the row to the scratch row.
    const auto split = [&](int32_t y, size_t scratchRow) {
        const uint8_t* const row = picture.Row(0, std::min(y, picture.height - 1));
        uint8_t* const chroma = Scratch(scratchRow);
        SplitPairs(row, lumaFirst ? LumaRow(y) : chroma, lumaFirst ? chroma : LumaRow(y), Width());
        Pad(LumaRow(y), static_cast<size_t>(picture.width), Width());
        return chroma;
    };
    for (int32_t line = 0; line < Lines(); ++line) {
        const uint8_t* const row0 = split(2 * line, 0);
        const uint8_t* const row1 = split(2 * line + 1, 1);
        MeanOfRows(row0, row1, Scratch(2), Width());
        SplitPairs(Scratch(2), planes_.u + ChromaAt(line), planes_.v + ChromaAt(line), Columns());
    }
}

void WorkFrame::StorePackedYuv(const Picture& picture) {
    const bool lumaFirst = picture.format->places[0] == 0;
    const bool changed = ChromaChanged();
    uint8_t *const luma = Scratch(0), *const chroma = Scratch(1);
    for (int32_t y = 0; y < picture.height; ++y) {
        uint8_t* const row = picture.Row(0, y);
        // At an odd width the last group has a luma sample beyond the picture, which stays as it is.
        SplitPairs(row, lumaFirst ? luma : chroma, lumaFirst ? chroma : luma, Width());
        std::memcpy(luma, LumaRow(y), static_cast<size_t>(picture.width));
        if (changed) {
            JoinPairs(planes_.u + ChromaAt(y / 2), planes_.v + ChromaAt(y / 2), chroma, Columns());
        }
        JoinPairs(lumaFirst ? luma : chroma, lumaFirst ? chroma : luma, row, Width());
    }
}

// ---- packed RGB --------------------------------------------------------------------------------------

namespace {

RgbRow RgbOf(const FormatInfo& format, uint8_t* const (&bytes)[4]) {
    return {bytes[format.places[0]], bytes[format.places[1]], bytes[format.places[2]]};
}

}  // namespace

WorkFrame::Channels WorkFrame::SplitRgbRow(const Picture& picture, int32_t y, size_t scratchRow) {
    const auto width = static_cast<size_t>(picture.width);
    const uint8_t* const row = picture.Row(0, std::min(y, picture.height - 1));
    Channels channels{};
    for (size_t i = 0; i < 4; ++i) {
        channels.bytes[i] = Scratch(scratchRow + i);
    }
    const auto [c0, c1, c2, c3] = channels.bytes;
    if (picture.format->pixelBytes == 3) {
        SplitTriples(row, c0, c1, c2, width);
    } else {
        SplitQuads(row, c0, c1, c2, c3, width);
    }
    for (size_t i = 0; i < picture.format->pixelBytes; ++i) {
        Pad(channels.bytes[i], width, Width());
    }
    return channels;
}

void WorkFrame::JoinRgbRow(const Picture& picture, int32_t y, const Channels& channels) {
    const auto width = static_cast<size_t>(picture.width);
    const auto [c0, c1, c2, c3] = channels.bytes;
    if (picture.format->pixelBytes == 3) {
        JoinTriples(c0, c1, c2, picture.Row(0, y), width);
    } else {
        JoinQuads(c0, c1, c2, c3, picture.Row(0, y), width);
    }
}

void WorkFrame::LoadRgb(const Picture& picture) {
    const ColorWeights& weights = WeightsOf(picture.matrix, picture.range);
    for (int32_t line = 0; line < Lines(); ++line) {
        const Channels row0 = SplitRgbRow(picture, 2 * line, 0);
        const Channels row1 = SplitRgbRow(picture, 2 * line + 1, 4);
        const RgbRow rgb0 = RgbOf(*picture.format, row0.bytes), rgb1 = RgbOf(*picture.format, row1.bytes);
        LumaOfRgb(rgb0, weights, LumaRow(2 * line), Width());
        LumaOfRgb(rgb1, weights, LumaRow(2 * line + 1), Width());
        ChromaOfRgb(rgb0, rgb1, weights, planes_.u + ChromaAt(line), planes_.v + ChromaAt(line), Columns());
    }
}

void WorkFrame::StoreRgb(const Picture& picture) {
    const ColorWeights& weights = WeightsOf(picture.matrix, picture.range);
    const bool changed = ChromaChanged();
    for (int32_t y = 0; y < picture.height; ++y) {
        const Channels row = SplitRgbRow(picture, y, 0);  // for alpha, and for what stays of the colours
        const RgbRow rgb = RgbOf(*picture.format, row.bytes);
        if (changed) {
            RgbOfYuv(LumaRow(y), planes_.u + ChromaAt(y / 2), planes_.v + ChromaAt(y / 2), weights, rgb,
                     Columns());
        } else {
            ChangeLuma(rgb, weights, LumaRow(y), Width());
        }
        JoinRgbRow(picture, y, row);
    }
}

}  // namespace sfx
