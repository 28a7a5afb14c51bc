#include "effects/distortion/RadialMap.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "imaging/PerLevel.h"

namespace {

constexpr size_t kPieces = 256;
constexpr size_t kTerms = RadialFunction::kTerms;

using Terms = std::array<double, kTerms>;

/// Row m holds the coefficients of the Chebyshev polynomial of degree m, of the first kind.
consteval std::array<Terms, kTerms> MakeChebyshev() {
    std::array<Terms, kTerms> rows{};
    rows[0][0] = 1;
    rows[1][1] = 1;
    for (size_t m = 2; m < kTerms; ++m) {
        for (size_t i = 0; i < kTerms; ++i) {
            rows[m][i] = (i > 0 ? 2 * rows[m - 1][i - 1] : 0.0) - rows[m - 2][i];
        }
    }
    return rows;
}

/// The polynomial through the values at the zeros of the Chebyshev polynomial of degree kTerms.
Terms Interpolate(const Terms& values) {
    static constexpr std::array<Terms, kTerms> kChebyshev = MakeChebyshev();
    Terms coefficients{};
    for (size_t m = 0; m < kTerms; ++m) {
        double sum = 0;
        for (size_t k = 0; k < kTerms; ++k) {
            sum += values[k] * std::cos(std::numbers::pi * static_cast<double>(m) *
                                        (static_cast<double>(k) + 0.5) / double{kTerms});
        }
        const double weight = sum * (m == 0 ? 1.0 : 2.0) / double{kTerms};
        for (size_t i = 0; i < kTerms; ++i) coefficients[i] += weight * kChebyshev[m][i];
    }
    return coefficients;
}

SE_INLINE double Polynomial(const double* coefficients, double t) {
    double value = coefficients[kTerms - 1];
    for (size_t i = kTerms - 1; i > 0; --i) value = value * t + coefficients[i - 1];
    return value;
}

SE_INLINE void EvaluateRow(const RadialFunction::Piece* pieces, double end, double firstX, double dy,
                           size_t count, double* SE_RESTRICT along, double* SE_RESTRICT across,
                           double* SE_RESTRICT error) {
    const double scale = double{kPieces} / end;
    for (size_t i = 0; i < count; ++i) {
        const double dx = firstX + static_cast<double>(static_cast<int32_t>(i));
        const double place = std::min(std::sqrt(dx * dx + dy * dy) * scale, double{kPieces});
        const int32_t index = std::min(static_cast<int32_t>(place), static_cast<int32_t>(kPieces) - 1);
        const double t = 2 * (place - index) - 1;
        const RadialFunction::Piece& piece = pieces[index];
        along[i] = Polynomial(piece.along.data(), t);
        across[i] = Polynomial(piece.across.data(), t);
        error[i] = piece.error;
    }
}

/// Maps the pixels of one row, of offsets firstX + i. Returns whether an error could change one of them; it
/// is marked in `doubtful`.
template <class Number>
SE_INLINE bool TurnRow(const RadialFrame& frame, double firstX, double dy, size_t count,
                       const double* SE_RESTRICT along, const double* SE_RESTRICT across,
                       const double* SE_RESTRICT error, SourcePoint<Number>* SE_RESTRICT sources,
                       uint8_t* SE_RESTRICT doubtful) {
    const double addX = frame.addX, addY = frame.addY;
    const double size = frame.width + frame.height;
    uint8_t any = 0;
    for (size_t i = 0; i < count; ++i) {
        const double dx = firstX + static_cast<double>(static_cast<int32_t>(i));
        const double x = dx * along[i] - dy * across[i] + addX;
        const double y = dy * along[i] + dx * across[i] + addY;
        const double margin = error[i] * size;
        const auto left = static_cast<Number>(x - margin), right = static_cast<Number>(x + margin);
        const auto upper = static_cast<Number>(y - margin), lower = static_cast<Number>(y + margin);
        sources[i] = {left, upper};
        doubtful[i] = static_cast<uint8_t>(left != right) | static_cast<uint8_t>(upper != lower);
        any |= doubtful[i];
    }
    return any != 0;
}

}  // namespace

RadialFunction::RadialFunction(double end, const std::function<RadialTurn(double)>& turnAt) : end_(end) {
    if (!(end > 0)) return;
    pieces_.resize(kPieces);
    const double half = 0.5 * end / double{kPieces};
    for (size_t i = 0; i < kPieces; ++i) {
        Piece& piece = pieces_[i];
        const double middle = static_cast<double>(2 * i + 1) * half;
        Terms along, across;
        for (size_t k = 0; k < kTerms; ++k) {
            const double t = std::cos(std::numbers::pi * (static_cast<double>(k) + 0.5) / double{kTerms});
            const RadialTurn turn = turnAt(middle + half * t);
            along[k] = turn.along;
            across[k] = turn.across;
        }
        piece = {Interpolate(along), Interpolate(across), 0};
        // The error is largest between the zeros and at the ends.
        double worst = 0;
        for (size_t k = 0; k <= kTerms; ++k) {
            const double t = std::cos(std::numbers::pi * static_cast<double>(k) / double{kTerms});
            const RadialTurn turn = turnAt(middle + half * t);
            worst = std::max({worst, std::abs(Polynomial(piece.along.data(), t) - turn.along),
                              std::abs(Polynomial(piece.across.data(), t) - turn.across)});
        }
        // Pieces beside a pole or with values that are not numbers leave everything to the formula.
        piece.error = 64 * (worst + 1e-15);
        if (!(piece.error < 1)) piece = {{}, {}, 1};
    }
}

void RadialFunction::Evaluate(double firstX, double dy, size_t count, Row& row) const {
    AtLevel<EvaluateRow>(pieces_.data(), end_, firstX, dy, count, row.along.data(), row.across.data(),
                         row.error.data());
}

template <class Number>
void MapRadially(const RadialFrame& frame, const RadialFunction& function,
                 const std::function<SourcePoint<Number>(int32_t x, int32_t y)>& exact,
                 const std::function<void(int32_t y, int32_t x, std::span<const SourcePoint<Number>>)>& use) {
    if (!(function.end() > 0) || frame.width < 1 || frame.height < 1) return;
    const auto width = static_cast<size_t>(frame.width);
    // The distances of the pixels from the vertical axis: whole numbers, or halves in between.
    const double nearest = frame.centerX - std::floor(frame.centerX);
    const auto axis =
        static_cast<int32_t>(std::ceil(frame.centerX));  // the first column right of it, or on it
    RadialFunction::Row quarter(width + 1), turns(width);
    std::vector<SourcePoint<Number>> sources(width);
    std::vector<uint8_t> doubtful(width);

    const auto mapRow = [&](int32_t y, int32_t first, size_t count) {
        const double dx = first - frame.centerX, dy = y - frame.centerY;
        if (AtLevel<TurnRow<Number>>(frame, dx, dy, count, turns.along.data(), turns.across.data(),
                                     turns.error.data(), sources.data(), doubtful.data())) {
            for (size_t i = 0; i < count; ++i) {
                if (doubtful[i] != 0) sources[i] = exact(first + static_cast<int32_t>(i), y);
            }
        }
        use(y, first, std::span<const SourcePoint<Number>>(sources).first(count));
    };

    for (int32_t y = 0; y < frame.height; ++y) {
        const double dy = y - frame.centerY;
        const auto mirrored = static_cast<int32_t>(2 * frame.centerY) - y;
        const bool hasMirror = mirrored >= 0 && mirrored < frame.height && mirrored != y;
        if (std::abs(dy) > function.end() || (hasMirror && mirrored < y)) continue;

        const double reach = std::sqrt(function.end() * function.end() - dy * dy);
        const auto first = static_cast<int32_t>(std::max(0.0, std::floor(frame.centerX - reach)));
        const auto last = static_cast<int32_t>(std::min(frame.width - 1.0, std::ceil(frame.centerX + reach)));
        if (first > last) continue;
        const auto count = static_cast<size_t>(last - first + 1);
        const auto left = static_cast<size_t>(std::clamp(axis - first, 0, static_cast<int32_t>(count)));
        // Column axis + i has the distance nearest + i; column axis - 1 - i, one less near to a whole axis.
        const size_t skipped = nearest == 0 ? 1 : 0;
        const size_t right = count - left;
        function.Evaluate(nearest, dy, std::max(left + skipped, right), quarter);
        const auto unfold = [&](const std::vector<double>& from, std::vector<double>& to) {
            const auto begin = from.begin() + static_cast<ptrdiff_t>(skipped);
            std::reverse_copy(begin, begin + static_cast<ptrdiff_t>(left), to.begin());
            std::copy_n(from.begin(), right, to.begin() + static_cast<ptrdiff_t>(left));
        };
        unfold(quarter.along, turns.along);
        unfold(quarter.across, turns.across);
        unfold(quarter.error, turns.error);
        mapRow(y, first, count);
        if (hasMirror) mapRow(mirrored, first, count);
    }
}

template void MapRadially(
    const RadialFrame&, const RadialFunction&, const std::function<SourcePoint<int32_t>(int32_t, int32_t)>&,
    const std::function<void(int32_t, int32_t, std::span<const SourcePoint<int32_t>>)>&);
template void MapRadially(const RadialFrame&, const RadialFunction&,
                          const std::function<SourcePoint<float>(int32_t, int32_t)>&,
                          const std::function<void(int32_t, int32_t, std::span<const SourcePoint<float>>)>&);
