#include "workbench/tools/ColorCorrection.h"

#include "system/color/Luminance.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace Marlox {

namespace {

using Rgb = std::array<double, 3>;

constexpr int blockSize = 256;     // pixels at a time: their planes stay in the nearest cache
constexpr int weightSteps = 1024;  // of the square root of the luminance, 0 to 1
constexpr float smallest = 1e-37f; // keeps a division by no difference harmless

double luminanceOf(const Rgb& rgb)
{
    return Luminance::Of(rgb[0], rgb[1], rgb[2]);
}

/// A colour turned about the grey axis, red towards green, and moved along it to where it has the
/// luminance that it had.
Rgb turned(const Rgb& rgb, double turns)
{
    const double angle = 2.0 * std::numbers::pi * std::remainder(turns, 1.0);
    if (angle == 0.0)
        return rgb;
    const double third = 2.0 * std::numbers::pi / 3.0;
    // The rotation's rows are one row moved on: cosines of the angle, and of a third of a turn to
    // either side, around the mean.
    const auto part = [angle](double away) { return (1.0 + 2.0 * std::cos(angle + away)) / 3.0; };
    const Rgb row{part(0.0), part(third), part(-third)};
    Rgb result{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k)
            result[i] += row[(k + 3 - i) % 3] * rgb[k];
    }
    const double lacking = luminanceOf(rgb) - luminanceOf(result);
    for (double& component : result)
        component += lacking;
    return result;
}

/// The colour without luminance whose blue and red are these.
Rgb chroma(double blue, double red)
{
    return {red, -(Luminance::blue * blue + Luminance::red * red) / Luminance::green, blue};
}

double finite(double value, double otherwise)
{
    return std::isfinite(value) ? value : otherwise;
}

} // namespace

bool RangeCorrection::Suppresses() const
{
    return std::any_of(kept.begin(), kept.end(), [](double amount) { return amount < 1.0; });
}

bool RangeCorrection::IsIdentity() const
{
    return std::remainder(hue, 1.0) == 0.0 && saturation == 1.0 && tintLength == 0.0 &&
           !Suppresses();
}

bool Correction::IsIdentity() const
{
    return mix == 0.0 ||
           std::all_of(ranges.begin(), ranges.end(),
                       [](const RangeCorrection& range) { return range.IsIdentity(); });
}

/// Planes of one block: luminance, chroma as it came and as it is, and so on; one value a pixel.
struct Corrector::Planes {
    using Plane = std::array<float, blockSize>;
    alignas(64) Plane luminance;
    alignas(64) Plane blue; // less luminance, here and below
    alignas(64) Plane red;
    alignas(64) Plane madeBlue; // by the master
    alignas(64) Plane madeRed;
    alignas(64) Plane nowBlue; // by all
    alignas(64) Plane nowRed;
    /// A colour is the sum of grey, one of red, green and blue, and one of yellow, cyan and
    /// magenta: the shares of these six in what is not grey. Of neighbours on the hexcone they are
    /// what a linear interpolation between them takes of each.
    alignas(64) std::array<Plane, 6> hues;
    alignas(64) Plane kept;  // of the chroma
    alignas(64) Plane place; // in the table of weights
    alignas(64) std::array<Plane, 3> weights;
};

Corrector::Corrector(const Correction& correction) : mix_(float(correction.mix))
{
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        steps_[i] = StepOf(correction.ranges[i]);
        suppresses_ = suppresses_ || steps_[i].suppresses;
        hasRanges_ = hasRanges_ || (i > 0 && !steps_[i].isIdentity);
    }
    if (!hasRanges_)
        return;
    for (int i = 0; i <= weightSteps + 1; ++i) {
        const double root = std::min(double(i) / weightSteps, 1.0);
        const ColorCurves::Shares shares =
            correction.curves->At(ColorCurves::BrightnessOf(root * root));
        weights_.push_back({float(shares.low), float(shares.mid), float(shares.high), 0.0f});
    }
}

Corrector::Step Corrector::StepOf(const RangeCorrection& range)
{
    Step step;
    step.isIdentity = range.IsIdentity();
    step.suppresses = range.Suppresses();
    const double saturation = finite(range.saturation, 1.0);
    const Rgb ofBlue = turned(chroma(saturation, 0.0), -finite(range.hue, 0.0));
    const Rgb ofRed = turned(chroma(0.0, saturation), -finite(range.hue, 0.0));
    step.turn = {float(ofBlue[2]), float(ofRed[2]), float(ofBlue[0]), float(ofRed[0])};
    const Rgb tint = turned(chroma(-Luminance::red, 1.0 - Luminance::red), // of pure red
                            finite(range.tintAngle, 0.0));
    const double length = finite(range.tintLength, 0.0);
    step.tint = {float(tint[2] * length), float(tint[0] * length)};
    for (std::size_t i = 0; i < step.lost.size(); ++i)
        step.lost[i] = float(1.0 - range.kept[i]);
    return step;
}

void Corrector::Apply(const float* from, float* to, int count) const
{
    Planes planes; // not cleared
    while (count > 0) {
        const int part = std::min(count, blockSize);
        Split(from, part, planes);
        if (suppresses_)
            FindHues(from, part, planes);
        CorrectAll(part, planes);
        if (hasRanges_) {
            Weigh(from, part, planes);
            for (std::size_t range = 1; range < steps_.size(); ++range)
                CorrectRange(range, part, planes);
        }
        Join(from, to, part, planes);
        from += std::ptrdiff_t(part) * 4;
        to += std::ptrdiff_t(part) * 4;
        count -= part;
    }
}

void Corrector::Split(const float* from, int count, Planes& planes)
{
    for (int i = 0; i < count; ++i) {
        const float red = from[4 * i];
        const float blue = from[4 * i + 2];
        const float luminance = Luminance::Of(red, from[4 * i + 1], blue);
        planes.luminance[i] = luminance;
        planes.blue[i] = blue - luminance;
        planes.red[i] = red - luminance;
    }
}

void Corrector::FindHues(const float* from, int count, Planes& planes)
{
    for (int i = 0; i < count; ++i) {
        const float red = from[4 * i];
        const float green = from[4 * i + 1];
        const float blue = from[4 * i + 2];
        const float most = std::max(red, std::max(green, blue));
        const float least = std::min(red, std::min(green, blue));
        const float share = 1.0f / (most - least + smallest);
        planes.hues[0][i] = std::max(red - std::max(green, blue), 0.0f) * share;
        planes.hues[1][i] = std::max(std::min(red, green) - blue, 0.0f) * share;
        planes.hues[2][i] = std::max(green - std::max(red, blue), 0.0f) * share;
        planes.hues[3][i] = std::max(std::min(green, blue) - red, 0.0f) * share;
        planes.hues[4][i] = std::max(blue - std::max(red, green), 0.0f) * share;
        planes.hues[5][i] = std::max(std::min(red, blue) - green, 0.0f) * share;
    }
}

/// What the suppression of a range leaves of each pixel's chroma.
void Corrector::Keep(const Step& step, int count, Planes& planes)
{
    if (!step.suppresses) {
        std::fill_n(planes.kept.begin(), count, 1.0f);
        return;
    }
    const std::array<float, 6> lost = step.lost;
    for (int i = 0; i < count; ++i)
        planes.kept[i] = 1.0f - (lost[0] * planes.hues[0][i] + lost[1] * planes.hues[1][i] +
                                 lost[2] * planes.hues[2][i] + lost[3] * planes.hues[3][i] +
                                 lost[4] * planes.hues[4][i] + lost[5] * planes.hues[5][i]);
}

void Corrector::CorrectAll(int count, Planes& planes) const
{
    const Step step = steps_[0];
    Keep(step, count, planes);
    for (int i = 0; i < count; ++i) {
        const float blue = planes.blue[i];
        const float red = planes.red[i];
        const float luminance = planes.luminance[i];
        planes.nowBlue[i] = planes.madeBlue[i] =
            (step.turn[0] * blue + step.turn[1] * red) * planes.kept[i] + step.tint[0] * luminance;
        planes.nowRed[i] = planes.madeRed[i] =
            (step.turn[2] * blue + step.turn[3] * red) * planes.kept[i] + step.tint[1] * luminance;
    }
}

void Corrector::CorrectRange(std::size_t range, int count, Planes& planes) const
{
    const Step step = steps_[range];
    if (step.isIdentity)
        return;
    Keep(step, count, planes);
    const Planes::Plane& weights = planes.weights[range - 1];
    for (int i = 0; i < count; ++i) {
        const float blue = planes.madeBlue[i];
        const float red = planes.madeRed[i];
        const float luminance = planes.luminance[i];
        planes.nowBlue[i] +=
            weights[i] * ((step.turn[0] * blue + step.turn[1] * red) * planes.kept[i] +
                          step.tint[0] * luminance - blue);
        planes.nowRed[i] +=
            weights[i] * ((step.turn[2] * blue + step.turn[3] * red) * planes.kept[i] +
                          step.tint[1] * luminance - red);
    }
}

void Corrector::Weigh(const float* from, int count, Planes& planes) const
{
    for (int i = 0; i < count; ++i) {
        const float alpha = from[4 * i + 3];
        const bool divides = alpha > 0.0f && alpha <= std::numeric_limits<float>::max();
        const float luminance = planes.luminance[i] / (divides ? alpha : 1.0f);
        // Written so that what is no number is black.
        const float root = std::sqrt(luminance > 0.0f ? luminance : 0.0f);
        planes.place[i] = (root < 1.0f ? root : 1.0f) * float(weightSteps);
    }
    for (int i = 0; i < count; ++i) {
        const int index = int(planes.place[i]);
        const float share = planes.place[i] - float(index);
        const std::array<float, 4>& low = weights_[std::size_t(index)];
        const std::array<float, 4>& high = weights_[std::size_t(index) + 1];
        for (std::size_t range = 0; range < 3; ++range)
            planes.weights[range][i] = low[range] + (high[range] - low[range]) * share;
    }
}

void Corrector::Join(const float* from, float* to, int count, const Planes& planes) const
{
    constexpr float perBlue = float(Luminance::blue / Luminance::green);
    constexpr float perRed = float(Luminance::red / Luminance::green);
    const float mix = mix_;
    for (int i = 0; i < count; ++i) {
        const float red = from[4 * i];
        const float green = from[4 * i + 1];
        const float blue = from[4 * i + 2];
        const float moreBlue = mix * (planes.nowBlue[i] - planes.blue[i]);
        const float moreRed = mix * (planes.nowRed[i] - planes.red[i]);
        const float lessGreen = perBlue * moreBlue + perRed * moreRed;
        const float sum = (red + moreRed) + (green - lessGreen) + (blue + moreBlue);
        const bool isFinite = sum - sum == 0.0f;
        to[4 * i] = red + (isFinite ? moreRed : 0.0f);
        to[4 * i + 1] = green - (isFinite ? lessGreen : 0.0f);
        to[4 * i + 2] = blue + (isFinite ? moreBlue : 0.0f);
        to[4 * i + 3] = from[4 * i + 3];
    }
}

} // namespace Marlox
