// Track points: the places of the picture that the automatic following would hold a shape's points
// by. They are made from the points, shown with their patterns and search areas, and moved and
// sized in the pattern edit mode.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyMoveRule.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Marlox {

namespace {

constexpr double leastSize = 0.002; // of a pattern or an area, image widths

/// Half the sides of a square, in view pixels.
double HalfSide(const PolyView& view, double size)
{
    return size * view.Info().imageWidth / 2.0;
}

/// What of a track point is held.
struct TrackGrip {
    enum Kind { Nothing, Place, Pattern, Area };
    Kind kind = Nothing;
    int index = -1;
};

/// A place by its square's inside, sizes by the corners.
TrackGrip GripAt(const PolyLineControl& control, const PolyView& view)
{
    const RotoAssistSettings& roto = control.Settings().roto;
    const OverlayPoint cursor = view.ToView(view.Cursor());
    const double radius = view.Info().pickRadius;
    const auto isCorner = [&](OverlayPoint at, double half) {
        return std::abs(std::abs(cursor.x - at.x) - half) < radius &&
               std::abs(std::abs(cursor.y - at.y) - half) < radius;
    };
    const double pattern = HalfSide(view, control.TrackerSize());
    const double area = HalfSide(view, control.TrackerSearchSize());
    for (int i = 0; i < int(roto.trackPoints.size()); ++i) {
        const OverlayPoint at = view.ToView(roto.trackPoints[std::size_t(i)]);
        if (roto.showArea && isCorner(at, area))
            return {TrackGrip::Area, i};
        if (isCorner(at, pattern))
            return {TrackGrip::Pattern, i};
        if (std::abs(cursor.x - at.x) < pattern && std::abs(cursor.y - at.y) < pattern)
            return {TrackGrip::Place, i};
    }
    return {};
}

class TrackDrag final : public PolyGesture {
public:
    TrackDrag(PolyLineControl& control, const PolyPointer& pointer, TrackGrip grip)
        : PolyGesture(control), grip_(grip), rule_(pointer), start_(control.Settings().roto)
    {
    }

    void Move(const PolyPointer& pointer) override
    {
        const ShapePlace by = rule_.Movement(pointer);
        if (!moved_ && by == ShapePlace())
            return;
        moved_ = true;
        Begin(Text());
        if (grip_.kind == TrackGrip::Place)
            MovePlaces(by);
        else
            ChangeSize(pointer.view);
    }

    void Finish(const PolyPointer&) override { Control().KeepRotoChange(Text(), start_); }

    void Cancel() override
    {
        if (AreThere())
            Control().ChangeSettings().roto = start_;
    }

private:
    /// Those from the press: the shape may have got other points since, which took them along.
    bool AreThere() const
    {
        return Control().Settings().roto.trackPoints.size() == start_.trackPoints.size();
    }
    const char* Text() const
    {
        return grip_.kind == TrackGrip::Place     ? "Move Track Points"
               : grip_.kind == TrackGrip::Pattern ? "Shaping Track Points"
                                                  : "Change Tracker Search Size";
    }
    /// The grabbed one, with those of the selected points if it belongs to one.
    void MovePlaces(ShapePlace by)
    {
        if (!AreThere())
            return;
        const SelMask& mask = Editor().ActiveSelection();
        const bool several = mask.GetSetItem(grip_.index);
        std::vector<ShapePlace>& places = Control().ChangeSettings().roto.trackPoints;
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (int(i) == grip_.index || (several && mask.GetSetItem(int(i))))
                places[i] = start_.trackPoints[i] + by;
        }
    }
    void ChangeSize(const PolyView& view)
    {
        const OverlayPoint at = view.ToView(start_.trackPoints[std::size_t(grip_.index)]);
        const OverlayPoint cursor = view.ToView(view.Cursor());
        const double half = std::max(std::abs(cursor.x - at.x), std::abs(cursor.y - at.y));
        const double size = std::max(2.0 * half / view.Info().imageWidth, leastSize);
        Control().SetTrackerSize(grip_.kind == TrackGrip::Area, size);
    }

    TrackGrip grip_;
    PolyMoveRule rule_;
    RotoAssistSettings start_;
    bool moved_ = false;
};

} // namespace

std::unique_ptr<PolyGesture> MakeTrackPointDrag(PolyLineControl& control,
                                                const PolyPointer& pointer)
{
    if (!control.Settings().roto.patternEdit)
        return nullptr;
    const TrackGrip grip = GripAt(control, pointer.view);
    if (grip.kind == TrackGrip::Nothing)
        return nullptr;
    return std::make_unique<TrackDrag>(control, pointer, grip);
}

bool IsOnTrackPoint(const PolyLineControl& control, const PolyView& view)
{
    return control.Settings().roto.patternEdit && GripAt(control, view).kind != TrackGrip::Nothing;
}

void DrawTrackPoints(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const RotoAssistSettings& roto = control.Settings().roto;
    if (roto.trackPoints.empty() || (!roto.showArea && !roto.patternEdit))
        return;
    std::vector<OverlayPoint> places;
    for (const ShapePlace& place : roto.trackPoints)
        places.push_back(view.ToView(place));
    const auto squares = [&](double size) {
        const double half = HalfSide(view, size);
        for (const OverlayPoint& at : places)
            painter.Loop({{at.x - half, at.y - half},
                          {at.x + half, at.y - half},
                          {at.x + half, at.y + half},
                          {at.x - half, at.y + half}});
    };
    painter.SetColor(OverlayColor::Path);
    squares(control.TrackerSize());
    if (!roto.showArea)
        return;
    painter.SetDashed(true);
    squares(control.TrackerSearchSize());
    painter.SetDashed(false);
}

std::vector<ShapePlace> TrackPointsOf(const PolyLineControl& control)
{
    std::vector<ShapePlace> places;
    if (const PolyLine* shape = control.Editor().Active()) {
        for (const PolyPoint& point : shape->Points())
            places.push_back(point.Place());
    }
    return places;
}

void CreateTrackPoints(PolyLineControl& control)
{
    control.ChangeRoto("Create track points", [&control](RotoAssistSettings& roto) {
        roto.trackPoints = TrackPointsOf(control);
    });
}

void ResetTrackPattern(PolyLineControl& control)
{
    control.ChangeRoto("Reset track pattern", [&control](RotoAssistSettings& roto) {
        roto.trackPoints = TrackPointsOf(control);
    });
}

} // namespace Marlox
