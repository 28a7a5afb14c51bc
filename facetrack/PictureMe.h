// Picture Me: snapshots of the tracked face fly off to a column of thumbnails at the right edge.
#ifndef SPECIALEFFECTS_FACETRACK_PICTUREME_H
#define SPECIALEFFECTS_FACETRACK_PICTUREME_H

#include <memory>
#include <string>
#include <vector>

#include "facetrack/FaceDetector.h"
#include "facetrack/PictureTexture.h"
#include "framework/EffectBase.h"

/// One picture moves at a time; when it has landed, the next starts at once if a face is still known. Slots
/// are reused in a ring. `Configure` reads the cascade from the data file haar.txt; if it is missing or
/// invalid, no faces are found. `LoadSettings` reads the host's own cascade and starts over. "Picture Size"
/// applies from the next picture on. Only planar frames are processed, though the tracker examines every
/// frame first.
class CPictureMeSpecialEffectFilter final
    : public EffectBase<CPictureMeSpecialEffectFilter, CROISpecialEffectFilter> {
  public:
    static constexpr const char* DisplayName = "Picture Me";
    static std::span<const Property<CPictureMeSpecialEffectFilter>> Properties();

    ResultCode Configure(StreamDescription* description) override;
    using EffectBase::LoadSettings;
    ResultCode LoadSettings(SettingsRecord* settings) override;
    ResultCode ProcessFrame(FrameRecord* frame) override;
    /// A picture starts from the region, if there is one and none is on its way. The region is not changed;
    /// one that lies far out of any frame starts nothing.
    ResultCode ProcessRegion(FrameRecord* frame, RegionRecord* region) override;
    ResultCode Shutdown() override;

  private:
    static constexpr const char* CascadePath = "haar.txt";

    template <class Operation>
    ResultCode Report(Operation operation);
    void StartDetector(const char* path);
    void ReleaseWorkspace();
    RegionRect TrackFace(uint8_t* plane);
    void Layout(bool keepCount);
    void SetTextureCount(int32_t count);
    void PlaceSlots();
    ResultCode DrawPictures(FrameRecord* frame, const RegionRecord* region);
    bool AdjustRegion(RegionRect& rect) const;
    void StartPicture(const PlaneSet& frame, RegionRect rect);

    StreamDescription Stream{};
    bool Configured = false;
    std::vector<std::unique_ptr<CPictureTexture>> Textures;  ///< in slot order
    size_t CurrentTexture = 0;                               ///< the one that moves or moves next
    bool Animating = false;
    int32_t ThumbWidth = 48, ThumbHeight = 48;
    int32_t AppliedPictureSize = 32;  ///< what `Textures` was built for
    int32_t PictureSize = 32;         ///< percent of the frame's height
    int32_t Speed = 5;
    int32_t RotationSpeed = 1;
    int32_t TexturesNumber = 0;
    int32_t MaxTextures = 0;  ///< how many fit in the frame's height
    CFaceDetector Detector;
    int32_t DetectorWidth = 0, DetectorHeight = 0;
};

#endif
