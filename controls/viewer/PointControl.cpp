#include "controls/viewer/PointControl.h"

#include "framework/ControlClass.h"

namespace Marlox {

PointControl::PointControl(const Registry* record, const ScriptVal& creator,
                           const TagList& attributes)
    : PreviewControl(record, creator, attributes)
{
    ReadPrevious(attributes);
}

PointControl::~PointControl() = default;

std::size_t PointControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes and inputs --------------------------------------------------------------------------

bool PointControl::SetAttrsTagList(const TagList& tags)
{
    ReadPrevious(tags); // counts without an input, too
    return PreviewControl::SetAttrsTagList(grab_.TakeFrom(tags));
}

bool PointControl::CopyAttr(u64 tag, void* out)
{
    return grab_.Copy(tag, out) || PreviewControl::CopyAttr(tag, out);
}

bool PointControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    grab_.TakeFrom(tags);
    previousInput_.ReadFrom(tags, PCID_PrevPoint, PCP_PrevPoint);
    ReadPrevious(tags);
    return PreviewControl::SetAttrsTagList(input, tags);
}

void PointControl::ReadPrevious(const TagList& tags)
{
    if (previousInput_.Get())
        return;
    previous_ = {tags.GetDouble(PCD_SetPrevPointX, previous_.x),
                 tags.GetDouble(PCD_SetPrevPointY, previous_.y)};
}

bool PointControl::RemoveInput(Input* input, TagList* tags)
{
    const bool wasPrevious = previousInput_.Forget(input);
    if (wasPrevious)
        UpdateDisplay(nullptr, tags); // without the line
    return PreviewControl::RemoveInput(input, tags) || wasPrevious;
}

void PointControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (input != BaseInput()) {
        const auto* point = dynamic_cast<const Point*>(value);
        OverlayPoint& place = previousInput_.Is(input) ? previous_ : position_;
        if (!point || !IsAnotherPlace(place, {point->X(), point->Y()}))
            return;
        place = {point->X(), point->Y()};
    }
    PreviewControl::NotifyChanged(input, value, tags);
}

void PointControl::SetActive(int how, TagList* tags)
{
    PreviewControl::SetActive(how, tags);
    std::vector<Ref<PreviewControl>> idle;
    if (const Input* previous = previousInput_.Get()) {
        const ReadLock lock(*previous);
        for (Object* control : previous->Controls()) {
            auto* overlay = dynamic_cast<PreviewControl*>(control);
            if (overlay && !overlay->IsActive())
                idle.push_back(Ref<PreviewControl>::Share(overlay));
        }
    }
    // Without the lock: who hears of it may add controls to the input or remove some.
    for (const Ref<PreviewControl>& overlay : idle) {
        if (!overlay->IsActive())
            overlay->SetActive(how, tags);
    }
}

// Drawing and dragging ---------------------------------------------------------------------------

void PointControl::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    const bool hides = HidesWhileDragging() && dragState_ == DragType::Dragged;
    if (view->drawMode == DrawHidden || hides)
        return;
    if (OverlayPainter* painter = view->painter) {
        const OverlayPoint mark = MarkFrom(*view, {0.0, 0.0});
        painter->SetColor(OverlayColor::Normal);
        {
            const OverlayPainter::Mark frame(*painter, mark, view->controlScale);
            painter->Loop({{-2, -2}, {2, -2}, {2, 2}, {-2, 2}, {-2, -2}});
        }
        if (previousInput_.Get()) {
            OverlayPoint previous;
            view->TransformOut(previous_.x, previous_.y, previous.x, previous.y);
            painter->Line(mark, previous);
        }
    }
    PreviewControl::GLDrawControls(view, tags);
}

/// The way from a view pixel to the mark.
OverlayPoint PointControl::MarkFrom(const PreviewInfo& view, OverlayPoint pixel) const
{
    OverlayPoint mark;
    view.TransformOut(position_.x, position_.y, mark.x, mark.y);
    return {mark.x - pixel.x, mark.y - pixel.y};
}

DragType PointControl::ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    if (view->hit.control && previousInput_.Is(view->hit.input)) {
        dragState_ = DragType::Driven;
    } else {
        grab_ = {MarkFrom(*view, {double(at.x), double(at.y)})};
        if (IsWithinPick(grab_, view->pickRadius)) {
            dragState_ = DragType::Dragged;
            axisX_ = axisY_ = true;
        }
    }
    return PreviewControl::ControlDown(view, at, tags);
}

void PointControl::ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    PreviewControl::ControlMove(view, at, tags);
    if (dragState_ != DragType::Dragged)
        return;
    const OverlayPoint place{grab_.x / view->imageWidth + view->cursorX,
                             grab_.y / view->imageHeight + view->cursorY};
    if (IsAnotherPlace(position_, place))
        Send(place);
}

bool PointControl::ControlCommand(PreviewInfo* view, const MxID& command, u64 data, TagList* tags)
{
    if (command == CCMD_HitTest)
        return MayBeHit(*view, tags) &&
               IsWithinPick(MarkFrom(*view, CursorPixel(*view)), view->pickRadius);
    if (command == CCMD_KeyDown) {
        const u32 modifiers = tags ? u32(tags->GetLong(PV_Modifiers)) : 0;
        if (const auto place = Nudged(position_, data, modifiers, view->pixelWidth)) {
            Send(*place);
            return true;
        }
    }
    return PreviewControl::ControlCommand(view, command, data, tags);
}

void PointControl::Send(OverlayPoint place)
{
    if (std::isfinite(place.x) && std::isfinite(place.y)) // a view of no size has no places
        SetInputs(MakeRef<Point>(place.x, place.y).Get(), CurrentTime(), 0, nullptr);
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct PointFacts : OverlayFacts {
    using Class = PointControl;
    static constexpr char name[] = "PointControl";
    static constexpr RecordFacts records[] = {{"PointControl", "PointControl"}};
    static constexpr TagMapEntry tagNames[] = {{"PCD_SetPrevPointX", PCD_SetPrevPointX},
                                               {"PCD_SetPrevPointY", PCD_SetPrevPointY},
                                               {"PCID_PrevPoint", PCID_PrevPoint},
                                               {"PCP_PrevPoint", PCP_PrevPoint},
                                               {}};
};

} // namespace

template <>
ControlClass<PointFacts> controlClass<PointFacts>{};
MARLOX_SCRIPT_CASTS(PointControl)

} // namespace Marlox
