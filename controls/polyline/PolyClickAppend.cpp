// Click Append: each press puts a point at the end of the shape, and a drag pulls its handles out.
// A press on the first point closes the shape.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/ShapeDrawing.h"
#include "system/viewer/OverlayCommands.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double leastPull = 3.0;    // view pixels; a nearer release was a click
constexpr double nextOpacity = 0.85; // of what a click would append
constexpr int bent = 3;              // segments that a new end of a spline may change

class ClickAppend final : public PolyGesture {
public:
    ClickAppend(PolyLineControl& control, const PolyPointer& pointer)
        : PolyGesture(control), at_(pointer.view.Cursor()),
          pressed_(pointer.view.ToView(pointer.view.Cursor()))
    {
        PolyEditor& editor = Editor();
        const int active = editor.ActivePolygon();
        const bool both = editor.IsMatched();
        Begin(Control().HoldBack() ? "Add Points" : "Add Point");
        PolyPoint point;
        point.x = at_.x;
        point.y = at_.y;
        hasHandles_ = editor.Active() && HasHandles(*editor.Active());
        if (hasHandles_)
            point.flags = PPF_Linear; // a corner, until it is pulled
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            if (polygon == active || both)
                editor.Change(polygon, PolyEditor::Scope::Keys,
                              [&point](PolyLine& shape) { shape.Append(point); });
        }
        const PolyLine* shape = editor.Active();
        if (!shape || shape->GetCount() == 0)
            return;
        editor.SelectOnly(active, shape->GetCount() - 1);
        Control().ClickedPoints().push_back(shape->Points().back());
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            const int count = editor.Shape(polygon) ? editor.Shape(polygon)->GetCount() : 0;
            masks_[std::size_t(polygon)].Create(count);
            if (polygon == active || both)
                masks_[std::size_t(polygon)].DoSet(count - 1, SelMask::Select);
        }
        states_ = editor.TakeStates();
    }

    void Move(const PolyPointer& pointer) override
    {
        const ShapePlace cursor = pointer.view.Cursor();
        const OverlayPoint now = pointer.view.ToView(cursor);
        const double reach = leastPull * pointer.view.Info().pixelRatio;
        if (!pulled_ && std::hypot(now.x - pressed_.x, now.y - pressed_.y) < reach)
            return;
        pulled_ = true;
        const ShapePlace by = cursor - at_;
        const bool hasHandles = hasHandles_;
        Editor().ChangeMasked(
            masks_,
            [=](PolyLine& shape, const SelMask& mask) {
                PolyPoint* point = shape.GetPoint(mask.First());
                if (!point)
                    return;
                point->Set(PPF_Linear, false);
                if (hasHandles) {
                    point->outX = by.x;
                    point->outY = by.y;
                    point->inX = -by.x;
                    point->inY = -by.y;
                } else { // a vertex goes with the pointer
                    point->x += by.x;
                    point->y += by.y;
                }
            },
            states_);
    }

private:
    ShapePlace at_;
    OverlayPoint pressed_;
    PolyEditor::States states_;
    PolyEditor::Masks masks_; // the new point, and its match
    bool hasHandles_ = false;
    bool pulled_ = false;
};

bool IsFirstPoint(const PolyHit& hit, const PolyEditor& editor)
{
    return hit.IsPoint() && hit.polygon == editor.ActivePolygon() && hit.index == 0 &&
           !editor.Active()->IsClosed() && editor.Active()->GetCount() > 1;
}

/// What the shape would get by a point at a place: the segments that are new or change, the others
/// as gaps.
Ref<PolyLine> Appended(const PolyLine& shape, ShapePlace at)
{
    const bool isBezier = HasHandles(shape);
    const int from = std::max(shape.GetCount() - (isBezier ? 1 : 2 * bent), 0);
    const auto tail = shape.Points().subspan(std::size_t(from));
    std::vector<PolyPoint> points(tail.begin(), tail.end());
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i].Set(PPF_Gap, points.size() - i > bent);
    PolyPoint& next = points.emplace_back();
    next.x = at.x;
    next.y = at.y;
    next.Set(PPF_Linear, isBezier);
    const Ref<PolyLine> made = PolyLine::Create(shape.GetDataType());
    made->SetPoints(std::move(points));
    return made;
}

/// The same by closing it.
Ref<PolyLine> Closed(const PolyLine& shape)
{
    const Ref<PolyLine> made = shape.CopyShape();
    const int count = made->GetCount();
    const int reach = HasHandles(shape) ? 0 : bent - 1;
    for (int i = 0; i < count; ++i)
        made->GetPoint(i)->Set(PPF_Gap, i >= reach && i < count - 1 - reach);
    made->Close();
    return made;
}

} // namespace

std::unique_ptr<PolyGesture> MakeClickAppend(PolyLineControl& control, const PolyPointer& pointer)
{
    PolyEditor& editor = control.Editor();
    const PolyHit hit = editor.HitAt(pointer.view);
    if (IsFirstPoint(hit, editor)) {
        TogglePolygonClosed(control);
        return std::make_unique<PolyNoGesture>(control);
    }
    if (hit.IsPoint()) // two points at one place are of no use: this one is to be moved
        return MakeMovePoints(control, pointer, hit);
    if (editor.IsFull())
        return std::make_unique<PolyNoGesture>(control);
    return std::make_unique<ClickAppend>(control, pointer);
}

void DrawNextSegment(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const PolyEditor& editor = control.Editor();
    const PolyLine* shape = editor.Active();
    const bool isOpen =
        editor.IsShown(editor.ActivePolygon()) && !shape->IsClosed() && shape->GetCount() > 0;
    if (!control.NextPlace() || !isOpen || view.Info().drawMode == DrawDragging)
        return;
    const bool closes = IsFirstPoint(editor.Hovered(), editor);
    if (!closes && (editor.Hovered().IsPoint() || editor.IsFull()))
        return;
    const Ref<PolyLine> next = closes ? Closed(*shape) : Appended(*shape, *control.NextPlace());
    ViewStrips strips;
    const ShapePlacement& placement = view.Placement();
    MakeThinCurve(placement.IsIdentity() ? *next : *PlacedShape(*next, placement),
                  CurveView::Of(view.Info()), strips);
    MxColor color = view.Info().Color(OverlayColor::Normal);
    color.alpha = u8(std::lround(255.0 * nextOpacity));
    painter.SetColor(color);
    painter.SetDashed(true);
    strips.Draw(painter);
    painter.SetDashed(false);
}

} // namespace Marlox
