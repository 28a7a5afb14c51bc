// Gradient noise after Ken Perlin: a soft random field over the plane and over space, in doubles.
//
// The field hangs on tables that are drawn from `rand` at the first call of `Noise2` or `Noise3` in the
// process (safely, whichever thread comes first) and stay the same from then on. It lies roughly within
// -1..1, is 0 at every point with integer coordinates, and repeats every 256 units along each axis.
// Coordinates are meant to be above -4096; those of absurd size (2^62 and beyond, or not a number) count as
// 0.
#ifndef SPECIALEFFECTS_IMAGING_GRADIENTNOISE_H
#define SPECIALEFFECTS_IMAGING_GRADIENTNOISE_H

#include <cstdint>

double Noise2(double x, double y);

double Noise3(double x, double y, double z);

/// Sum of `octaves` noises: each octave divides the amplitude by `alpha` and multiplies the frequency by
/// `beta`. 0 for `octaves` below 1, and then the tables are not touched.
double Turbulence(double x, double y, double z, double alpha, double beta, int32_t octaves);

#endif
