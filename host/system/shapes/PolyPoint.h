#pragma once

#include "system/base/MxGeometry.h"
#include "system/base/Types.h"

namespace Marlox {

/// A position or a distance in normalised image coordinates: 0 to 1 across width and height, y
/// upwards.
using ShapePlace = MxPointT<double>;

/// What holds for one point of a shape, in all of its keys.
enum PolyPointFlag : u32 {
    PPF_Linear = 0x01, // a corner: the curve runs straight into it and out of it, without handles
    PPF_Broken = 0x02, // its handles move one by one
    PPF_Locked = 0x04, // can be neither moved nor deleted
    PPF_Tagged = 0x08, // its id is shown
    PPF_Gap = 0x10,    // the segment behind it is no part of the shape's curve
};

/// What a pen told where the point was drawn. A channel that was not recorded is 0.
struct PenSample {
    float time = 0.0f;     // seconds since the stroke began
    float pressure = 0.0f; // 0 to 1
    float height = 0.0f;   // above the tablet, as the pen counts it
    float angleXY = 0.0f;  // direction in which the pen leans, degrees
    float angleZ = 0.0f;   // how far it leans, degrees
    float rotation = 0.0f; // about its own axis, degrees

    friend bool operator==(const PenSample&, const PenSample&) = default;
};

/// One point of a shape. Of a Bezier shape the curve runs through it along its handles; of a
/// B-spline it is a control vertex; a cardinal spline runs through it without handles.
struct PolyPoint {
    double x = 0.0; // normalised image coordinates
    double y = 0.0;
    // The handles' ends less the point; (0, 0): none. Of a Bezier shape alone.
    double inX = 0.0;
    double inY = 0.0;
    double outX = 0.0;
    double outY = 0.0;
    /// How far the curve is drawn towards the polygon of the points, 0 to 1. Not of a Bezier shape.
    double tension = 0.0;
    u32 flags = 0; // of PolyPointFlag
    /// Tells the point from the others of its shape, for good: edits of the shape never change it.
    /// 0: not given yet.
    u32 id = 0;
    PenSample pen;

    ShapePlace Place() const { return {x, y}; }
    ShapePlace In() const { return {x + inX, y + inY}; } // the end of the handle
    ShapePlace Out() const { return {x + outX, y + outY}; }
    bool Has(u32 which) const { return (flags & which) == which; }
    void Set(u32 which, bool on) { flags = on ? flags | which : flags & ~which; }

    friend bool operator==(const PolyPoint&, const PolyPoint&) = default;
};

/// A point of a shape at one of its keys.
struct KeyPoint {
    int index = 0;     // of the point, from 0
    double time = 0.0; // of the key, in frames

    friend bool operator==(const KeyPoint&, const KeyPoint&) = default;
};

} // namespace Marlox
