#include "controls/color/PickButton.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace Marlox {

namespace {

/// Further events that a viewer would take for its own.
bool isOfPointer(QEvent& event)
{
    switch (event.type()) {
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
        event.ignore(); // it comes again, as that of a mouse
        return true;
    default:
        return event.type() == QEvent::ToolTip;
    }
}

} // namespace

PickButton::PickButton(const QByteArray& normal, const QByteArray& highlighted, QWidget* parent)
    : CustomButton(parent)
{
    SetBitmaps(normal, highlighted);
    setCheckable(true);
    setAccessibleName(tr("Pick Colour"));
    const QString use =
        tr("Pick a colour from the viewer: drag from here onto the picture, or click here and then "
           "click or drag a rectangle there. With Ctrl from the input of the tool instead of its "
           "result; Escape gives up.");
    setToolTip(use);
    setAccessibleDescription(use);
}

PickButton::~PickButton()
{
    End(false);
}

void PickButton::SetSampleSize(int size)
{
    size_ = size == 3 || size == 5 ? size : 1;
    footprint_.size = size_;
    ShowOver(viewer_);
    PickAgain();
}

// State ------------------------------------------------------------------------------------------

void PickButton::Enter(State state)
{
    state_ = state;
    inputWanted_ = false;
    setChecked(state == State::Armed || state == State::Taken);
    if (state == State::Dragged || state == State::Armed)
        qApp->installEventFilter(this);
}

void PickButton::End(bool kept)
{
    if (state_ == State::Idle)
        return;
    qApp->removeEventFilter(this);
    ShowOver(nullptr);
    const auto held = std::exchange(held_, {});
    for (const QPointer<QWidget>& viewer : held) {
        if (viewer)
            viewer->disconnect(this);
    }
    area_.reset();
    setDown(false);
    Enter(State::Idle);
    if (std::exchange(started_, false))
        emit PickEnded(kept); // whoever listens may delete the button
    for (const QPointer<QWidget>& viewer : held) {
        if (ColorSource* source = ColorSource::Of(viewer))
            source->HoldPicture(false);
    }
}

/// A click arms it, or disarms it.
void PickButton::nextCheckState()
{
    if (state_ == State::Armed)
        Cancel();
    else if (std::exchange(armsOnClick_, true))
        Enter(State::Armed);
}

void PickButton::OnViewerGone()
{
    if (state_ == State::Taken)
        Cancel(); // the release would have come through it
    else
        ShowOver(nullptr);
}

// Picking ----------------------------------------------------------------------------------------

void PickButton::PickAt(QWidget& viewer, QPointF at)
{
    ColorSource* source = ColorSource::Of(&viewer);
    if (std::find(held_.begin(), held_.end(), &viewer) == held_.end()) {
        held_.emplace_back(&viewer);
        source->HoldPicture(true);
        connect(&viewer, &QObject::destroyed, this, &PickButton::OnViewerGone);
    }
    if (!area_)
        area_.emplace(at, state_ == State::Taken);
    area_->MoveTo(at);
    footprint_ = area_->Taken(size_);
    ShowOver(&viewer);
    const QPointer<PickButton> alive(this);
    if (!std::exchange(started_, true))
        emit PickStarted();
    if (alive)
        PickAgain();
}

void PickButton::PickAgain()
{
    if (started_ && viewer_)
        emit PickColor(viewer_, MxPoint(int(std::floor(footprint_.at.x())),
                                        int(std::floor(footprint_.at.y()))));
}

/// Shows the footprint in a viewer, and in no other; null: in none.
void PickButton::ShowOver(QWidget* viewer)
{
    if (ColorSource* before = viewer_ != viewer ? ColorSource::Of(viewer_) : nullptr)
        before->ShowFootprint(nullptr);
    viewer_ = viewer;
    if (ColorSource* source = ColorSource::Of(viewer))
        source->ShowFootprint(&footprint_);
    const bool wasShown = std::exchange(crossShown_, viewer != nullptr);
    if (crossShown_ && !wasShown)
        QApplication::setOverrideCursor(Qt::CrossCursor);
    else if (wasShown && !crossShown_)
        QApplication::restoreOverrideCursor();
}

void PickButton::WantInput(bool wanted)
{
    if (std::exchange(inputWanted_, wanted) != wanted)
        PickAgain();
}

// Events -----------------------------------------------------------------------------------------

bool PickButton::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::EnabledChange:
        if (isEnabled())
            break;
        [[fallthrough]];
    case QEvent::Hide:
    case QEvent::UngrabMouse:
    case QEvent::WindowBlocked: {
        const QPointer<PickButton> alive(this);
        Cancel();
        if (!alive)
            return true;
        break;
    }
    default:
        break;
    }
    return CustomButton::event(event);
}

void PickButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || state_ == State::Dragged)
        return CustomButton::mousePressEvent(event);
    armsOnClick_ = state_ != State::Armed;
    Cancel();
    Enter(State::Pressed);
    press_ = event->pos();
    CustomButton::mousePressEvent(event);
}

void PickButton::mouseMoveEvent(QMouseEvent* event)
{
    if (state_ == State::Pressed) {
        const int way = (event->pos() - press_).manhattanLength();
        if (rect().contains(event->pos()) || way < QApplication::startDragDistance())
            return CustomButton::mouseMoveEvent(event);
        Enter(State::Dragged);
        setDown(true);
    }
    if (state_ == State::Dragged)
        DragTo(*event);
}

void PickButton::DragTo(const QMouseEvent& event)
{
    QWidget* viewer = nullptr;
    const bool there = ColorSource::At(event.globalPos(), &viewer);
    inputWanted_ = event.modifiers() & Qt::ControlModifier;
    if (there)
        PickAt(*viewer, ColorSource::PositionOf(event) + mapToGlobal(QPoint()) -
                            viewer->mapToGlobal(QPoint()));
    else
        ShowOver(nullptr);
}

void PickButton::mouseReleaseEvent(QMouseEvent* event)
{
    const QPointer<PickButton> alive(this);
    const bool isDragged = state_ == State::Dragged;
    if (event->button() == Qt::LeftButton && isDragged) {
        DragTo(*event);
        if (alive)
            End(viewer_ != nullptr);
    } else if (event->button() == Qt::LeftButton && state_ == State::Pressed) {
        state_ = State::Idle; // the click may arm it
    }
    if (alive)
        CustomButton::mouseReleaseEvent(event); // of the base's press, too
    if (isDragged)
        event->accept();
}

// Events of the whole application, while it is armed or picks ------------------------------------

bool PickButton::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return FilterKey(static_cast<QKeyEvent&>(*event));
    case QEvent::ApplicationDeactivate:
        Cancel();
        return false;
    case QEvent::MouseMove:
        if (state_ == State::Armed ||
            static_cast<const QMouseEvent&>(*event).buttons() & Qt::LeftButton)
            break;
        Cancel(); // the release got lost
        return false;
    case QEvent::ContextMenu:
        if (state_ == State::Dragged)
            return true; // it would be that of the button's control
        break;
    case QEvent::FocusOut:
        if (watched == this && state_ == State::Dragged)
            Cancel(); // before its control ends what it wrote
        return false;
    case QEvent::FocusIn:
        if (watched != this && qobject_cast<PickButton*>(watched))
            Cancel(); // one at a time
        return false;
    default:
        break;
    }
    if (!watched->isWidgetType() || watched == this)
        return false;
    QWidget& widget = static_cast<QWidget&>(*watched);
    return state_ == State::Armed ? FilterArmed(widget, *event) : FilterTaken(widget, *event);
}

bool PickButton::FilterKey(QKeyEvent& event)
{
    const bool isPress = event.type() == QEvent::KeyPress;
    if (event.key() == Qt::Key_Control && event.type() != QEvent::ShortcutOverride)
        WantInput(isPress);
    if (event.key() != Qt::Key_Escape || QApplication::activePopupWidget())
        return false;
    event.accept(); // before any shortcut
    if (isPress)
        Cancel();
    return true;
}

/// What it leaves alone goes where it would without the button.
bool PickButton::FilterArmed(QWidget& widget, QEvent& event)
{
    const bool inViewer = ColorSource::Of(&widget);
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const auto& press = static_cast<const QMouseEvent&>(event);
        if (inViewer && press.button() == Qt::MiddleButton)
            return false; // moves the picture
        if (!inViewer || press.button() != Qt::LeftButton) {
            Cancel();
            return false;
        }
        Enter(State::Taken);
        inputWanted_ = press.modifiers() & Qt::ControlModifier;
        PickAt(widget, ColorSource::PositionOf(press));
        return true;
    }
    case QEvent::MouseMove: {
        const auto& move = static_cast<const QMouseEvent&>(event);
        const bool isFree = inViewer && move.buttons() == Qt::NoButton;
        footprint_ = PickArea(ColorSource::PositionOf(move), false).Taken(size_);
        ShowOver(isFree ? &widget : nullptr);
        return isFree;
    }
    case QEvent::Leave:
        if (viewer_ == &widget)
            ShowOver(nullptr);
        return false;
    default:
        return inViewer && isOfPointer(event);
    }
}

/// While one of the viewers is picked from. The press in one brings it all that follows.
bool PickButton::FilterTaken(QWidget& widget, QEvent& event)
{
    const bool isWheel = event.type() == QEvent::Wheel;
    if (state_ != State::Taken || viewer_ != &widget)
        return ColorSource::Of(&widget) && (isWheel || isOfPointer(event));
    switch (event.type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease: {
        const auto& mouse = static_cast<const QMouseEvent&>(event);
        const bool isMove = event.type() == QEvent::MouseMove;
        if (!isMove && mouse.button() != Qt::LeftButton)
            return true;
        const QPointer<PickButton> alive(this);
        inputWanted_ = mouse.modifiers() & Qt::ControlModifier;
        PickAt(widget, ColorSource::PositionOf(mouse));
        if (alive && !isMove)
            End(true);
        return true;
    }
    case QEvent::Hide:
        Cancel();
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::ContextMenu:
        return true;
    default:
        return isWheel || isOfPointer(event);
    }
}

CCPickButton::CCPickButton(QWidget* parent)
    : PickButton("Controls.Color.PickButton.1", "Controls.Color.PickButton.2", parent)
{
}

} // namespace Marlox
