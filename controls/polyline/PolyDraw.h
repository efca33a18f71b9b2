#pragma once

#include "controls/polyline/PolyView.h"

namespace Marlox {

class PolyLineControl;

/// Draws the polyline overlay: onion skins, above them hulls, curves and handle lines of both
/// polygons, the active one last, and above all lines the marks: handles, points, selected points,
/// what the pointer is on.
void DrawPolyLines(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view);

// Onion skins (PolySkins.cpp).
void DrawSkins(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view);
MxColor PrevSkinColor(); // of the look
MxColor NextSkinColor();
/// The time of the skin under the cursor, where clicks on skins set the time; else TimeNone.
double SkinTimeAt(const PolyLineControl& control, const PolyView& view);

// The shape box (PolyShapeBox.cpp): a frame about the selected points, or about all.
void DrawShapeBoxFrame(const PolyLineControl& control, OverlayPainter& painter,
                       const PolyView& view);
void DrawShapeBoxKnobs(const PolyLineControl& control, OverlayPainter& painter,
                       const PolyView& view);
bool IsOnShapeBox(const PolyLineControl& control, const PolyView& view);

/// What a click would append, or close the shape with, while the pointer is in the view
/// (PolyClickAppend.cpp).
void DrawNextSegment(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view);

// Track points (PolyTrackPoints.cpp).
void DrawTrackPoints(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view);
bool IsOnTrackPoint(const PolyLineControl& control, const PolyView& view);

} // namespace Marlox
