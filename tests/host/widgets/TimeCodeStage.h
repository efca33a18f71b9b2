#pragma once

#include "system/resources/LookStyle.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QLineEdit>
#include <QWheelEvent>
#include <QtTest>

namespace Marlox {

/// A window with a field at 0 to 1 on 0.5, another widget to go to, and counts of what was sent.
class TimeCodeStage {
public:
    TimeCodeStage()
    {
        window.resize(400, 120);
        field = new TimeCodeEdit(&window);
        field->setGeometry(100, 20, 80, 24);
        field->SetRange(0.0, 1.0);
        field->SetValue(0.5, 3);
        other = new QLineEdit(&window);
        other->setGeometry(100, 60, 80, 24);
        QObject::connect(field, &TimeCodeEdit::editingFinished, [this] { ++finished; });
        QObject::connect(field, &TimeCodeEdit::StartDrag, [this] { ++started; });
        QObject::connect(field, &TimeCodeEdit::EndDrag, [this] { ++ended; });
        window.show();
        Leave();
        QApplication::setActiveWindow(&window);
    }

    void Mouse(QEvent::Type type, int x, Qt::MouseButton button, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QPoint at(x, 12);
        if (type == QEvent::MouseButtonPress)
            field->setFocus(Qt::MouseFocusReason);
        QMouseEvent event(type, at, field->mapToGlobal(at), button, buttons, modifiers);
        QApplication::sendEvent(field, &event);
    }
    void Press(int x, Qt::MouseButton button = Qt::LeftButton)
    {
        held = button;
        Mouse(QEvent::MouseButtonPress, x, button, button);
    }
    void Move(int x, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        Mouse(QEvent::MouseMove, x, Qt::NoButton, held, modifiers);
    }
    void Release(int x) { Mouse(QEvent::MouseButtonRelease, x, held, Qt::NoButton); }
    /// Pressed and moved, still held: by 4 pixels less than the way.
    void Drag(int from, int to, Qt::MouseButton button = Qt::LeftButton)
    {
        Press(from, button);
        Move(to);
    }
    bool Wheel(int angle)
    {
        const QPoint at(10, 12);
        QWheelEvent event(at, field->mapToGlobal(at), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(field, &event);
        return event.isAccepted();
    }
    void Type(const char* text)
    {
        field->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(field, text);
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(field, key, modifiers);
    }
    void Enter() { Key(Qt::Key_Return); }
    void Enter(const char* text)
    {
        Type(text);
        Enter();
    }
    void Leave() { other->setFocus(); }
    double Value() const { return field->GetValue(); }
    QString Text() const { return field->text(); }

    QWidget window;
    TimeCodeEdit* field;
    QLineEdit* other;
    Qt::MouseButton held = Qt::NoButton;
    int finished = 0;
    int started = 0;
    int ended = 0;
};

} // namespace Marlox
