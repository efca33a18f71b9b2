#include "controls/viewer/AngleControl.h"

#include "framework/ControlClass.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Marlox {

namespace {

struct SecondTags {
    u32 id;
    u32 pointer;
};

/// In the order of SecondIndex.
constexpr SecondTags secondTags[] = {{ACID_Center, ACP_Center},
                                     {ACID_Radius, ACP_Radius},
                                     {ACID_CenterX, ACP_CenterX},
                                     {ACID_CenterY, ACP_CenterY},
                                     {ACID_CenterZ, ACP_CenterZ}};

double NumberIn(const Parameter* value, double otherwise)
{
    const auto* number = dynamic_cast<const Number*>(value);
    return number ? number->GetValue() : otherwise;
}

/// Whether the number is another one, which is taken over then.
bool Change(double& number, double to)
{
    if (!(std::abs(to - number) > leastChange))
        return false;
    number = to;
    return true;
}

} // namespace

void AngleControl::RegCleanup(Registry* record)
{
    Object::RegCleanup(record);
}

AngleControl::AngleControl(const Registry* record, const ScriptVal& creator,
                           const TagList& attributes)
    : PreviewControl(record, creator, attributes)
{
    ReadSizes(attributes);
    TakeFollow(attributes);
}

AngleControl::~AngleControl() = default;

std::size_t AngleControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes and inputs ---------------------------------------------------------------------------

void AngleControl::ReadSizes(const TagList& tags)
{
    minRadius_ = tags.GetDouble(ACD_MinRadius, minRadius_);
    radiusScale_ = tags.GetDouble(ACD_RadiusScale, radiusScale_);
    handleStyle_ = int(tags.GetLong(AC_HandleStyle, handleStyle_));
}

/// Returns the other tags, as DragOffset::TakeFrom does and for the same reason.
TagList AngleControl::TakeFollow(const TagList& tags)
{
    follow_ = {tags.GetDouble(ACD_FollowX, follow_.x), tags.GetDouble(ACD_FollowY, follow_.y)};
    followAngle_ = tags.GetDouble(ACD_FollowAngle, followAngle_);
    TagList others(tags);
    for (const u32 tag : {ACD_FollowX, ACD_FollowY, ACD_FollowAngle})
        others.Remove(tag);
    return others;
}

bool AngleControl::SetAttrsTagList(const TagList& tags)
{
    ReadSizes(tags);
    return PreviewControl::SetAttrsTagList(grab_.TakeFrom(TakeFollow(tags)));
}

bool AngleControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    for (std::size_t i = 0; i < seconds_.size(); ++i)
        seconds_[i].ReadFrom(tags, secondTags[i].id, secondTags[i].pointer);
    ReadSizes(tags);
    TakeFollow(tags);
    grab_.TakeFrom(tags);
    return PreviewControl::SetAttrsTagList(input, tags);
}

bool AngleControl::CopyAttr(u64 tag, void* out)
{
    const std::pair<u32, double> values[] = {{ACD_CurrentAngle, angle_},
                                             {ACD_FollowX, follow_.x},
                                             {ACD_FollowY, follow_.y},
                                             {ACD_FollowAngle, followAngle_}};
    for (const auto& [known, value] : values) {
        if (tag == known) {
            std::memcpy(out, &value, sizeof value);
            return true;
        }
    }
    for (std::size_t i = 0; i < seconds_.size(); ++i) {
        if (tag == secondTags[i].id && seconds_[i].Get()) {
            const char* id = seconds_[i].Get()->GetID().c_str();
            std::memcpy(out, &id, sizeof id);
            return true;
        }
    }
    return grab_.Copy(tag, out) || PreviewControl::CopyAttr(tag, out);
}

bool AngleControl::RemoveInput(Input* input, TagList* tags)
{
    bool wasSecond = false;
    for (Second& second : seconds_)
        wasSecond = second.Forget(input) || wasSecond;
    return PreviewControl::RemoveInput(input, tags) || wasSecond;
}

void AngleControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (input == BaseInput() || Store(input, value))
        PreviewControl::NotifyChanged(input, value, tags);
}

/// Whether that changed what is shown.
bool AngleControl::Store(const Input* input, const Parameter* value)
{
    const auto is = [this, input](SecondIndex index) { return seconds_[index].Is(input); };
    if (is(Centre)) {
        const auto* point = dynamic_cast<const Point*>(value);
        if (!point)
            return false;
        const OverlayPoint centre{seconds_[CentreX].Get() ? centre_.x : point->X(),
                                  seconds_[CentreY].Get() ? centre_.y : point->Y()};
        const bool changed = IsAnotherPlace(centre_, centre);
        if (changed)
            centre_ = centre;
        return changed;
    }
    if (is(Radius))
        return Change(radius_, NumberIn(value, radius_));
    if (is(CentreX))
        return Change(centre_.x, NumberIn(value, centre_.x));
    if (is(CentreY))
        return Change(centre_.y, NumberIn(value, centre_.y));
    return !is(CentreZ) && Change(angle_, NumberIn(value, angle_));
}

// Dragging ----------------------------------------------------------------------------------------

/// With the lever a pointer beside the tip holds both where it is and by how much it is ahead: the
/// angle steps back by that much at first. This is meant.
AngleControl::Hold AngleControl::HoldAt(const PreviewInfo& view, OverlayPoint pointer,
                                        bool alternate) const
{
    const OverlayPoint centre = CentreInView(view);
    const OverlayPoint tip = LeverInView(view);
    if (alternate)
        return {{tip.x - pointer.x, tip.y - pointer.y},
                0.0,
                {pointer.x - (tip.x - centre.x), pointer.y - (tip.y - centre.y)}};
    if (handleStyle_ != 0)
        return {{tip.x - pointer.x, tip.y - pointer.y},
                AngleAhead({pointer.x - centre.x, pointer.y - centre.y}, angle_),
                centre};
    const OverlayPoint handle = HandleInView(view);
    return {{handle.x - pointer.x, handle.y - pointer.y}, 0.0, handle};
}

bool AngleControl::IsHeld(const PreviewInfo& view, const Hold& hold)
{
    const double reach = std::max(std::trunc(4.0 * view.controlScale), double(view.pickRadius));
    return std::hypot(hold.offset.x, hold.offset.y) <= reach;
}

DragType AngleControl::ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    startAngle_ = angle_;
    if (IsDrivenBy(*view)) {
        dragState_ = DragType::Driven;
        if (const AngleControl* leader = Leader(*view))
            StartFollowing(*leader);
    } else {
        const u32 mouse = tags ? u32(tags->GetLong(PV_MouseState)) : 0;
        Grab(*view, {double(at.x), double(at.y)}, (mouse & MouseAlternate) != 0);
    }
    return PreviewControl::ControlDown(view, at, tags);
}

bool AngleControl::IsDrivenBy(const PreviewInfo& view) const
{
    if (!view.hit.control)
        return false;
    return seconds_[Centre].Is(view.hit.input) || seconds_[Radius].Is(view.hit.input) ||
           (IsFollowing() && Leader(view));
}

/// The other angle that is dragged; null: none.
const AngleControl* AngleControl::Leader(const PreviewInfo& view) const
{
    const PreviewControl* taken = view.hit.control;
    const bool isAngle = taken && taken != this && taken->GetRegistry() &&
                         taken->GetRegistry()->ClassID() == MxID(CLSID_PreviewControl_Angle);
    return isAngle ? dynamic_cast<const AngleControl*>(taken) : nullptr;
}

void AngleControl::StartFollowing(const AngleControl& leader)
{
    follow_ = {leader.centre_.x + leader.BaseOffsetX() - BaseOffsetX(),
               leader.centre_.y + leader.BaseOffsetY() - BaseOffsetY()};
    followAngle_ = leader.angle_ - angle_;
    grab_ = leader.grab_;
    ahead_ = leader.ahead_;
}

void AngleControl::Grab(const PreviewInfo& view, OverlayPoint pointer, bool alternate)
{
    const Hold hold = HoldAt(view, pointer, alternate);
    grab_ = {hold.offset};
    ahead_ = hold.ahead;
    if (!IsHeld(view, hold))
        return;
    const bool anew = dragState_ == DragType::None; // what is left is of a drag without a release
    dragState_ = DragType::Dragged;
    if (!start_ || !alternate || anew) {
        start_.emplace();
        view.TransformIn(hold.start.x, hold.start.y, start_->x, start_->y);
    }
}

void AngleControl::ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    const auto alive = Ref<PreviewControl>::Share(this); // what is sent may remove the overlay
    PreviewControl::ControlMove(view, at, tags);
    const bool follows =
        dragState_ == DragType::Driven && IsFollowing() && Leader(*view) != nullptr;
    if (dragState_ != DragType::Dragged && !follows)
        return;
    const OverlayPoint centre = follows ? follow_ : centre_;
    const OverlayPoint pointer{view->cursorX + grab_.x / view->imageWidth - BaseOffsetX(),
                               view->cursorY + grab_.y / view->imageHeight - BaseOffsetY()};
    const auto turned = TurnedAngle(
        {view->AspectScaleXIn(pointer.x - centre.x), view->AspectScaleYIn(pointer.y - centre.y)},
        angle_, follows ? ahead_ + followAngle_ : ahead_);
    if (turned)
        SetInputs(MakeRef<Number>(*turned).Get(), CurrentTime(), 0, nullptr);
}

void AngleControl::ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    start_.reset();
    PreviewControl::ControlUp(view, at, tags);
}

bool AngleControl::HitTest(PreviewInfo& view, const TagList* tags)
{
    const bool alternate = tags && (u32(tags->GetLong(PV_Modifiers)) & KeyAlt);
    const bool hit =
        MayBeHit(view, tags) && IsHeld(view, HoldAt(view, CursorPixel(view), alternate));
    fade_.Step(hit);
    if (hit)
        view.SetCursor(ViewCursor::Turn);
    const bool hovered = hit && IsEditable();
    if (std::exchange(hovered_, hovered) != hovered)
        UpdateDisplay(nullptr, nullptr);
    return hit;
}

bool AngleControl::ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags)
{
    return command == CCMD_HitTest ? HitTest(*view, tags)
                                   : PreviewControl::ControlCommand(view, command, data, tags);
}

// Registration ------------------------------------------------------------------------------------

namespace {

struct AngleFacts : OverlayFacts {
    using Class = AngleControl;
    static constexpr char name[] = "AngleControl";
    static constexpr RecordFacts records[] = {{CLSID_PreviewControl_Angle, "AngleControl"}};
    static constexpr TagMapEntry tagNames[] = {{"ACD_MinRadius", ACD_MinRadius},
                                               {"ACD_RadiusScale", ACD_RadiusScale},
                                               {"ACD_FollowX", ACD_FollowX},
                                               {"ACD_FollowY", ACD_FollowY},
                                               {"ACD_FollowAngle", ACD_FollowAngle},
                                               {"ACD_CurrentAngle", ACD_CurrentAngle},
                                               {"ACID_Center", ACID_Center},
                                               {"ACID_Radius", ACID_Radius},
                                               {"ACID_CenterX", ACID_CenterX},
                                               {"ACID_CenterY", ACID_CenterY},
                                               {"ACID_CenterZ", ACID_CenterZ},
                                               {"ACP_Center", ACP_Center},
                                               {"ACP_Radius", ACP_Radius},
                                               {"ACP_CenterX", ACP_CenterX},
                                               {"ACP_CenterY", ACP_CenterY},
                                               {"ACP_CenterZ", ACP_CenterZ},
                                               {}};
};

} // namespace

template <>
ControlClass<AngleFacts> controlClass<AngleFacts>{};
MARLOX_SCRIPT_CASTS(AngleControl)

} // namespace Marlox
