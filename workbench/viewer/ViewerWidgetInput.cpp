// The viewer's size, mouse, wheel and keys.

#include "system/controls/Menu.h"
#include "workbench/viewer/ViewerBars.h"
#include "workbench/viewer/ViewerPointer.h"
#include "workbench/viewer/ViewerWidget.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QContextMenuEvent>
#include <QMenu>
#include <QTabletEvent>
#include <QToolTip>
#include <QWheelEvent>

namespace Marlox {

namespace {

constexpr double fitMargin = 8.0; // around a fitted picture: its edges are within reach
constexpr int plateWidth = 420;
constexpr int plateHeight = 40;
constexpr int plateMargin = 16;

/// Zooming across actual pixels stops there: people want exactly that one.
double stoppedAtOne(double from, double to)
{
    const bool crosses = (from < 1.0 && to > 1.0) || (from > 1.0 && to < 1.0);
    return crosses ? 1.0 : to;
}

/// The same at the release of a key, whatever modifiers have made of it meanwhile.
quint32 codeOf(const QKeyEvent& event)
{
    return event.nativeScanCode() != 0 ? event.nativeScanCode() : quint32(event.key());
}

} // namespace

void ViewerWidget::ZoomBy(double factor)
{
    SetZoom(stoppedAtOne(view_.Zoom(), view_.Zoom() * factor));
}

void ViewerWidget::SetViewSize()
{
    const QSizeF device = QSizeF(size()) * devicePixelRatioF();
    view_.SetView(std::round(device.width()), std::round(device.height()),
                  std::round(fitMargin * devicePixelRatioF()));
    PlaceBars();
    ChangeView();
}

bool ViewerWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        SetViewSize(); // the pixel ratio may be another one
    // Keys of the viewer that are also shortcuts elsewhere are its own while it has the focus.
    if (event->type() == QEvent::ShortcutOverride && IsOwnKey(*static_cast<QKeyEvent*>(event)))
        event->accept();
    if (event->type() == QEvent::ToolTip) {
        ShowTip(*static_cast<QHelpEvent*>(event));
        return true;
    }
    return QOpenGLWidget::event(event);
}

void ViewerWidget::resizeEvent(QResizeEvent* event)
{
    QOpenGLWidget::resizeEvent(event);
    SetViewSize();
}

/// Space pans and plays; arrows, with Ctrl too, nudge the point that has the focus. What an overlay
/// wants comes before shortcuts of the window.
bool ViewerWidget::IsOwnKey(const QKeyEvent& event)
{
    const bool arrow = event.key() >= Qt::Key_Left && event.key() <= Qt::Key_Down;
    return event.key() == Qt::Key_Space ||
           (shown_.image && ((arrow && overlays_.NudgesFocus()) ||
                             overlays_.WantsKey(event.key(), OverlayModifiers(event.modifiers()))));
}

/// What the pointer would do may be another with a modifier.
void ViewerWidget::TrackModifiers(const QKeyEvent& event)
{
    const bool modifier = event.key() >= Qt::Key_Shift && event.key() <= Qt::Key_Alt;
    if (modifier && shown_.image && !overlays_.IsPressed() && rect().contains(pointer_.toPoint()))
        overlays_.Move(ToOverlays(pointer_), OverlayModifiers(event.modifiers()));
}

void ViewerWidget::PlaceBars()
{
    message_->setGeometry(0, 0, width(), message_->HeightFor(width()));
    const int wide = std::min(plateWidth, width() - 2 * plateMargin);
    progress_->setGeometry((width() - wide) / 2, height() - plateHeight - plateMargin, wide,
                           plateHeight);
}

/// View pixels of the overlays: here y is turned over, once.
MxPoint ViewerWidget::ToOverlays(QPointF position) const
{
    const QPointF device = ToDevice(position);
    return {int(std::lround(device.x())),
            overlays_.View().viewHeight - int(std::lround(device.y()))};
}

void ViewerWidget::TrackPointer(QPointF position)
{
    pointer_ = position;
    // A drag with an axis held shows where it is, not where the system's pointer is.
    const PreviewInfo& view = overlays_.View();
    emit ProbeChanged(
        ProbeAt(overlays_.IsDragging() ? ImageToWidget({view.cursorX, view.cursorY}) : pointer_));
}

void ViewerWidget::ShowTip(const QHelpEvent& event)
{
    const int reach = int(overlays_.View().pickRadius / devicePixelRatioF());
    QToolTip::showText(event.globalPos(), shown_.image ? overlays_.Tip() : QString(), this,
                       QRect(event.pos(), QSize(1, 1)).adjusted(-reach, -reach, reach, reach));
}

void ViewerWidget::mousePressEvent(QMouseEvent* event)
{
    const bool pans =
        event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && spaceHeld_);
    if (std::exchange(focusByKeys_, false))
        update();
    if (!pans) {
        const bool taken =
            event->button() == Qt::LeftButton && shown_.image &&
            overlays_.Press(ToOverlays(event->localPos()), OverlayModifiers(event->modifiers()),
                            PointerTags(*event));
        if (!taken && event->button() == Qt::LeftButton)
            overlays_.SetFocus(nullptr);
        event->setAccepted(taken);
        return;
    }
    panning_ = true;
    spaceUsed_ = true;
    panFrom_ = event->localPos();
    ShowCursor();
}

void ViewerWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (overlays_.IsPressed() && !(event->buttons() & Qt::LeftButton))
        overlays_.EndDrag(); // the release went elsewhere
    if (panning_) {
        // The view keeps whole device pixels; what a fractional ratio leaves over waits.
        const QPointF moved = ToDevice(event->localPos() - panFrom_);
        const QPointF whole(std::round(moved.x()), std::round(moved.y()));
        view_.PanBy(whole);
        panFrom_ += whole / devicePixelRatioF();
        ChangeView();
    }
    if (shown_.image)
        overlays_.Move(ToOverlays(event->localPos()), OverlayModifiers(event->modifiers()),
                       PointerTags(*event));
    TrackPointer(PositionOf(*event));
}

void ViewerWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && overlays_.IsPressed()) {
        overlays_.Release(ToOverlays(event->localPos()), OverlayModifiers(event->modifiers()),
                          PointerTags(*event));
        TrackPointer(PositionOf(*event));
    } else if (event->button() == Qt::MiddleButton || event->button() == Qt::LeftButton) {
        EndPan();
    }
}

/// Goes on as a mouse event, with what it tells.
void ViewerWidget::tabletEvent(QTabletEvent* event)
{
    pen_ = PenTags(*event);
    event->ignore();
}

TagList ViewerWidget::PointerTags(const QMouseEvent& event)
{
    TagList tags = std::exchange(pen_, {{PVD_Pressure, 1.0}});
    tags.Set(PVD_EventTime, double(event.timestamp()) / 1000.0);
    if (event.type() == QEvent::MouseButtonDblClick)
        tags.Set(PV_DoubleClick, true);
    return tags;
}

void ViewerWidget::contextMenuEvent(QContextMenuEvent* event)
{
    Menu entries;
    if (shown_.image && event->reason() == QContextMenuEvent::Mouse)
        overlays_.Move(ToOverlays(event->pos()), OverlayModifiers(event->modifiers()));
    if (!shown_.image || !overlays_.FillMenu(entries))
        return event->ignore();
    menu_ = new QMenu(this);
    connect(menu_, &QMenu::aboutToHide, menu_, &QObject::deleteLater);
    connect(menu_, &QObject::destroyed, this, [this] {
        if (!underMouse())
            overlays_.Leave();
    });
    entries.Fill(*menu_);
    connect(menu_, &QMenu::triggered, this,
            [this](QAction* action) { overlays_.RunMenu(action->data().toUInt()); });
    menu_->popup(event->globalPos());
    event->accept();
}

void ViewerWidget::EndPan()
{
    panning_ = false;
    ShowCursor();
}

void ViewerWidget::ShowCursor()
{
    if (panning_)
        setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld_)
        setCursor(Qt::OpenHandCursor);
    else
        setCursor(CursorOf(overlays_.View().cursorShape, devicePixelRatioF()));
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
    if (shown_.image)
        overlays_.Move(ToOverlays(pointer_), OverlayModifiers(event->modifiers()));
    event->accept();
}

void ViewerWidget::keyPressEvent(QKeyEvent* event)
{
    TrackModifiers(*event);
    const bool used =
        shown_.image && overlays_.KeyDown(event->key(), OverlayModifiers(event->modifiers()));
    if (used && overlays_.View().keysHeld) // a dialog that it opened would get the release
        keysDown_.insert(codeOf(*event));
    const bool handled = used || (event->key() == Qt::Key_Space && event->isAutoRepeat()) ||
                         HandleViewKey(event->key());
    if (!handled)
        QOpenGLWidget::keyPressEvent(event);
}

bool ViewerWidget::HandleViewKey(int key)
{
    switch (key) {
    case Qt::Key_F:
        Fit();
        return true;
    case Qt::Key_1:
        view_.ZoomTo(1.0,
                     rect().contains(pointer_.toPoint()) ? ToDevice(pointer_) : view_.Middle());
        ChangeView();
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        ZoomBy(1.25);
        return true;
    case Qt::Key_Minus:
        ZoomBy(0.8);
        return true;
    case Qt::Key_Escape:
        if (overlays_.IsDragging()) {
            overlays_.CancelDrag();
            return true;
        }
        if (overlays_.Focus()) {
            overlays_.SetFocus(nullptr);
            return true;
        }
        return false;
    case Qt::Key_Space:
        spaceHeld_ = true;
        spaceUsed_ = false;
        ShowCursor();
        return true;
    default:
        return false;
    }
}

void ViewerWidget::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        const bool tapped = spaceHeld_ && !spaceUsed_;
        spaceHeld_ = false;
        ShowCursor();
        if (tapped)
            emit SpaceTapped();
        return;
    }
    TrackModifiers(*event);
    const bool modifier = event->key() >= Qt::Key_Shift && event->key() <= Qt::Key_ScrollLock;
    if (!event->isAutoRepeat() && !modifier && keysDown_.erase(codeOf(*event)) > 0 &&
        keysDown_.empty())
        overlays_.KeyUpAll();
    QOpenGLWidget::keyReleaseEvent(event);
}

void ViewerWidget::focusInEvent(QFocusEvent* event)
{
    focusByKeys_ =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    QOpenGLWidget::focusInEvent(event);
    update();
}

void ViewerWidget::focusOutEvent(QFocusEvent* event)
{
    focusByKeys_ = false;
    update();
    spaceHeld_ = false;
    EndPan();
    keysDown_.clear();
    overlays_.KeyUpAll();
    overlays_.EndDrag();
    QOpenGLWidget::focusOutEvent(event);
}

void ViewerWidget::hideEvent(QHideEvent* event)
{
    overlays_.EndDrag();
    QOpenGLWidget::hideEvent(event);
}

bool ViewerWidget::focusNextPrevChild(bool next)
{
    return (shown_.image && overlays_.FocusNext(next)) || QOpenGLWidget::focusNextPrevChild(next);
}

void ViewerWidget::leaveEvent(QEvent* event)
{
    if (!menu_) // which is for what the pointer was on
        overlays_.Leave();
    TrackPointer({-1.0, -1.0});
    QOpenGLWidget::leaveEvent(event);
}

} // namespace Marlox
