#pragma once

#include "system/shapes/PolyLine.h"

#include <span>
#include <vector>

namespace Marlox {

/// Where a segment comes nearest to a place.
struct SegmentFoot {
    /// The distance's square, in units of the scale; infinite: the segment has places that are no
    /// numbers, or further away than any picture reaches.
    double square;
    double t; // how far along the segment; the first of equally near ones
};

/// The nearest place of one cubic to `at`, with distances measured in units of `scale` for each
/// axis. The least of all, not only a near one, to about 1e-12 of the segment's size: the squared
/// distance is a polynomial of sixth degree, and parts of the segment whose Bernstein coefficients
/// all lie above what was found are left out.
MARLOXSYSTEM_EXPORT SegmentFoot NearestOnSegment(const CurveSegment& segment, ShapePlace at,
                                                 ShapePlace scale);

} // namespace Marlox
