// Maps that depend on the distance from a centre: quick to make, and equal to the formula that defines them.
//
// Each pixel's offset from the centre is scaled and turned by amounts that depend on its length alone. A
// formula for them takes several calls of the C library. Here polynomials stand in for it, and the four
// pixels that mirror each other share one evaluation. Where the error of the polynomials could change a
// rounded coordinate, the formula itself decides.
#ifndef SPECIALEFFECTS_EFFECTS_DISTORTION_RADIALMAP_H
#define SPECIALEFFECTS_EFFECTS_DISTORTION_RADIALMAP_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

/// The offset (dx, dy) becomes (dx * along - dy * across, dy * along + dx * across).
struct RadialTurn {
    double along, across;
};

/// The turns at all distances from 0 to `end`, as polynomials.
class RadialFunction {
  public:
    RadialFunction(double end, const std::function<RadialTurn(double)>& turnAt);

    double end() const { return end_; }

    /// Turns, and the error that each may have.
    struct Row {
        std::vector<double> along, across, error;
        explicit Row(size_t count) : along(count), across(count), error(count) {}
    };

    /// The turns of the offsets (firstX + i, dy), for i below `count`. Beyond the end they are those at the
    /// end.
    void Evaluate(double firstX, double dy, size_t count, Row& row) const;

    static constexpr size_t kTerms = 8;

    /// One of many equal parts of the range, with the coefficients of the rising powers of -1 to 1.
    struct Piece {
        std::array<double, kTerms> along, across;
        double error;
    };

  private:
    double end_;
    std::vector<Piece> pieces_;
};

/// Where a map has its centre, a whole or half number, and what is added to the turned offsets.
struct RadialFrame {
    int32_t width, height;
    double centerX, centerY;
    double addX, addY;
};

/// Source coordinates of one pixel or, as arrays, of a row.
template <class Number>
struct SourcePoint {
    Number x, y;
};

/// Calls use(y, x, sources) for each row that the function's disc reaches: `sources` are those of the pixels
/// from column x on. They include the disc and some pixels beyond it, which turn like the rim, provided that
/// the formula gives the same there. Rows come in any order. `exact(x, y)` is the formula.
///
/// Coordinates are truncated towards 0 if `Number` is int32_t, and rounded to the nearest if it is float.
template <class Number>
void MapRadially(const RadialFrame& frame, const RadialFunction& function,
                 const std::function<SourcePoint<Number>(int32_t x, int32_t y)>& exact,
                 const std::function<void(int32_t y, int32_t x, std::span<const SourcePoint<Number>>)>& use);

#endif
