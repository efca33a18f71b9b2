// What pointer and keys do to a drawn widget that has parts to drag.

#include "widgets/CustomControl.h"

#include "widgets/DrawnLook.h"
#include "widgets/PartsAccessible.h"

#include <algorithm>
#include <utility>

#include <QMouseEvent>
#include <QPainter>

namespace Marlox {

namespace {

struct Arrow {
    int key;
    QPoint way; // y upwards
};
constexpr Arrow arrows[] = {{Qt::Key_Left, {-1, 0}},
                            {Qt::Key_Right, {1, 0}},
                            {Qt::Key_Up, {0, 1}},
                            {Qt::Key_Down, {0, -1}}};

const Arrow* arrowOf(int key)
{
    const auto* found = std::find_if(std::begin(arrows), std::end(arrows),
                                     [key](const Arrow& arrow) { return arrow.key == key; });
    return found != std::end(arrows) ? found : nullptr;
}

int levelOf(Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ControlModifier)
        return 0;
    return modifiers & Qt::ShiftModifier ? 2 : 1;
}

} // namespace

// Pointer ----------------------------------------------------------------------------------------

void CustomControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    if (IsLocked())
        return; // goes to nobody
    const QPointer<CustomControl> alive(this);
    setFocus(Qt::MouseFocusReason); // what had it may commit a value
    if (alive)
        LoseGesture(); // held keys
    if (!alive || IsLocked() || (event->modifiers() & Qt::AltModifier && ResetAt(event->pos())))
        return;
    if (Grab(event->pos()))
        Press(event->pos(), event->modifiers());
}

void CustomControl::Press(QPoint at, Qt::KeyboardModifiers modifiers)
{
    const QPointer<CustomControl> alive(this);
    drag_.emplace(at, FineShare());
    BeginGesture(false);
    changes_ = false;
    PressOn(drag_->MoveTo(at, modifiers));
    if (alive && drag_)
        BeginGesture(true); // and proxy rendering
}

void CustomControl::mouseMoveEvent(QMouseEvent* event)
{
    if (!drag_)
        return HoverAt(event->pos());
    if (!(event->buttons() & Qt::LeftButton))
        return LoseGesture();
    if (drag_->IsAt(event->pos(), event->modifiers()))
        return;
    const QPointer<CustomControl> alive(this);
    const bool goesOn = DragTo(drag_->MoveTo(event->pos(), event->modifiers()));
    if (alive && !goesOn)
        EndDrag();
}

void CustomControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(event);
    const QPointer<CustomControl> alive(this);
    EndDrag();
    if (alive)
        HoverAt(rect().contains(event->pos()) ? std::optional(event->pos()) : std::nullopt);
}

void CustomControl::leaveEvent(QEvent* event)
{
    if (!drag_)
        HoverAt({});
    QWidget::leaveEvent(event);
}

void CustomControl::EndDrag()
{
    if (!drag_)
        return;
    drag_.reset();
    Drop();
    update();
    FinishGesture();
}

// Keys -------------------------------------------------------------------------------------------

void CustomControl::SetActivePart(int part)
{
    part = std::clamp(part, 0, std::max(PartCount() - 1, 0));
    if (std::exchange(activePart_, part) == part)
        return;
    update();
    TellActivePart(*this);
}

void CustomControl::StepActivePart(int by)
{
    if (const int count = PartCount(); count > 0)
        SetActivePart((ActivePart() + by + count) % count);
}

void CustomControl::NudgeActivePart(QPoint way)
{
    if (!isEnabled() || IsLocked() || IsDragged() || PartCount() == 0)
        return;
    const QPointer<CustomControl> alive(this);
    BeginGesture(false);
    Nudge(ActivePart(), way, 1);
    if (alive)
        FinishGesture();
}

bool CustomControl::IsOwnKey(const QKeyEvent& event) const
{
    if (PartCount() == 0 || IsLocked() || event.modifiers() & (Qt::AltModifier | Qt::MetaModifier))
        return false;
    const int key = event.key();
    return arrowOf(key) || key == Qt::Key_PageUp || key == Qt::Key_PageDown ||
           (key == Qt::Key_Escape && drag_);
}

void CustomControl::keyPressEvent(QKeyEvent* event)
{
    if (IsLocked())
        return; // goes to nobody
    if (!IsOwnKey(*event))
        return QWidget::keyPressEvent(event);
    const int key = event->key();
    if (drag_) {
        if (key != Qt::Key_Escape)
            return;
        const QPointer<CustomControl> alive(this);
        BringBack();
        if (!alive || !drag_)
            return;
        drag_.reset();
        Drop();
        update();
        return GiveUpGesture();
    }
    const Arrow* arrow = arrowOf(key);
    if (!arrow)
        return StepActivePart(key == Qt::Key_PageDown ? 1 : -1);
    BeginGesture(false);
    Nudge(ActivePart(), arrow->way, levelOf(event->modifiers()));
}

void CustomControl::keyReleaseEvent(QKeyEvent* event)
{
    if (PartCount() == 0 || !arrowOf(event->key()))
        return QWidget::keyReleaseEvent(event);
    if (!event->isAutoRepeat() && !drag_)
        FinishGesture();
}

void CustomControl::PaintFocusRing(QPainter& painter, const QRectF& around, double radius) const
{
    const double line = CrispLine(painter.device()->devicePixelRatioF());
    const QColor color = AccentColor();
    const double width = around.width() - 2.0 * radius;
    const double height = around.height() - 2.0 * radius;
    painter.save();
    // Piece by piece: a large rounded rectangle costs more than most widgets.
    for (const double y : {around.top(), around.bottom() - line})
        painter.fillRect(QRectF(around.left() + radius, y, width, line), color);
    for (const double x : {around.left(), around.right() - line})
        painter.fillRect(QRectF(x, around.top() + radius, line, height), color);
    if (radius > 0.0) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, line, Qt::SolidLine, Qt::FlatCap));
        const double reach = 2.0 * radius - line;
        const double right = around.right() - 0.5 * line - reach;
        const double bottom = around.bottom() - 0.5 * line - reach;
        const QPointF first = around.topLeft() + 0.5 * QPointF(line, line);
        const QPointF corners[] = {{right, first.y()}, first, {first.x(), bottom}, {right, bottom}};
        for (int i = 0; i < 4; ++i) // counter-clockwise from the right
            painter.drawArc(QRectF(corners[i], QSizeF(reach, reach)), i * 90 * 16, 90 * 16);
    }
    painter.restore();
}

} // namespace Marlox
