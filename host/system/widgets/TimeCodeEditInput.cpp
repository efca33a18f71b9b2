// The field's keys, wheel and focus.
#include "system/widgets/TimeCodeEdit_p.h"

#include <algorithm>
#include <cmath>

#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>
#include <QWheelEvent>

namespace Marlox {

namespace {

constexpr int wheelStep = 120;  // eighths of a degree
constexpr int wheelPause = 400; // milliseconds without a turn that end the gesture

bool IsEnter(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

int StepOf(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Up ? 1 : event.key() == Qt::Key_Down ? -1 : 0;
}

bool IsUndoOrRedo(QKeyEvent& event)
{
    return event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo);
}

/// Keys that a field without a cursor takes from the window's shortcuts: what numbers are made of.
bool StartsNumber(const QKeyEvent& event)
{
    const bool command = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    return !command && event.text().size() == 1 &&
           QStringLiteral("0123456789.,+-*/(=").contains(event.text());
}

bool StartsTyping(QKeyEvent& event)
{
    if (StartsNumber(event))
        return true;
    for (const auto key :
         {QKeySequence::SelectAll, QKeySequence::Copy, QKeySequence::Paste, QKeySequence::Cut}) {
        if (event.matches(key))
            return true;
    }
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return true;
    default:
        return !(event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) &&
               !event.text().isEmpty() && event.text()[0].isPrint();
    }
}

} // namespace

bool TimeCodeEdit::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto& key = static_cast<QKeyEvent&>(*event);
        if (key.key() == Qt::Key_Escape) {
            key.setAccepted(d_->typed || IsDragging());
            return true;
        }
        if (StepOf(key) != 0 && !d_->readOnly) {
            key.accept();
            return true;
        }
        // With nothing typed, undo is the document's.
        const QLineEdit* editor = d_->editor;
        const bool undoes =
            d_->typed && editor && (editor->isUndoAvailable() || editor->isRedoAvailable());
        if (IsUndoOrRedo(key) ? undoes : bool(editor))
            return d_->editor->event(event);
        key.setAccepted(!d_->editor && StartsNumber(key));
        return true;
    }
    if (event->type() == QEvent::WindowDeactivate) {
        // A drag may go on without the focus; no window, no release.
        const QPointer<TimeCodeEdit> alive(this);
        d_->FinishDrag();
        if (alive)
            d_->EndSteps();
        return !alive || QWidget::event(event);
    }
    if (event->type() == QEvent::ToolTip && !IsUnreadable()) {
        const QString tip = d_->ToolTip();
        if (tip.isEmpty())
            return QWidget::event(event);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
        return true;
    }
    return QWidget::event(event);
}

QString TimeCodeEdit::Private::ToolTip() const
{
    QStringList lines(HiddenText());
    lines += field.toolTip();
    if (lines.last().isEmpty() && !readOnly)
        lines +=
            TimeCodeEdit::tr("Drag sideways to change: Shift is coarse, Ctrl fine, Escape cancels."
                             "\nType a number, arithmetic (1920/2) or a change (+10%, *2, -=3).");
    lines.removeAll({});
    return lines.join(u'\n');
}

// Keys.

void TimeCodeEdit::keyPressEvent(QKeyEvent* event)
{
    if (IsDragging()) {
        if (event->key() == Qt::Key_Escape)
            d_->RevertDrag();
        return; // accepted: nothing else happens in mid-drag
    }
    const QPointer<TimeCodeEdit> alive(this);
    if (event->key() == Qt::Key_Escape) {
        event->setAccepted(d_->typed);
        if (d_->typed) {
            Restore();
            selectAll();
        }
    } else if (IsEnter(*event)) {
        event->setAccepted(d_->typed); // else a dialog's default button may have it
        if (Commit() && alive && d_->editor) {
            if (IsUnreadable()) // its reader refused it: a selection would hide the mark
                d_->editor->end(false);
            else
                d_->SelectAll();
            d_->cursorPlaced = IsUnreadable();
        }
    } else if (StepOf(*event) != 0 && !d_->readOnly) {
        if (d_->BeginSteps() && alive)
            StepBy(StepOf(*event), event->modifiers());
    } else if (d_->editor || StartsTyping(*event)) {
        if (!d_->editor)
            selectAll();
        d_->digit.reset();
        d_->editor->event(event);
        d_->cursorPlaced = d_->cursorPlaced || event->isAccepted();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void TimeCodeEdit::keyReleaseEvent(QKeyEvent* event)
{
    if (StepOf(*event) == 0)
        QWidget::keyReleaseEvent(event);
    else if (!event->isAutoRepeat())
        d_->EndSteps();
}

void TimeCodeEdit::inputMethodEvent(QInputMethodEvent* event)
{
    if (!d_->editor)
        selectAll();
    d_->editor->event(event);
}

QVariant TimeCodeEdit::inputMethodQuery(Qt::InputMethodQuery query) const
{
    return d_->editor ? d_->editor->inputMethodQuery(query) : QWidget::inputMethodQuery(query);
}

void TimeCodeEdit::StepBy(int steps, Qt::KeyboardModifiers modifiers)
{
    const QPointer<TimeCodeEdit> alive(this);
    if (steps == 0 || d_->readOnly || !Commit() || !alive)
        return;
    bool atCursor = false;
    double step = d_->StepAtCursor(atCursor) *
                  ScrubDrag::Factor(modifiers & Qt::ShiftModifier, modifiers & Qt::ControlModifier);
    if (d_->entry.integer)
        step = std::max(step, 1.0);
    const double wanted = NumberEntry::Moved(d_->entry.value, steps * step);
    if (d_->SetAndSend(d_->entry.Accepted(wanted)) && atCursor)
        d_->PutCursorBehindStep();
}

double TimeCodeEdit::Private::StepAtCursor(bool& found)
{
    found = false;
    if (!editor || !cursorPlaced)
        return entry.Step();
    const int cursor = editor->cursorPosition();
    if (entry.time && entry.timeCode) {
        // Frames, seconds, minutes, hours: by the colons that follow the cursor.
        const int part = text.mid(cursor).count(u':');
        found = true;
        digit.reset();
        const double rate = std::max(1.0, std::round(entry.framesPerSecond));
        return part == 0 ? 1.0 : rate * std::pow(60.0, part - 1);
    }
    if (!digit || cursor != digitCursor) {
        DigitAt here;
        if (!DigitAt::Find(text, cursor, here))
            return entry.Step();
        digit = here;
    }
    found = true;
    return digit->Step();
}

void TimeCodeEdit::Private::PutCursorBehindStep()
{
    if (!editor)
        return;
    if (digit) // else a time: its text keeps its length
        editor->setCursorPosition(digit->CursorIn(text));
    digitCursor = editor->cursorPosition();
}

bool TimeCodeEdit::Private::BeginSteps()
{
    if (stepping)
        return true;
    stepping = true;
    RememberParents();
    const QPointer<TimeCodeEdit> alive(&field);
    emit field.StartDrag(&field);
    return alive;
}

void TimeCodeEdit::Private::EndSteps()
{
    if (!stepping)
        return;
    stepping = false;
    wheelEnd.stop();
    emit field.EndDrag(&field);
}

void TimeCodeEdit::wheelEvent(QWheelEvent* event)
{
    if (!hasFocus() || d_->readOnly || !d_->pointerMoved || IsDragging()) {
        d_->wheelRest = 0;
        event->ignore();
        return;
    }
    const QPoint turned = event->angleDelta();
    const int delta = turned.y() != 0 ? turned.y() : turned.x(); // Alt turns it sideways
    if ((delta < 0) != (d_->wheelRest < 0))
        d_->wheelRest = 0;
    d_->wheelRest += delta;
    const int steps = d_->wheelRest / wheelStep;
    d_->wheelRest -= steps * wheelStep;
    event->accept();
    if (steps == 0)
        return;
    const QPointer<TimeCodeEdit> alive(this);
    if (!d_->BeginSteps())
        return;
    StepBy(steps, event->modifiers());
    if (alive)
        d_->wheelEnd.start(wheelPause, this);
}

void TimeCodeEdit::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == d_->wheelEnd.timerId())
        d_->EndSteps();
    else
        QWidget::timerEvent(event);
}

// Focus and the field's own fate.

void TimeCodeEdit::focusInEvent(QFocusEvent* event)
{
    update();
    switch (event->reason()) {
    case Qt::MouseFocusReason: // the press decides
        return;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        if (d_->editor)
            d_->editor->event(event);
        return;
    default:
        selectAll();
    }
}

void TimeCodeEdit::focusOutEvent(QFocusEvent* event)
{
    const QPointer<TimeCodeEdit> alive(this);
    d_->wheelRest = 0;
    update();
    d_->FinishDrag();
    if (alive)
        d_->EndSteps();
    if (!alive)
        return;
    if (d_->editor)
        d_->editor->event(event);
    if (event->reason() == Qt::PopupFocusReason)
        return;          // the text's menu: typing goes on
    if (!IsUnreadable()) // marked text was tried, and typing clears the mark
        Commit();
    if (alive && event->reason() != Qt::ActiveWindowFocusReason)
        d_->CloseEditor();
}

void TimeCodeEdit::hideEvent(QHideEvent* event)
{
    const QPointer<TimeCodeEdit> alive(this);
    d_->FinishDrag();
    if (alive)
        d_->EndSteps();
    if (alive)
        QWidget::hideEvent(event);
}

void TimeCodeEdit::changeEvent(QEvent* event)
{
    const QPointer<TimeCodeEdit> alive(this);
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        d_->FinishDrag();
        if (alive)
            d_->EndSteps();
    }
    if (alive)
        QWidget::changeEvent(event);
}

void TimeCodeEdit::resizeEvent(QResizeEvent*)
{
    d_->PlaceEditor();
}

} // namespace Marlox
