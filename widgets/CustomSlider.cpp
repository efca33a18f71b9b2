#include "widgets/CustomSlider.h"

#include "widgets/CustomSliderAccessible.h"
#include "widgets/DrawnLook.h"
#include "widgets/PixelCopy.h"

#include <cmath>

#include <QAccessible>
#include <QPainter>

namespace Marlox {

namespace {

constexpr double tickMarksApart = 4.0;
constexpr int usualWidth = 160;

} // namespace

CustomSlider::CustomSlider(QWidget* parent) : CustomController(parent)
{
    MakeSlidersAccessible();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    SetUse(tr("Drag the knob, with Ctrl finely. Arrow keys and wheel step, with Shift coarsely, "
              "with Ctrl finely. Escape gives a drag up. Alt+click resets."));
    skin_.Load(devicePixelRatioF());
    FollowLayout();
}

CustomSlider::~CustomSlider() = default;

QVariantList CustomSlider::Steps(double (SliderModel::*step)(int) const) const
{
    return {(model_.*step)(SliderModel::Fine), (model_.*step)(SliderModel::Plain),
            (model_.*step)(SliderModel::Tick)};
}

void CustomSlider::SetValue(double v)
{
    if (!std::isfinite(v))
        return;
    const bool first = std::exchange(firstOfDrag_, false);
    if (v == model_.value && !first)
        return;
    Store(v);
    emit ValueChanged(v);
}

void CustomSlider::BringBack()
{
    if (dragStart_ != model_.value)
        SetValue(dragStart_);
}

void CustomSlider::ShowValue(double v)
{
    if (std::isfinite(v) && v != model_.value)
        Store(v);
}

void CustomSlider::Store(double v)
{
    const bool differs = v != model_.value;
    model_.value = v;
    RepaintKnob();
    if (differs && QAccessible::isActive()) {
        QAccessibleValueChangeEvent told(this, v);
        QAccessible::updateAccessibility(&told);
    }
}

void CustomSlider::SetRange(double low, double high, bool notify)
{
    if (!notify) {
        model_.SetRange(low, high);
        track_ = QImage();
        return;
    }
    const std::vector<int> marks = model_.TickPixels(tickMarksApart);
    const bool moved = model_.SetRange(low, high);
    const bool marksMoved = marks != model_.TickPixels(tickMarksApart);
    if (moved || marksMoved)
        track_ = QImage();
    const bool resetMoved = moved && !geometry_.resetSize.isEmpty() && model_.HasDefault() &&
                            model_.value != model_.defaultValue;
    if (resetMoved || marksMoved)
        RepaintAll();
    else
        RepaintKnob(); // a reset mark at the value moves with the knob
}

void CustomSlider::SetTickFreq(double count)
{
    model_.SetTickFreq(count);
    RepaintAll();
}

bool CustomSlider::SetCentre(double c)
{
    const bool centred = model_.SetCentre(c);
    RepaintAll();
    return centred;
}

void CustomSlider::SetCentred(bool on)
{
    model_.SetCentred(on);
    RepaintAll();
}

void CustomSlider::SetGamma(double gamma)
{
    model_.SetGamma(gamma);
    RepaintAll();
}

void CustomSlider::SetInteger(bool on)
{
    model_.SetInteger(on);
    RepaintAll();
}

void CustomSlider::SetSteps(double fine, double plain)
{
    model_.SetSteps(fine, plain);
}

void CustomSlider::SetDefaultValue(double v)
{
    model_.defaultValue = std::isfinite(v) ? v : none;
    RepaintAll();
}

void CustomSlider::StepDown(int level, bool force)
{
    if (!force && IsHeld() && drag_.HasReachedPointer(model_, geometry_))
        return;
    StepTo(model_.SteppedDown(level));
}

void CustomSlider::StepUp(int level, bool force)
{
    if (!force && IsHeld() && drag_.HasReachedPointer(model_, geometry_))
        return;
    StepTo(model_.SteppedUp(level));
}

void CustomSlider::StepTo(double v)
{
    // A value beyond the end that the knob stands at stays there.
    if (v != model_.ClampedValue() || v == model_.value)
        SetValue(v);
}

void CustomSlider::StepBy(Way way, int level)
{
    switch (way) {
    case Way::Down:
        return StepDown(level, true);
    case Way::Up:
        return StepUp(level, true);
    case Way::Low:
        return SetValue(MinValue());
    case Way::High:
        return SetValue(MaxValue());
    }
}

void CustomSlider::StartDrag()
{
    dragStart_ = model_.value;
    firstOfDrag_ = true;
    dragging_ = true;
    BeginGesture(true);
    RepaintKnob();
}

void CustomSlider::EndDrag()
{
    ClearDrag();
    FinishGesture();
}

void CustomSlider::ClearDrag()
{
    drag_.End();
    repeat_.stop();
    dragging_ = firstOfDrag_ = false;
    Hover(SliderPart::None);
    RepaintKnob();
}

void CustomSlider::DragBy(double units, RelativeDrag& state)
{
    SetValue(model_.Dragged(dragStart_, units, state));
}

void CustomSlider::SetLocked(bool locked)
{
    RepaintAll(); // nothing is highlighted while locked
    CustomController::SetLocked(locked);
}

void CustomSlider::SetFine(bool fine)
{
    trackFine_ = fine;
    if (const auto value = drag_.SetFine(model_, fine))
        SetValue(*value);
}

void CustomSlider::LoseGesture()
{
    if (dragging_ || IsHeld())
        ClearDrag();
    CustomController::LoseGesture(); // the last: the owner may delete the widget
}

void CustomSlider::RepaintKnob()
{
    const int pixel = SliderGeometry::KnobPixel(model_);
    const QRect before = geometry_.KnobDirtyRect(shownPixel_);
    shownPixel_ = pixel;
    if (!isVisible())
        return;
    const QRect after = geometry_.KnobDirtyRect(pixel);
    if (before.intersects(after))
        return update(before | after);
    const QRect both[] = {before.left() < after.left() ? before : after,
                          before.left() < after.left() ? after : before};
    QRegion region;
    region.setRects(both, 2); // wants them from left to right
    update(region);
}

void CustomSlider::RepaintAll()
{
    track_ = QImage();
    shownPixel_ = SliderGeometry::KnobPixel(model_);
    update();
}

void CustomSlider::FollowLayout()
{
    geometry_ = skin_.GeometryIn(size());
    model_.SetTrack(skin_.PixelLow(size()), skin_.PixelHigh(size()));
    RepaintAll();
}

void CustomSlider::SetKnobImages(const char* normal, const char* highlighted)
{
    skin_.SetKnob(normal, highlighted);
    skin_.Load(devicePixelRatioF());
    FollowLayout();
}

void CustomSlider::SetGradients(const Gradient* first, const Gradient* second)
{
    if (skin_.SetGradients(first, second))
        RepaintAll();
}

void CustomSlider::SetResetPosition(MxPoint position)
{
    skin_.SetResetPosition(ToQPoint(position));
    FollowLayout();
}

void CustomSlider::SetStateColor(const QColor& color)
{
    if (color == stateColor_)
        return;
    stateColor_ = color;
    RepaintAll();
}

SliderTrackState CustomSlider::TrackState() const
{
    SliderTrackState state;
    state.ticks = model_.TickPixels(tickMarksApart);
    state.centreTick = IsCentred() ? int(std::lround(PixelCentre())) : -1;
    state.resetPixel = model_.HasDefault() ? SliderGeometry::ResetPixel(model_) : -1;
    if (trackOpaque_)
        state.background = BackgroundColor().ToQColor();
    state.stateColor = stateColor_;
    state.resetLit = IsResetHovered() && !IsLocked();
    state.focused = hasFocus();
    state.enabled = isEnabled();
    return state;
}

void CustomSlider::paintEvent(QPaintEvent* event)
{
    const double ratio = devicePixelRatioF();
    if (skin_.Load(ratio))
        FollowLayout();
    const bool opaque = testAttribute(Qt::WA_OpaquePaintEvent);
    if (track_.isNull() || opaque != trackOpaque_) {
        trackOpaque_ = opaque;
        track_ = skin_.PaintTrack(size(), TrackState());
    }
    QPoint offset;
    int whole = 1;
    QImage* image = opaque && isEnabled() ? PaintedImage(offset, whole) : nullptr;
    if (image) {
        CopyTo(*image, offset, whole, event->region());
        return;
    }
    QPainter painter(this);
    PaintTo(painter);
}

const QImage& CustomSlider::ShownKnob() const
{
    return skin_.Knob(dragging_ || (IsKnobHovered() && !IsLocked()));
}

void CustomSlider::PaintTo(QPainter& painter) const
{
    painter.drawImage(0, 0, track_);
    if (!isEnabled())
        painter.setOpacity(dimmed);
    painter.drawImage(geometry_.KnobRect(SliderGeometry::KnobPixel(model_)).topLeft(), ShownKnob());
}

void CustomSlider::CopyTo(QImage& image, QPoint offset, int ratio, const QRegion& region) const
{
    const QPoint knob = geometry_.KnobRect(SliderGeometry::KnobPixel(model_)).topLeft() * ratio;
    for (const QRect& part : region) {
        const QRect pixels(part.topLeft() * ratio, part.size() * ratio);
        CopyPixels(image, offset, track_, QPoint(), pixels);
        BlendPixels(image, offset, ShownKnob(), knob, pixels);
    }
}

void CustomSlider::changeEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::EnabledChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
        RepaintAll();
        break;
    default:
        break;
    }
    CustomController::changeEvent(event);
}

void CustomSlider::focusInEvent(QFocusEvent* event)
{
    RepaintAll();
    CustomController::focusInEvent(event);
}

void CustomSlider::focusOutEvent(QFocusEvent* event)
{
    RepaintAll();
    CustomController::focusOutEvent(event);
}

void CustomSlider::resizeEvent(QResizeEvent* event)
{
    FollowLayout();
    CustomController::resizeEvent(event);
}

QSize CustomSlider::sizeHint() const
{
    return {usualWidth, minimumSizeHint().height()};
}

QSize CustomSlider::minimumSizeHint() const
{
    return skin_.MinimumSize();
}

} // namespace Marlox
