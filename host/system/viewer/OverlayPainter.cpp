#include "system/viewer/OverlayPainter.h"

#include <cmath>

namespace Marlox {

OverlayPainter::~OverlayPainter() = default;

void OverlayPainter::SetColor(OverlayColor role, double brightness)
{
    const MxColor color = view_ ? view_->Color(role) : MxColor(255, 255, 255);
    state_.color = brightness == 1.0
                       ? color
                       : MxColor::FromDoubles(color.Red() * brightness, color.Green() * brightness,
                                              color.Blue() * brightness, color.Alpha());
    state_.role = role;
    state_.brightness = brightness;
}

void OverlayPainter::SetColor(const MxColor& color)
{
    state_.color = color;
    state_.role.reset();
    state_.brightness = 1.0;
}

void OverlayPainter::Line(OverlayPoint from, OverlayPoint to)
{
    const OverlayPoint ends[] = {from, to};
    Draw(Shape::Lines, ends);
}

void OverlayPainter::Draw(Shape shape, std::span<const OverlayPoint> points)
{
    if (points.size() >= 2)
        Emit(shape, points);
}

void OverlayPainter::Marks(Shape shape, std::span<const OverlayPoint> points,
                           std::span<const OverlayPoint> places, double scale)
{
    if (points.size() >= 2 && !places.empty())
        EmitMarks(shape, points, places, scale);
}

void OverlayPainter::EmitMarks(Shape shape, std::span<const OverlayPoint> points,
                               std::span<const OverlayPoint> places, double scale)
{
    for (const OverlayPoint& place : places) {
        const Mark mark(*this, place, scale);
        Emit(shape, points);
    }
}

OverlayPainter::Mark::Mark(OverlayPainter& painter, OverlayPoint at, double scale) : saved_(painter)
{
    painter.state_.framed = true;
    painter.state_.origin = at;
    painter.state_.scale = scale;
}

// The recording form ------------------------------------------------------------------------------

namespace {

/// At most three decimals, no trailing zeros, no minus zero.
std::string NumberText(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::abs(value) > 1e9)
        return value > 0.0 ? "huge" : "-huge";
    const double rounded = std::round(value * 1000.0) / 1000.0;
    std::string text = std::to_string(rounded == 0.0 ? 0.0 : rounded);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

std::string PointText(const OverlayPoint& point)
{
    return '(' + NumberText(point.x) + ", " + NumberText(point.y) + ')';
}

} // namespace

std::string OverlayRecorder::ColorName() const
{
    static constexpr const char* roles[] = {"normal", "highlight", "origin",
                                            "ghost",  "path",      "pathkey"};
    const State& state = Current();
    if (!state.role) {
        const MxColor& color = state.color;
        return "rgba(" + std::to_string(color.red) + ' ' + std::to_string(color.green) + ' ' +
               std::to_string(color.blue) + ' ' + std::to_string(color.alpha) + ')';
    }
    const std::string name = roles[std::size_t(*state.role)];
    return state.brightness == 1.0 ? name : name + '*' + NumberText(state.brightness);
}

void OverlayRecorder::Emit(Shape shape, std::span<const OverlayPoint> points)
{
    static constexpr const char* shapes[] = {"lines", "strip", "loop", "fill"};
    const State& state = Current();
    text_ += ColorName() + (state.dashed ? " dashed " : " ") + shapes[std::size_t(shape)];
    if (state.framed)
        text_ += " at " + PointText(state.origin) + " x " + NumberText(state.scale);
    text_ += ':';
    for (const OverlayPoint& point : points)
        text_ += ' ' + PointText(point);
    text_ += '\n';
}

} // namespace Marlox
