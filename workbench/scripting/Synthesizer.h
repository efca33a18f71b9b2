#pragma once

#include <optional>

#include <QEvent>
#include <QPointF>
#include <QPointer>
#include <QString>
#include <Qt>

class QWidget;
class QWindow;

namespace Marlox {

/// Makes mouse, wheel and key events that take the way real ones do: through the window, with
/// grabs, focus, shortcuts and modal dialogs. Positions are device-independent pixels of the
/// widget. Throws ScriptError for a widget that cannot get the event (hidden, behind a modal
/// dialog).
class Synthesizer {
public:
    /// What a pen tells beside its place.
    struct Pen {
        double pressure = 1.0; // 0 to 1
        int tiltX = 0;         // degrees from upright, to the right
        int tiltY = 0;         // and towards the user
        double rotation = 0.0; // degrees
    };
    /// The mouse events from then on are those of a pen, or no longer.
    void UsePen(const std::optional<Pen>& pen) { pen_ = pen; }
    void Press(QWidget& widget, QPointF at, Qt::MouseButton button, Qt::KeyboardModifiers held);
    void Move(QWidget& widget, QPointF at, Qt::KeyboardModifiers held);
    void Release(QWidget& widget, QPointF at, Qt::MouseButton button, Qt::KeyboardModifiers held);
    void DoubleClick(QWidget& widget, QPointF at, Qt::MouseButton button,
                     Qt::KeyboardModifiers held);
    /// `steps` of 15 degrees, upwards positive; fractions as touchpads send them.
    void Wheel(QWidget& widget, QPointF at, double steps, Qt::KeyboardModifiers held);
    enum class KeyAction { Click, Press, Release };
    /// To `widget`, which gets the keyboard focus if it can have it, or else to the widget of its
    /// window that has it.
    void Key(QWidget& widget, int key, const QString& text, Qt::KeyboardModifiers held,
             KeyAction action);
    void Type(QWidget& widget, const QString& text);

    /// A key by name ("Left", "A", "Ctrl"); nothing if there is none of that name.
    static std::optional<int> KeyOf(const QString& name);
    /// Releases buttons that a failed script left pressed.
    void Reset();

private:
    void TellPen(QWindow& window, QPointF local, QPointF global, Qt::MouseButton button,
                 QEvent::Type type, Qt::KeyboardModifiers held);
    void Mouse(QWidget& widget, QPointF at, Qt::MouseButton button, QEvent::Type type,
               Qt::KeyboardModifiers held);

    std::optional<Pen> pen_;
    Qt::MouseButtons buttons_;
    QPointer<QWidget> lastWidget_;
    QPointF lastAt_;
    int timestamp_ = 1000; // milliseconds
};

} // namespace Marlox
