// One 8-bit image plane, and operations on whole planes.
//
// Rows are packed: the row step of every plane equals its width. Nothing here reads or writes outside the
// planes it is given. Where sizes do not match, an operation is clipped to the common part or leaves the
// destination unchanged, as each states. Empty planes (no memory, or a size below 1) are never changed.
// Effects are defined in these operations; where all of them use a faster form, the plain one has no caller.
#ifndef SPECIALEFFECTS_IMAGING_PLANE8U_H
#define SPECIALEFFECTS_IMAGING_PLANE8U_H

#include <cstddef>
#include <cstdint>

/// A plane of unsigned bytes that owns its memory, or is a view of other memory: a plane of the host's
/// frame, a part of another buffer. A view must not outlive the memory behind it; effects make new views
/// for every frame.
class CPlane8u {
  public:
    CPlane8u() = default;
    /// An owned plane of zeros; empty when the allocation fails or a size is below 1.
    CPlane8u(int32_t planeWidth, int32_t planeHeight) {
        static_cast<void>(Allocate(planeWidth, planeHeight));
    }
    /// An owned copy of the pixels, also of a view. The copy of an empty plane is empty.
    /// Throws std::bad_alloc when the allocation fails.
    CPlane8u(const CPlane8u& other);
    CPlane8u(CPlane8u&& other) noexcept { Swap(other); }
    CPlane8u& operator=(CPlane8u other) noexcept {
        Swap(other);
        return *this;
    }
    ~CPlane8u() { Release(); }

    /// A view of `data`.
    static CPlane8u Over(uint8_t* data, int32_t width, int32_t height) {
        CPlane8u plane;
        plane.Attach(data, width, height);
        return plane;
    }

    /// Becomes a view of `planeData`. Memory that the plane owned is released first.
    void Attach(uint8_t* planeData, int32_t planeWidth, int32_t planeHeight);

    /// Allocates zeros; memory that the plane owned is released first. False when the allocation
    /// fails, a size is below 1 or their product is above 2^31 - 1: `data` is then null, the other fields are
    /// untouched.
    [[nodiscard]] bool Allocate(int32_t planeWidth, int32_t planeHeight);

    /// Frees `data` if it is owned; all fields become zero.
    void Release();

    void Swap(CPlane8u& other) noexcept;

    bool Empty() const { return data == nullptr || width < 1 || height < 1; }
    /// Bytes of the plane; 0 if it is empty.
    size_t Size() const { return Empty() ? 0 : static_cast<size_t>(width) * static_cast<size_t>(height); }
    uint8_t* Row(int32_t y) { return data + static_cast<ptrdiff_t>(y) * width; }
    const uint8_t* Row(int32_t y) const { return data + static_cast<ptrdiff_t>(y) * width; }

    void Fill(uint8_t value);

    /// Copies bytes in memory order, as many as the smaller of the two planes has. The shapes are not
    /// compared.
    void CopyPixels(const CPlane8u& src);

    /// Copies `src` to (x, y) of this plane; pixels outside this plane are clipped.
    void Paste(const CPlane8u& src, int32_t x, int32_t y);

    /// Fills a ring of `thickness` pixels along the four edges; the whole plane if it has no interior.
    void FillBorder(int32_t thickness, uint8_t value);

    /// Mean of all pixels, truncated; 0 for an empty plane.
    uint8_t MeanByte() const;

    /// Copies `src` to (border, border) and repeats its edges on all sides. A plane that does not hold
    /// `src` and the left and upper border stays unchanged.
    void CopyWithBorder(const CPlane8u& src, int32_t border);

    /// Fills this plane from the rectangle of `src` whose corner is (x, y). Pixels for which `src` has no
    /// counterpart stay as they are.
    void CopyRegion(const CPlane8u& src, int32_t x, int32_t y);

    /// Scales the given rectangle of `src` to this whole plane, linearly. Where the rectangle reaches past
    /// the right or lower edge of `src`, the pixels that would show what is missing stay as they are; a
    /// rectangle that starts outside `src` does nothing. Allocates, and throws std::bad_alloc when that
    /// fails; frames use a `ResizePlan`.
    void ResizeRegion(const CPlane8u& src, int32_t regionWidth, int32_t regionHeight, int32_t x, int32_t y);

    /// Overwrites a ring of `border` pixels with the nearest pixels inside it. Does nothing where no pixel
    /// is left inside.
    void ReplicateBorder(int32_t border);

    /// max(this - src, 0) * 16, saturated. Needs planes of the same size, and does nothing otherwise.
    CPlane8u& SubtractBoost(const CPlane8u& src);

    /// 255 minus each pixel.
    void Invert();

    /// Mirrors in place: axis 0 upside down, 1 left to right, 2 both.
    void Mirror(int32_t axis);

    /// Reads an uncompressed bitmap of 8 bits a pixel. The pixel bytes are grey levels, the palette
    /// is skipped, rows have no padding, and the file's last row becomes row 0. A plane of another
    /// size than the bitmap's is allocated anew. False, with the plane untouched, for a file that cannot be
    /// read, is no such bitmap, is wider or higher than 16384 or holds fewer pixels than it says. Throws
    /// std::bad_alloc, with the plane untouched, when the allocation fails.
    [[nodiscard]] bool LoadBmp(const char* path);

    uint8_t* data = nullptr;
    int32_t width = 0;  ///< pixels; also the row step in bytes
    int32_t height = 0;
    bool owned = false;  ///< whether `data` is released with the plane

  private:
    [[nodiscard]] bool AllocateUninitialized(int32_t planeWidth, int32_t planeHeight);
};

/// An owned plane of zeros, for an effect's workspace: `Scratch = NewPlane(Width() / 2, Height() / 2);` Empty
/// where a size is below 1, as half of a tiny frame's is. Throws std::bad_alloc when the allocation
/// fails.
CPlane8u NewPlane(int32_t width, int32_t height);

/// Throws std::bad_alloc unless `allocated`, so that the host learns of a missing workspace.
/// `Require(Scratch.Allocate(width, height));`
void Require(bool allocated);

// ---- filters ---------------------------------------------------------------------------------------
//
// They work on the interior, which leaves a ring of r pixels at the edges, r being half the mask. The
// source's size counts; a destination that is smaller in either direction stays unchanged. Source and
// destination are different planes.

/// What the ring of the destination holds afterwards: what it held before, or the source's pixels. The ring
/// of a plane without interior is all of it.
enum class FilterRing { kKept, kCopied };

/// Copies the ring of `thickness` pixels between planes of one size; planes of different sizes stay
/// unchanged.
void CopyRing(const CPlane8u& src, CPlane8u& dst, int32_t thickness);

/// Gaussian 3 by 3 (r 1) and 5 by 5 (r 2).
void FilterGauss3(const CPlane8u& src, CPlane8u& dst, FilterRing ring = FilterRing::kKept);
void FilterGauss5(const CPlane8u& src, CPlane8u& dst, FilterRing ring = FilterRing::kKept);

/// Height of the working memory of the filters in place.
inline constexpr int32_t kBandHeight = 20;

/// The Gaussian filters in place. `scratch` is as wide as the plane and `kBandHeight` high, and holds the
/// rows at work as they were. With a scratch of another size the plane stays unchanged.
void FilterGauss3InPlace(CPlane8u& plane, CPlane8u& scratch);
void FilterGauss5InPlace(CPlane8u& plane, CPlane8u& scratch);

/// Mean of 3 by 3 (r 1) and of 5 by 5 (r 2).
void FilterLowpass3(const CPlane8u& src, CPlane8u& dst, FilterRing ring = FilterRing::kKept);
void FilterLowpass5(const CPlane8u& src, CPlane8u& dst, FilterRing ring = FilterRing::kKept);

/// Median of 5 by 5 (r 2).
void FilterMedian5(const CPlane8u& src, CPlane8u& dst);

/// Mean of maskSize by maskSize in place (r = maskSize / 2). The mask has to be smaller than the interior.
/// Allocates, and throws std::bad_alloc when that fails; frames use a `BoxFilter`.
void FilterBoxInPlace(CPlane8u& plane, int32_t maskSize);

/// Maximum of 3 by 3 (r 1). The form in place allocates, and throws std::bad_alloc when that fails.
void Dilate3(CPlane8u& plane);
void Dilate3(const CPlane8u& src, CPlane8u& dst, FilterRing ring = FilterRing::kKept);

/// Minimum of 3 by 3 (r 1).
void Erode3(const CPlane8u& src, CPlane8u& dst);

// ---- grey levels -----------------------------------------------------------------------------------

/// Spreads the grey levels: each becomes the share of pixels that are no brighter, times 255, truncated.
void EqualizeHistogram(CPlane8u& plane);

/// Sum of all bytes, 0 for an empty plane: modulo 2^32, and whole.
uint32_t SumPixels(const CPlane8u& plane);
uint64_t SumPixelsWide(const CPlane8u& plane);

/// x below `lo` becomes `loValue`, x above `hi` becomes `hiValue`; nothing is done for hi below lo.
void ThresholdPlane(CPlane8u& plane, uint8_t lo, uint8_t loValue, uint8_t hi, uint8_t hiValue);

// ---- geometry --------------------------------------------------------------------------------------

/// Scales all of `src` to all of `dst`, linearly; corners map to corners. Allocates, and
/// throws std::bad_alloc when that fails; frames use a `ResizePlan`.
void ResizePlane(const CPlane8u& src, CPlane8u& dst);

/// dst(x, y) = src(xMap(x, y), yMap(x, y)). The maps have one entry for each pixel of `dst`, row after row;
/// where an entry lies outside `src` the pixel stays as it was. Interpolation 1 is the nearest pixel, 2
/// linear.
void RemapPlane(const CPlane8u& src, const float* xMap, const float* yMap, CPlane8u& dst,
                int32_t interpolation);

/// Refraction: each interior pixel of `dst` is fetched from `src` at a distance that is the slope of `bump`
/// there, and brightened by the horizontal part of the slope. The upper, lower and left edge repeat their
/// neighbours; the last column is not written. Does nothing unless all three planes have one size, with both
/// sides above 1. `dst` is a plane of its own.
void DisplaceByGradient(const CPlane8u& bump, const CPlane8u& src, CPlane8u& dst);

/// Relief lighting: each interior pixel of `dst` is the brightness of a ball at the place that the slope of
/// `src`, less `bias`, points to; 0 beyond the ball. The outermost pixels of `dst` stay as they were. Does
/// nothing unless both planes have one size. `dst` is a plane of its own.
void ShadeByGradient(const CPlane8u& src, CPlane8u& dst, int32_t bias);

// ---- chance ----------------------------------------------------------------------------------------

struct PlanePoint {
    int32_t x, y;
};

/// A random pixel of the plane from two draws of `rand`, x first. (0, 0), after two draws, for an empty
/// plane.
PlanePoint RandomPoint(const CPlane8u& plane, int32_t (*rand)());

/// True with probability `p`: p * 10000 > rand() % 10000.
bool RandomChance(double p, int32_t (*rand)());

#endif
