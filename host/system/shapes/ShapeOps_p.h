#pragma once

#include "system/shapes/FitStroke.h"
#include "system/shapes/ShapeOps.h"
#include "system/shapes/SplineFit.h"

namespace Marlox {

/// Of one kind, with as many points, all closed or all open, and nowhere so far away that
/// lengths overflow.
bool AreAlike(std::span<const Ref<PolyLine>> keys);
bool IsBezier(const PolyLine& shape);
/// The kind, scaled.
SplineForm FormOf(const PolyLine& shape, ShapePlace scale);
/// A copy of a shape with other points.
Ref<PolyLine> WithPoints(const PolyLine& shape, std::vector<PolyPoint> points);

/// Places of a curve, `perSegment` for each segment, scaled, `rounds` times around, and the end.
std::vector<FitPlace> PlacesOf(const PolyLine& shape, ShapePlace scale, int perSegment, int rounds);
CurveSegment Scaled(const CurveSegment& segment, ShapePlace scale);

/// Targets on the curve of a shape for a spline whose vertices `kept` are vertices of the shape,
/// ascending, with `between` new ones behind each of them.
std::vector<SplineTarget> TargetsFor(const PolyLine& shape, ShapePlace scale,
                                     std::span<const int> kept, std::span<const int> between);

} // namespace Marlox
