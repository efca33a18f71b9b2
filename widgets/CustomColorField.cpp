#include "widgets/CustomColorField.h"

#include "system/color/DisplayColors.h"
#include "widgets/PartsAccessible.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QKeyEvent>

namespace Marlox {

namespace {

using Zone = ColorFieldModel::Zone;

constexpr QSize usualSize(200, 128);
constexpr QSize leastSize(64, 32);
constexpr double endless = 1e30;
/// A hue that comes back from red, green and blue is off by roundings, and looks the same.
constexpr double sameHue = 1e-6;

/// What can be shown and compared: no number counts as 0.
double usable(double number)
{
    return std::isnan(number) ? 0.0 : std::clamp(number, -endless, endless);
}

ColorRecord usable(const ColorRecord& record)
{
    return {usable(record.hue),
            usable(record.saturation),
            {usable(record.further[0]), usable(record.further[1])},
            usable(record.value)};
}

struct ZoneFacts {
    const char* undo;
    void (CustomColorField::*changed)();
};
constexpr ZoneFacts zones[] = {{"Adjust Saturation/Value", &CustomColorField::dragSatVal},
                               {"Adjust Hue", &CustomColorField::dragHue},
                               {"Adjust Alpha", &CustomColorField::dragAlpha}};

} // namespace

CustomColorField::CustomColorField(QWidget* parent) : CustomControl(parent)
{
    MakePartsAccessible();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    SetUse(tr("Drag in the square or a strip, with Ctrl finely; Shift keeps to one axis of the "
              "square. Page Up and Page Down choose between them, arrow keys move, with Shift "
              "coarsely, with Ctrl finely."));
    model_.widget = rect();
    connect(&DisplayColors::Global(), &DisplayColors::Changed, this, [this] {
        DiscardPictures();
        update();
    });
}

CustomColorField::~CustomColorField() = default;

// What is shown ----------------------------------------------------------------------------------

void CustomColorField::SetRecord(const ColorRecord& record, bool redraw)
{
    Show({usable(record), values_.alpha}, redraw);
}

void CustomColorField::SetAlpha(double alpha)
{
    Show({values_.record, usable(alpha)}, true);
}

void CustomColorField::Show(const ColorFieldValues& values, bool redraw)
{
    if (values == values_)
        return;
    if (std::abs(values.record.hue - squareHue_) > sameHue)
        square_.Discard();
    if (values.record != values_.record)
        alphaStrip_.Discard();
    values_ = values;
    if (redraw)
        update();
    TellActivePart(*this);
}

void CustomColorField::SetShowsAlpha(bool on)
{
    if (std::exchange(model_.showsAlpha, on) == on)
        return;
    SetActivePart(ActivePart()); // which may be gone
    DiscardPictures();
    update();
}

void CustomColorField::SetValueExponent(double exponent)
{
    if (!(exponent > 0.0) || !std::isfinite(exponent) || exponent == model_.exponent)
        return;
    model_.exponent = exponent;
    square_.Discard();
    update();
}

void CustomColorField::SetColorSpace(int colorSpace)
{
    colorSpace = colorSpace >= 0 && colorSpace <= 2 ? colorSpace : 0;
    if (std::exchange(colorSpace_, colorSpace) == colorSpace)
        return;
    DiscardPictures();
    update();
}

void CustomColorField::DiscardPictures()
{
    square_.Discard();
    hueStrip_.Discard();
    alphaStrip_.Discard();
}

QString CustomColorField::DescribePart(int part) const
{
    const ColorAxes& axes = ColorAxes::Of(colorSpace_);
    const auto told = [](const ColorAxes::Axis& axis, double number) {
        return QStringLiteral("%1 %2").arg(tr(axis.label)).arg(number - axis.zero, 0, 'g', 4);
    };
    switch (Zone(part)) {
    case Zone::Square:
        return told(axes.SaturationAxis(), Saturation()) + QStringLiteral(", ") +
               told(axes.ValueAxis(), Value());
    case Zone::Hue:
        return told(axes.HueAxis(), Hue());
    case Zone::Alpha:
        return told({"Alpha", 0.0}, Alpha());
    default:
        return {};
    }
}

QSize CustomColorField::sizeHint() const
{
    return usualSize;
}

QSize CustomColorField::minimumSizeHint() const
{
    return leastSize;
}

// What the user does -----------------------------------------------------------------------------

void CustomColorField::SetMovable(bool color, bool alpha)
{
    colorMoves_ = color;
    alphaMoves_ = alpha;
    if (hovered_ == Zone::None || IsMovable(hovered_))
        return;
    hovered_ = Zone::None;
    update();
}

bool CustomColorField::IsMovable(Zone zone) const
{
    return zone != Zone::None && (zone == Zone::Alpha ? alphaMoves_ : colorMoves_);
}

bool CustomColorField::Grab(QPoint at)
{
    held_ = {model_.HitTest(at), values_};
    active_ = {};
    if (!IsMovable(held_.zone))
        return false;
    SetActivePart(int(held_.zone));
    return true;
}

bool CustomColorField::DragTo(const PointerDrag::Step& step)
{
    if (model_.ZoneRect(held_.zone).isEmpty())
        return false;
    const ColorFieldModel::Dragged dragged = model_.DragTo(held_, step);
    if (std::exchange(active_, dragged.active) != dragged.active)
        update();
    Change(held_.zone, dragged.values);
    return true; // nothing of the widget: it may be gone
}

void CustomColorField::BringBack()
{
    Change(held_.zone, held_.start); // the owner keeps the hue of what has none
}

void CustomColorField::Drop()
{
    held_ = {};
    active_ = {};
    update();
}

void CustomColorField::Nudge(int part, QPoint way, int level)
{
    if (IsMovable(Zone(part)))
        Change(Zone(part), model_.Nudged(Zone(part), values_, way, level));
}

/// By the user. Whoever listens may delete the widget.
void CustomColorField::Change(Zone zone, const ColorFieldValues& values)
{
    if (values == values_)
        return;
    const ZoneFacts& facts = zones[int(zone)];
    OpenUndo(facts.undo);
    Show(values, true);
    emit(this->*facts.changed)();
}

void CustomColorField::HoverAt(std::optional<QPoint> at)
{
    Zone zone = at && !IsLocked() ? model_.HitTest(*at) : Zone::None;
    if (!IsMovable(zone))
        zone = Zone::None;
    if (std::exchange(hovered_, zone) != zone)
        update();
}

void CustomColorField::mousePressEvent(QMouseEvent* event)
{
    byKeys_ = false;
    CustomControl::mousePressEvent(event);
}

void CustomColorField::keyPressEvent(QKeyEvent* event)
{
    const bool own = IsOwnKey(*event);
    if (own && !IsDragged() && !std::exchange(byKeys_, true))
        update();
    CustomControl::keyPressEvent(event);
}

void CustomColorField::focusInEvent(QFocusEvent* event)
{
    byKeys_ = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
              event->reason() == Qt::ShortcutFocusReason;
    CustomControl::focusInEvent(event);
}

void CustomColorField::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange)
        hovered_ = Zone::None;
    CustomControl::changeEvent(event);
}

void CustomColorField::resizeEvent(QResizeEvent* event)
{
    model_.widget = rect();
    DiscardPictures();
    CustomControl::resizeEvent(event);
}

} // namespace Marlox
