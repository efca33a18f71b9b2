#include "controls/viewer/CrosshairControl.h"

#include "framework/ControlClass.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Marlox {

CrosshairControl::CrosshairControl(const Registry* record, const ScriptVal& creator,
                                   const TagList& attributes)
    : PreviewControl(record, creator, attributes)
{
    ReadStyle(attributes);
    TakeFollow(attributes);
}

std::size_t CrosshairControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes --------------------------------------------------------------------------------------

void CrosshairControl::ReadStyle(const TagList& tags)
{
    style_ = CrosshairStyle(std::clamp<int64>(tags.GetLong(CHC_Style, int64(style_)), 0, 3));
}

/// Returns the other tags, as DragOffset::TakeFrom does and for the same reason.
TagList CrosshairControl::TakeFollow(const TagList& tags)
{
    follow_ = {tags.GetDouble(CHCD_FollowX, follow_.x), tags.GetDouble(CHCD_FollowY, follow_.y)};
    followOrigin_ = {tags.GetDouble(CHCD_FollowOrigX, followOrigin_.x),
                     tags.GetDouble(CHCD_FollowOrigY, followOrigin_.y)};
    TagList others(tags);
    for (const u32 tag : {CHCD_FollowX, CHCD_FollowY, CHCD_FollowOrigX, CHCD_FollowOrigY})
        others.Remove(tag);
    return others;
}

bool CrosshairControl::SetAttrsTagList(const TagList& tags)
{
    ReadStyle(tags);
    return PreviewControl::SetAttrsTagList(grab_.TakeFrom(TakeFollow(tags)));
}

bool CrosshairControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    ReadStyle(tags);
    TakeFollow(tags);
    grab_.TakeFrom(tags);
    return PreviewControl::SetAttrsTagList(input, tags);
}

bool CrosshairControl::CopyAttr(u64 tag, void* out)
{
    const std::pair<u32, double> values[] = {
        {CHCD_CurrentX, displayed_.x},       {CHCD_CurrentY, displayed_.y},
        {CHCD_FollowX, follow_.x},           {CHCD_FollowY, follow_.y},
        {CHCD_FollowOrigX, followOrigin_.x}, {CHCD_FollowOrigY, followOrigin_.y}};
    for (const auto& [known, value] : values) {
        if (tag == known) {
            std::memcpy(out, &value, sizeof value);
            return true;
        }
    }
    return grab_.Copy(tag, out) || PreviewControl::CopyAttr(tag, out);
}

void CrosshairControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (!input || input != BaseInput()) {
        const auto* point = dynamic_cast<const Point*>(value);
        if (!point || !IsAnotherPlace(position_, {point->X(), point->Y()}))
            return;
        position_ = {point->X(), point->Y()};
    }
    PreviewControl::NotifyChanged(input, value, tags);
}

// Drawing -----------------------------------------------------------------------------------------

OverlayPoint CrosshairControl::InView(const PreviewInfo& view, OverlayPoint position) const
{
    OverlayPoint at;
    view.TransformOut(position.x + BaseOffsetX(), position.y + BaseOffsetY(), at.x, at.y);
    return at;
}

void CrosshairControl::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    if (view->drawMode != DrawIdle && view->drawMode != DrawDragging)
        return;
    displayed_ = position_;
    const bool dragging = dragState_ == DragType::Dragged;
    const double brightness = fade_.Brightness(*view, view->currentControl == this || dragging);
    if (!view->painter || (dragging && HidesWhileDragging()))
        return;
    OverlayPainter& painter = *view->painter;
    {
        const OverlayPainter::Mark mark(painter, InView(*view, displayed_), view->controlScale);
        DrawMark(painter, brightness);
    }
    if (style_ == CrosshairStyle::NormalCross && dragging && Grabbed().Any()) {
        const OverlayPainter::Mark mark(painter, InView(*view, origin_), view->controlScale);
        DrawOrigin(painter);
    }
    PreviewControl::GLDrawControls(view, tags);
}

void CrosshairControl::DrawMark(OverlayPainter& painter, double brightness) const
{
    const bool dragging = dragState_ == DragType::Dragged;
    const bool normal = style_ == CrosshairStyle::NormalCross;
    const bool highlighted = highlight_.Any() && (normal || !dragging);
    painter.SetColor(highlighted ? OverlayColor::Highlight : OverlayColor::Normal, brightness);
    switch (style_) {
    case CrosshairStyle::NormalCross:
        painter.Loop({{-3, 3}, {3, 3}, {3, -3}, {-3, -3}});
        for (const bool alongY : {false, true}) {
            if (!dragging || (alongY ? axisY_ : axisX_))
                DrawArm(painter, alongY, brightness);
        }
        break;
    case CrosshairStyle::DiagonalCross:
        painter.Line({-11, 11}, {11, -11});
        painter.Line({-11, -11}, {11, 11});
        break;
    case CrosshairStyle::Rectangle:
        painter.Loop({{-2, 2}, {2, 2}, {2, -2}, {-2, -2}});
        break;
    case CrosshairStyle::Circle:
        // A radius of 3 in steps of 30 degrees, cut to whole pixels: its squarish look is meant.
        painter.Loop({{0, 3},
                      {1, 2},
                      {2, 1},
                      {3, 0},
                      {2, -1},
                      {1, -2},
                      {0, -3},
                      {-1, -2},
                      {-2, -1},
                      {-3, 0},
                      {-2, 1},
                      {-1, 2}});
        break;
    }
}

/// A drag along both axes shows the arms without their heads.
void CrosshairControl::DrawArm(OverlayPainter& painter, bool alongY, double brightness) const
{
    const bool highlighted = alongY ? highlight_.y : highlight_.x;
    painter.SetColor(highlighted ? OverlayColor::Highlight : OverlayColor::Normal, brightness);
    const bool head = dragState_ != DragType::Dragged || !Grabbed().Both();
    if (alongY) {
        painter.Line({0, 3}, {0, 16});
        if (head)
            painter.Fill({{-3, 16}, {0, crosshairReach}, {3, 16}});
    } else {
        painter.Line({3, 0}, {16, 0});
        if (head)
            painter.Fill({{16, 3}, {crosshairReach, 0}, {16, -3}});
    }
}

void CrosshairControl::DrawOrigin(OverlayPainter& painter) const
{
    painter.SetColor(OverlayColor::Origin);
    painter.Fill({{-2, -2}, {2, -2}, {2, 2}, {-2, 2}});
    if (axisX_) {
        painter.Line({2, 0}, {17, 0});
        painter.Fill({{15, -1}, {17, -1}, {17, 1}, {15, 1}});
    }
    if (axisY_) {
        painter.Line({0, 15}, {0, 0});
        painter.Fill({{-1, 15}, {1, 15}, {1, 17}, {-1, 17}});
    }
}

// Dragging ----------------------------------------------------------------------------------------

/// From the cursor (view pixels) to the mark.
OverlayPoint CrosshairControl::OffsetFrom(const PreviewInfo& view, OverlayPoint cursor) const
{
    const OverlayPoint mark = InView(view, position_);
    return {mark.x - cursor.x, mark.y - cursor.y};
}

DragType CrosshairControl::ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    const PreviewControl* taken = view->hit.control;
    if (!taken || taken == this)
        Grab(*view, at, tags);
    else if (IsFollowing())
        StartFollowing(*view);
    return PreviewControl::ControlDown(view, at, tags);
}

void CrosshairControl::Grab(const PreviewInfo& view, const MxPointT<int>& at, const TagList* tags)
{
    if (dragState_ == DragType::None)
        firstGrab_ = {}; // of a drag that lost its release
    grab_ = {OffsetFrom(view, {double(at.x), double(at.y)})};
    const bool alternate = tags && (u32(tags->GetLong(PV_MouseState)) & MouseAlternate);
    if (alternate && firstGrab_.x == 0.0 && firstGrab_.y == 0.0)
        firstGrab_ = grab_;
    highlight_ = AxesTaken(grab_, style_, view.pickRadius, view.controlScale);
    axisX_ = highlight_.x;
    axisY_ = highlight_.y;
    if (!highlight_.Any())
        return;
    dragState_ = DragType::Dragged;
    origin_ = position_;
}

void CrosshairControl::ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    const auto alive = Ref<PreviewControl>::Share(this); // what is sent may remove the overlay
    PreviewControl::ControlMove(view, at, tags);
    if (dragState_ == DragType::Dragged)
        Drag(*view, tags);
    else if (dragState_ == DragType::Driven && IsFollowing())
        Follow(*view, tags);
}

void CrosshairControl::Drag(PreviewInfo& view, TagList* tags)
{
    OverlayPoint at;
    view.TransformOut(view.cursorX - BaseOffsetX(), view.cursorY - BaseOffsetY(), at.x, at.y);
    OverlayPoint to;
    view.TransformIn(at.x + grab_.x, at.y + grab_.y, to.x, to.y);
    if (!IsAnotherPlace(position_, to) || view.imageWidth == 0.0 || view.imageHeight == 0.0)
        return;
    to = AlongAxes(Grabbed(), to, origin_);
    Send(to, tags);
    if (dragState_ != DragType::Dragged)
        return; // what was sent ended the drag
    // Where the cursor goes is meant like this, the offset's sign and the base offset's included:
    // the position comes first, and what the view tells of it stays on the axis.
    view.TransformOut(to.x, to.y, at.x, at.y);
    view.TransformIn(at.x + grab_.x, at.y + grab_.y, view.cursorX, view.cursorY);
    view.cursorX -= BaseOffsetX();
    view.cursorY -= BaseOffsetY();
}

/// A value of the drag under way, which is noted on it while it is handed over.
void CrosshairControl::Send(OverlayPoint position, TagList* tags)
{
    if (!IsAnotherPlace(position_, position))
        return;
    const auto point = MakeRef<Point>(position.x, position.y);
    point->Tags().Set(PA_Dragged, true);
    SetInputs(point.Get(), CurrentTime(), 0, tags);
    point->Tags().Clear();
}

void CrosshairControl::StartFollowing(const PreviewInfo& view)
{
    dragState_ = DragType::Driven;
    origin_ = position_;
    if (!view.hit.input)
        return;
    const Ref<Parameter> value = view.hit.input->GetValue(CurrentTime());
    if (const auto* point = dynamic_cast<const Point*>(value.Get()))
        follow_ = followOrigin_ = {point->X(), point->Y()};
}

void CrosshairControl::Follow(const PreviewInfo& view, TagList* tags)
{
    const Ref<Parameter> value =
        view.hit.input ? view.hit.input->GetValue(CurrentTime()) : Ref<Parameter>();
    if (const auto* point = dynamic_cast<const Point*>(value.Get()))
        follow_ = {point->X(), point->Y()};
    Send({origin_.x + (follow_.x - followOrigin_.x), origin_.y + (follow_.y - followOrigin_.y)},
         tags);
}

void CrosshairControl::ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    if (IsFollowing() && dragState_ == DragType::Driven) {
        dragState_ = DragType::None;
        TagList none;
        DoTagList(PC_FollowEnded, tags ? *tags : none);
    }
    firstGrab_ = {};
    highlight_ = {}; // until the next hit test
    PreviewControl::ControlUp(view, at, tags);
}

// Commands ----------------------------------------------------------------------------------------

bool CrosshairControl::HitTest(PreviewInfo& view, const TagList* tags)
{
    CrosshairAxes axes;
    if (MayBeHit(view, tags))
        axes = AxesTaken(OffsetFrom(view, CursorPixel(view)), style_, view.pickRadius,
                         view.controlScale);
    fade_.Step(axes.Any());
    if (axes.Any())
        view.SetCursor(axes.Both() ? ViewCursor::Move
                       : axes.x    ? ViewCursor::MoveX
                                   : ViewCursor::MoveY);
    const CrosshairAxes highlight = axes.Any() && IsEditable() ? axes : CrosshairAxes();
    if (std::exchange(highlight_, highlight) != highlight)
        UpdateDisplay(nullptr, nullptr);
    return axes.Any();
}

bool CrosshairControl::ControlCommand(PreviewInfo* view, const MxID& command, u64 data,
                                      TagList* tags)
{
    if (command == CCMD_HitTest)
        return HitTest(*view, tags);
    if (command == CCMD_KeyDown) {
        const u32 modifiers = tags ? u32(tags->GetLong(PV_Modifiers)) : 0;
        if (const auto to = Nudged(position_, data, modifiers, view->pixelWidth)) {
            SetInputs(MakeRef<Point>(to->x, to->y).Get(), CurrentTime(), 0, tags);
            return true;
        }
    }
    return PreviewControl::ControlCommand(view, command, data, tags);
}

// Registration ------------------------------------------------------------------------------------

namespace {

struct CrosshairFacts : OverlayFacts {
    using Class = CrosshairControl;
    static constexpr char name[] = "CrosshairControl";
    static constexpr RecordFacts records[] = {{"CrosshairControl", "CrosshairControl"}};
    static constexpr TagMapEntry tagNames[] = {{"CHCD_FollowX", CHCD_FollowX},
                                               {"CHCD_FollowY", CHCD_FollowY},
                                               {"CHCD_FollowOrigX", CHCD_FollowOrigX},
                                               {"CHCD_FollowOrigY", CHCD_FollowOrigY},
                                               {"CHCD_CurrentX", CHCD_CurrentX},
                                               {"CHCD_CurrentY", CHCD_CurrentY},
                                               {"CHC_Style", CHC_Style},
                                               {}};
};

} // namespace

template <>
ControlClass<CrosshairFacts> controlClass<CrosshairFacts>{};
MARLOX_SCRIPT_CASTS(CrosshairControl)

} // namespace Marlox
