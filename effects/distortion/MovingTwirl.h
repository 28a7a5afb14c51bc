// Moving Twirl: a disc in the middle of the picture, twisted back and forth.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_MOVINGTWIRL_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_MOVINGTWIRL_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// Every frame has its own map. `Prepare` stores each pixel's polar form in fixed point, so that frames need
/// integer arithmetic only. Fixed-point numbers have 12 fraction bits.
class CMovingTwirlSpecialEffectFilter final : public PlanarEffect<CMovingTwirlSpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Moving Twirl";

    void Prepare();
    void Release();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    /// The disc of one plane, row after row.
    struct Disc {
        struct Row {
            int32_t y, firstColumn, count;
        };

        int32_t width = 0, pixels = 0;     ///< of the plane
        int32_t centerX = 0, centerY = 0;  ///< fixed point
        std::vector<Row> rows;
        std::vector<uint16_t> radius;  ///< of each pixel of the rows, in whole pixels
        std::vector<uint16_t> share;   ///< of each pixel: its share of the twist, fixed point
        std::vector<int16_t> angle;    ///< of each pixel, radians in fixed point

        void AddLowerHalf();
    };

    static Disc MakeDisc(int32_t width, int32_t height, int32_t centerX, int32_t centerY);
    void Advance();

    /// Calls take(sources, firstPixel, count) for each row of the disc, with the indices of the source pixels
    /// and the index of the first destination pixel.
    template <class Take>
    void ForEachRow(const Disc& disc, Take take);

    CPlane8u Scratch;
    std::vector<int32_t> SinCosTable;  ///< sine in the low half, cosine in the high half, fixed point
    Disc Luma, Chroma;
    std::vector<int32_t> Sources;  ///< source indices of one row
    int32_t TwistPhase = 0;        ///< radians in fixed point
    int32_t Direction = 1;
};

#endif
