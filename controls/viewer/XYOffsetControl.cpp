#include "controls/viewer/XYOffsetControl.h"

#include "framework/ControlClass.h"
#include "system/document/MarloxDoc.h"

#include <utility>

#include <QPointer>

namespace Marlox {

namespace {

/// Offsets carry single precision: that is meant. The value is volatile since GCC 12 leaves the
/// rounding out when it makes one vector of both coordinates.
double Rounded(double offset)
{
    const volatile float rounded = float(offset);
    return rounded;
}

} // namespace

XYOffsetControl::~XYOffsetControl() = default;

std::size_t XYOffsetControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes and inputs --------------------------------------------------------------------------

bool XYOffsetControl::SetAttrsTagList(const TagList& tags)
{
    return PreviewControl::SetAttrsTagList(grab_.TakeFrom(tags));
}

bool XYOffsetControl::CopyAttr(u64 tag, void* out)
{
    return grab_.Copy(tag, out) || PreviewControl::CopyAttr(tag, out);
}

bool XYOffsetControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    grab_.TakeFrom(tags);
    axis_.ReadFrom(tags, 0, XYOCP_AxisInput);
    return PreviewControl::SetAttrsTagList(input, tags);
}

bool XYOffsetControl::RemoveInput(Input* input, TagList* tags)
{
    const bool wasAxis = axis_.Forget(input);
    return PreviewControl::RemoveInput(input, tags) || wasAxis;
}

void XYOffsetControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (input == BaseInput() || Store(input, value))
        PreviewControl::NotifyChanged(input, value, tags);
}

/// Whether that changed what is shown.
bool XYOffsetControl::Store(const Input* input, const Parameter* value)
{
    OverlayPoint offset = offset_;
    OverlayPoint origin = origin_;
    if (axis_.Is(input)) {
        if (const auto* point = dynamic_cast<const Point*>(value))
            origin = {point->X(), point->Y()};
    } else if (input == FindInputByIndex(0)) {
        offset.x = NumberOf(value, offset.x);
    } else if (input == FindInputByIndex(1)) {
        offset.y = NumberOf(value, offset.y);
    }
    if (!IsAnotherPlace(offset_, offset) && !IsAnotherPlace(origin_, origin))
        return false;
    offset_ = offset;
    origin_ = origin;
    return true;
}

// Drawing and dragging ---------------------------------------------------------------------------

void XYOffsetControl::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    const bool hides = HidesWhileDragging() && dragState_ == DragType::Dragged;
    if (view->drawMode == DrawHidden || hides)
        return;
    if (OverlayPainter* painter = view->painter) {
        const OverlayPoint mark{view->TransformXOut(origin_.x + offset_.x),
                                view->TransformYOut(origin_.y + offset_.y)};
        const OverlayPoint origin{view->TransformXOut(origin_.x), view->TransformYOut(origin_.y)};
        painter->SetColor(OverlayColor::Normal);
        painter->SetDashed(true);
        painter->Line(mark, origin);
        painter->SetDashed(false);
        const double reach = 5.0 * view->pixelRatio; // not with the control's scale
        painter->Line({mark.x - reach, mark.y + reach}, {mark.x + reach, mark.y - reach});
        painter->Line({mark.x - reach, mark.y - reach}, {mark.x + reach, mark.y + reach});
    }
    PreviewControl::GLDrawControls(view, tags);
}

/// Cut to whole pixels.
DragOffset XYOffsetControl::MarkFromCursor(const PreviewInfo& view) const
{
    return {
        {std::trunc(view.TransformXOut(origin_.x + offset_.x) - view.TransformXOut(view.cursorX)),
         std::trunc(view.TransformYOut(origin_.y + offset_.y) - view.TransformYOut(view.cursorY))}};
}

DragType XYOffsetControl::ControlDown(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    if (dragState_ == DragType::None)
        undoBegun_ = false; // the last release may have been lost
    if (view->hit.control && axis_.Is(view->hit.input)) {
        dragState_ = DragType::Driven;
    } else {
        grab_ = MarkFromCursor(*view);
        if (IsWithinPick(grab_, view->pickRadius)) {
            dragState_ = DragType::Dragged;
            axisX_ = axisY_ = true;
        }
    }
    return PreviewControl::ControlDown(view, at, tags);
}

void XYOffsetControl::ControlMove(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    PreviewControl::ControlMove(view, at, tags);
    if (dragState_ != DragType::Dragged)
        return;
    const OverlayPoint offset{Rounded(grab_.x / view->imageWidth + view->cursorX - origin_.x),
                              Rounded(grab_.y / view->imageHeight + view->cursorY - origin_.y)};
    if (IsAnotherPlace(offset_, offset) && std::isfinite(offset.x) && std::isfinite(offset.y))
        Send(offset);
}

/// The first change of a drag stands in a nest. The group of the drag begins within and so holds it
/// open to the release: all of the drag is the nest's entry.
void XYOffsetControl::Send(OverlayPoint offset)
{
    const auto alive = Ref<PreviewControl>::Share(this); // what is written may remove the overlay
    const bool first = !std::exchange(undoBegun_, true);
    const QPointer<MarloxDoc> document(first ? GetDoc() : nullptr);
    if (document)
        document->StartUndoNest("Control Change");
    SetInputs(MakeRef<Number>(offset.x).Get(), CurrentTime(), 0, nullptr);
    SetInputs(MakeRef<Number>(offset.y).Get(), CurrentTime(), 1, nullptr);
    if (document)
        document->EndUndoNest();
}

void XYOffsetControl::ControlUp(PreviewInfo* view, const MxPointT<int>& at, TagList* tags)
{
    undoBegun_ = false;
    PreviewControl::ControlUp(view, at, tags);
}

bool XYOffsetControl::HitTest(PreviewInfo& view, const TagList* tags) const
{
    if (!MayBeHit(view, tags) || !IsWithinPick(MarkFromCursor(view), view.pickRadius))
        return false;
    const bool x = IsFree(FindInputByIndex(0));
    const bool y = IsFree(FindInputByIndex(1));
    view.SetCursor(x && !y ? ViewCursor::MoveX : y && !x ? ViewCursor::MoveY : ViewCursor::Move);
    return true;
}

bool XYOffsetControl::ControlCommand(PreviewInfo* view, const MxID& command, u64 data,
                                     TagList* tags)
{
    if (command == CCMD_HitTest)
        return HitTest(*view, tags);
    return PreviewControl::ControlCommand(view, command, data, tags);
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct XYOffsetFacts : OverlayFacts {
    using Class = XYOffsetControl;
    static constexpr char name[] = "XYOffsetControl";
    static constexpr RecordFacts records[] = {{"XYOffsetControl", "XYOffsetControl"}};
    static constexpr TagMapEntry tagNames[] = {{"XYOCP_AxisInput", XYOCP_AxisInput}, {}};
};

} // namespace

template <>
ControlClass<XYOffsetFacts> controlClass<XYOffsetFacts>{};
MARLOX_SCRIPT_CASTS(XYOffsetControl)

} // namespace Marlox
