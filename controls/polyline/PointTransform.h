#pragma once

#include "system/shapes/PolyPoint.h"

namespace Marlox {

/// Puts a point elsewhere with its handles: `place` maps places, `vector` the distances between
/// them.
template <class Place, class Vector>
void TransformPoint(PolyPoint& point, const Place& place, const Vector& vector)
{
    const ShapePlace at = place(point.Place());
    const ShapePlace in = vector(ShapePlace(point.inX, point.inY));
    const ShapePlace out = vector(ShapePlace(point.outX, point.outY));
    point.x = at.x;
    point.y = at.y;
    point.inX = in.x;
    point.inY = in.y;
    point.outX = out.x;
    point.outY = out.y;
}

} // namespace Marlox
