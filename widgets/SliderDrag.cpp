#include "widgets/SliderDrag.h"

#include <cmath>

namespace Marlox {

namespace {

constexpr int knobReachX = 5;
constexpr int knobReachY = 4;
constexpr int resetReach = 5;
constexpr double trackReach = 10.0; // beyond the ends
constexpr double fineFactor = 0.1;
constexpr double snapReach = 0.5;

} // namespace

QRect SliderGeometry::KnobRect(int pixel) const
{
    return {QPoint(pixel - knobSize.width() / 2, knobTop), knobSize};
}

QRect SliderGeometry::ResetRect(int pixel) const
{
    return {resetOffset + QPoint(pixel, 0), resetSize};
}

int SliderGeometry::KnobPixel(const SliderModel& model)
{
    return int(std::lround(model.Scale().ValueToPixel(model.value)));
}

int SliderGeometry::ResetPixel(const SliderModel& model)
{
    return int(std::lround(model.Scale().ValueToPixel(model.defaultValue)));
}

bool SliderGeometry::IsOverReset(QPoint at, const SliderModel& model) const
{
    if (!model.HasDefault() || resetSize.isEmpty())
        return false;
    return ResetRect(ResetPixel(model))
        .adjusted(-resetReach, -resetReach, resetReach, resetReach)
        .contains(at);
}

SliderPart SliderGeometry::HitTest(QPoint at, const SliderModel& model) const
{
    const QRect knob = KnobRect(KnobPixel(model));
    if (knob.adjusted(-knobReachX, -knobReachY, knobReachX, knobReachY).contains(at))
        return SliderPart::Knob;
    if (IsOverReset(at, model))
        return SliderPart::Reset;
    if (at.y() < trackTop || at.y() >= trackBottom)
        return SliderPart::None;
    if (at.x() < knob.left() && at.x() >= model.Scale().pixelLow - trackReach)
        return SliderPart::TrackBelow;
    if (at.x() > knob.right() && at.x() <= model.Scale().pixelHigh + trackReach)
        return SliderPart::TrackAbove;
    return SliderPart::None;
}

void SliderDrag::GrabKnob(const SliderModel& model, double x, bool fine)
{
    kind_ = Kind::Knob;
    fine_ = fine;
    moved_ = false;
    lastX_ = x;
    Anchor(model, x);
}

void SliderDrag::HoldTrack(bool above, QPoint at)
{
    kind_ = Kind::Track;
    above_ = above;
    pointer_ = at;
    wait_ = repeatWait;
}

void SliderDrag::Anchor(const SliderModel& model, double x)
{
    start_ = model.value;
    anchor_ = x;
    // To the unrounded pixel, so that taking hold of the knob moves nothing.
    grabOffset_ = x - model.Scale().ValueToPixel(model.value);
}

std::optional<double> SliderDrag::MoveTo(const SliderModel& model, double x, bool fine)
{
    if (kind_ != Kind::Knob)
        return std::nullopt;
    if (fine != fine_) { // the key went up or down where no key event reached the slider
        fine_ = fine;
        Anchor(model, lastX_);
    }
    if (x == lastX_ && moved_)
        return std::nullopt;
    lastX_ = x;
    moved_ = true;
    return ValueAt(model, x);
}

std::optional<double> SliderDrag::SetFine(const SliderModel& model, bool fine)
{
    if (kind_ != Kind::Knob || fine == fine_)
        return std::nullopt;
    fine_ = fine;
    Anchor(model, lastX_);
    return ValueAt(model, lastX_);
}

double SliderDrag::ValueAt(const SliderModel& model, double x) const
{
    if (x == anchor_)
        return start_; // neither rounded nor snapped: nothing was moved
    const SliderScale& scale = model.Scale();
    const double factor = fine_ ? fineFactor : 1.0;
    const double pixel = x - grabOffset_;
    const double start = model.Clamped(start_);
    double v = start + (scale.PixelToValue(pixel) - start) * factor;
    const double reach = factor * snapReach;
    const double here = scale.ValueToPixel(v);
    const auto isNear = [&](double target) {
        return target != SliderModel::none && std::abs(scale.ValueToPixel(target) - here) <= reach;
    };
    if (std::abs(here - pixel) <= reach) {
        if (isNear(model.snapValue))
            v = model.snapValue;
        else if (isNear(model.defaultValue))
            v = model.defaultValue;
    }
    return model.Settled(scale.Rounded(v, fine_));
}

bool SliderDrag::HasReachedPointer(const SliderModel& model, const SliderGeometry& geometry) const
{
    const QRect knob = geometry.KnobRect(SliderGeometry::KnobPixel(model));
    return above_ ? pointer_.x() <= knob.right() : pointer_.x() >= knob.left();
}

} // namespace Marlox
