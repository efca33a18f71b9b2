#pragma once

#include "system/shapes/PolyLine.h"

#include <span>
#include <vector>

namespace Marlox {

/// All keys of an animated shape, or the one shape there is: of one kind, with as many points each.
/// Operations give new shapes in the same order and leave these as they are; an empty list where
/// they are not alike or there is nothing to do.
using ShapeList = std::vector<Ref<PolyLine>>;

/// How far a new curve may lie from the old one: in units of `scale` for each axis, pixels of the
/// image. Above 0.
struct ShapeError {
    double error = 1.0;
    ShapePlace scale{1.0, 1.0};
};

/// Leaves out selected points that the form does not need, the same ones in every key, and refits
/// the handles, or the selected vertices, that remain. In no key does the new curve leave the old
/// one by more than the error. Locked points, the ends of open shapes and the ends of gaps stay.
MARLOXSYSTEM_EXPORT ShapeList ReducePoints(std::span<const Ref<PolyLine>> keys,
                                           const SelMask& selected, const ShapeError& error);

/// `count` new points on each segment whose two points are selected. Bezier shapes keep their form,
/// as B-splines without tension do when all of their points are selected; others come as near as
/// they can.
MARLOXSYSTEM_EXPORT ShapeList Subdivide(std::span<const Ref<PolyLine>> keys,
                                        const SelMask& selected, int count, ShapePlace scale);

/// The same curves as Bezier shapes, exactly.
MARLOXSYSTEM_EXPORT ShapeList ToBezier(std::span<const Ref<PolyLine>> keys);
/// Within the error as B-splines, with as few vertices as one number for all keys allows. Corners
/// become vertices with PPF_Linear.
MARLOXSYSTEM_EXPORT ShapeList ToBSpline(std::span<const Ref<PolyLine>> keys,
                                        const ShapeError& error);

// Changes in place. Locked points stay.

constexpr double defaultSmoothing = 0.5;
/// Moves the selected points towards the middle of their neighbours, by `strength` (0 to 1) of the
/// way; handles turn towards the line between these. The ends of open shapes stay.
MARLOXSYSTEM_EXPORT void SmoothPoints(PolyLine& shape, const SelMask& selected, double strength,
                                      double heightsPerWidth);
/// Moves the selected points to their common middle.
MARLOXSYSTEM_EXPORT void AveragePoints(PolyLine& shape, const SelMask& selected);
/// Evens the motion of the selected points and their handles over the keys: each key but the first
/// and the last goes by `strength` (0 to 1) towards what its neighbours give at its time.
MARLOXSYSTEM_EXPORT void SmoothAnimation(std::span<const Ref<PolyLine>> keys,
                                         std::span<const double> times, const SelMask& selected,
                                         double strength);
/// The selected points take the way that they took, but leave the first key and reach the last one
/// slower, by amounts from 0 (as before) to 1 (from standing, to standing). Key times stay.
MARLOXSYSTEM_EXPORT void EaseAnimation(std::span<const Ref<PolyLine>> keys,
                                       std::span<const double> times, const SelMask& selected,
                                       double easeIn, double easeOut);

} // namespace Marlox
