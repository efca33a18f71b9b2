#include "widgets/CustomControl.h"

#include "system/controls/InputControl.h"

#include <utility>

#include <QImage>
#include <QKeyEvent>

namespace Marlox {

CustomControl::CustomControl(QWidget* parent) : _CustomControl(parent) {}

CustomControl::~CustomControl()
{
    FinishGesture();
}

void CustomControl::SetOwner(InputControl* owner)
{
    if (owner_ == owner)
        return;
    const QPointer<CustomControl> alive(this);
    LoseGesture();
    if (alive)
        owner_ = owner;
}

InputControl* CustomControl::Owner() const
{
    return owner_;
}

void CustomControl::SetLocked(bool locked)
{
    if (!std::exchange(locked_, locked) && locked)
        LoseGesture();
}

void CustomControl::SetHelp(const QString& help)
{
    help_ = help;
    setToolTip(help_.isEmpty() || use_.isEmpty() ? help_ + use_ : help_ + QLatin1Char('\n') + use_);
}

void CustomControl::SetUse(const QString& use)
{
    use_ = use;
    SetHelp(help_);
}

MarloxDoc* CustomControl::GetDoc() const
{
    return owner_ ? owner_->GetDoc() : nullptr;
}

void CustomControl::BeginGesture(bool withProxy)
{
    if (!inGesture_)
        changes_ = true; // unless it is a drag, which tells
    inGesture_ = true;
    if (withProxy && owner_)
        proxy_.Begin(*owner_);
}

void CustomControl::FinishGesture()
{
    if (!inGesture_)
        return;
    inGesture_ = false;
    const QPointer<InputControl> owner = owner_; // listeners to a render may delete the widget
    proxy_.End(changes_);
    if (owner)
        owner->ResetUndo(nullptr);
}

void CustomControl::GiveUpGesture()
{
    if (!std::exchange(inGesture_, false))
        return;
    const QPointer<CustomControl> alive(this);
    if (owner_)
        owner_->EndUndo(false);
    if (alive)
        proxy_.End(changes_);
}

void CustomControl::LoseGesture()
{
    if (drag_) {
        drag_.reset();
        Drop();
    }
    FinishGesture();
}

void CustomControl::OpenUndo(const char* text)
{
    MarkChanged();
    if (owner_ && inGesture_)
        owner_->StartUndo(text);
}

MxColor CustomControl::BackgroundColor() const
{
    if (owner_)
        return owner_->GetBackgroundColor();
    const QColor color = palette().color(QPalette::Window);
    return {color.red(), color.green(), color.blue()};
}

QImage* CustomControl::PaintedImage(QPoint& offset, int& ratio) const
{
    QPoint origin;
    QPaintDevice* device = redirected(&origin);
    if (sharedPainter() || !device || device->devType() != QInternal::Image)
        return nullptr;
    auto* image = static_cast<QImage*>(device);
    const double exactRatio = image->devicePixelRatioF();
    ratio = int(exactRatio);
    offset = -origin * ratio;
    const bool plain = image->format() == QImage::Format_RGB32 ||
                       image->format() == QImage::Format_ARGB32_Premultiplied;
    return plain && ratio == exactRatio && ratio == devicePixelRatioF() ? image : nullptr;
}

bool CustomControl::EndsGesture(const QEvent& event) const
{
    switch (event.type()) {
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::UngrabMouse:
    case QEvent::WindowBlocked:
    case QEvent::WindowDeactivate:
        return true;
    case QEvent::EnabledChange:
        return !isEnabled();
    default:
        return false;
    }
}

bool CustomControl::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        IsOwnKey(static_cast<const QKeyEvent&>(*event))) {
        event->accept(); // before any shortcut of the window gets it
        return true;
    }
    if (EndsGesture(*event)) {
        const QPointer<CustomControl> alive(this);
        LoseGesture();
        if (!alive)
            return true;
    }
    return QWidget::event(event);
}

} // namespace Marlox
