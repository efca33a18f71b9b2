// What the wheel of colour amounts looks like.

#include "system/color/DisplayColors.h"
#include "system/resources/Resources.h"
#include "widgets/CustomColorSuppression.h"
#include "widgets/DrawnLook.h"
#include "widgets/WheelPicture.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPainterPath>

namespace Marlox {

namespace {

using Model = ColorSuppressionModel;

// Lengths from the wheel's centre, 1 on the rim.
constexpr double ringStart = 0.885; // beyond a knob of the amount 1
constexpr double namesAt = 0.943;   // beside a lit knob of the amount 1
constexpr double nameRadius = 0.064;

constexpr double ringLight = 0.42;
constexpr double discLight = 0.055;
constexpr double discStrength = 0.8; // of the hue on the disc's rim
constexpr double areaLight = 0.3;
constexpr double areaStrength = 0.85;
constexpr double knobLight = 0.8;
constexpr double knobStrength = 0.88;
constexpr int ticks = 4; // on a spoke
constexpr double tickLength = 5.0;
constexpr int areaSteps = 12; // of a sixth turn: a tenth of a pixel off the curve
constexpr double stateRadius = 9.25;

QPointF way(double turn)
{
    return {std::cos(turn * 2.0 * M_PI), -std::sin(turn * 2.0 * M_PI)};
}

/// Of its middle.
void paintCentred(QPainter& painter, const char* bitmap, QPointF at)
{
    const QSizeF size = ResDIB::SizeOf(bitmap);
    painter.drawPixmap(at - QPointF(size.width(), size.height()) / 2.0,
                       ResDIB::PixmapOf(bitmap, painter.device()->devicePixelRatioF()));
}

double partOf(double turns)
{
    return turns - std::floor(turns);
}

} // namespace

QColor CustomColorSuppression::ColorOf(int knob) const
{
    const RgbColor rgb = MutedHue(double(knob) / knobs, knobStrength, knobLight);
    return DisplayColors::Global().Shown(rgb[0], rgb[1], rgb[2]);
}

bool CustomColorSuppression::IsLit(int knob) const
{
    if (!isEnabled())
        return false;
    return IsDragged() ? knob == dragged_
                       : knob == hovered_ || (hasFocus() && knob == ActivePart());
}

// Kept picture ----------------------------------------------------------------------------------

QImage CustomColorSuppression::MakePicture(double ratio)
{
    const double rotation = model_.RotationOf(Mode());
    const int diameter = model_.Square().width();
    // The marks cover the seam of ring and disc.
    QImage wheel = PaintDisc(diameter, ratio, 1.0, [rotation](double turn, double length) {
        const double hue = partOf(turn - rotation);
        return length > ringStart ? MutedHue(hue, 1.0, ringLight)
                                  : MutedHue(hue, discStrength * length, discLight);
    });
    area_ = PaintDisc(diameter, ratio, 1.0, [rotation](double turn, double length) {
        return MutedHue(partOf(turn - rotation), areaStrength * std::min(length * 1.4, 1.0),
                        areaLight);
    });
    area_.setDevicePixelRatio(1.0); // a brush, in pixels of the screen
    QPainter painter(&wheel);
    painter.drawPixmap(0, 0, ResDIB::PixmapOf("Controls.ColorSuppression.Wheel", ratio));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(model_.Radius(), model_.Radius());
    PaintSpokes(painter);
    PaintNames(painter);
    painter.end();
    return wheel;
}

void CustomColorSuppression::PaintSpokes(QPainter& painter) const
{
    const double reach = Model::reach * model_.Radius();
    for (int knob = 0; knob < knobs; ++knob) {
        if (!knobs_[std::size_t(knob)].shown)
            continue;
        const QPointF along = way(model_.TurnOf(knob));
        const QPointF across(-along.y(), along.x());
        QColor color = ColorOf(knob);
        color.setAlphaF(0.55);
        painter.setPen(QPen(color, 1.2, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(QPointF(), along * reach);
        for (int tick = 1; tick <= ticks; ++tick) {
            const QPointF at = along * (reach * tick / ticks);
            const double half = tickLength * (tick == ticks ? 0.9 : 0.5);
            painter.drawLine(at - across * half, at + across * half);
        }
    }
}

/// Their first letters on the ring.
void CustomColorSuppression::PaintNames(QPainter& painter) const
{
    const double radius = model_.Radius();
    QFont small = font();
    small.setPixelSize(9);
    small.setBold(true);
    painter.setFont(small);
    for (int knob = 0; knob < knobs; ++knob) {
        if (!knobs_[std::size_t(knob)].shown)
            continue;
        const QPointF at = way(model_.TurnOf(knob)) * (namesAt * radius);
        const double half = nameRadius * radius;
        painter.setPen(Qt::NoPen);
        painter.setBrush(LookColor("System.BorderColour", {20, 20, 20}));
        painter.drawEllipse(at, half, half);
        painter.setPen(LookColor("Controls.Other.TextColour", {220, 220, 220}));
        painter.drawText(QRectF(at - QPointF(half, half), QSizeF(2.0 * half, 2.0 * half)),
                         Qt::AlignCenter, NameOf(knob).left(1));
    }
}

// Amounts ----------------------------------------------------------------------------------------

void CustomColorSuppression::PaintArea(QPainter& painter) const
{
    const Record& record = model_.Shown();
    const double rotation = model_.RotationOf(Mode());
    const double reach = Model::reach * model_.Radius();
    const QPointF centre = model_.Centre() + QPointF(0.5, 0.5);
    QPolygonF outline;
    bool empty = true;
    for (int i = 0; i < knobs * areaSteps; ++i) {
        const double turn = double(i) / (knobs * areaSteps); // of red and so on, unrotated
        const double amount = Model::Clamped(Model::AmountAt(record, turn));
        empty = empty && amount == 0.0;
        outline += centre + way(turn + rotation) * (amount * reach);
    }
    if (empty)
        return;
    const double ratio = devicePixelRatioF();
    QBrush brush(area_);
    brush.setTransform(QTransform::fromTranslate(model_.Square().x(), model_.Square().y())
                           .scale(1.0 / ratio, 1.0 / ratio));
    painter.setBrush(brush);
    painter.setPen(QPen(QColor(0, 0, 0, 110), 3.0, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
    painter.drawPolygon(outline);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(
        QPen(QColor(236, 236, 236, 215), 1.3, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
    painter.drawPolygon(outline);
}

void CustomColorSuppression::PaintKnob(QPainter& painter, int knob) const
{
    const Knob& state = knobs_[std::size_t(knob)];
    if (!state.shown)
        return;
    const bool lit = IsLit(knob);
    const bool centred = Model::Clamped(Amount(knob)) == 0.0;
    const QPointF at = model_.KnobPosition(knob) + QPointF(0.5, 0.5);
    const char* bitmap = lit       ? "Controls.ColorSuppression.KnobSelected"
                         : centred ? "Controls.ColorSuppression.KnobCenter"
                                   : "Controls.ColorSuppression.Knob";
    if (lit) { // where it goes
        painter.setPen(QPen(ColorOf(knob), 1.6, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(at, model_.Centre() + QPointF(0.5, 0.5) +
                                 way(model_.TurnOf(knob)) * (Model::reach * model_.Radius()));
    }
    if (lit || !centred) { // the bitmaps are rings
        const double inside = ResDIB::SizeOf(bitmap).width() / 2.0 - 2.5;
        QColor color = ColorOf(knob);
        if (!state.movable)
            color = color.darker(170);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(at, inside, inside);
    }
    paintCentred(painter, bitmap, at);
    const bool keys = isEnabled() && hasFocus() && knob == ActivePart() && !IsDragged();
    const QColor around = keys ? AccentColor() : state.stateColor;
    if (!around.isValid())
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(around, 1.5));
    painter.drawEllipse(at, stateRadius, stateRadius);
}

void CustomColorSuppression::PaintParts(QPainter& painter)
{
    PaintArea(painter);
    for (int knob = 0; knob < knobs; ++knob)
        PaintKnob(painter, knob);
}

} // namespace Marlox
