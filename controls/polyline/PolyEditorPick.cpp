// What of the shapes lies under the cursor.

#include "controls/polyline/PolyLineControl.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

bool IsWithin(ShapePlace a, ShapePlace b, double tolerance)
{
    return std::abs(a.x - b.x) < tolerance && std::abs(a.y - b.y) < tolerance;
}

bool IsUnderCursor(const PolyView& view, ShapePlace at)
{
    return IsWithin(view.ToPixels(at), view.CursorPixels(), view.Tolerance());
}

} // namespace

bool PolyEditor::ShowsHandles(int polygon, int index) const
{
    const PolyLine* shape = Shape(polygon);
    const PolyPoint* point = shape ? shape->GetPoint(index) : nullptr;
    return point && !point->Has(PPF_Linear) && HasHandles(*shape) &&
           (control_.Settings().showHandles || Selection(polygon).GetSetItem(index));
}

PolyHit PolyEditor::HitAt(const PolyView& view) const
{
    for (const auto find : {&PolyEditor::PointAt, &PolyEditor::HandleAt, &PolyEditor::CurveAt}) {
        if (const PolyHit hit = (this->*find)(view); hit.Any())
            return hit;
    }
    return {};
}

/// Each point of the active polygon before its match.
PolyHit PolyEditor::PointAt(const PolyView& view) const
{
    const auto hit = [this](int polygon, int index) {
        return PolyHit{PolyHit::Point, polygon, index, 0.0,
                       Shape(polygon)->GetPoint(index)->Place()};
    };
    if (view.Placement().angle == 0.0 && IsShown(active_)) {
        const int other = OtherPolygon(active_);
        const double size = std::abs(view.Placement().size);
        const ShapePlace pixels = view.PixelSize();
        const PairHit found = Marlox::PointAt(
            *Index(active_), IsShown(other) ? Index(other) : nullptr, view.Cursor(),
            {view.Tolerance() / (pixels.x * size), view.Tolerance() / (pixels.y * size)});
        return found.point < 0 ? PolyHit() : hit(found.isOther ? other : active_, found.point);
    }
    int count = 0;
    for (const int polygon : PickOrder())
        count = std::max(count, IsShown(polygon) ? Shape(polygon)->GetCount() : 0);
    for (int i = 0; i < count; ++i) {
        for (const int polygon : PickOrder()) {
            const PolyPoint* point = IsShown(polygon) ? Shape(polygon)->GetPoint(i) : nullptr;
            if (point && IsUnderCursor(view, point->Place()))
                return hit(polygon, i);
        }
    }
    return {};
}

/// Of those that show.
PolyHit PolyEditor::HandleAt(const PolyView& view) const
{
    for (const int polygon : PickOrder()) {
        const int count = IsShown(polygon) ? Shape(polygon)->GetCount() : 0;
        for (int i = 0; i < count; ++i) {
            if (!ShowsHandles(polygon, i))
                continue;
            const PolyPoint& point = *Shape(polygon)->GetPoint(i);
            if (IsUnderCursor(view, point.Out()))
                return {PolyHit::OutHandle, polygon, i, 0.0, point.Out()};
            if (IsUnderCursor(view, point.In()))
                return {PolyHit::InHandle, polygon, i, 0.0, point.In()};
        }
    }
    return {};
}

PolyHit PolyEditor::CurveAt(const PolyView& view) const
{
    const double size = std::abs(view.Placement().size);
    const ShapePlace scale{view.PixelSize().x * size, view.PixelSize().y * size};
    for (const int polygon : PickOrder()) {
        if (!IsShown(polygon) || Shape(polygon)->GetSegmentsCount() == 0)
            continue;
        const CurveFoot foot = Index(polygon)->NearestOnCurve(view.Cursor(), scale);
        if (foot.segment >= 0 && IsUnderCursor(view, foot.foot))
            return {PolyHit::Curve, polygon, foot.segment, foot.t, foot.foot};
    }
    return {};
}

bool PolyEditor::SetHovered(const PolyHit& hit)
{
    return std::exchange(hovered_, hit) != hit;
}

bool PolyEditor::SwitchCoinciding(const PolyView& view)
{
    const int other = OtherPolygon(active_);
    const int index = hovered_.IsPoint() ? hovered_.index : ActiveSelection().Last();
    if (!IsDouble() || !IsMatched() || index < 0)
        return false;
    const PolyPoint& mine = *Active()->GetPoint(index);
    const PolyPoint& match = *Shape(other)->GetPoint(index);
    if (!IsWithin(view.ToPixels(mine.Place()), view.ToPixels(match.Place()), view.Tolerance()))
        return false;
    SetActivePolygon(other);
    SelectOnly(other, index);
    SetHovered(HitAt(view));
    control_.UpdateDisplay(nullptr, nullptr);
    return true;
}

} // namespace Marlox
