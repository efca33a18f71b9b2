// Publishing points, and letting them follow.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyRules.h"
#include "system/controls/HostDialogs.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapePublish.h"

namespace Marlox {

namespace {

/// One step for the selected points of each polygon.
void ForSelected(PolyLineControl& control, const char* text,
                 const std::function<void(Input& shape, const SelMask& mask)>& change)
{
    const PolyEditor::Masks masks = control.Editor().Selections();
    const PolyNest nest(control, text);
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        Input* const input = control.Editor().InputOf(polygon);
        if (input && masks[std::size_t(polygon)].IsAnySet())
            change(*input, masks[std::size_t(polygon)]);
    }
}

void TellFailure(const QString& error)
{
    if (!error.isEmpty())
        HostDialogs::Get().Message(HostDialogs::Kind::Warning, error);
}

} // namespace

void PublishSelected(PolyLineControl& control)
{
    ForSelected(control, "Publish Points",
                [](Input& shape, const SelMask& mask) { PublishPoints(shape, mask); });
}

void UnpublishSelected(PolyLineControl& control)
{
    ForSelected(control, "Unpublishing points",
                [](Input& shape, const SelMask& mask) { UnpublishPoints(shape, mask); });
}

void PublishSelectedToPath(PolyLineControl& control)
{
    QString error;
    ForSelected(control, "Publish Points", [&error](Input& shape, const SelMask& mask) {
        PublishToPath(shape, mask, &error);
    });
    TellFailure(error);
}

void PublishSelectedToXYPath(PolyLineControl& control)
{
    ForSelected(control, "Publish Points",
                [](Input& shape, const SelMask& mask) { PublishToXYPath(shape, mask); });
}

void PublishSelectedToTracker(PolyLineControl& control)
{
    const PolyLine* shape = control.Editor().Active();
    const bool connected =
        control.Editor().ActiveSelection().GetSegment(shape && shape->IsClosed()).first >= 0;
    if (!connected && HostDialogs::Get().Ask(
                          QStringLiteral("Mask is diconnected! Create an empty tracker anyway?"),
                          {}, false) != HostDialogs::Answer::Yes)
        return;
    QString error;
    ForSelected(control, "Publish Points", [&error](Input& input, const SelMask& mask) {
        PublishToTracker(input, mask, &error);
    });
    TellFailure(error);
}

void ToggleFollowPublished(PolyLineControl& control)
{
    constexpr char text[] = "Set Points to follow";
    if (PolyRules::AllFollow(control)) {
        ForSelected(control, text,
                    [](Input& shape, const SelMask& mask) { StopFollowing(shape, mask); });
        return;
    }
    if (!control.View())
        return;
    const PolyView view(*control.View(), control.Placement());
    const ShapePlace pixels = view.PixelSize();
    const ShapePlace tolerance{view.Tolerance() / pixels.x, view.Tolerance() / pixels.y};
    const double time = control.CurrentTime();
    ForSelected(control, text, [=](Input& shape, const SelMask& mask) {
        SetPointsToFollow(shape, mask, time, tolerance);
    });
}

} // namespace Marlox
