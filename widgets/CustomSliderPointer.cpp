// The slider under the pointer: press, move, release, hover, and the repeat of a held track.

#include "widgets/CustomSlider.h"

#include <QMouseEvent>
#include <QTimerEvent>

namespace Marlox {

void CustomSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return CustomController::mousePressEvent(event);
    if (rect().isEmpty())
        return event->ignore();
    if (IsLocked())
        return; // goes to nobody
    const QPointer<CustomSlider> alive(this);
    setFocus(Qt::MouseFocusReason); // what had it may commit a value
    if (alive)
        LoseGesture(); // keys or a wheel not yet at rest
    if (alive)
        Press(event->pos(), event->localPos().x(), event->modifiers());
}

void CustomSlider::Press(QPoint at, double x, Qt::KeyboardModifiers modifiers)
{
    const bool fine = modifiers & Qt::ControlModifier;
    dragStart_ = model_.value;
    if (modifiers & Qt::AltModifier) {
        if (model_.HasDefault())
            drag_.PressReset();
        return;
    }
    const SliderPart part = geometry_.HitTest(at, model_);
    switch (part) {
    case SliderPart::Knob:
        drag_.GrabKnob(model_, x, fine);
        Hover(part);
        update();
        StartDrag();
        break;
    case SliderPart::Reset:
        drag_.PressReset();
        update();
        break;
    case SliderPart::TrackBelow:
    case SliderPart::TrackAbove:
        drag_.HoldTrack(part == SliderPart::TrackAbove, at);
        trackFine_ = fine;
        StartDrag();
        StepOnTrack();
        break;
    case SliderPart::None:
        break;
    }
}

void CustomSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (IsHeld() && !(event->buttons() & Qt::LeftButton))
        return LoseGesture();
    const bool fine = event->modifiers() & Qt::ControlModifier;
    switch (drag_.GetKind()) {
    case SliderDrag::Kind::Knob:
        if (const auto value = drag_.MoveTo(model_, event->localPos().x(), fine))
            SetValue(*value);
        break;
    case SliderDrag::Kind::Track:
        drag_.PointTo(event->pos());
        trackFine_ = fine;
        break;
    case SliderDrag::Kind::Reset:
        Hover(geometry_.IsOverReset(event->pos(), model_) ? SliderPart::Reset : SliderPart::None);
        break;
    case SliderDrag::Kind::Idle:
        if (!dragging_)
            Hover(geometry_.HitTest(event->pos(), model_));
        break;
    }
}

void CustomSlider::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return CustomController::mouseReleaseEvent(event);
    const QPointer<CustomSlider> alive(this);
    const bool reset = drag_.GetKind() == SliderDrag::Kind::Reset && model_.HasDefault();
    if (reset &&
        (event->modifiers() & Qt::AltModifier || geometry_.IsOverReset(event->pos(), model_))) {
        BeginGesture(false);
        SetValue(model_.defaultValue);
    }
    if (alive && IsHeld())
        EndDrag();
    if (!alive)
        return;
    Hover(geometry_.HitTest(event->pos(), model_));
    update();
}

void CustomSlider::leaveEvent(QEvent* event)
{
    if (!IsHeld())
        Hover(SliderPart::None);
    CustomController::leaveEvent(event);
}

void CustomSlider::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != repeat_.timerId())
        return CustomController::timerEvent(event);
    if (drag_.RepeatTick())
        StepOnTrack();
}

void CustomSlider::StepOnTrack()
{
    const QPointer<CustomSlider> alive(this);
    const int level = trackFine_ ? SliderModel::Fine : SliderModel::Tick;
    if (drag_.StepsUp())
        StepUp(level, false);
    else
        StepDown(level, false);
    if (alive && drag_.GetKind() == SliderDrag::Kind::Track && !repeat_.isActive())
        repeat_.start(SliderDrag::repeatInterval, this);
}

void CustomSlider::Hover(SliderPart part)
{
    if (part == hover_)
        return;
    if ((part == SliderPart::Reset) != (hover_ == SliderPart::Reset))
        track_ = QImage();
    hover_ = part;
    update();
}

} // namespace Marlox
