#include "system/viewer/OverlayPainter.h"

#include <algorithm>
#include <cmath>

#include <GL/gl.h>

namespace Marlox {

namespace {

constexpr MxColor casingColor{0, 0, 0, 176};
constexpr double dashPeriod = 8.0; // of the pattern, in units
constexpr double room = 16.0;      // around the view that is drawn to, in units
constexpr double farthest = 1e7;   // view pixels; what is further away comes as near

/// So that the difference of two positions still tells pixels.
OverlayPoint Nearer(OverlayPoint point)
{
    return {std::clamp(point.x, -farthest, farthest), std::clamp(point.y, -farthest, farthest)};
}

/// The part of a segment from 0 to 1 within [low, high] of one axis.
bool ClipAxis(double from, double to, double low, double high, double& begin, double& end)
{
    const double along = to - from;
    if (along == 0.0)
        return from >= low && from <= high;
    double enter = (low - from) / along;
    double leave = (high - from) / along;
    if (enter > leave)
        std::swap(enter, leave);
    begin = std::max(begin, enter);
    end = std::min(end, leave);
    return begin <= end;
}

} // namespace

GLOverlayPainter::GLOverlayPainter(const PreviewInfo& view, double unit)
    : unit_(std::max(1.0, std::round(unit))), width_(view.viewWidth), height_(view.viewHeight)
{
    SetView(view);
}

GLOverlayPainter::~GLOverlayPainter()
{
    Flush();
}

/// In view pixels; marks begin on a whole pixel, so that they look the same wherever they are.
OverlayPoint GLOverlayPainter::Placed(OverlayPoint point) const
{
    const State& state = Current();
    if (!state.framed)
        return point;
    const double half = int(unit_) % 2 == 1 ? 0.5 : 0.0;
    return {std::floor(state.origin.x) + half + point.x * state.scale,
            std::floor(state.origin.y) + half + point.y * state.scale};
}

void GLOverlayPainter::Emit(Shape shape, std::span<const OverlayPoint> points)
{
    if (shape == Shape::Lines) {
        for (std::size_t i = 0; i + 1 < points.size(); i += 2)
            AddLine(Placed(points[i]), Placed(points[i + 1]));
        return;
    }
    if (shape == Shape::Fill)
        return AddFill(points);
    for (std::size_t i = 1; i < points.size(); ++i)
        AddLine(Placed(points[i - 1]), Placed(points[i]));
    if (shape == Shape::Loop)
        AddLine(Placed(points.back()), Placed(points.front()));
}

/// A fan of triangles. Nothing if a corner is far outside the view, or no number.
void GLOverlayPainter::AddFill(std::span<const OverlayPoint> points)
{
    const std::size_t before = fills_.size();
    const OverlayPoint first = Placed(points.front());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const OverlayPoint at = Placed(points[i]);
        if (!(std::abs(at.x) < farthest && std::abs(at.y) < farthest))
            return fills_.resize(before, {});
        const OverlayPoint next = Placed(points[(i + 1) % points.size()]);
        AddCasing(at, next, crispCasing_);
        if (i == 0 || i + 1 == points.size())
            continue;
        for (const OverlayPoint& corner : {first, at, next})
            fills_.push_back({float(corner.x), float(corner.y), Current().color});
    }
}

void GLOverlayPainter::AddLine(OverlayPoint from, OverlayPoint to)
{
    from = Nearer(from);
    to = Nearer(to);
    const double margin = room * unit_;
    double begin = 0.0;
    double end = 1.0;
    // Written so that what is no number is left out.
    if (!ClipAxis(from.x, to.x, -margin, width_ + margin, begin, end) ||
        !ClipAxis(from.y, to.y, -margin, height_ + margin, begin, end) || !(begin <= end))
        return;
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const State& state = Current();
    if (state.dashed && begin > 0.0) {
        // The dashes stay where they are along the line while the view moves over it.
        const double period = dashPeriod * unit_ / std::max(std::abs(dx), std::abs(dy));
        begin = std::max(0.0, std::floor(begin / period) * period);
    }
    const OverlayPoint a{from.x + dx * begin, from.y + dy * begin};
    const OverlayPoint b{from.x + dx * end, from.y + dy * end};
    if (!std::isfinite(a.x + a.y + b.x + b.y))
        return;
    const bool oblique = dx != 0.0 && dy != 0.0;
    Vertices& lines = state.dashed ? dashed_ : oblique ? smooth_ : crisp_;
    Vertices& casing = state.dashed ? dashedCasing_ : oblique ? smoothCasing_ : crispCasing_;
    lines.push_back({float(a.x), float(a.y), state.color});
    lines.push_back({float(b.x), float(b.y), state.color});
    AddCasing(a, b, casing);
}

/// A casing is longer by a line's width at both ends. Dashed ones have the dashes of their lines.
void GLOverlayPainter::AddCasing(OverlayPoint from, OverlayPoint to, Vertices& casing) const
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = std::hypot(dx, dy);
    const double longer = Current().dashed || !(length > 0.0) ? 0.0 : unit_ / length;
    const MxColor color = casingColor;
    casing.push_back({float(from.x - dx * longer), float(from.y - dy * longer), color});
    casing.push_back({float(to.x + dx * longer), float(to.y + dy * longer), color});
}

void GLOverlayPainter::DrawVertices(unsigned mode, const Vertices& vertices, bool colored) const
{
    if (vertices.empty())
        return;
    glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &vertices[0].x);
    if (colored) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex), &vertices[0].color);
    } else {
        glDisableClientState(GL_COLOR_ARRAY);
        glColor4ub(casingColor.red, casingColor.green, casingColor.blue, casingColor.alpha);
    }
    glDrawArrays(mode, 0, int(vertices.size()));
}

void GLOverlayPainter::Flush()
{
    glPushAttrib(GL_ENABLE_BIT | GL_LINE_BIT | GL_CURRENT_BIT | GL_COLOR_BUFFER_BIT);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineStipple(int(unit_), 0xF0F0);
    const auto drawLines = [this](double width, const Vertices& crisp, const Vertices& smooth,
                                  const Vertices& dashed, bool colored) {
        glLineWidth(float(width));
        DrawVertices(GL_LINES, crisp, colored);
        if (!smooth.empty()) {
            glEnable(GL_LINE_SMOOTH);
            DrawVertices(GL_LINES, smooth, colored);
            glDisable(GL_LINE_SMOOTH);
        }
        if (!dashed.empty()) {
            glEnable(GL_LINE_STIPPLE);
            DrawVertices(GL_LINES, dashed, colored);
            glDisable(GL_LINE_STIPPLE);
        }
    };
    drawLines(3.0 * unit_, crispCasing_, smoothCasing_, dashedCasing_, false);
    DrawVertices(GL_TRIANGLES, fills_, true);
    drawLines(unit_, crisp_, smooth_, dashed_, true);
    glPopClientAttrib();
    glPopAttrib();
    for (Vertices* each :
         {&crisp_, &crispCasing_, &smooth_, &smoothCasing_, &dashed_, &dashedCasing_, &fills_})
        each->clear();
}

} // namespace Marlox
