#include "controls/polyline/PolyEditor.h"

#include "controls/polyline/PointTransform.h"
#include "controls/polyline/PolyKeysChange.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/ShapeLinks.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::size_t mostRemembered = 64; // shapes whose selections come back

/// The same points, by their ids, in another shape.
SelMask Carried(const SelMask& mask, const PolyLine& from, const PolyLine& to)
{
    const auto sameId = [](const PolyPoint& a, const PolyPoint& b) { return a.id == b.id; };
    if (std::equal(from.Points().begin(), from.Points().end(), to.Points().begin(),
                   to.Points().end(), sameId))
        return mask;
    SelMask carried(to.GetCount());
    if (!mask.IsAnySet())
        return carried;
    std::vector<std::pair<u32, bool>> chosen; // id, last
    for (const int index : mask.Items())
        chosen.emplace_back(from.Points()[std::size_t(index)].id, index == mask.Last());
    std::sort(chosen.begin(), chosen.end());
    int last = -1;
    for (int i = 0; i < to.GetCount(); ++i) {
        const std::pair<u32, bool> id(to.Points()[std::size_t(i)].id, false);
        const auto found = std::lower_bound(chosen.begin(), chosen.end(), id);
        if (found == chosen.end() || found->first != id.first)
            continue;
        carried.DoSet(i, SelMask::Select);
        last = found->second ? i : last;
    }
    carried.SetLast(last);
    return carried;
}

} // namespace

// Polygons ----------------------------------------------------------------------------------------

Input* PolyEditor::InputOf(int polygon) const
{
    return control_.ShapeInput(polygon);
}

const PolyLine* PolyEditor::Shape(int polygon) const
{
    const auto& preview = previews_[std::size_t(polygon)];
    return preview ? preview.Get() : shapes_[std::size_t(polygon)].Get();
}

bool PolyEditor::IsShown(int polygon) const
{
    const PolyLine* shape = Shape(polygon);
    return shape && shape->IsEnabled() && (polygon == InnerPolygon || shape->GetCount() > 0);
}

bool PolyEditor::IsMatched() const
{
    return HasPoints(InnerPolygon) && HasPoints(OuterPolygon) &&
           Shape(InnerPolygon)->GetCount() == Shape(OuterPolygon)->GetCount();
}

void PolyEditor::SetActivePolygon(int polygon)
{
    if (polygon == active_ || !IsShown(polygon))
        return;
    active_ = polygon;
    control_.ActivePolygonChanged();
}

bool PolyEditor::IsAnimated(int polygon) const
{
    const Input* input = InputOf(polygon);
    return input && (input->IsAnimated() || control_.Settings().animated);
}

bool PolyEditor::IsFull() const
{
    return Active() && Active()->GetCount() >= PolyLine::maxPoints;
}

bool PolyEditor::Notify(int polygon, const Ref<PolyLine>& shape)
{
    skins_[std::size_t(polygon)].clear();
    const Ref<PolyLine>& before = shapes_[std::size_t(polygon)];
    if (before == shape || (before && shape && before->IsEqual(*shape))) {
        shapes_[std::size_t(polygon)] = shape;
        return false;
    }
    Adopt(polygon, shape);
    return true;
}

void PolyEditor::Adopt(int polygon, const Ref<PolyLine>& shape)
{
    const auto at = std::size_t(polygon);
    if (keptMasks_[at]) // a preview of what is no more
        Preview(polygon, {});
    Remember(polygon);
    const Ref<PolyLine> before = std::exchange(shapes_[at], shape);
    indices_[at].reset();
    SelMask& mask = masks_[at];
    const auto known =
        std::find_if(remembered_[at].rbegin(), remembered_[at].rend(),
                     [&shape](const Remembered& each) { return each.shape == shape; });
    if (!shape)
        mask.Create(0);
    else if (known != remembered_[at].rend() && known->mask.Count() == shape->GetCount())
        mask = known->mask;
    else if (before && before->GetCount() == mask.Count())
        mask = Carried(mask, *before, *shape);
    else
        mask.Create(shape->GetCount());
    hovered_ = {};
    if (polygon == active_ && before && shape)
        control_.CarryTrackPoints(*before, *shape);
    if (!IsShown(active_))
        active_ = IsShown(OtherPolygon(active_)) ? OtherPolygon(active_) : int(InnerPolygon);
}

/// Of a drag only the shape that it began with.
void PolyEditor::Remember(int polygon)
{
    const auto at = std::size_t(polygon);
    std::deque<Remembered>& all = remembered_[at];
    if (!shapes_[at] || control_.IsPastFirstChange())
        return;
    std::erase_if(all, [&](const Remembered& each) { return each.shape == shapes_[at]; });
    all.push_back({shapes_[at], masks_[at]});
    if (all.size() > mostRemembered)
        all.pop_front();
}

const ShapeIndex* PolyEditor::Index(int polygon) const
{
    const PolyLine* shape = Shape(polygon);
    std::unique_ptr<ShapeIndex>& index = indices_[std::size_t(polygon)];
    if (!shape)
        return nullptr;
    if (!index)
        index = std::make_unique<ShapeIndex>(*shape);
    return index.get();
}

Ref<PolyLine> PolyEditor::ShapeAt(int polygon, double time) const
{
    std::map<double, Ref<PolyLine>>& known = skins_[std::size_t(polygon)];
    const Input* input = InputOf(polygon);
    const auto found = known.find(time);
    if (found != known.end() || !input)
        return found != known.end() ? found->second : nullptr;
    return known[time] = ResolvedShape(*input, time);
}

const ViewStrips& PolyEditor::CurveOf(int polygon, const PolyView& view) const
{
    const auto at = std::size_t(polygon);
    PlacedCurve& curve = curves_[at];
    const Ref<PolyLine>& shape = previews_[at] ? previews_[at] : shapes_[at];
    const ShapePlacement& placement = view.Placement();
    if (curve.source != shape || curve.placement != placement) {
        curve.source = shape;
        curve.placement = placement;
        curve.shape = placement.IsIdentity() ? shape : PlacedShape(*shape, placement);
    }
    return curve.lines.Make(curve.shape, CurveView::Of(view.Info()));
}

void PolyEditor::Preview(int polygon, const Ref<PolyLine>& shape)
{
    const auto at = std::size_t(polygon);
    if (const std::optional<SelMask> kept = std::exchange(keptMasks_[at], {}))
        masks_[at] = *kept;
    if (shape && shapes_[at]) {
        SelMask carried = Carried(masks_[at], *shapes_[at], *shape);
        if (carried != masks_[at])
            keptMasks_[at] = std::exchange(masks_[at], std::move(carried));
    }
    previews_[at] = shape;
    indices_[at].reset();
    control_.UpdateDisplay(nullptr, nullptr);
}

// Selection ---------------------------------------------------------------------------------------

void PolyEditor::SetSelections(const Masks& masks)
{
    if (!control_.Settings().lockSelection)
        RestoreSelections(masks);
}

void PolyEditor::RestoreSelections(const Masks& masks)
{
    if (masks_ == masks)
        return;
    for (std::size_t i = 0; i < masks.size(); ++i) {
        const PolyLine* shape = Shape(int(i));
        if (masks[i].Count() == (shape ? shape->GetCount() : 0))
            masks_[i] = masks[i];
    }
    control_.SelectionChanged();
}

void PolyEditor::Select(int polygon, int index, SelMask::Mode mode)
{
    Masks masks = masks_;
    masks[std::size_t(polygon)].DoSet(index, mode);
    SetSelections(masks);
}

void PolyEditor::SelectOnly(int polygon, int index)
{
    Masks masks = masks_;
    for (SelMask& mask : masks)
        mask.Reset();
    masks[std::size_t(polygon)].DoSet(index, SelMask::Select);
    SetSelections(masks);
}

void PolyEditor::SelectAll()
{
    Masks masks = masks_;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        SelMask& mask = masks[std::size_t(polygon)];
        if (IsShown(polygon) && (polygon == active_ || control_.Settings().editBoth))
            mask.Create(mask.Count(), true);
    }
    SetSelections(masks);
}

void PolyEditor::ClearSelection()
{
    Masks masks = masks_;
    for (SelMask& mask : masks)
        mask.Reset();
    SetSelections(masks);
}

bool PolyEditor::IsAnySelected() const
{
    return (IsShown(InnerPolygon) && masks_[InnerPolygon].IsAnySet()) ||
           (IsShown(OuterPolygon) && masks_[OuterPolygon].IsAnySet());
}

SelMask PolyEditor::EditedMask(int polygon) const
{
    SelMask mask = Selection(polygon);
    const PolySettings& settings = control_.Settings();
    if (polygon == active_ || !IsShown(polygon))
        return mask;
    if (!settings.editBoth)
        mask.Reset();
    if (polygon != OuterPolygon || !settings.followInner || !IsMatched())
        return mask;
    SelMask matching;
    SetMatchingPolyLinePointMask(ActiveSelection(), mask.Count(), matching);
    for (const int index : matching.Items())
        mask.DoSet(index, SelMask::Select);
    return mask;
}

PolyEditor::Masks PolyEditor::Movable(Masks masks) const
{
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        SelMask& mask = masks[std::size_t(polygon)];
        const PolyLine* shape = Shape(polygon);
        for (const int index : shape ? mask.Items() : std::vector<int>()) {
            const PolyPoint* const point = shape->GetPoint(index);
            const PointLink* const link = shape->LinkAt(index);
            if ((link && link->Follows()) || (point && point->Has(PPF_Locked)))
                mask.DoSet(index, SelMask::Clear);
        }
    }
    return masks;
}

SelMask PolyEditor::CommandMask(int polygon) const
{
    const SelMask& own = Selection(polygon);
    if (!IsShown(polygon))
        return SelMask(own.Count());
    return IsAnySelected() ? own : SelMask(own.Count(), polygon == active_);
}

bool HasHandles(const PolyLine& shape)
{
    static const MxID bezier(CLSID_DataType_Polyline);
    return shape.GetDataType() == bezier;
}

Ref<PolyLine> PlacedShape(const PolyLine& shape, const ShapePlacement& placement)
{
    const Ref<PolyLine> placed = shape.CopyShape();
    std::vector<PolyPoint> points(shape.Points().begin(), shape.Points().end());
    for (PolyPoint& point : points) {
        TransformPoint(
            point, [&](ShapePlace at) { return placement.Out(at); },
            [&](ShapePlace by) { return placement.OutVector(by); });
    }
    placed->SetPoints(std::move(points));
    return placed;
}

} // namespace Marlox
