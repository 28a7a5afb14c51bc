// Base of the effects that distort a picture through a fixed table.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_IPPDISTORTION_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_IPPDISTORTION_H

#include <vector>

#include "framework/SpecialEffectFilter.h"
#include "imaging/IndexGather.h"

/// The effect's `BuildRemapTable` says where each pixel comes from. The base calls it once for each stream
/// and remaps every frame, planar or packed, with the nearest source pixel and no interpolation.
///
/// A pixel whose source lies outside the picture becomes 0, or 128 in a chroma plane.
class CSpecialEffectFilter_IppDistortion : public CSpecialEffectFilter {
  public:
    ResultCode Configure(StreamDescription* description) override;

    /// Reports a missing workspace (kFailure) before a missing plane (kInvalidArgument). Writes no more of a
    /// plane of a planar frame than the size that the frame states.
    ResultCode ProcessFrame(FrameRecord* frame) override;

    ResultCode Shutdown() override;

    /// Slot 19. Fills two tables of width * height entries, row by row: the source column and source row of
    /// each pixel, rounded half up when used. Called with the size of the picture and, for planar streams,
    /// with half of it for the chroma planes, which are distorted like a small picture of their own. Either
    /// size may be 0.
    virtual void BuildRemapTable(float* xMap, float* yMap, int32_t width, int32_t height) = 0;

  protected:
    ~CSpecialEffectFilter_IppDistortion() = default;

    /// `Configure` without its guard. Throws std::bad_alloc.
    ResultCode Build(const StreamDescription* description);

  private:
    GatherMap BuildMap(int32_t width, int32_t height, int32_t pixelBytes);

    void ProcessPlanar(const ImageRecord& image);
    void ProcessPacked(uint8_t* pixels);

    GatherMap HalfMap;             ///< for the chroma planes
    GatherMap FullMap;             ///< for luma, or for packed pixels
    std::vector<uint8_t> Scratch;  ///< the remapped picture, plane after plane
    StreamDescription Stream{};
};

#endif
