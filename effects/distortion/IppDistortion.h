// The base of the effects that bend a picture with a fixed table.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_IPPDISTORTION_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_IPPDISTORTION_H

#include <vector>

#include "framework/SpecialEffectFilter.h"
#include "imaging/IndexGather.h"

/// An effect says where each pixel comes from, `BuildRemapTable`; the base asks it once for each stream and
/// moves the pixels of every frame, planar or packed. Each takes the nearest source pixel: no interpolation.
///
/// A pixel whose source lies outside the picture becomes 0, in a chroma plane 128.
class CSpecialEffectFilter_IppDistortion : public CSpecialEffectFilter {
  public:
    ResultCode Configure(StreamDescription* description) override;

    /// A missing workspace is answered (kFailure) before a missing plane (kInvalidArgument). Of a planar
    /// frame no more of each plane is written than the frame says that it holds.
    ResultCode ProcessFrame(FrameRecord* frame) override;

    ResultCode Shutdown() override;

    /// Slot 19. Fills two tables of width * height entries, row after row: the column and the row of the
    /// source of each pixel, rounded half up when they are used. Called with the size of the picture and, for
    /// planar streams, with half of it: the chroma planes are bent like a small picture of their own. Either
    /// size may be 0.
    virtual void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) = 0;

  protected:
    ~CSpecialEffectFilter_IppDistortion() = default;

  private:
    GatherMap BuildMap(int32_t width, int32_t height, int32_t pixelBytes);

    void ProcessPlanar(const ImageRecord& image);
    void ProcessPacked(uint8_t* pixels);

    GatherMap HalfMap;             ///< for the chroma planes
    GatherMap FullMap;             ///< for luma, or for packed pixels
    std::vector<uint8_t> Scratch;  ///< the bent picture, plane after plane
    StreamDescription Stream{};
};

#endif
