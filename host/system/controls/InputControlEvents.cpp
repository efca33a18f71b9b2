// The widget side of an InputControl: wheel, focus, context menu, its own painting.

#include "system/controls/ControlWnd.h"
#include "system/controls/InputControl_p.h"
#include "system/controls/InputMenu.h"
#include "system/resources/Resources.h"
#include "system/widgets/WidgetLook_p.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>

namespace Marlox {

namespace {

/// The nearest widget from `widget` up to, but without, `end` that takes keyboard focus.
QWidget* FocusableFrom(QWidget* widget, const QWidget* end)
{
    for (; widget && widget != end && !widget->isWindow(); widget = widget->parentWidget()) {
        if (widget->focusPolicy() != Qt::NoFocus)
            return widget;
    }
    return nullptr;
}

bool HoldsFocus(const QWidget* widget)
{
    const QWidget* focus = QApplication::focusWidget();
    return focus &&
           (focus == widget || widget->isAncestorOf(focus) || widget->focusProxy() == focus);
}

/// Watches a child and what is below it, windows of their own (popups) left out.
void Watch(QWidget* child, QObject* watcher)
{
    if (child->isWindow())
        return;
    child->installEventFilter(watcher);
    for (QObject* below : child->children()) {
        if (below->isWidgetType())
            Watch(static_cast<QWidget*>(below), watcher);
    }
}

/// Qt gives widgets with Qt::WheelFocus the focus before they get the event. Their policy is known
/// once they are polished.
void TakeWheelFocus(QObject* child)
{
    auto* widget = qobject_cast<QWidget*>(child);
    if (widget && widget->focusPolicy() == Qt::WheelFocus)
        widget->setFocusPolicy(Qt::StrongFocus);
}

} // namespace

bool InputControl::event(QEvent* event)
{
    // A child wants another size. While the page itself lays this control out, it knows.
    if (event->type() == QEvent::LayoutRequest)
        RecalcControlSize();
    return QWidget::event(event);
}

void InputControl::childEvent(QChildEvent* event)
{
    if (event->type() == QEvent::ChildAdded && event->child()->isWidgetType())
        Watch(static_cast<QWidget*>(event->child()), this);
    else if (event->type() == QEvent::ChildPolished)
        TakeWheelFocus(event->child());
    QWidget::childEvent(event);
}

bool InputControl::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        // The wheel acts only in the widget with keyboard focus; else it scrolls the page.
        if (QWidget* widget = FocusableFrom(static_cast<QWidget*>(watched), this);
            widget && (!HoldsFocus(widget) || (window_ && window_->IsScrolling()))) {
            event->ignore();
            return true;
        }
        break;
    case QEvent::FocusIn:
        if (window_)
            window_->ForgetScrolling();
        break;
    case QEvent::FocusOut:
        if (QWidget* focus = QApplication::focusWidget(); !focus || !isAncestorOf(focus))
            EndGesture();
        break;
    case QEvent::ContextMenu:
        // A field that is being edited keeps its menu of text editing.
        if (auto* field = qobject_cast<QLineEdit*>(watched);
            field && !field->isModified() && !field->hasSelectedText()) {
            auto* menu = static_cast<QContextMenuEvent*>(event);
            QContextMenuEvent ours(menu->reason(), field->mapTo(this, menu->pos()),
                                   menu->globalPos(), menu->modifiers());
            contextMenuEvent(&ours);
            return true;
        }
        break;
    case QEvent::ChildAdded:
        if (QObject* child = static_cast<QChildEvent*>(event)->child(); child->isWidgetType())
            Watch(static_cast<QWidget*>(child), this);
        break;
    case QEvent::ChildPolished:
        TakeWheelFocus(static_cast<QChildEvent*>(event)->child());
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void InputControl::customEvent(QEvent* event)
{
    QWidget::customEvent(event);
}

void InputControl::mouseMoveEvent(QMouseEvent* event)
{
    QWidget::mouseMoveEvent(event);
}

void InputControl::focusInEvent(QFocusEvent* event)
{
    if (window_)
        window_->ForgetScrolling();
    QWidget::focusInEvent(event);
}

void InputControl::focusOutEvent(QFocusEvent* event)
{
    if (QWidget* focus = QApplication::focusWidget(); !focus || !isAncestorOf(focus))
        EndGesture();
    QWidget::focusOutEvent(event);
}

void InputControl::enterEvent(QEvent* event)
{
    QWidget::enterEvent(event);
}

void InputControl::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
}

void InputControl::paintEvent(QPaintEvent*)
{
    if (hasFocus()) {
        QPainter painter(this);
        WidgetLook::DrawFocusRing(painter, rect());
    }
    if (d_->fault.isEmpty())
        return;
    QPainter painter(this);
    const QRect line(4, 0, width() - 8, InspectorLineHeight);
    const auto write = [&painter](const QRect& at, const QString& text) {
        painter.drawText(at, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(text, Qt::ElideRight, at.width()));
    };
    painter.setPen(WidgetLook::Text(*this));
    write(line, inputs_.list.empty() ? QString() : inputs_.list.front()->GetName());
    painter.setPen(WidgetLook::ErrorText());
    write(line.translated(0, InspectorLineHeight), d_->fault);
}

bool InputControl::HasFocus(TagList*)
{
    return HoldsFocus(this);
}

u64 InputControl::DefWindowProc(unsigned int, u64, u64)
{
    return 0;
}

// Context menu -----------------------------------------------------------------------------------

void InputControl::AddToMenu(Menu*, TagList&) {}

bool InputControl::HandleMenu(unsigned int id, u64*, TagList&)
{
    const auto alive = Ref<InputControl>::Share(this); // what follows may close the page
    return id < FirstOwnMenuId && InputMenu::Run(*this, id);
}

void InputControl::BuildMenu(Menu& menu, const InputList& only)
{
    InputMenu::Build(*this, menu, only);
    menu.AddSeparator();
    TagList tags;
    AddToMenu(&menu, tags);
}

void InputControl::contextMenuEvent(QContextMenuEvent* event)
{
    InputList inputs;
    GetInputsAt(inputs, event->x(), event->y(), nullptr);
    Menu entries;
    BuildMenu(entries, inputs);
    auto* menu = new QMenu(this);
    connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    entries.Fill(*menu);
    connect(menu, &QMenu::triggered, this, [this](QAction* action) {
        TagList tags;
        if (IsOpen())
            HandleMenu(action->data().toUInt(), nullptr, tags);
    });
    menu->popup(event->globalPos());
    event->accept();
}

} // namespace Marlox
