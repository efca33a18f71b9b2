#include "widgets/ColorWheelModel.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr double turn = 2.0 * M_PI;
constexpr double discMargin = 4.0; // pixels around the disc that are its own

double finite(double value, double otherwise)
{
    return std::isfinite(value) ? value : otherwise;
}

/// A part that is no number starts from what it is without a correction.
WheelRecord mended(const WheelRecord& record)
{
    const WheelRecord neutral;
    WheelRecord whole = record;
    whole.hue = finite(whole.hue, neutral.hue);
    whole.saturation = finite(whole.saturation, neutral.saturation);
    return whole;
}

double signedSquare(double value)
{
    return std::copysign(value * value, value);
}

} // namespace

double NearestTurn(double value, double present)
{
    const double away = present - value;
    if (!std::isfinite(away))
        return value;
    // Half a turn away is as near on either side: it stays.
    return value + (away > 0.0 ? std::ceil(away - 0.5) : std::floor(away + 0.5));
}

// Places -----------------------------------------------------------------------------------------

QPointF ColorWheelModel::Centre() const
{
    const auto along = [this](int first, int last) {
        return diameter / 2.0 - 0.5 + std::floor((last + 1 - diameter - first) / 2.0);
    };
    return {along(widget.left(), widget.right()), along(widget.top(), widget.bottom())};
}

QRectF ColorWheelModel::Square() const
{
    const QPointF corner = Centre() - QPointF(diameter / 2.0 - 0.5, diameter / 2.0 - 0.5);
    return {corner, QSizeF(diameter, diameter)};
}

ColorWheelModel::Polar ColorWheelModel::PolarOf(QPointF at) const
{
    const QPointF centre = Centre();
    const double dx = at.x() - centre.x();
    const double dy = centre.y() - at.y();
    Polar polar;
    polar.length = diameter > 0 ? 2.0 * std::hypot(dx, dy) / diameter : 0.0;
    if (dx == 0.0)
        polar.angle = dy > 0.0 ? M_PI / 2.0 : 3.0 * M_PI / 2.0;
    else
        polar.angle = std::atan(dy / dx) + (dx < 0.0 ? M_PI : 0.0);
    return polar;
}

QPointF ColorWheelModel::PlaceOf(double angle, double length) const
{
    const double radius = 0.5 * diameter * finite(length, 0.0);
    const double usable = std::remainder(finite(angle, 0.0), turn);
    return Centre() + QPointF(radius * std::cos(usable), -radius * std::sin(usable));
}

double ColorWheelModel::TintReach(double length) const
{
    const double kept = std::clamp(finite(length, 0.0), 0.0, 1.0);
    return (squaredTint ? std::sqrt(kept) : kept) * disc;
}

QPointF ColorWheelModel::TintPlace(const WheelRecord& record) const
{
    return PlaceOf(finite(record.tintAngle, 0.0) * turn, TintReach(record.tintLength));
}

QPointF ColorWheelModel::RingPlace(const WheelRecord& record) const
{
    const double factor = std::clamp(finite(record.saturation, 1.0), 0.0, 2.0);
    const double pixel = diameter > 0 ? 2.0 / diameter : 0.0;
    const double knob = 0.5 * tintKnob.width() * pixel;
    const double inner = disc + knob + discMargin * pixel; // clear of the disc's presses
    const double plain = 0.5 * (inner + 1.0);
    const double length = factor < 1.0 ? inner + (plain - inner) * factor
                                       : plain + (1.0 - knob - plain) * (factor - 1.0);
    return PlaceOf(M_PI / 2.0 - finite(record.hue, 0.0) * turn, length);
}

ColorWheelModel::Part ColorWheelModel::HitTest(QPoint at, const WheelRecord& record) const
{
    const double length = PolarOf(at).length;
    const double discEdge = diameter > 0 ? (diameter * disc + discMargin) / diameter : 0.0;
    if (diameter > 0 && length <= discEdge)
        return Part::Tint;
    const QPointF knob = TintPlace(record);
    QRect around(QPoint(), tintKnob);
    around.moveTopLeft(QPoint(int(std::lround(knob.x())) - tintKnob.width() / 2,
                              int(std::lround(knob.y())) - tintKnob.height() / 2));
    if (around.contains(at))
        return Part::Tint;
    return length > discEdge && length <= 1.0 ? Part::Ring : Part::None;
}

// Drags ------------------------------------------------------------------------------------------

ColorWheelModel::Dragged ColorWheelModel::DragTo(const Drag& drag, const WheelRecord& present,
                                                 const PointerDrag::Step& step) const
{
    switch (drag.part) {
    case Part::Ring:
        return DragRing(mended(drag.start), present, PolarOf(step.press), PolarOf(step.at),
                        step.oneAxis);
    case Part::Tint:
        return DragTint(drag.start, present, PolarOf(step.at), step);
    case Part::None:
        break;
    }
    return {present, {}};
}

ColorWheelModel::Dragged ColorWheelModel::DragRing(const WheelRecord& start,
                                                   const WheelRecord& present, const Polar& from,
                                                   const Polar& to, bool oneAxis) const
{
    Dragged dragged{present, {true, true}};
    WheelRecord& record = dragged.record;
    // Turning counter-clockwise lowers the hue.
    record.hue = NearestTurn(start.hue - (to.angle - from.angle) / turn, present.hue);
    record.saturation =
        from.length > 0.0 ? start.saturation * (to.length / from.length) : start.saturation;
    if (!oneAxis)
        return dragged;
    if (std::abs(start.saturation - record.saturation) > std::abs(start.hue - record.hue)) {
        record.hue = start.hue;
        dragged.axes.first = false;
    } else {
        record.saturation = start.saturation;
        dragged.axes.second = false;
    }
    return dragged;
}

ColorWheelModel::Dragged ColorWheelModel::DragTint(const WheelRecord& start,
                                                   const WheelRecord& present, const Polar& to,
                                                   const PointerDrag::Step& step) const
{
    Dragged dragged{present, {true, true}};
    WheelRecord& record = dragged.record;
    record.tintAngle = NearestTurn(to.angle / turn, present.tintAngle);
    double length = disc > 0.0 ? std::clamp(to.length / disc, 0.0, 1.0) : 0.0;
    double radius = diameter / 2.0 * disc;
    if (squaredTint) {
        length = signedSquare(length);
        radius *= radius;
    }
    record.tintLength = OnSteps(length, StepsOf(radius) / (step.fine ? fineShare : 1.0));
    if (!step.oneAxis)
        return dragged;
    if (std::abs(start.tintLength - record.tintLength) >
        std::abs(start.tintAngle - record.tintAngle)) {
        record.tintAngle = start.tintAngle;
        dragged.axes.first = false;
    } else {
        record.tintLength = start.tintLength;
        dragged.axes.second = false;
    }
    return dragged;
}

WheelRecord ColorWheelModel::Nudged(Part part, const WheelRecord& record, QPoint way,
                                    int level) const
{
    const double by = NudgeOf(level);
    WheelRecord nudged = record;
    if (part == Part::Ring) {
        nudged.hue += way.x() * by;
        if (way.y() != 0)
            nudged.saturation = std::max(0.0, nudged.saturation + way.y() * by);
    } else if (part == Part::Tint) {
        nudged.tintAngle -= way.x() * by; // to the right is clockwise
        if (way.y() != 0)
            nudged.tintLength = std::clamp(nudged.tintLength + way.y() * by, 0.0, 1.0);
    }
    return nudged;
}

} // namespace Marlox
