#include "widgets/ColorFieldModel.h"

#include <algorithm>

namespace Marlox {

namespace {

// Pixels, from the edges of the widget and between the zones.
constexpr int margin = 3;
constexpr int stripWidth = 10;
constexpr int gap = 7;
constexpr double furtherSteps = 100; // to each at most, where the value axis is flat

constexpr double nudgeGrid = 1e6; // takes the rounding errors of repeated steps off

/// The number of steps that take an axis of so many pixels from 0 to 1; one at least, so that it
/// can be divided by.
double spanOf(int pixels)
{
    return std::max(pixels, 1);
}

double unit(double position)
{
    return position > 0.0 ? std::min(position, 1.0) : 0.0; // no number is 0
}

double onGrid(double value, double steps, bool fine)
{
    return OnSteps(value, fine ? 10.0 * steps : steps);
}

double nudged(double value, double by)
{
    if (by == 0.0)
        return value;
    const double moved = std::clamp(value + by, std::min(value, 0.0), std::max(value, 1.0));
    return moved == value ? value : OnSteps(moved, nudgeGrid);
}

} // namespace

// Where the zones are ----------------------------------------------------------------------------

QRect ColorFieldModel::Square() const
{
    const int right = HueStrip().left() - gap;
    const int left = widget.left() + margin;
    return {left, widget.top() + margin, std::max(right - left, 0),
            std::max(widget.height() - 2 * margin, 0)};
}

QRect ColorFieldModel::HueStrip() const
{
    const int right = widget.right() - 2 - (showsAlpha ? stripWidth + gap : 0);
    return {right - stripWidth, widget.top() + margin, stripWidth,
            std::max(widget.height() - 2 * margin, 0)};
}

QRect ColorFieldModel::AlphaStrip() const
{
    if (!showsAlpha)
        return {};
    return {widget.right() - 2 - stripWidth, widget.top() + margin, stripWidth,
            std::max(widget.height() - 2 * margin, 0)};
}

QRect ColorFieldModel::ZoneRect(Zone zone) const
{
    const QRect rects[] = {Square(), HueStrip(), AlphaStrip()};
    return zone == Zone::None ? QRect() : rects[int(zone)];
}

ColorFieldModel::Zone ColorFieldModel::HitTest(QPoint at) const
{
    for (const Zone zone : {Zone::Square, Zone::Hue, Zone::Alpha}) {
        if (ZoneRect(zone).contains(at))
            return zone;
    }
    return Zone::None;
}

// From pixels to values and back -----------------------------------------------------------------

double ColorFieldModel::Risen(double way) const
{
    return exponent == 1.0 ? way : std::pow(way, exponent);
}

double ColorFieldModel::SaturationAt(double x) const
{
    const QRect square = Square();
    return unit((x - square.left()) / spanOf(square.width() - 1));
}

double ColorFieldModel::ValueAt(double y) const
{
    const QRect square = Square();
    const int below = square.top() + square.height();
    return Risen(unit((below - y) / spanOf(square.height() - 1)));
}

double ColorFieldModel::StripAt(double y) const
{
    const QRect strip = HueStrip();
    return unit((y - (strip.top() + 1)) / spanOf(strip.height() - 3));
}

double ColorFieldModel::SaturationPixel(double saturation) const
{
    const QRect square = Square();
    return square.left() + unit(saturation) * spanOf(square.width() - 1);
}

double ColorFieldModel::ValuePixel(double value) const
{
    const QRect square = Square();
    const double way = exponent == 1.0 ? unit(value) : std::pow(unit(value), 1.0 / exponent);
    return square.top() + square.height() - way * spanOf(square.height() - 1);
}

double ColorFieldModel::StripPixel(double position) const
{
    const QRect strip = HueStrip();
    return strip.top() + 1 + unit(position) * spanOf(strip.height() - 3);
}

double ColorFieldModel::RoundedSaturationAt(double x, bool fine) const
{
    return onGrid(SaturationAt(x), StepsOf(Square().width()), fine);
}

double ColorFieldModel::RoundedValueAt(double y, bool fine) const
{
    return onGrid(ValueAt(y), ValueSteps(y), fine);
}

double ColorFieldModel::RoundedStripAt(double y, bool fine) const
{
    return onGrid(StripAt(y), StepsOf(HueStrip().height()), fine);
}

/// Where the value axis is flat, neighbouring rows tell further decimals apart.
double ColorFieldModel::ValueSteps(double y) const
{
    const QRect square = Square();
    const double linear = StepsOf(square.height());
    if (exponent == 1.0)
        return linear;
    const double neighbour = y > square.top() + square.height() ? y - 1.0 : y + 1.0;
    const double apart = std::abs(ValueAt(y) - ValueAt(neighbour));
    const double most = linear * furtherSteps;
    if (apart * most < 1.0)
        return most;
    return std::clamp(std::pow(10.0, std::ceil(std::log10(1.0 / apart))), linear, most);
}

// Drags and keys ---------------------------------------------------------------------------------

ColorFieldModel::Dragged ColorFieldModel::DragTo(const Drag& drag,
                                                 const PointerDrag::Step& step) const
{
    Dragged to{drag.start, {}};
    const QPointF at = step.at;
    switch (drag.zone) {
    case Zone::Square: {
        const double acrossWay = std::abs(SaturationAt(at.x()) - SaturationAt(step.press.x()));
        const double upWay = std::abs(ValueAt(at.y()) - ValueAt(step.press.y()));
        to.active.saturation = !step.oneAxis || upWay > acrossWay;
        to.active.value = !step.oneAxis || !to.active.saturation;
        if (to.active.saturation)
            to.values.record.saturation = RoundedSaturationAt(at.x(), step.fine);
        if (to.active.value)
            to.values.record.value = RoundedValueAt(at.y(), step.fine);
        break;
    }
    case Zone::Hue:
        to.active.hue = true;
        to.values.record.hue = RoundedStripAt(at.y(), step.fine);
        break;
    case Zone::Alpha:
        to.active.alpha = true;
        to.values.alpha = RoundedStripAt(at.y(), step.fine);
        break;
    case Zone::None:
        break;
    }
    return to;
}

ColorFieldValues ColorFieldModel::Nudged(Zone zone, const ColorFieldValues& values, QPoint way,
                                         int level) const
{
    const double step = NudgeOf(level);
    const int along = way.x() - way.y(); // down and to the right in a strip
    ColorFieldValues to = values;
    if (zone == Zone::Square) {
        to.record.saturation = nudged(values.record.saturation, way.x() * step);
        to.record.value = nudged(values.record.value, way.y() * step);
    } else if (zone == Zone::Hue) {
        to.record.hue = nudged(values.record.hue, along * step);
    } else if (zone == Zone::Alpha) {
        to.alpha = nudged(values.alpha, along * step);
    }
    return to;
}

} // namespace Marlox
