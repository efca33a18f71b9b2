// What a view's overlays do with the pointer and the keys.

#include "system/viewer/OverlayStage.h"

#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include <QStringList>

namespace Marlox {

std::vector<PreviewControl*> OverlayStage::PickOrder() const
{
    std::vector<PreviewControl*> order = Overlays();
    const auto focused = std::find(order.begin(), order.end(), focus_);
    if (focused != order.end())
        std::rotate(order.begin(), focused, focused + 1);
    return order;
}

/// All that a press could mean, in the order of the inputs.
std::vector<PreviewControl*> OverlayStage::UnderPointer()
{
    if (!pointerInside_ || !IsShown())
        return {};
    std::vector<PreviewControl*> under = Overlays();
    TagList tags{{PV_Modifiers, modifiers_}};
    std::erase_if(under, [this, &tags](PreviewControl* overlay) {
        view_.hit = {};
        return !overlay->ControlCommand(&view_, CCMD_HitTest, 0, &tags);
    });
    TestHover(); // each took itself for the one that is hit
    return under;
}

bool OverlayStage::IsNear(const MxPoint& at, const MxPoint& other) const
{
    return std::abs(at.x - other.x) < view_.pickRadius &&
           std::abs(at.y - other.y) < view_.pickRadius;
}

Input* OverlayStage::InputAt(PreviewControl& overlay)
{
    Input* input = overlay.Inputs().empty() ? nullptr : overlay.Inputs().front();
    overlay.ControlCommand(&view_, CCMD_GetInputAt, u64(reinterpret_cast<std::uintptr_t>(&input)),
                           nullptr);
    return input;
}

void OverlayStage::PlaceCursor(const MxPoint& at)
{
    at_ = at;
    pointerInside_ = true;
    view_.TransformIn(at.x, at.y, view_.cursorX, view_.cursorY);
}

void OverlayStage::SetCursor(ViewCursor shape)
{
    view_.SetCursor(shape);
    if (std::exchange(cursor_, shape) != shape)
        emit CursorChanged();
}

void OverlayStage::TestHover()
{
    TagList tags{{PV_Modifiers, modifiers_}};
    if (!pointerInside_ || !IsShown())
        tags.Add(PC_PointerGone, true);
    view_.SetCursor(ViewCursor::Arrow);
    view_.hit = {};
    if (clickedAt_ && !IsNear(at_, *clickedAt_))
        clickedAt_.reset();
    for (PreviewControl* overlay : PickOrder()) {
        const bool hit = overlay->ControlCommand(&view_, CCMD_HitTest, 0, &tags);
        if (hit && !view_.hit.control)
            view_.hit = {overlay, InputAt(*overlay)};
    }
    PreviewControl* under = std::exchange(view_.hit, {}).control;
    const bool another = std::exchange(view_.currentControl, under) != under;
    if (under && !under->IsEditable())
        SetCursor(ViewCursor::Forbidden);
    else
        SetCursor(under && view_.cursorShape == ViewCursor::Arrow ? ViewCursor::Move
                                                                  : view_.cursorShape);
    if (another)
        emit Changed();
}

bool OverlayStage::IsPressed() const
{
    return pressed_;
}

TagList OverlayStage::PointerTags(const TagList& more) const
{
    TagList tags{{PV_MouseState, MouseLeft | (modifiers_ & KeyAlt ? MouseAlternate : 0u)},
                 {PV_Modifiers, modifiers_}};
    tags.Merge(more);
    return tags;
}

const QUndoCommand* OverlayStage::LastEntry() const
{
    const QUndoStack& history = document_.Undo().Stack();
    return history.index() > 0 ? history.command(history.index() - 1) : nullptr;
}

bool OverlayStage::Press(const MxPoint& at, u32 modifiers, const TagList& more)
{
    if (pressed_)
        return true;
    if (!IsShown())
        return false;
    KeyUpAll();
    modifiers_ = modifiers;
    PlaceCursor(at);
    pressedAt_ = at;
    placement_ = Placement();
    moved_ = false;
    entry_ = LastEntry();
    TestHover();
    TagList tags = PointerTags(more);
    PreviewControl* under = view_.currentControl;
    if (under && !under->IsEditable()) {
        SetFocus(under);
        return pressed_ = true;
    }
    PreviewControl* taken = Grab(tags);
    if (!taken)
        return false;
    pressed_ = true;
    dragged_ = Ref<PreviewControl>::Share(taken);
    SetFocus(taken);
    view_.hit = {taken, InputAt(*taken)};
    view_.currentControl = taken;
    view_.drawMode = DrawDragging;
    for (PreviewControl* other : Overlays()) {
        if (other != taken)
            OfferTo(*other, tags);
    }
    emit Changed();
    return true;
}

/// The overlay that takes the press: what the pointer is on is asked first.
PreviewControl* OverlayStage::Grab(TagList& tags)
{
    std::vector<PreviewControl*> order = PickOrder();
    const auto under = std::find(order.begin(), order.end(), view_.currentControl);
    if (under != order.end())
        std::rotate(order.begin(), under, under + 1);
    for (PreviewControl* overlay : order) {
        if (overlay->IsEditable() && overlay->ControlDown(&view_, at_, &tags) == DragType::Dragged)
            return overlay;
    }
    return nullptr;
}

/// The press is another's: this one may be driven by it, but not take it too.
void OverlayStage::OfferTo(PreviewControl& other, TagList& tags)
{
    if (other.ControlDown(&view_, at_, &tags) == DragType::Dragged)
        other.ControlUp(&view_, at_, &tags);
}

void OverlayStage::Move(const MxPoint& at, u32 modifiers, const TagList& more)
{
    // In a drag a modifier alone is no move: a click must not write.
    const bool same = at == at_ && pointerInside_ && (pressed_ || modifiers == modifiers_);
    if (!std::exchange(replaced_, false) && same)
        return;
    modifiers_ = modifiers;
    PlaceCursor(at);
    moved_ = moved_ || at != pressedAt_;
    if (!pressed_)
        return TestHover();
    if (!dragged_)
        return;
    StartProxy();
    pointer_ = more;
    TagList tags = PointerTags(more);
    const Ref<PreviewControl> dragged = dragged_; // what is written may end the drag
    dragged->ControlMove(&view_, at, &tags);
    for (PreviewControl* other : Overlays()) {
        if (dragged_ && other->DragState() == DragType::Driven)
            other->ControlMove(&view_, at, &tags);
    }
}

/// Nothing is rendered for a press alone.
void OverlayStage::StartProxy()
{
    proxy_.Begin(&document_, dragged_->GetOperator(nullptr), dragged_->Inputs());
}

void OverlayStage::Release(const MxPoint& at, u32 modifiers, const TagList& more)
{
    if (!pressed_)
        return;
    Move(at, modifiers, more);
    pointer_ = more;
    EndDrag();
    TestHover();
    EndClick(at);
}

/// A second click at the same place goes on to the overlay below, unless the click did something.
void OverlayStage::EndClick(const MxPoint& at)
{
    const bool again = clickedAt_.has_value();
    const bool plain = !moved_ && LastEntry() == entry_;
    clickedAt_ = plain ? std::optional(at) : std::nullopt;
    if (!again || !plain || !IsShown())
        return;
    const std::vector<PreviewControl*> under = UnderPointer();
    const auto found = std::find(under.begin(), under.end(), focus_);
    if (found == under.end() || under.size() < 2)
        return;
    SetFocus(found + 1 == under.end() ? under.front() : *(found + 1));
    focusShows_ = true;
    TestHover();
}

void OverlayStage::EndDrag()
{
    FinishDrag(true);
}

void OverlayStage::CancelDrag()
{
    FinishDrag(false);
    TestHover();
}

void OverlayStage::FinishDrag(bool keep)
{
    pressed_ = false;
    replaced_ = false;
    const Ref<PreviewControl> dragged = std::exchange(dragged_, nullptr);
    if (!dragged)
        return;
    TagList tags{{PV_Modifiers, modifiers_}};
    tags.Merge(std::exchange(pointer_, {}));
    if (!keep)
        dragged->EndUndo(false);
    for (PreviewControl* other : Overlays()) {
        if (other->DragState() != DragType::Driven)
            continue;
        if (!keep)
            other->EndUndo(false); // it may have written first
        other->ControlUp(&view_, at_, &tags);
    }
    dragged->ControlUp(&view_, at_, &tags);
    view_.TransformIn(at_.x, at_.y, view_.cursorX, view_.cursorY); // a drag may have rewritten it
    view_.hit = {};
    view_.currentControl = nullptr;
    if (IsShown())
        view_.drawMode = DrawIdle;
    proxy_.End();
    emit Changed();
}

void OverlayStage::Leave()
{
    if (!std::exchange(pointerInside_, false) || pressed_)
        return;
    TestHover();
}

std::array<double, 4> OverlayStage::Placement() const
{
    return {view_.imageLeft, view_.imageBottom, view_.imageWidth, view_.imageHeight};
}

void OverlayStage::PlacementChanged()
{
    if (std::exchange(placement_, Placement()) != placement_ && pressed_)
        replaced_ = true; // the next move of the drag counts wherever it is
    if (!pointerInside_ || pressed_)
        return; // the drag may have rewritten the cursor
    PlaceCursor(at_);
    TestHover();
}

// Keys --------------------------------------------------------------------------------------------

/// The overlay with the focus or, for the keys that its buttons tell of, the one whose toolbar
/// shows. Arrows and Escape are the view's own until an overlay has the focus. Of one that can't be
/// edited only keys that it asks for by itself.
PreviewControl* OverlayStage::KeyTarget(int key) const
{
    const bool ofTheFocus = key == Qt::Key_Escape || (key >= Qt::Key_Left && key <= Qt::Key_Down);
    PreviewControl* overlay = focus_ || ofTheFocus ? focus_ : ToolbarOwner();
    const bool takes = overlay && (overlay->IsEditable() || !ofTheFocus);
    return takes && !pressed_ && IsShown() ? overlay : nullptr;
}

bool OverlayStage::WantsKey(int key, u32 modifiers)
{
    PreviewControl* overlay = KeyTarget(key);
    TagList tags{{PV_Modifiers, modifiers}};
    return overlay && overlay->ControlCommand(&view_, CCMD_WantsKey, u64(key), &tags);
}

bool OverlayStage::KeyDown(int key, u32 modifiers)
{
    const auto overlay = Ref<PreviewControl>::Share(KeyTarget(key)); // what it does may remove it
    const bool isFocused = overlay && focus_ && overlay->IsEditable();
    if (!overlay || (!isFocused && !WantsKey(key, modifiers)))
        return false;
    if (!focus_ && overlay->IsEditable())
        SetFocus(overlay.Get());
    const bool held = std::exchange(view_.keysHeld, true);
    TagList tags{{PV_Modifiers, modifiers}};
    const bool used = overlay->ControlCommand(&view_, CCMD_KeyDown, u64(key), &tags);
    if (!used)
        view_.keysHeld = held;
    return used;
}

void OverlayStage::KeyUpAll()
{
    if (!std::exchange(view_.keysHeld, false))
        return;
    TagList tags;
    for (PreviewControl* overlay : Overlays())
        overlay->ControlCommand(&view_, CCMD_KeyUpAll, 0, &tags);
}

void OverlayStage::SetFocus(PreviewControl* overlay)
{
    if (focus_ == overlay && !focusShows_)
        return;
    KeyUpAll();
    focus_ = overlay;
    focusShows_ = false;
    emit ToolbarChanged();
    emit Changed();
}

bool OverlayStage::NudgesFocus() const
{
    return focus_ && focus_->IsEditable() && !focus_->Inputs().empty() &&
           focus_->Inputs().front()->GetDataType() == MxID(CLSID_DataType_Point);
}

bool OverlayStage::FocusNext(bool forward)
{
    if (pressed_)
        return true;
    const std::vector<PreviewControl*> order = Overlays();
    const auto at = std::find(order.begin(), order.end(), focus_);
    const std::ptrdiff_t step = forward ? 1 : -1;
    std::ptrdiff_t next = at == order.end() ? (forward ? 0 : std::ptrdiff_t(order.size()) - 1)
                                            : at - order.begin() + step;
    const bool found = IsShown() && next >= 0 && next < std::ptrdiff_t(order.size());
    SetFocus(found ? order[std::size_t(next)] : nullptr);
    focusShows_ = found;
    emit Changed();
    return found;
}

QString OverlayStage::Tip()
{
    std::array<char, 256> text{};
    const std::vector<PreviewControl*> under =
        pressed_ ? std::vector<PreviewControl*>() : UnderPointer();
    PreviewControl* overlay = view_.currentControl;
    if (!overlay || !overlay->ControlGetTip(&view_, text.data(), nullptr))
        return {};
    QString tip = QString::fromUtf8(text.data());
    QStringList others;
    for (PreviewControl* other : under) {
        if (other != overlay && other->GetName(text.data(), int(text.size()), nullptr))
            others << QString::fromUtf8(text.data());
    }
    if (!others.isEmpty())
        tip += tr("\nAlso here: %1. Click twice to get at it.").arg(others.join(", "));
    return tip;
}

} // namespace Marlox
