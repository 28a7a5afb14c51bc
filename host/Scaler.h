// Scales pictures and converts between their formats.
#ifndef SPECIALEFFECTS_HOST_SCALER_H
#define SPECIALEFFECTS_HOST_SCALER_H

#include "Libav.h"

namespace host {

class Scaler {
  public:
    /// Writes `from` into the planes of `to`, in the size and the format that `to` has. RGB becomes YUV by
    /// the matrix of `to`, and YUV becomes RGB by that of `from`, or by the one of its height where none is
    /// stated; ranges are converted. Throws Failure.
    void Convert(const AVFrame& from, AVFrame& to);

  private:
    /// What the scaler is set up for.
    struct Setting {
        int fromWidth, fromHeight, fromFormat, toWidth, toHeight, toFormat;
        AVColorSpace fromMatrix, toMatrix;
        bool fromFull, toFull;

        bool operator==(const Setting&) const = default;
    };

    void SetUp(const Setting& setting);

    Setting setting_{};
    ScalerPtr scaler_;
};

/// Copies a picture in planar YUV 4:2:0 turned clockwise by a number of quarters; for odd turns `to` has the
/// sides exchanged.
void CopyTurned(const AVFrame& from, int quarterTurns, AVFrame& to);

}  // namespace host

#endif
