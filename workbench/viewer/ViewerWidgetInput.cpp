// The viewer's size, mouse, wheel and keys.

#include "workbench/viewer/ViewerBars.h"
#include "workbench/viewer/ViewerWidget.h"

#include <algorithm>
#include <cmath>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace Marlox {

namespace {

constexpr int plateWidth = 420;
constexpr int plateHeight = 40;
constexpr int plateMargin = 16;

/// Zooming across actual pixels stops there: people want exactly that one.
double stoppedAtOne(double from, double to)
{
    const bool crosses = (from < 1.0 && to > 1.0) || (from > 1.0 && to < 1.0);
    return crosses ? 1.0 : to;
}

} // namespace

void ViewerWidget::ZoomBy(double factor)
{
    SetZoom(stoppedAtOne(view_.Zoom(), view_.Zoom() * factor));
}

void ViewerWidget::SetViewSize()
{
    const QSizeF device = QSizeF(size()) * devicePixelRatioF();
    view_.SetView(std::round(device.width()), std::round(device.height()));
    PlaceBars();
    ChangeView();
}

bool ViewerWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        SetViewSize(); // the pixel ratio may be another one
    // Keys of the viewer that are also shortcuts elsewhere are its own while it has the focus.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space)
        event->accept();
    return QOpenGLWidget::event(event);
}

void ViewerWidget::resizeEvent(QResizeEvent* event)
{
    QOpenGLWidget::resizeEvent(event);
    SetViewSize();
}

void ViewerWidget::PlaceBars()
{
    message_->setGeometry(0, 0, width(), message_->HeightFor(width()));
    const int wide = std::min(plateWidth, width() - 2 * plateMargin);
    progress_->setGeometry((width() - wide) / 2, height() - plateHeight - plateMargin, wide,
                           plateHeight);
}

void ViewerWidget::TrackPointer(QPointF position)
{
    pointer_ = position;
    emit ProbeChanged(ProbeAt(pointer_));
}

void ViewerWidget::mousePressEvent(QMouseEvent* event)
{
    const bool pans =
        event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && spaceHeld_);
    if (!pans) {
        event->ignore();
        return;
    }
    panning_ = true;
    spaceUsed_ = true;
    panFrom_ = event->localPos();
    ShowPanCursor();
}

void ViewerWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (panning_) {
        // The view keeps whole device pixels; what a fractional ratio leaves over waits.
        const QPointF moved = ToDevice(event->localPos() - panFrom_);
        const QPointF whole(std::round(moved.x()), std::round(moved.y()));
        view_.PanBy(whole);
        panFrom_ += whole / devicePixelRatioF();
        ChangeView();
    }
    TrackPointer(event->localPos());
}

void ViewerWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton || event->button() == Qt::LeftButton)
        EndPan();
}

void ViewerWidget::EndPan()
{
    panning_ = false;
    ShowPanCursor();
}

void ViewerWidget::ShowPanCursor()
{
    if (panning_)
        setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld_)
        setCursor(Qt::OpenHandCursor);
    else
        unsetCursor();
}

void ViewerWidget::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    // Some systems turn a wheel with Shift or Alt sideways.
    const double notches = (delta.y() != 0 ? delta.y() : delta.x()) / 120.0;
    double step = 1.25;
    if (event->modifiers() & Qt::ControlModifier)
        step = 1.05;
    else if (event->modifiers() & Qt::ShiftModifier)
        step = 2.0;
    const double zoom = view_.Zoom();
    view_.ZoomTo(stoppedAtOne(zoom, zoom * std::pow(step, notches)), ToDevice(event->position()));
    pointer_ = event->position();
    ChangeView();
    event->accept();
}

void ViewerWidget::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_F:
        Fit();
        return;
    case Qt::Key_1:
        view_.ZoomTo(1.0,
                     rect().contains(pointer_.toPoint()) ? ToDevice(pointer_) : view_.Middle());
        ChangeView();
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        ZoomBy(1.25);
        return;
    case Qt::Key_Minus:
        ZoomBy(0.8);
        return;
    case Qt::Key_Space:
        if (event->isAutoRepeat())
            return;
        spaceHeld_ = true;
        spaceUsed_ = false;
        ShowPanCursor();
        return;
    default:
        QOpenGLWidget::keyPressEvent(event);
    }
}

void ViewerWidget::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        const bool tapped = spaceHeld_ && !spaceUsed_;
        spaceHeld_ = false;
        ShowPanCursor();
        if (tapped)
            emit SpaceTapped();
        return;
    }
    QOpenGLWidget::keyReleaseEvent(event);
}

void ViewerWidget::focusOutEvent(QFocusEvent* event)
{
    spaceHeld_ = false;
    EndPan();
    QOpenGLWidget::focusOutEvent(event);
}

void ViewerWidget::leaveEvent(QEvent* event)
{
    TrackPointer({-1.0, -1.0});
    QOpenGLWidget::leaveEvent(event);
}

} // namespace Marlox
