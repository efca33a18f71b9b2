#pragma once

#include "system/shapes/ShapeKeys.h"

#include <optional>

namespace Marlox {

class MarloxDoc;
class Operator;

// Points of shapes that are joined to something. Published ones lie where an input of their own
// tool says, in the coordinates of the shape: what the tool does to the shape as a whole moves
// them, too. Following ones lie where a point of another shape is seen; an empty tool name in the
// link means the shape's own tool, so that copies and renamed tools keep it. A shape as an input
// holds it has such points where they were when it was last written; these functions find where
// they are. User-interface thread.

/// The shape of `shape` at `time`, each linked point with its handles moved to where it is. A point
/// whose link leads nowhere, or round to itself, stays. Null: the input holds no shape.
MARLOXSYSTEM_EXPORT Ref<PolyLine> ResolvedShape(const Input& shape, double time);
/// The same for a shape that is being edited: what an edit of the input's shape begins with, so
/// that nothing jumps.
MARLOXSYSTEM_EXPORT void PlaceLinkedPoints(const Input& shape, double time, PolyLine& edited);
/// Writes the places of published points into their inputs, after an edit of the shape at `time`.
/// An input with an expression keeps what that gives; with an animated shape the input gets keys,
/// too. False: one refused.
MARLOXSYSTEM_EXPORT bool UpdatePublishedPointInputs(Input& shape, double time);

/// The point of another shape that a point follows.
struct FollowedPoint {
    Input* input = nullptr; // that holds the other shape
    int index = -1;         // of the followed point
    double time = TimeNone; // of the other shape's key that rules there; TimeNone: not animated
};
/// What the point follows at its time; nothing: it follows none that there is.
MARLOXSYSTEM_EXPORT std::optional<FollowedPoint>
FindExternFollowingPoint(const Input& shape, const PolyLine& value, const KeyPoint& point);

/// The tool's input that a published point feeds; null: it feeds none.
MARLOXSYSTEM_EXPORT Input* PublishedInputOf(const Input& shape, const PolyLine& value, int index);

/// Whether the shape of one key or the plain shape has linked points.
bool HasLinks(const Input::State& state);
/// Following points keep to a tool that has another name now.
void RenameToolInLinks(Input::State& state, const std::string& from, const std::string& to);
/// Before a tool leaves the document: points of other tools that follow its points stay where they
/// are and follow no more, as undo steps.
void ReleaseFollowers(const MarloxDoc& document, const Operator& tool);
/// The same for points of one shape that are no longer to be followed, by their ids; also those of
/// other shapes of its tool.
void ReleaseFollowers(const Input& shape, const std::vector<u32>& points);
/// The same for the published points that are none any more in what the shape's input is about to
/// get; within the undo group of that change.
MARLOXSYSTEM_EXPORT void ReleaseFollowersOfLost(const Input& shape, const Input::State& next);

} // namespace Marlox
