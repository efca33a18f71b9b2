#include "system/color/ColorCurves.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr std::array<double, 16> usual{0.0, 1.0, 0.25, 1.0, 0.25, 0.0, 0.5, 0.0,
                                       0.5, 0.0, 0.75, 0.0, 0.75, 1.0, 1.0, 1.0};

constexpr int curveNodes = 4;
constexpr int start = 0;
constexpr int startHandle = 1;
constexpr int endHandle = 2;
constexpr int end = 3;

constexpr double displayGamma = 2.2;
constexpr double nearEnough = 1e-12; // of a parameter from 0 to 1
constexpr int mostSteps = 60;        // halving alone is as exact by then

/// One coordinate of a cubic Bezier segment, as a polynomial of its parameter from 0 to 1.
class Cubic {
public:
    Cubic(double a, double b, double c, double d)
        : constant_(a), linear_(3.0 * (b - a)), square_(3.0 * (c - b) - linear_),
          cube_(d - a - linear_ - square_)
    {
    }
    double At(double t) const { return ((cube_ * t + square_) * t + linear_) * t + constant_; }
    double SlopeAt(double t) const { return (3.0 * cube_ * t + 2.0 * square_) * t + linear_; }

    /// Where a coordinate that never falls has this value, which must lie between its ends:
    /// Newton's steps, and halves of what is left where those lead out of it.
    double ParameterOf(double value, double guess) const
    {
        double low = 0.0;
        double high = 1.0;
        double t = guess;
        for (int i = 0; i < mostSteps; ++i) {
            const double excess = At(t) - value;
            if (excess == 0.0)
                return t;
            (excess < 0.0 ? low : high) = t;
            double next = t - excess / SlopeAt(t);
            if (!(next > low && next < high))
                next = 0.5 * (low + high);
            if (std::abs(next - t) < nearEnough)
                return next;
            t = next;
        }
        return t;
    }

private:
    double constant_;
    double linear_;
    double square_;
    double cube_;
};

} // namespace

ColorCurves::ColorCurves() : coordinates_(usual) {}

ColorCurves::ColorCurves(std::span<const double> coordinates) : coordinates_(usual)
{
    const std::size_t given = std::min(coordinates.size(), coordinates_.size());
    for (std::size_t i = 0; i < given; ++i) {
        if (!std::isnan(coordinates[i]))
            coordinates_[i] = std::clamp(coordinates[i], 0.0, 1.0);
    }
    for (int curve = 0; curve < 2; ++curve) {
        CalculateStart(curve);
        CalculateEnd(curve);
        CalculateStartHandle(curve);
        CalculateEndHandle(curve);
    }
}

ColorCurves::Node ColorCurves::Stored(int index) const
{
    const auto at = std::size_t(index) * 2;
    return {coordinates_[at], coordinates_[at + 1]};
}

void ColorCurves::Store(int index, Node node)
{
    const auto at = std::size_t(index) * 2;
    coordinates_[at] = std::clamp(node.x, 0.0, 1.0);
    coordinates_[at + 1] = std::clamp(node.y, 0.0, 1.0);
}

ColorCurves::Node ColorCurves::NodeAt(int index) const
{
    return index >= 0 && index < nodeCount ? Stored(index) : Node();
}

void ColorCurves::SetNodePosition(int index, Node to, bool takeHandle)
{
    if (index < 0 || index >= nodeCount || !std::isfinite(to.x) || !std::isfinite(to.y))
        return;
    const int curve = index / curveNodes;
    const int node = index % curveNodes;
    const Node before = Stored(index);
    Store(index, to);
    switch (node) {
    case start:
        CalculateStart(curve);
        break;
    case end:
        CalculateEnd(curve);
        break;
    default:
        break;
    }
    if (takeHandle && (node == start || node == end)) {
        const int handle = node == start ? index + 1 : index - 1;
        Node moved = Stored(handle);
        moved.x += Stored(index).x - before.x;
        Store(handle, moved);
    }
    CalculateStartHandle(curve);
    CalculateEndHandle(curve);
}

void ColorCurves::CalculateStart(int curve)
{
    const int first = curve * curveNodes;
    Store(first, {std::min(Stored(first).x, Stored(first + end).x), curve == 0 ? 1.0 : 0.0});
}

void ColorCurves::CalculateEnd(int curve)
{
    const int first = curve * curveNodes;
    Store(first + end, {std::max(Stored(first).x, Stored(first + end).x), curve == 0 ? 0.0 : 1.0});
}

void ColorCurves::CalculateStartHandle(int curve)
{
    const int first = curve * curveNodes;
    const Node handle = Stored(first + startHandle);
    Store(first + startHandle,
          {std::clamp(handle.x, Stored(first).x, Stored(first + end).x), handle.y});
}

void ColorCurves::CalculateEndHandle(int curve)
{
    const int first = curve * curveNodes;
    const Node handle = Stored(first + endHandle);
    Store(first + endHandle,
          {std::clamp(handle.x, Stored(first).x, Stored(first + end).x), handle.y});
}

double ColorCurves::Weight(int curve, double brightness) const
{
    const int first = curve * curveNodes;
    const Node a = Stored(first);
    const Node b = Stored(first + startHandle);
    const Node c = Stored(first + endHandle);
    const Node d = Stored(first + end);
    // A curve of no width is a step; what is no number stays dark.
    if (!(brightness > a.x))
        return a.y;
    if (brightness >= d.x)
        return d.y;
    const double t =
        Cubic(a.x, b.x, c.x, d.x).ParameterOf(brightness, (brightness - a.x) / (d.x - a.x));
    return std::clamp(Cubic(a.y, b.y, c.y, d.y).At(t), 0.0, 1.0);
}

double ColorCurves::BrightnessOf(double luminance)
{
    return luminance > 0.0 ? std::pow(luminance, 1.0 / displayGamma) : 0.0;
}

double ColorCurves::LuminanceOf(double brightness)
{
    return brightness > 0.0 ? std::pow(brightness, displayGamma) : 0.0;
}

double ColorCurves::Low(double brightness) const
{
    return Weight(0, brightness);
}

double ColorCurves::High(double brightness) const
{
    return Weight(1, brightness);
}

double ColorCurves::Mid(double brightness) const
{
    return At(brightness).mid;
}

ColorCurves::Shares ColorCurves::At(double brightness) const
{
    const double low = Low(brightness);
    const double high = High(brightness);
    return {low, std::max(0.0, 1.0 - low - high), high};
}

MxID ColorCurves::GetDataType() const
{
    static const MxID id(CLSID_DataType_ColorCurves);
    return id;
}

Ref<Parameter> ColorCurves::Copy() const
{
    return MakeRef<ColorCurves>(coordinates_);
}

bool ColorCurves::IsEqual(const Parameter& other) const
{
    const auto* curves = dynamic_cast<const ColorCurves*>(&other);
    return curves && curves->coordinates_ == coordinates_;
}

ScriptVal ColorCurves::ToScriptVal() const
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const double coordinate : coordinates_)
        list.Append(coordinate);
    return list;
}

Ref<Parameter> ColorCurves::WithComponents(std::span<const double> components) const
{
    return MakeRef<ColorCurves>(components);
}

} // namespace Marlox
