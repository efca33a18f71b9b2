// The field under the pointer: clicks into the text and sideways drags.
#include "system/widgets/TimeCodeEdit_p.h"

#include <algorithm>
#include <cmath>

#include <QContextMenuEvent>
#include <QMouseEvent>

namespace Marlox {

namespace {

bool IsDragButton(const QMouseEvent& event)
{
    return event.button() == Qt::LeftButton || event.button() == Qt::MiddleButton;
}

double FactorOf(Qt::KeyboardModifiers modifiers)
{
    return ScrubDrag::Factor(modifiers & Qt::ShiftModifier, modifiers & Qt::ControlModifier);
}

} // namespace

void TimeCodeEdit::mousePressEvent(QMouseEvent* event)
{
    d_->pointerMoved = true;
    if (!IsDragButton(*event) || d_->drag) {
        QWidget::mousePressEvent(event);
        return;
    }
    const bool left = event->button() == Qt::LeftButton;
    if (left && (d_->readOnly || (d_->editor && d_->cursorPlaced))) {
        d_->OpenEditor();
        d_->cursorPlaced = true;
        d_->Forward(*event);
    } else if (!d_->readOnly) {
        d_->drag.emplace(event->screenPos().x());
        d_->dragButton = event->button();
    }
}

void TimeCodeEdit::mouseMoveEvent(QMouseEvent* event)
{
    d_->pointerMoved = true;
    if (d_->drag) {
        if (event->buttons() & d_->dragButton)
            d_->DragTo(event->screenPos().x(), event->modifiers());
        else
            d_->FinishDrag(); // released where the field could not see it
    } else if (d_->editor && (event->buttons() & Qt::LeftButton)) {
        d_->Forward(*event);
    }
}

void TimeCodeEdit::mouseReleaseEvent(QMouseEvent* event)
{
    if (d_->drag) {
        if (event->button() != d_->dragButton)
            return;
        const bool dragged = IsDragging();
        d_->FinishDrag();
        if (dragged || event->button() != Qt::LeftButton)
            return;
        // A click: it puts the cursor into the text.
        d_->OpenEditor();
        d_->cursorPlaced = true;
        QMouseEvent press(QEvent::MouseButtonPress, event->localPos(), event->screenPos(),
                          Qt::LeftButton, Qt::LeftButton, event->modifiers());
        d_->Forward(press);
    }
    if (d_->editor && event->button() == Qt::LeftButton)
        d_->Forward(*event);
}

void TimeCodeEdit::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        selectAll();
        d_->cursorPlaced = true;
    }
}

void TimeCodeEdit::contextMenuEvent(QContextMenuEvent* event)
{
    if (d_->editor && d_->typed)
        d_->editor->event(event); // the text's own menu: cut, copy, paste
    else
        event->ignore(); // the control's
}

void TimeCodeEdit::Private::Forward(QMouseEvent& event)
{
    QMouseEvent mapped(event.type(), event.localPos() - editor->pos(), event.screenPos(),
                       event.button(), event.buttons(), event.modifiers());
    digit.reset();
    editor->event(&mapped);
}

void TimeCodeEdit::enterEvent(QEvent*)
{
    d_->pointerMoved = false;
    const bool drags = !d_->readOnly && !d_->editor;
    setCursor(drags ? Qt::SizeHorCursor : Qt::IBeamCursor);
    update();
}

void TimeCodeEdit::leaveEvent(QEvent*)
{
    d_->pointerMoved = true;
    update();
}

// The drag.

void TimeCodeEdit::Private::DragTo(double screenX, Qt::KeyboardModifiers modifiers)
{
    const bool waiting = !drag->HasStarted();
    const bool moved = drag->MoveTo(screenX, FactorOf(modifiers));
    if (waiting && drag->HasStarted() && !BeginDrag())
        return;
    if (moved && drag)
        ApplyMovement();
}

bool TimeCodeEdit::Private::BeginDrag()
{
    const QPointer<TimeCodeEdit> alive(&field);
    if (!Commit() && alive)
        ShowValue(); // a drag is an answer to text that can't be read
    if (!alive)
        return false;
    EndSteps();
    if (!alive)
        return false;
    CloseEditor();
    dragStartValue = entry.value;
    RememberParents();
    emit field.StartDrag(&field);
    return alive;
}

void TimeCodeEdit::Private::ApplyMovement()
{
    const QPointer<TimeCodeEdit> alive(&field);
    const double movement = drag->Movement();
    if (target) {
        const DragTarget running = target; // outlives the field, should the target delete it
        double state = movement;
        running(movement, state);
        if (alive && drag && state != movement)
            drag->Correct(state);
        return;
    }
    const double wanted = NumberEntry::Moved(dragStartValue, movement * entry.DragStep());
    const double accepted = entry.Accepted(wanted);
    if (std::abs(accepted - wanted) > (entry.integer ? 0.5 : 0.0))
        drag->Correct((accepted - dragStartValue) / entry.DragStep());
    SetAndSend(accepted);
}

void TimeCodeEdit::Private::RevertDrag()
{
    const QPointer<TimeCodeEdit> alive(&field);
    if (target) {
        const DragTarget running = target;
        double state = 0.0;
        running(0.0, state);
    } else {
        SetAndSend(dragStartValue);
    }
    if (alive)
        FinishDrag();
}

void TimeCodeEdit::Private::FinishDrag()
{
    if (!drag)
        return;
    const bool started = drag->HasStarted();
    drag.reset();
    if (started)
        emit field.EndDrag(&field);
}

void TimeCodeEdit::Private::RememberParents()
{
    parents.clear();
    for (QWidget* parent = field.parentWidget(); parent; parent = parent->parentWidget())
        parents.emplace_back(parent, parent->metaObject());
}

bool TimeCodeEdit::Private::OutlivedByParents() const
{
    // A widget in its destructor is no longer of the class it was: a listener in there is gone.
    return std::all_of(parents.begin(), parents.end(), [](const auto& parent) {
        return !parent.first || parent.first->metaObject() == parent.second;
    });
}

} // namespace Marlox
