#pragma once

#include "system/shapes/FitStroke.h"
#include "system/shapes/SplineFit.h"

namespace Marlox {

/// A part of a stroke between two corners, or a round one, with the spline that fits it.
struct SplinePiece {
    int from = 0;
    SplineForm form;
    std::vector<SplineTarget> targets; // for each place
};

/// Fits a spline to the places of a stroke between two of them, its corners or ends.
class SplinePieceFit {
public:
    SplinePieceFit(const FitStroke& stroke, bool isCardinal, double error, int from, int to);
    /// With as few segments as hold the error.
    SplinePiece Fit() const;
    /// With so many; false: it is further than the error from a place.
    bool Try(int segments, SplinePiece& piece) const;
    int Least() const { return stroke_.IsRound() ? 3 : 1; }
    int Most() const;

private:
    const FitStroke& stroke_;
    bool isCardinal_;
    double error_;
    int from_;
    int to_;
    std::vector<double> spread_;
};

/// The fewest segments, from `least` to `most`, for which `fits` (called with a number of them)
/// holds; it was called with what is returned last of those that do. Without any, `most`.
template <class Fits>
int FewestSegments(int least, int most, const Fits& fits)
{
    int good = least;
    while (!fits(good) && good < most)
        good = std::min(good + good / 2 + 1, most);
    int bad = good > least ? std::max((good - 1) * 2 / 3, least) : least - 1;
    while (good - bad > 1) {
        const int middle = bad + (good - bad) / 2;
        (fits(middle) ? good : bad) = middle;
    }
    return good;
}

} // namespace Marlox
