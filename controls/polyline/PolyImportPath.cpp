// Placing motions of files.

#include "controls/polyline/PolyImport.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/PathAnimation.h"
#include "system/shapes/ShapePublish.h"

namespace Marlox {

namespace {

/// The path that moves the point alone, or else a new one.
Operator* PathFor(Input& point, QString& problem)
{
    Operator* const path = PathOf(point);
    if (path && point.IsChangeable() && !path->IsLocked() && !IsMentioned(*path, &point))
        return path;
    return AnimateWithPath(point, &problem);
}

} // namespace

bool PlaceMotion(PolyLineControl& control, const ImportedPath& path, const char* undoText,
                 QString& problem)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const QPointer<MarloxDoc> document = control.GetDoc();
    Operator* const owner = control.GetOperator(nullptr);
    Input* const center = control.BoundInput(PLCID_Center);
    if (!document || !owner || (!center && !control.BoundInput(PLCID_Displacement))) {
        problem = QStringLiteral("The shape has no centre that a path could move.");
        return false;
    }
    std::vector<PathKey> keys;
    for (const ImportedPathKey& key : path.keys)
        keys.push_back({key.time, {key.x, key.y}, key.interpolation});
    document->StartUndoNest(undoText);
    Operator* const tool = center ? PathFor(*center, problem) : owner;
    const bool done = tool && SetPathKeys(*tool, keys, PathForm::ByKeys);
    if (done)
        RemoveUnusedPublishedInputs(*tool); // of the points that were there before
    if (document)
        document->EndUndo(done);
    if (!done && problem.isEmpty())
        problem = QStringLiteral("The path of %1 can't be changed.").arg(owner->GetName());
    return done;
}

} // namespace Marlox
