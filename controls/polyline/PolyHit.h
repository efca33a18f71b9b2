#pragma once

#include "system/shapes/PolyPoint.h"

namespace Marlox {

/// The polygons of a shape: the main one, which is the inner one of a double polygon, and the outer
/// one.
enum Polygon : int { InnerPolygon = 0, OuterPolygon = 1, PolygonCount = 2 };

constexpr int OtherPolygon(int polygon)
{
    return 1 - polygon;
}

/// As tips and menus name it.
constexpr const char* NameOfPolygon(int polygon)
{
    return polygon == OuterPolygon ? "Outer" : "Inner";
}

/// What lies under the cursor.
struct PolyHit {
    enum Kind { Nothing, Point, InHandle, OutHandle, Curve };
    Kind kind = Nothing;
    int polygon = InnerPolygon;
    int index = -1;   // of the point; of the segment
    double t = 0.0;   // how far along the segment
    ShapePlace place; // on the curve, the shape's coordinates

    bool Any() const { return kind != Nothing; }
    bool IsPoint() const { return kind == Point; }
    bool IsHandle() const { return kind == InHandle || kind == OutHandle; }
    friend bool operator==(const PolyHit&, const PolyHit&) = default;
};

} // namespace Marlox
