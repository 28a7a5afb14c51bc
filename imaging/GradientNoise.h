// Gradient noise after Ken Perlin: a soft random field over the plane and over space, in doubles.
//
// The field is made from tables of random numbers. It lies roughly in -1..1, is 0 at every point with integer
// coordinates, and repeats every 256 units along each axis. Coordinates are meant to be above -4096; those of
// absurd size (2^62 and beyond, or not a number) count as 0.
#ifndef SPECIALEFFECTS_IMAGING_GRADIENTNOISE_H
#define SPECIALEFFECTS_IMAGING_GRADIENTNOISE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

class GradientNoise {
  public:
    /// Draws the tables: 1791 random numbers, from 0 up.
    explicit GradientNoise(int32_t (*rand)());

    double Noise2(double x, double y) const;

    double Noise3(double x, double y, double z) const;

    /// Sum of `octaves` noises: each octave divides the amplitude by `alpha` and multiplies the frequency by
    /// `beta`. 0 for `octaves` below 1.
    double Turbulence(double x, double y, double z, double alpha, double beta, int32_t octaves) const;

    /// The same for a row of points, faster: `row` holds their x, which their sums replace.
    void Turbulence(std::span<double> row, double y, double z, double alpha, double beta,
                    int32_t octaves) const;

  private:
    static constexpr size_t kPeriod = 256;
    static constexpr size_t kEntries = 2 * kPeriod + 2;

    // The permutation and the gradients. Entries 256 to 513 repeat the first 258, so that the sum of two
    // lattice numbers needs no wrap.
    std::array<int32_t, kEntries> p;
    std::array<std::array<double, 2>, kEntries> g2;
    std::array<std::array<double, 3>, kEntries> g3;
};

#endif
