#pragma once

#include "system/shapes/FitStroke.h"

#include <optional>

namespace Marlox {

/// A direction at an end of a piece; none: free.
using Direction = std::optional<ShapePlace>;

/// Fits one Bezier segment to places between two of them.
class PieceFit {
public:
    PieceFit(std::span<const FitPlace> places, double error) : places_(places), error_(error) {}
    /// With the directions at its ends, where they are given, pointing into the piece. False: it is
    /// further than the error from a place.
    bool Fit(int from, int to, const Direction& start, const Direction& end, CurveSegment& curve);

private:
    const FitPlace& Place(int i) const { return places_[std::size_t(i)]; }
    void Spread(int from, int to);
    CurveSegment Solve(const Direction& start, const Direction& end) const;
    bool IsSound(const CurveSegment& curve) const;
    double Project(const CurveSegment& curve);
    bool HoldsForAll(const CurveSegment& curve) const;

    std::span<const FitPlace> places_;
    double error_;
    int from_ = 0;
    int to_ = 0;
    std::vector<int> used_;  // places between from_ and to_, all or some of them
    std::vector<double> at_; // their parameters
};

} // namespace Marlox
