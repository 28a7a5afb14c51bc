// Finds upright faces in a grey plane, and follows them from frame to frame.
//
// The scales at which faces are looked for are cut into four groups of about equal work, one for each of four
// successive frames. Hits are collected over the four and then condensed into rectangles.
#ifndef SPECIALEFFECTS_FACETRACK_FACEDETECTOR_H
#define SPECIALEFFECTS_FACETRACK_FACEDETECTOR_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "facetrack/Cascade.h"
#include "facetrack/HitStore.h"
#include "imaging/Plane8u.h"
#include "imaging/Prim.h"
#include "imaging/ResizeAxis.h"

struct CFaceRect {
    int32_t x, y, width, height;
};

struct CScaleEntry {
    float scale;  ///< frame pixels a scaled pixel
    int32_t scaledWidth, scaledHeight;
    int32_t group;  ///< 0 to 3; one above never runs
};

class CFaceDetector {
  public:
    static constexpr int32_t kFramesInCycle = 4;
    /// Limit on the work of the stages in a frame, about 50 ms, so that no cascade stalls it. A unit is a
    /// window tried or a rectangle summed in one. Trained cascades need a hundredth of it.
    static constexpr int64_t kMostFrameWork = int64_t{1} << 24;

    /// The cascade that the next `Initialize` reads; an empty path means the data file haar.txt. Null is
    /// ignored.
    void SetCascadePath(const char* path);

    /// Reads the cascade and makes everything for planes of this size. False, with one line on the standard
    /// error stream, when the cascade cannot be used or does not fit the frame; the detector then finds
    /// nothing.
    [[nodiscard]] bool Initialize(int32_t frameWidth, int32_t frameHeight);

    /// Releases what `Initialize` allocated, and forgets the faces.
    void ReleaseCascade();

    /// One frame: looks for faces at a quarter of the scales and, after every fourth frame, renews the list.
    /// Then outlines the known faces in the plane. `plane` has the size that `Initialize` was given; one of
    /// another size is not searched.
    void TrackFrame(CPlane8u& plane);

    /// The largest face of the newest cycle, or of the cycle before if the newest has none; all zero if
    /// neither has one.
    CFaceRect GetFace() const;

    /// Outlines every face in white, with all four sides clamped to the plane. A face wholly outside the
    /// plane is left out.
    void DrawFaces(CPlane8u& plane) const;

    /// One pass at one scale, its hits collected. 0, or -1 when a primitive failed or a stage would exceed
    /// `kMostFrameWork`.
    [[nodiscard]] int32_t DetectAtScale(const CPlane8u& plane, float scale);

    /// Marks the edges of a picture: type 0 by 3 by 3 Sobel, 1 by 5 by 5 Sobel, 2 by 3 by 3 Scharr gradients.
    /// 0, the status of a primitive, or -2 for another type.
    [[nodiscard]] PrimStatus MakeEdgeMask(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                          int32_t width, int32_t height, int32_t gradientType);

    /// Condenses clusters of hits into `faces`; the former list becomes `previousFaces`.
    void MergeFaces(const CHitStore& store);

    void BuildScales(int32_t frameWidth, int32_t frameHeight);

    const std::vector<CScaleEntry>& Scales() const { return scales; }
    const std::vector<CFaceRect>& Faces() const { return faces; }
    const std::vector<CFaceRect>& PreviousFaces() const { return previousFaces; }
    const CHitStore* Hits() const { return hitStore.get(); }
    int32_t MinFaceSize() const { return minFaceSize; }
    /// Work of the stages in the last frame, in units of `kMostFrameWork`.
    int64_t FrameWork() const { return frameWork; }

  private:
    void AddHits(float scale);
    std::unique_ptr<resize::Plan> PlanScale(float scale) const;
    bool ScalePicture(const CPlane8u& plane, float scale, CPlane8u& scaled);
    /// Adds to the frame's work; false, without adding, where that would exceed `kMostFrameWork`.
    bool Spend(int64_t work);

    Cascade cascade;
    float mergeRadius = 5.0F;  ///< distance of centres that joins hits
    float sizeRatio = 1.3F;    ///< how much larger a hit may be than the cluster member it joins
    int32_t minNeighbours = 1;
    std::unique_ptr<CHitStore> hitStore;    ///< of the running cycle
    std::unique_ptr<CHitStore> groupStore;  ///< clusters that `MergeFaces` joins
    int32_t minFaceSize = 37;
    int32_t maxFaceSize = 0;  ///< 0: the frame's width
    int32_t frameWidth_ = 0, frameHeight_ = 0;

    // For one pass; as large as the smallest scale makes its picture.
    int32_t tableWidth = 0, tableHeight = 0;  ///< entries of the two integral tables
    std::vector<int32_t> sumTable;
    std::vector<double> sqrTable;
    std::vector<float> normPlane;
    CPlane8u candidateMask;
    CPlane8u scaledPlane;
    std::vector<int16_t> gradients;
    std::vector<uint8_t> edgeBuffer;

    std::vector<CScaleEntry> scales;
    std::vector<std::unique_ptr<resize::Plan>> scalePlans;  ///< for each of `scales`; null makes no picture
    std::vector<CFaceRect> faces, previousFaces;
    int32_t phase = 0;  ///< frame of the cycle, 0 to 3
    int64_t frameWork = 0;
    std::string cascadePath;
};

#endif
