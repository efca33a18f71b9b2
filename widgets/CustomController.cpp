#include "widgets/CustomController.h"

#include <cstdlib>

#include <QApplication>
#include <QKeyEvent>
#include <QTimerEvent>
#include <QWheelEvent>

namespace Marlox {

namespace {

constexpr int wheelStep = 120;

} // namespace

CustomController::CustomController(QWidget* parent) : CustomControl(parent)
{
    setFocusPolicy(Qt::StrongFocus);
}

CustomController::~CustomController() = default;

void CustomController::LoseGesture()
{
    shiftHeld_ = false;
    wheelRest_ = 0;
    wheelEnd_.stop();
    CustomControl::LoseGesture();
}

int CustomController::LevelOf(int, Qt::KeyboardModifiers modifiers) const
{
    if (modifiers & Qt::ControlModifier)
        return 0;
    return shiftHeld_ || (modifiers & Qt::ShiftModifier) ? 2 : 1;
}

std::optional<CustomController::Way> CustomController::WayOf(int key) const
{
    switch (key) {
    case Qt::Key_Home:
        return Way::Low;
    case Qt::Key_End:
        return Way::High;
    case Qt::Key_Left:
    case Qt::Key_PageDown:
        return Way::Down;
    case Qt::Key_Right:
    case Qt::Key_PageUp:
        return Way::Up;
    default:
        return std::nullopt;
    }
}

bool CustomController::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        const bool own = WayOf(key.key()) || GivesUp(key);
        if (own && !(key.modifiers() & (Qt::AltModifier | Qt::MetaModifier))) {
            event->accept();
            return true;
        }
    }
    return CustomControl::event(event);
}

bool CustomController::GivesUp(const QKeyEvent& event) const
{
    return event.key() == Qt::Key_Escape && IsHeld() && InGesture();
}

void CustomController::keyPressEvent(QKeyEvent* event)
{
    if (IsLocked())
        return; // goes to nobody
    if (GivesUp(*event)) {
        const QPointer<CustomController> alive(this);
        BringBack();
        if (alive)
            GiveUpGesture();
        if (alive)
            LoseGesture();
        return;
    }
    if (const auto way = WayOf(event->key())) {
        if (IsHeld())
            return;
        const QPointer<CustomController> alive(this);
        if (wheelEnd_.isActive())
            LoseGesture(); // the wheel's entry is its own
        if (!alive)
            return;
        BeginGesture(false);
        StepBy(*way, LevelOf(event->key(), event->modifiers()));
        return;
    }
    if (event->key() == Qt::Key_Control) {
        SetFine(true);
        return;
    }
    shiftHeld_ = shiftHeld_ || event->key() == Qt::Key_Shift;
    CustomControl::keyPressEvent(event);
}

void CustomController::keyReleaseEvent(QKeyEvent* event)
{
    if (WayOf(event->key())) {
        if (!event->isAutoRepeat() && !IsHeld() && !wheelEnd_.isActive())
            FinishGesture();
        return;
    }
    if (event->key() == Qt::Key_Control) {
        SetFine(false);
        return;
    }
    shiftHeld_ = shiftHeld_ && event->key() != Qt::Key_Shift;
    CustomControl::keyReleaseEvent(event);
}

void CustomController::focusInEvent(QFocusEvent* event)
{
    // Only the focused widget takes wheel events, so only it has to know where others go.
    qApp->installEventFilter(this);
    foreignWheel_.invalidate(); // a scroll that the user left for this widget has ended
    CustomControl::focusInEvent(event);
}

void CustomController::focusOutEvent(QFocusEvent* event)
{
    qApp->removeEventFilter(this);
    CustomControl::focusOutEvent(event);
}

bool CustomController::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Wheel && watched != this && watched->isWidgetType())
        foreignWheel_.start();
    return CustomControl::eventFilter(watched, event);
}

/// A panel that is being scrolled may bring this widget under the pointer: the scroll stays the
/// panel's until it ends, or rests where the system does not tell phases.
bool CustomController::IsForeign(const QWheelEvent& event)
{
    switch (event.phase()) {
    case Qt::ScrollBegin:
        ownScroll_ = true;
        return false;
    case Qt::ScrollUpdate:
    case Qt::ScrollMomentum:
        return !ownScroll_;
    case Qt::ScrollEnd:
        return !std::exchange(ownScroll_, false);
    default:
        return foreignWheel_.isValid() && foreignWheel_.elapsed() < wheelPause;
    }
}

void CustomController::wheelEvent(QWheelEvent* event)
{
    if (IsHeld())
        return;
    if (!hasFocus() || IsLocked() || IsForeign(*event)) {
        event->ignore();
        return;
    }
    // Shift and Alt turn the wheel sideways on some systems.
    const QPoint delta = event->angleDelta();
    const int turned = delta.y() != 0 ? delta.y() : delta.x();
    if ((turned > 0) != (wheelRest_ > 0))
        wheelRest_ = 0;
    wheelRest_ += turned;
    const int steps = wheelRest_ / wheelStep;
    wheelRest_ %= wheelStep;
    BeginGesture(false);
    wheelEnd_.start(wheelPause, this);
    StepByWheel(steps, LevelOf(0, event->modifiers()));
}

void CustomController::StepByWheel(int steps, int level)
{
    const QPointer<CustomController> alive(this);
    for (int i = 0; i < std::abs(steps) && alive; ++i)
        StepBy(steps > 0 ? Way::Up : Way::Down, level);
}

void CustomController::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != wheelEnd_.timerId()) {
        CustomControl::timerEvent(event);
        return;
    }
    wheelEnd_.stop();
    wheelRest_ = 0;
    FinishGesture();
}

} // namespace Marlox
