// Moving Twirl: a disc in the middle of the picture, twisted to and fro.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_MOVINGTWIRL_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_MOVINGTWIRL_H

#include <vector>

#include "framework/EffectBase.h"
#include "imaging/Plane8u.h"

/// Every frame has a mapping of its own. Each pixel's polar form is kept in fixed point from `Prepare` on, so
/// that a frame takes integers only. Fixed numbers have 12 fraction bits.
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
        int32_t centerX = 0, centerY = 0;  ///< fixed
        std::vector<Row> rows;
        std::vector<uint16_t> radius;  ///< of each pixel of the rows, in whole pixels
        std::vector<int16_t> angle;    ///< of each pixel, fixed radians
        std::vector<int32_t> twist;    ///< by radius: the share of the twist, fixed
    };

    static Disc MakeDisc(int32_t width, int32_t height, int32_t centerX, int32_t centerY);
    void Advance();

    /// Calls take(sources, firstPixel, count) for each row of the disc: the indices of its source pixels, and
    /// where they go.
    template <class Take>
    void ForEachRow(const Disc& disc, Take take);

    CPlane8u Scratch;
    std::vector<int32_t> SinCosTable;  ///< sine in the low half, cosine in the high half, fixed
    Disc Luma, Chroma;
    std::vector<int32_t> Turn;     ///< by radius: this frame's twist, fixed radians
    std::vector<int32_t> Sources;  ///< of one row
    int32_t TwistPhase = 0;        ///< fixed radians
    int32_t Direction = 1;
};

#endif
