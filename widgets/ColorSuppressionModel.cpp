#include "widgets/ColorSuppressionModel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Marlox {

namespace {

constexpr int hitDistance = 10; // pixels, beside and above the knob's; not reached

/// Into 0 to 1; 0 for what is no number.
double wrapped(double turns)
{
    if (!std::isfinite(turns))
        return 0.0;
    const double part = std::fmod(turns, 1.0);
    return part < 0.0 ? part + 1.0 : part;
}

} // namespace

double ColorSuppressionModel::AmountAt(const Record& record, double hue)
{
    const double sectors = knobCount * wrapped(hue - record.offset);
    const auto sector = std::size_t(sectors);
    const double share = sectors - std::floor(sectors);
    const double from = record.amounts[sector % knobCount];
    const double to = record.amounts[(sector + 1) % knobCount];
    return (1.0 - share) * from + share * to;
}

double ColorSuppressionModel::Clamped(double amount)
{
    return amount > 0.0 ? std::min(amount, 1.0) : 0.0;
}

void ColorSuppressionModel::SetPlace(int diameter, QSize widget)
{
    const auto middle = [diameter](int extent) {
        return int(std::floor((extent - diameter) / 2.0));
    };
    diameter_ = diameter;
    corner_ = {middle(widget.width()), middle(widget.height())};
}

QPointF ColorSuppressionModel::Centre() const
{
    return QPointF(corner_) + QPointF(Radius() - 0.5, Radius() - 0.5);
}

void ColorSuppressionModel::SetMode(int mode)
{
    if (mode >= 0 && mode < modeCount)
        mode_ = mode;
}

void ColorSuppressionModel::SetRotation(int mode, double turns)
{
    modes_[std::size_t(mode)].rotation = wrapped(turns);
}

void ColorSuppressionModel::SetAmount(int knob, double amount)
{
    modes_[std::size_t(mode_)].record.amounts[std::size_t(knob)] = amount;
}

double ColorSuppressionModel::TurnOf(int knob) const
{
    return wrapped(double(knob) / knobCount + RotationOf(mode_));
}

QPointF ColorSuppressionModel::KnobPosition(int knob) const
{
    const double angle = TurnOf(knob) * 2.0 * M_PI;
    const double distance = Clamped(Amount(knob)) * reach * Radius();
    return Centre() + distance * QPointF(std::cos(angle), -std::sin(angle));
}

QPoint ColorSuppressionModel::KnobPixel(int knob) const
{
    const QPointF at = KnobPosition(knob);
    return {int(std::lround(at.x())), int(std::lround(at.y()))};
}

bool ColorSuppressionModel::Hits(int knob, QPoint pointer) const
{
    const QPoint way = pointer - KnobPixel(knob);
    return std::abs(way.x()) < hitDistance && std::abs(way.y()) < hitDistance;
}

double ColorSuppressionModel::AmountFor(int knob, QPointF pointer, bool fine) const
{
    if (diameter_ <= 0)
        return 0.0;
    const double angle = TurnOf(knob) * 2.0 * M_PI;
    const QPointF way = pointer - Centre();
    const double along = (std::cos(angle) * way.x() - std::sin(angle) * way.y()) / Radius();
    const double steps = StepsOf(Radius()) * (fine ? 10.0 : 1.0);
    return Clamped(OnSteps(along / reach, steps));
}

double ColorSuppressionModel::Nudged(int knob, int steps, int level) const
{
    static constexpr double grid = 1e9; // takes away what sums are off by
    return Clamped(OnSteps(Clamped(Amount(knob)) + steps * NudgeOf(level), grid));
}

} // namespace Marlox
