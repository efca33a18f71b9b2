// The outer polygon of a soft edge.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeKeys.h"

#include <cmath>

namespace Marlox {

namespace {

constexpr double outerDistance = 0.02; // of a new outer polygon, image widths

/// Twice the area within the points, in squared image widths; counter-clockwise is positive.
double TwiceArea(std::span<const PolyPoint> points, double tall)
{
    double area = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const PolyPoint& a = points[i];
        const PolyPoint& b = points[(i + 1) % points.size()];
        area += (a.x * b.y - b.x * a.y) * tall;
    }
    return area;
}

/// Each point a little outwards, at a right angle to the line between its neighbours; a point that
/// has no direction stays.
void MoveOutwards(PolyLine& shape, double tall)
{
    const std::vector<PolyPoint> from(shape.Points().begin(), shape.Points().end());
    const double side = TwiceArea(from, tall) < 0.0 ? -1.0 : 1.0;
    const std::size_t count = from.size();
    for (std::size_t i = 0; i < count; ++i) {
        const PolyPoint& before = from[(i + count - 1) % count];
        const PolyPoint& after = from[(i + 1) % count];
        const double x = after.x - before.x;
        const double y = (after.y - before.y) * tall;
        const double length = std::hypot(x, y);
        if (!(length > 0.0))
            continue;
        PolyPoint& point = *shape.GetPoint(int(i));
        point.x += side * y / length * outerDistance;
        point.y -= side * x / length * outerDistance / tall;
    }
}

double TallOf(const PolyLineControl& control)
{
    return control.View() ? PolyView(*control.View(), {}).HeightsPerWidth() : 1.0;
}

/// The outer polygon, with the keys of the inner one, gets the inner shapes as `change` makes them.
void TakeFromInner(PolyLineControl& control, const std::function<void(PolyLine& shape)>& change)
{
    PolyEditor& editor = control.Editor();
    const Input* inner = editor.InputOf(InnerPolygon);
    if (!inner || !editor.InputOf(OuterPolygon))
        return;
    ShapeKeys keys(*editor.InputOf(OuterPolygon), inner->GetState());
    keys.ForEach([&change](PolyLine& shape, double) {
        const std::vector<PointLink> links = shape.Links();
        for (const PointLink& link : links) // they are the inner one's
            shape.RemoveLink(link.point);
        shape.SetEnabled(true);
        change(shape);
    });
    Input::State next = keys.State();
    next.expression.clear();
    next.source.clear();
    editor.Write(OuterPolygon, std::move(next));
}

void ToggleEnabled(PolyLineControl& control, int polygon, const char* enables, const char* disables)
{
    const PolyLine* shape = control.Editor().Shape(polygon);
    const bool on = shape && !shape->IsEnabled();
    const PolyNest nest(control, on ? enables : disables);
    control.Editor().Change(polygon, PolyEditor::Scope::Keys,
                            [on](PolyLine& each) { each.SetEnabled(on); });
}

} // namespace

void MakeOuter(PolyLineControl& control)
{
    {
        const PolyNest nest(control, "Add double polygon");
        const double tall = TallOf(control);
        TakeFromInner(control, [tall](PolyLine& shape) { MoveOutwards(shape, tall); });
    }
    control.Editor().SetActivePolygon(OuterPolygon);
    control.Editor().ClearSelection();
}

void RemoveOuter(PolyLineControl& control)
{
    const PolyNest nest(control, "Remove double polygon");
    Input* const outer = control.Editor().InputOf(OuterPolygon);
    Input::State next;
    next.value = outer ? outer->DefaultValue() : nullptr;
    if (next.value)
        control.Editor().Write(OuterPolygon, std::move(next));
    const PolyLine* inner = control.Editor().Shape(InnerPolygon);
    if (inner && !inner->IsEnabled()) // nothing would show, and nothing could change that
        control.Editor().Change(InnerPolygon, PolyEditor::Scope::Keys,
                                [](PolyLine& shape) { shape.SetEnabled(true); });
    control.Editor().SetActivePolygon(InnerPolygon);
}

void ResetOuter(PolyLineControl& control)
{
    const PolyNest nest(control, "Reset outer point positions");
    TakeFromInner(control, [](PolyLine&) {});
}

void ToggleOuterEnabled(PolyLineControl& control)
{
    ToggleEnabled(control, OuterPolygon, "Enable double polygon", "Disable double polygon");
}

void ToggleInnerEnabled(PolyLineControl& control)
{
    ToggleEnabled(control, InnerPolygon, "Enable polygon", "Disable polygon");
}

} // namespace Marlox
