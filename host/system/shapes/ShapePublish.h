#pragma once

#include "system/shapes/ShapeLinks.h"

#include <QString>

namespace Marlox {

// Publishing points of shapes, and letting points follow. Each call is one undo entry, or part of
// the group that its caller has open. The shape does not move by any of them. `mask` is over the
// points of the input's shape. Nothing happens when the tool is locked.

/// Gives each selected point an input of its own on the shape's tool, with the point's places as
/// value and keys. A following point follows no more. How many were published newly.
MARLOXSYSTEM_EXPORT int PublishPoints(Input& shape, const SelMask& mask);
/// Takes the inputs of selected published points away; the points stay where those put them, over
/// their keys too when the shape has none. How many.
MARLOXSYSTEM_EXPORT int UnpublishPoints(Input& shape, const SelMask& mask);
/// After points were deleted: takes away the published inputs of the tool that no shape uses.
MARLOXSYSTEM_EXPORT void RemoveUnusedPublishedInputs(Operator& tool);
/// The inputs that selected points feed, in the order of the points.
MARLOXSYSTEM_EXPORT std::vector<Input*> PublishedInputs(const Input& shape, const SelMask& mask);

// They publish the selected points that are not, and animate each input. How many inputs.
/// With a path modifier each (AnimateWithPath).
MARLOXSYSTEM_EXPORT int PublishToPath(Input& shape, const SelMask& mask, QString* error = nullptr);
/// With keys of its own: the x and y of an input's keys are splines apart from each other. One is
/// set at the current time; dragging the point at other times sets further ones.
MARLOXSYSTEM_EXPORT int PublishToXYPath(Input& shape, const SelMask& mask);
/// With a "Tracker" tool each, whose pattern starts with the places that the input had.
MARLOXSYSTEM_EXPORT int PublishToTracker(Input& shape, const SelMask& mask,
                                         QString* error = nullptr);

/// Each selected point follows the published point of another shape in the document that is nearest
/// to it at `time`, if it lies closer than `tolerance` on both axes (normalised image coordinates).
/// Published points are left alone. How many follow.
MARLOXSYSTEM_EXPORT int SetPointsToFollow(Input& shape, const SelMask& mask, double time,
                                          ShapePlace tolerance);
/// Selected points that follow stay where they are. How many.
MARLOXSYSTEM_EXPORT int StopFollowing(Input& shape, const SelMask& mask);

} // namespace Marlox
