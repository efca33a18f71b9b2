#pragma once

#include "system/shapes/PolyLine.h"

#include <span>
#include <vector>

namespace Marlox {

/// A B-spline or a cardinal spline while it is fitted, in the units of the error.
struct SplineForm {
    bool isCardinal = false;
    bool closed = false;
    std::vector<ShapePlace> at; // vertices, or points
    std::vector<double> tension;
    std::vector<u8> fixed; // those that stay where they are

    int Segments() const { return int(at.size()) - (closed ? 0 : 1); }
    /// The same curve as the shapes have.
    CurveSegment Segment(int index) const;
};

/// A place that the curve is to pass, and the parameter (segment and part of it) where.
struct SplineTarget {
    ShapePlace at;
    double parameter = 0.0;
    double weight = 1.0;
};

/// Moves the vertices that are free to where the sum of the squared distances at the targets'
/// parameters is least.
void SolveSpline(SplineForm& spline, std::span<const SplineTarget> targets);
/// Moves the parameters to where the curve is nearest, from where they are; the largest distance.
/// Where it is more than `enough`, the whole segment is searched.
double ProjectTargets(const SplineForm& spline, std::span<SplineTarget> targets, double enough);
/// Both in turn, until the distance is no more than `error` or no longer falls; the distance.
double FitSpline(SplineForm& spline, std::span<SplineTarget> targets, double error);

} // namespace Marlox
