// What the polyline overlay does with the pointer: presses, drags, hovering, the tip.

#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/viewer/PointRules.h"
#include "system/base/Platform.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeLinks.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Marlox {

// Gestures ----------------------------------------------------------------------------------------

void PolyGesture::Finish(const PolyPointer&) {}
void PolyGesture::Draw(OverlayPainter&, const PolyView&) const {}

PolyEditor& PolyGesture::Editor() const
{
    return control_.Editor();
}

void PolyGesture::Begin(const char* text)
{
    control_.BeginGesture(text);
}

std::unique_ptr<PolyGesture> StartGesture(PolyLineControl& control, const PolyPointer& pointer)
{
    PolyEditor& editor = control.Editor();
    const PolyHit hit = editor.HitAt(pointer.view);
    switch (control.Mode()) {
    case PolyDrawMode::Done:
        return nullptr;
    case PolyDrawMode::ClickAppend:
        return MakeClickAppend(control, pointer);
    case PolyDrawMode::DrawAppend:
        return MakeFreehand(control, pointer);
    case PolyDrawMode::InsertAndModify:
    case PolyDrawMode::ModifyOnly:
        break;
    }
    if (!editor.HasPoints(editor.ActivePolygon()) &&
        control.Mode() == PolyDrawMode::InsertAndModify) {
        control.SetMode(PolyDrawMode::ClickAppend); // nothing to insert into: it is drawn anew
        return MakeClickAppend(control, pointer);
    }
    if (auto track = MakeTrackPointDrag(control, pointer))
        return track;
    const bool alternate = pointer.modifiers & KeyAlt;
    const bool hasHandles = hit.Any() && HasHandles(*editor.Shape(hit.polygon));
    if (hit.IsPoint() && alternate)
        return hasHandles ? MakePullHandles(control, pointer, hit)
                          : MakeTension(control, pointer, hit);
    if (hit.IsPoint()) // points win over the shape box
        return MakeMovePoints(control, pointer, hit);
    if (hit.IsHandle())
        return MakeMoveHandle(control, pointer, hit);
    if (auto box = MakeShapeBoxDrag(control, pointer))
        return box;
    if (hit.kind == PolyHit::Curve && control.Mode() == PolyDrawMode::InsertAndModify)
        return MakeInsertPoint(control, pointer, hit);
    if (hit.kind == PolyHit::Curve)
        return MakeMovePoints(control, pointer, hit);
    return MakeRubberBand(control, pointer);
}

// Presses, moves and releases ---------------------------------------------------------------------

PolyPointer PolyLineControl::PointerOf(const PolyView& view, const TagList* tags) const
{
    PolyPointer pointer{view, 0, {}};
    pointer.pen.pressure = 1.0f;
    if (!tags)
        return pointer;
    pointer.modifiers = u32(tags->GetLong(PV_Modifiers));
    pointer.pen.time = float(tags->GetDouble(PVD_EventTime, penTime_) - penTime_);
    pointer.pen.pressure = float(tags->GetDouble(PVD_Pressure, 1.0));
    pointer.pen.height = float(tags->GetDouble(PVD_PenHeight));
    pointer.pen.angleXY = float(tags->GetDouble(PVD_AngleXY));
    pointer.pen.angleZ = float(tags->GetDouble(PVD_AngleZ));
    pointer.pen.rotation = float(tags->GetDouble(PVD_Rotation));
    return pointer;
}

DragType PolyLineControl::ControlDown(PreviewInfo* view, const MxPoint& at, TagList* tags)
{
    if (gesture_) // its release was lost
        ControlUp(view, at, tags);
    const bool mine = view && (!view->hit.control || view->hit.control == this);
    if (mine && editor_.Shape(InnerPolygon) && CanEdit()) {
        pressTime_ = Platform::GetUpTime();
        penTime_ = tags ? tags->GetDouble(PVD_EventTime) : 0.0;
        changed_ = false;
        const PolyView shapes(*view, Placement());
        const PolyPointer pointer = PointerOf(shapes, tags);
        const auto alive = Ref<PolyLineControl>::Share(this);
        if (ClickSkin(*this, pointer)) {
            gesture_ = std::make_unique<PolyNoGesture>(*this);
        } else {
            gesture_ = StartGesture(*this, pointer);
        }
        if (gesture_) {
            dragState_ = DragType::Dragged;
            axisX_ = axisY_ = true;
        }
    }
    return PreviewControl::ControlDown(view, at, tags);
}

void PolyLineControl::BeginGesture(const char* text)
{
    if (editor_.HoldsBack())
        editor_.NameHeld(text);
    else
        StartUndo(text);
}

bool PolyLineControl::HoldBack()
{
    if (settings_.stopRendering)
        editor_.HoldBack();
    return settings_.stopRendering;
}

void PolyLineControl::ControlMove(PreviewInfo* view, const MxPoint& at, TagList* tags)
{
    PreviewControl::ControlMove(view, at, tags);
    if (!view || !gesture_ || !CanEdit())
        return;
    const auto alive = Ref<PolyLineControl>::Share(this); // what is written may end the drag
    const PolyView shapes(*view, Placement());
    const auto gesture = gesture_;
    gesture->Move(PointerOf(shapes, tags));
    UpdateDisplay(nullptr, nullptr);
}

void PolyLineControl::ControlUp(PreviewInfo* view, const MxPoint& at, TagList* tags)
{
    const auto alive = Ref<PolyLineControl>::Share(this);
    // It stands until it has finished: what it writes then belongs to it. What undo takes away
    // under the drag, or what is gone, is not to be written to: no entry would tell of it.
    const MarloxDoc* document = GetDoc();
    const auto gesture = gesture_;
    if (gesture && (!document || document->Undo().IsReplaying())) {
        gesture->Cancel();
    } else if (view && gesture) {
        const PolyView shapes(*view, Placement());
        gesture->Finish(PointerOf(shapes, tags));
        editor_.WriteHeld();
    }
    editor_.ForgetHeld();
    gesture_.reset();
    changed_ = false;
    PreviewControl::ControlUp(view, at, tags);
    UpdateDisplay(nullptr, nullptr);
}

void PolyLineControl::EndUndo(bool keep)
{
    if (const auto gesture = keep ? nullptr : std::move(gesture_)) {
        gesture->Cancel();
        editor_.ForgetHeld();
    }
    PreviewControl::EndUndo(keep);
}

// Hovering ----------------------------------------------------------------------------------------

bool PolyLineControl::HitTest(PreviewInfo& view, const TagList* tags)
{
    const bool may = MayBeHit(view, tags) && editor_.Shape(InnerPolygon);
    const PolyView shapes(view, Placement());
    const PolyHit hit = may ? editor_.HitAt(shapes) : PolyHit();
    const double skin = may && !hit.Any() && CanEdit() ? SkinTimeAt(*this, shapes) : TimeNone;
    if (editor_.SetHovered(hit))
        UpdateDisplay(nullptr, nullptr);
    SetHoveredTime(skin);
    const bool appends = may && Mode() == PolyDrawMode::ClickAppend && CanEdit();
    SetNextPlace(appends ? std::optional(shapes.Cursor()) : std::nullopt);
    if (!may)
        return false;
    switch (Mode()) {
    case PolyDrawMode::ClickAppend: // these take presses anywhere
        view.SetCursor(hit.IsPoint() ? ViewCursor::Hand : ViewCursor::Cross);
        return CanEdit();
    case PolyDrawMode::DrawAppend:
        view.SetCursor(ViewCursor::Pen);
        return CanEdit();
    case PolyDrawMode::InsertAndModify:
        if (hit.kind == PolyHit::Curve)
            view.SetCursor(ViewCursor::Cross);
        [[fallthrough]];
    case PolyDrawMode::ModifyOnly:
        return hit.Any() || skin != TimeNone || IsOnShapeBox(*this, shapes) ||
               IsOnTrackPoint(*this, shapes);
    case PolyDrawMode::Done:
        return skin != TimeNone;
    }
    return false;
}

void PolyLineControl::SetHoveredTime(double time)
{
    if (std::exchange(hoveredTime_, time) != time)
        UpdateDisplay(nullptr, nullptr);
}

void PolyLineControl::SetNextPlace(const std::optional<ShapePlace>& place)
{
    if (std::exchange(nextPlace_, place) != place)
        UpdateDisplay(nullptr, nullptr);
}

bool PolyLineControl::ControlGetTip(PreviewInfo* view, char* tip, TagList*)
{
    if (!tip || Inputs().empty())
        return false;
    QString text;
    if (hoveredTime_ > TimeNone) {
        text = QString::asprintf("Time : %.2f", hoveredTime_);
    } else {
        const PolyHit& hit = editor_.Hovered();
        const int polygon = hit.Any() ? hit.polygon : editor_.ActivePolygon();
        Input* const input = ShapeInput(polygon);
        text = Inputs().front()->GetName();
        if (editor_.IsDouble())
            text += polygon == OuterPolygon ? QLatin1String(" Outer") : QLatin1String(" Inner");
        const PolyLine* shape = editor_.Shape(polygon);
        if (hit.IsPoint() && input && shape) {
            if (const Input* fed = PublishedInputOf(*input, *shape, hit.index))
                text += QString::fromLatin1(" %1").arg(fed->GetName());
            const auto followed =
                FindExternFollowingPoint(*input, *shape, {hit.index, CurrentTime()});
            if (followed) {
                text += QString::fromLatin1(":%1.%2 <- ")
                            .arg(followed->input->Owner().GetName(), followed->input->GetName());
                if (followed->time > TimeNone)
                    text += QString::asprintf(" (at time %.2f)", followed->time);
            }
        }
    }
    const Operator* tool = GetOperator(nullptr);
    if (tool && tool->IsLocked() && hoveredTime_ <= TimeNone)
        text += QStringLiteral("\n%1 is locked.").arg(tool->GetName());
    const QByteArray bytes = text.toUtf8();
    constexpr int room = 255;
    int size = std::min(int(bytes.size()), room);
    while (size > 0 && size < bytes.size() && (bytes[size] & 0xc0) == 0x80) // within a character
        --size;
    std::memcpy(tip, bytes.constData(), std::size_t(size));
    tip[size] = '\0';
    return view != nullptr;
}

// Drawing -----------------------------------------------------------------------------------------

void PolyLineControl::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    if (!view || view->drawMode == DrawHidden)
        return;
    if (HidesWhileDragging() && dragState_ == DragType::Dragged)
        return;
    if (view->painter && editor_.Shape(InnerPolygon)) {
        const PolyView shapes(*view, Placement());
        DrawPolyLines(*this, *view->painter, shapes);
        if (gesture_)
            gesture_->Draw(*view->painter, shapes);
    }
    PreviewControl::GLDrawControls(view, tags);
}

} // namespace Marlox
