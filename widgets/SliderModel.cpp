#include "widgets/SliderModel.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Marlox {

namespace {

constexpr double epsilon = std::numeric_limits<float>::epsilon();
constexpr double atCentre = 1e-9;

/// At least eight intervals over the span, on a grid of 1, 2 and 5.
double automaticSpacing(double span)
{
    if (!(span > 0.0) || !std::isfinite(span))
        return 1.0;
    const double unit = std::pow(10.0, DecadeOf(span));
    const double units = std::ceil(span / unit);
    constexpr double growth[] = {2.0, 2.5, 2.0};
    double parts = 1.0;
    for (std::size_t i = 0; units * parts < 8.0; ++i)
        parts *= growth[i % 3];
    return unit / parts;
}

/// Every how many marks are drawn, so that `intervals` of them leave `apart` pixels in between.
double strideFor(double intervals, double width, double apart)
{
    constexpr double growth[] = {2.0, 2.5, 2.0};
    double stride = 1.0;
    for (std::size_t i = 0; intervals / stride * apart > width && stride < intervals; ++i)
        stride *= growth[i % 3];
    return std::ceil(stride);
}

struct MarkRow {
    double from;
    double to;
    double spacing; // negative: downwards
    double width;   // pixels that the row has, about
};

void appendMarks(std::vector<double>& pixels, const SliderScale& scale, const MarkRow& row,
                 double apart)
{
    const double intervals = std::floor((row.to - row.from) / row.spacing + 1e-6);
    if (!(intervals < 1e9))
        return;
    const double stride = strideFor(intervals, row.width, apart);
    for (double i = 0.0; i <= intervals; i += stride)
        pixels.push_back(scale.ValueToPixel(row.from + i * row.spacing));
}

std::vector<int> sortedAndThinned(std::vector<double> pixels, double apart)
{
    std::sort(pixels.begin(), pixels.end());
    std::vector<int> kept;
    double last = -std::numeric_limits<double>::infinity();
    for (const double pixel : pixels) {
        if (pixel - last < apart - 1e-6)
            continue;
        kept.push_back(int(std::lround(pixel)));
        last = pixel;
    }
    return kept;
}

} // namespace

double SliderModel::Clamped(double v) const
{
    return std::clamp(v, scale_.minValue, std::max(scale_.minValue, scale_.maxValue));
}

double SliderModel::ClampedValue() const
{
    return Clamped(value);
}

void SliderModel::SetTrack(double pixelLow, double pixelHigh)
{
    scale_.pixelLow = pixelLow;
    scale_.pixelHigh = pixelHigh;
}

bool SliderModel::SetRange(double low, double high)
{
    if (!std::isfinite(high - low))
        return false;
    if (high < low)
        std::swap(low, high);
    value = std::clamp(value, low, high);
    scale_.centre = std::clamp(scale_.centre, low, high);
    const bool lowMoved = std::abs(low - requestedLow_) > epsilon;
    const bool highMoved = std::abs(high - requestedHigh_) > epsilon;
    if (lowMoved)
        scale_.minValue = low;
    if (highMoved)
        scale_.maxValue = high;
    requestedLow_ = low;
    requestedHigh_ = high;
    const auto cheap = [span = high - low](double from, double to) {
        return span > 10.0 * std::abs(to - from);
    };
    displayLow_ = cheap(low, std::floor(low)) ? std::floor(low) : low;
    displayHigh_ = cheap(high, std::ceil(high)) ? std::ceil(high) : high;
    FollowRange();
    return lowMoved || highMoved;
}

void SliderModel::SetTickFreq(double count)
{
    requestedTicks_ = count == 0.0 ? 0.0 : std::max(count, 2.0);
    FollowRange();
}

bool SliderModel::SetCentre(double c)
{
    if (!std::isfinite(c))
        return scale_.centred;
    scale_.centre = c;
    scale_.centred = tickCount_ != 0.0 ? c != scale_.minValue && c != scale_.maxValue
                                       : c != displayLow_ && c != displayHigh_;
    centredByRange_ = false;
    UpdateSteps();
    return scale_.centred;
}

void SliderModel::SetCentred(bool on)
{
    scale_.centred = on;
    centredByRange_ = false;
    UpdateSteps();
}

void SliderModel::SetGamma(double gamma)
{
    if (gamma > 0.0 && std::isfinite(gamma))
        scale_.gamma = gamma;
}

void SliderModel::SetInteger(bool on)
{
    integer_ = on;
    UpdateSteps();
}

void SliderModel::SetSteps(double fine, double plain)
{
    if (!(fine > 0.0) || !(plain > 0.0))
        return;
    stepBelow_[Fine] = stepAbove_[Fine] = fine;
    stepBelow_[Plain] = stepAbove_[Plain] = plain;
    UpdateSteps();
}

/// Centring that the range brought goes with it; then the steps.
void SliderModel::FollowRange()
{
    const bool wanted = requestedTicks_ == 0.0 && DisplaySpansZero();
    if (centredByRange_ && !wanted) {
        scale_.centred = centredByRange_ = false;
    } else if (wanted && !scale_.centred) {
        scale_.centred = centredByRange_ = true;
        scale_.centre = 0.0;
    }
    UpdateSteps();
}

SliderModel::Spacing SliderModel::TickSpacing() const
{
    const SliderScale& s = scale_;
    if (requestedTicks_ == 0.0) {
        const double whole = automaticSpacing(displayHigh_ - displayLow_);
        return s.centred ? Spacing{automaticSpacing(s.centre - displayLow_),
                                   automaticSpacing(displayHigh_ - s.centre)}
                         : Spacing{whole, whole};
    }
    const double parts = *requestedTicks_ - 1.0;
    const double whole = (s.maxValue - s.minValue) / parts;
    return s.centred ? Spacing{(s.centre - s.minValue) / parts, (s.maxValue - s.centre) / parts}
                     : Spacing{whole, whole};
}

void SliderModel::UpdateSteps()
{
    if (!requestedTicks_)
        return;
    spacing_ = TickSpacing();
    tickCount_ = *requestedTicks_;
    if (integer_) {
        spacing_.below = std::max(std::round(spacing_.below), 1.0);
        spacing_.above = std::max(std::round(spacing_.above), 1.0);
        const double origin = scale_.centred ? scale_.centre : displayLow_;
        tickCount_ = std::min(tickCount_, (displayHigh_ - origin) / spacing_.above + 1.0);
    }
    stepBelow_[Tick] = spacing_.below;
    stepAbove_[Tick] = spacing_.above;
    // Shift always moves further than a plain key press.
    for (auto* steps : {&stepBelow_, &stepAbove_}) {
        if (std::abs((*steps)[Tick] - (*steps)[Plain]) <= epsilon)
            (*steps)[Tick] *= 2.0;
    }
}

double SliderModel::SteppedDown(int level) const
{
    const SliderScale& s = scale_;
    const double from = ClampedValue();
    const bool above = s.centred && from > s.centre + atCentre;
    const double step = above ? StepAbove(level) : StepBelow(level);
    const double to = from - (integer_ ? std::max(step, 1.0) : step);
    return std::max(above ? std::max(to, s.centre) : to, s.minValue);
}

double SliderModel::SteppedUp(int level) const
{
    const SliderScale& s = scale_;
    const double from = ClampedValue();
    const bool below = !s.centred || from < s.centre - atCentre;
    const double step = below ? StepBelow(level) : StepAbove(level);
    const double to = from + (integer_ ? std::max(step, 1.0) : step);
    return std::min(s.centred && below ? std::min(to, s.centre) : to, s.maxValue);
}

double SliderModel::Dragged(double start, double units, RelativeDrag& state) const
{
    const double unit = std::pow(10.0, DecadeOf(requestedHigh_ - requestedLow_) - 3.0);
    if (units == 0.0)
        return start; // taken back: not even the bounds touch it
    const double wanted = start + units * unit;
    const double clamped = Clamped(wanted);
    if (clamped != wanted) {
        const double beyond = state.accumulates ? state.movement - units : 0.0;
        state.movement = (clamped - start) / unit + beyond;
    }
    return Settled(clamped);
}

double SliderModel::Settled(double v) const
{
    const double clamped = Clamped(v) + 0.0; // no negative zero
    if (!integer_)
        return clamped;
    const double low = std::ceil(scale_.minValue);
    const double high = std::floor(scale_.maxValue);
    return low <= high ? std::clamp(std::round(clamped) + 0.0, low, high) : clamped;
}

std::vector<int> SliderModel::TickPixels(double apart) const
{
    const SliderScale& s = scale_;
    const double width = s.pixelHigh - s.pixelLow;
    if (!requestedTicks_ || width <= 0.0 || s.maxValue <= s.minValue)
        return {};
    std::vector<double> pixels;
    if (s.centred) {
        appendMarks(pixels, s, {s.centre, s.maxValue, spacing_.above, 0.5 * width}, apart);
        appendMarks(pixels, s, {s.centre, s.minValue, -spacing_.below, 0.5 * width}, apart);
    } else {
        // At whole multiples when the spacing is automatic, from the low end when counted.
        const double multiple = std::ceil(s.minValue / spacing_.below - 1e-6) * spacing_.below;
        const double first = requestedTicks_ == 0.0 ? multiple : s.minValue;
        appendMarks(pixels, s, {first, s.maxValue, spacing_.below, width}, apart);
    }
    return sortedAndThinned(std::move(pixels), apart);
}

} // namespace Marlox
