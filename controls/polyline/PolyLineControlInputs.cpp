// The inputs of the polyline overlay: its shapes, what places them, what is read and written.

#include "controls/polyline/PolyKeyListDlg.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyPointDlg.h"
#include "system/shapes/ShapeLinks.h"

#include <cmath>
#include <unordered_map>

#include <QWidget>

namespace Marlox {

Input* PolyLineControl::ShapeInput(int polygon) const
{
    Input* const own = FindInputByIndex(unsigned(polygon));
    return own || polygon == InnerPolygon ? own : BoundInput(PLCID_InPolyLine2);
}

Input* PolyLineControl::BoundInput(u32 idTag) const
{
    return bound_[idTag - PLCID_Center]->Get();
}

bool PolyLineControl::IsShapeFree(int polygon) const
{
    const Input* input = ShapeInput(polygon);
    return input && !input->Owner().IsLocked() && IsFree(input) && input->IsChangeable();
}

ShapePlacement PolyLineControl::PlacementAt(double time) const
{
    ShapePlacement placement;
    if (const Input* center = BoundInput(PLCID_Center)) {
        const Ref<Parameter> value = center->GetValue(time);
        if (const auto* point = dynamic_cast<const Point*>(value.Get()))
            placement.center = {point->X(), point->Y()};
    }
    const auto number = [&](u32 idTag, double otherwise) {
        const Input* input = BoundInput(idTag);
        const double value = input ? input->GetNumber(time, otherwise) : otherwise;
        return std::isfinite(value) ? value : otherwise;
    };
    placement.center.x = number(PLCID_CenterX, placement.center.x);
    placement.center.y = number(PLCID_CenterY, placement.center.y);
    placement.angle = number(PLCID_Angle, 0.0);
    placement.size = number(PLCID_Size, 1.0);
    return placement;
}

bool PolyLineControl::AddInput(Input* input, TagList* tags)
{
    const bool added = PreviewControl::AddInput(input, tags);
    ReadShapes();
    return added;
}

bool PolyLineControl::RemoveInput(Input* input, TagList* tags)
{
    bool mine = false;
    for (std::unique_ptr<Bound>& bound : bound_)
        mine = bound->Forget(input) || mine;
    const bool removed = PreviewControl::RemoveInput(input, tags);
    if (keyList_ && keyList_->GetInput() == input)
        keyList_->SetInput(nullptr);
    ReadShapes();
    return removed || mine;
}

void PolyLineControl::ReadShapes()
{
    bool another = false;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const Input* input = ShapeInput(polygon);
        another = editor_.Notify(polygon,
                                 input ? ResolvedShape(*input, CurrentTime()) : Ref<PolyLine>()) ||
                  another;
    }
    if (!hasMode_ && editor_.Shape(InnerPolygon)) {
        hasMode_ = true; // a new shape is to be drawn, one that is there to be changed
        const PolyDrawMode mode =
            editor_.HasPoints(InnerPolygon) ? ModeAfterClose() : PolyDrawMode::ClickAppend;
        settings_.drawMode = u8((settings_.drawMode & 0xf0) | u8(mode));
        pending_ = mode == PolyDrawMode::ClickAppend ? &clicked_ : nullptr;
        PressModeEvent();
    }
    if (another)
        UpdateDisplay(nullptr, nullptr);
}

void PolyLineControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (!input || input != ShapeInput(polygon))
            continue;
        if (!editor_.Notify(polygon, ResolvedShape(*input, CurrentTime())))
            return;
    }
    PreviewControl::NotifyChanged(input, value, tags);
}

void PolyLineControl::UpdateDisplay(Input* input, TagList* tags)
{
    PreviewControl::UpdateDisplay(input, tags);
    if (pointEditor_)
        pointEditor_->Follow();
}

bool PolyLineControl::IsPointEditorOpen() const
{
    return pointEditor_ && pointEditor_->isVisible();
}

bool PolyLineControl::WriteShape(int polygon, Input::State next)
{
    Input* const input = ShapeInput(polygon);
    if (!IsShapeFree(polygon))
        return false;
    const auto alive = Ref<PolyLineControl>::Share(this); // what follows may remove the overlay
    const bool inGesture = gesture_ != nullptr;
    ReleaseFollowersOfLost(*input, next);
    if (!input->ChangeTo(std::move(next)))
        return false;
    changed_ = inGesture;
    const Ref<Parameter> written = input->GetPlainValue(CurrentTime());
    TagList what{{PV_Value, written.Get()},
                 {PVD_Time, CurrentTime()},
                 {IA_OverlayIndex, polygon},
                 {PV_Final, !inGesture}};
    Notify(MxID("ValueWritten"), what);
    return true;
}

void PolyLineControl::CarryTrackPoints(const PolyLine& from, const PolyLine& to)
{
    RotoAssistSettings& roto = settings_.roto;
    const auto sameId = [](const PolyPoint& a, const PolyPoint& b) { return a.id == b.id; };
    const bool has = !roto.trackPoints.empty() && int(roto.trackPoints.size()) == from.GetCount();
    if (!has || std::equal(from.Points().begin(), from.Points().end(), to.Points().begin(),
                           to.Points().end(), sameId))
        return;
    std::unordered_map<u32, ShapePlace> places; // by the ids of the points
    for (std::size_t i = 0; i < roto.trackPoints.size(); ++i)
        places.emplace(from.Points()[i].id, roto.trackPoints[i]);
    roto.trackPoints.clear();
    for (const PolyPoint& point : to.Points()) {
        const auto known = places.find(point.id);
        roto.trackPoints.push_back(known == places.end() ? point.Place() : known->second);
    }
}

void PolyLineControl::SelectionChanged()
{
    UpdateDisplay(nullptr, nullptr);
}

/// The list of keys is that of the polygon that is edited.
void PolyLineControl::ActivePolygonChanged()
{
    if (!keyList_)
        return;
    const bool hasBoth = ShapeInput(InnerPolygon) && ShapeInput(OuterPolygon);
    const bool isOuter = editor_.ActivePolygon() == OuterPolygon;
    keyList_->SetInput(ShapeInput(editor_.ActivePolygon()), !hasBoth  ? QString()
                                                            : isOuter ? QStringLiteral("Outer")
                                                                      : QStringLiteral("Inner"));
}

void PolyLineControl::SetInactive(TagList* tags)
{
    if (const auto gesture = std::move(gesture_)) {
        gesture->Cancel();
        editor_.ForgetHeld();
    }
    SetHoveredTime(TimeNone);
    PreviewControl::SetInactive(tags);
}

QWidget* PolyLineControl::Window() const
{
    return view_ && view_->widget ? view_->widget->window() : nullptr;
}

PolyKeyListDlg* PolyLineControl::KeyList()
{
    if (!keyList_ && settings_.animated) {
        keyList_ = new PolyKeyListDlg(Window());
        keyList_->SetPartner([this] {
            return settings_.editBoth ? ShapeInput(OtherPolygon(editor_.ActivePolygon())) : nullptr;
        });
    }
    ActivePolygonChanged();
    return keyList_;
}

double PolyLineControl::TrackerSize() const
{
    const Input* input = BoundInput(PLCID_TrackerSize);
    return input ? input->GetNumber(CurrentTime(), settings_.roto.trackerSize)
                 : settings_.roto.trackerSize;
}

double PolyLineControl::TrackerSearchSize() const
{
    const Input* input = BoundInput(PLCID_TrackerSearchSize);
    return input ? input->GetNumber(CurrentTime(), settings_.roto.searchSize)
                 : settings_.roto.searchSize;
}

void PolyLineControl::SetTrackerSize(bool area, double size)
{
    Input* const input = BoundInput(area ? PLCID_TrackerSearchSize : PLCID_TrackerSize);
    if (input && IsFree(input) && input->IsChangeable())
        input->SetValue(Number(size), CurrentTime());
    else if (!input)
        (area ? settings_.roto.searchSize : settings_.roto.trackerSize) = size;
    changed_ = gesture_ != nullptr;
}

} // namespace Marlox
