#pragma once

#include "system/shapes/PolyLine.h"

#include <span>
#include <vector>

namespace Marlox {

/// A place of a freehand stroke and what the pen told there.
struct StrokeSample {
    ShapePlace at;
    PenSample pen;
};

struct FitOptions {
    /// How far a sample may lie from the curve, in units of `scale`: pixels, of the image or the
    /// view. Above 0. Hands and mice shake by about one.
    double error = 1.5;
    ShapePlace scale{1.0, 1.0}; // such units for one unit of the samples' coordinates
    /// The stroke's ends are joined: what goes on beyond its beginning is cut off, and a gap is
    /// closed over the last part of the stroke.
    bool closed = false;
    double cornerAngle = 40.0; // degrees; where the stroke turns by as much at once is a corner
};

/// The points of a Bezier shape along a stroke: few of them, with handles in line but at corners.
/// Every sample lies within the error of the curve, but for what the closing of a stroke moves. The
/// curve begins and ends in the first and last sample. Samples may be uneven, repeated, or no
/// numbers (left out). Each point has the pen's report of the sample next to it. One sample gives
/// one point, none none.
MARLOXSYSTEM_EXPORT std::vector<PolyPoint> FitBezier(std::span<const StrokeSample> stroke,
                                                     const FitOptions& options);
/// The same as vertices of a B-spline; corners have PPF_Linear.
MARLOXSYSTEM_EXPORT std::vector<PolyPoint> FitBSpline(std::span<const StrokeSample> stroke,
                                                      const FitOptions& options);
/// The same as points of a cardinal spline.
MARLOXSYSTEM_EXPORT std::vector<PolyPoint> FitCardinal(std::span<const StrokeSample> stroke,
                                                       const FitOptions& options);

} // namespace Marlox
