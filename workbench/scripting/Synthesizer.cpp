#include "workbench/scripting/Synthesizer.h"

#include "script/ScriptCall.h"

#include <cmath>

#include <QApplication>
#include <QKeySequence>
#include <QTabletEvent>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>

QT_BEGIN_NAMESPACE
// Exported by QtGui for test programs: events that take the way of the window system's.
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button,
                                      QEvent::Type type, Qt::KeyboardModifiers mods, int timestamp);
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                    Qt::KeyboardModifiers mods, const QString& text, bool repeats,
                                    ushort count);
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* receiver, ulong timestamp, int key,
                                               Qt::KeyboardModifiers mods, const QString& text,
                                               bool repeats, ushort count);
QT_END_NAMESPACE

namespace Marlox {

namespace {

QWindow& windowOf(QWidget& widget)
{
    QWindow* window = widget.window()->windowHandle();
    if (!window || !widget.isVisible())
        throw ScriptError(QString("widget \"%1\" is not visible").arg(widget.objectName()));
    const QWidget* modal = QApplication::activeModalWidget();
    if (modal && modal != widget.window() && !modal->isAncestorOf(&widget))
        throw ScriptError(
            QString("a dialog (\"%1\") is open in front of the widget").arg(modal->windowTitle()));
    return *window;
}

bool hasFocusWithin(const QWidget& widget)
{
    const QWidget* focused = QApplication::focusWidget();
    return focused && (focused == &widget || widget.isAncestorOf(focused));
}

} // namespace

/// Its own event, which widgets that have no use for it let go on as that of a mouse.
void Synthesizer::TellPen(QWindow& window, QPointF local, QPointF global, Qt::MouseButton button,
                          QEvent::Type type, Qt::KeyboardModifiers held)
{
    const QEvent::Type own = type == QEvent::MouseButtonPress     ? QEvent::TabletPress
                             : type == QEvent::MouseButtonRelease ? QEvent::TabletRelease
                                                                  : QEvent::TabletMove;
    QTabletEvent event(own, local, global, QTabletEvent::Stylus, QTabletEvent::Pen, pen_->pressure,
                       pen_->tiltX, pen_->tiltY, 0.0, pen_->rotation, 0, held, 1, button, buttons_);
    event.setTimestamp(ulong(timestamp_));
    QCoreApplication::sendEvent(&window, &event);
}

void Synthesizer::Mouse(QWidget& widget, QPointF at, Qt::MouseButton button, QEvent::Type type,
                        Qt::KeyboardModifiers held)
{
    QWindow& window = windowOf(widget);
    const QPointF origin = widget.mapTo(widget.window(), QPoint());
    const QPointF local = origin + at;
    const QPointF global = QPointF(widget.window()->mapToGlobal(QPoint())) + local;
    lastWidget_ = &widget;
    lastAt_ = at;
    timestamp_ += 20;
    if (pen_)
        TellPen(window, local, global, button, type, held);
    qt_handleMouseEvent(&window, local, global, buttons_, button, type, held, timestamp_);
    QCoreApplication::processEvents();
}

void Synthesizer::Press(QWidget& widget, QPointF at, Qt::MouseButton button,
                        Qt::KeyboardModifiers held)
{
    timestamp_ += 2 * QApplication::doubleClickInterval(); // a click of its own
    buttons_ |= button;
    Mouse(widget, at, button, QEvent::MouseButtonPress, held);
}

void Synthesizer::Move(QWidget& widget, QPointF at, Qt::KeyboardModifiers held)
{
    Mouse(widget, at, Qt::NoButton, QEvent::MouseMove, held);
}

void Synthesizer::Release(QWidget& widget, QPointF at, Qt::MouseButton button,
                          Qt::KeyboardModifiers held)
{
    buttons_ &= ~Qt::MouseButtons(button);
    Mouse(widget, at, button, QEvent::MouseButtonRelease, held);
}

void Synthesizer::DoubleClick(QWidget& widget, QPointF at, Qt::MouseButton button,
                              Qt::KeyboardModifiers held)
{
    Press(widget, at, button, held);
    Release(widget, at, button, held);
    buttons_ |= button; // soon enough after the first
    Mouse(widget, at, button, QEvent::MouseButtonPress, held);
    Release(widget, at, button, held);
}

void Synthesizer::Wheel(QWidget& widget, QPointF at, double steps, Qt::KeyboardModifiers held)
{
    windowOf(widget);
    QWidget* receiver = widget.childAt(at.toPoint());
    if (!receiver)
        receiver = &widget;
    const QPointF local = receiver->mapFrom(&widget, at.toPoint());
    QWheelEvent event(local, receiver->mapToGlobal(local.toPoint()), QPoint(),
                      QPoint(0, int(std::lround(steps * 120.0))), buttons_, held, Qt::NoScrollPhase,
                      false);
    event.setTimestamp(ulong(timestamp_ += 20));
    QCoreApplication::sendEvent(receiver, &event);
    QCoreApplication::processEvents();
}

void Synthesizer::Key(QWidget& widget, int key, const QString& text, Qt::KeyboardModifiers held,
                      KeyAction action)
{
    QWindow& window = windowOf(widget);
    if (widget.focusPolicy() != Qt::NoFocus && !hasFocusWithin(widget)) {
        widget.activateWindow();
        widget.setFocus(Qt::OtherFocusReason);
    }
    timestamp_ += 20;
    if (action != KeyAction::Release) {
        const bool taken =
            qt_sendShortcutOverrideEvent(&window, ulong(timestamp_), key, held, text, false, 1);
        if (!taken)
            qt_handleKeyEvent(&window, QEvent::KeyPress, key, held, text, false, 1);
    }
    if (action != KeyAction::Press)
        qt_handleKeyEvent(&window, QEvent::KeyRelease, key, held, text, false, 1);
    QCoreApplication::processEvents();
}

void Synthesizer::Type(QWidget& widget, const QString& text)
{
    for (const QChar character : text) {
        const auto key = KeyOf(character.toUpper());
        const Qt::KeyboardModifiers held = character.isUpper() ? Qt::ShiftModifier : Qt::NoModifier;
        Key(widget, key.value_or(Qt::Key_unknown), character, held, KeyAction::Click);
    }
}

std::optional<int> Synthesizer::KeyOf(const QString& name)
{
    if (name == "Ctrl" || name == "Control")
        return Qt::Key_Control;
    if (name == "Shift")
        return Qt::Key_Shift;
    if (name == "Alt")
        return Qt::Key_Alt;
    const QKeySequence sequence(name, QKeySequence::PortableText);
    if (sequence.count() != 1 || sequence[0] == Qt::Key_unknown)
        return {};
    return sequence[0] & ~int(Qt::KeyboardModifierMask);
}

void Synthesizer::Reset()
{
    if (buttons_ && lastWidget_ && lastWidget_->isVisible()) {
        for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton}) {
            if (buttons_ & button)
                Release(*lastWidget_, lastAt_, button, Qt::NoModifier);
        }
    }
    buttons_ = Qt::NoButton;
}

} // namespace Marlox
