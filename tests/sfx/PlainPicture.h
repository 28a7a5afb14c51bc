// A picture of any format by its definition, sample by sample, with guard bytes around its planes.
#ifndef SPECIALEFFECTS_TESTS_SFX_PLAINPICTURE_H
#define SPECIALEFFECTS_TESTS_SFX_PLAINPICTURE_H

#include <cstdint>
#include <string>
#include <vector>

#include "sfx/sfx.h"

/// How the rows of a test picture lie in memory.
enum class Rows { kTight, kGaps, kBottomUp };

class PlainPicture {
  public:
    PlainPicture(sfx_format format, int32_t width, int32_t height, Rows rows = Rows::kTight);
    PlainPicture(const PlainPicture&) = delete;
    PlainPicture& operator=(const PlainPicture&) = delete;

    sfx_picture& record() { return record_; }
    bool IsRgb() const { return record_.format >= SFX_RGB24; }
    int32_t width() const { return record_.width; }
    int32_t height() const { return record_.height; }

    /// All bytes of the rows, those that are padding of a packed group or alpha included.
    void Randomize(uint64_t seed);
    /// Random colours that differ little between neighbours, as in photographs.
    void Smooth(uint64_t seed);
    std::vector<uint8_t> Bytes() const;
    bool GuardsIntact() const;

    /// Where the sample of a pixel lies: 0, 1, 2 for Y, U, V or for red, green, blue; 3 for alpha. Null for
    /// alpha in formats without it. Several pixels share a chroma sample.
    uint8_t* Sample(int component, int32_t x, int32_t y) const;

    /// Chroma samples stand for `ChromaWidth()` by `ChromaHeight()` pixels; 1 for RGB.
    int32_t ChromaWidth() const;
    int32_t ChromaHeight() const;

  private:
    sfx_picture record_ = SFX_PICTURE_INIT;
    std::vector<uint8_t> storage_[3];
    static constexpr size_t kGuard = 32;
    static constexpr uint8_t kGuardByte = 0xA7;
};

#endif
