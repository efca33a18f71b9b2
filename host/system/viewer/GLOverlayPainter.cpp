#include "system/viewer/LineBands.h"
#include "system/viewer/MarkStamps.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <GL/gl.h>

namespace Marlox {

namespace {

constexpr MxColor casingColor{0, 0, 0, 176};
constexpr double dashPeriod = 8.0; // of the pattern, in units
constexpr double room = 16.0;      // around the view that is drawn to, in units
constexpr double markRoom = 64.0;  // the same for the origins of marks
constexpr double farthest = 1e7;   // view pixels; what is further away comes as near

/// So that the difference of two positions still tells pixels.
OverlayPoint Nearer(OverlayPoint point)
{
    return {std::clamp(point.x, -farthest, farthest), std::clamp(point.y, -farthest, farthest)};
}

MxPoint PixelOf(OverlayPoint at)
{
    return {int(std::floor(at.x)), int(std::floor(at.y))};
}

bool IsOblique(OverlayPainter::Shape shape, std::span<const OverlayPoint> points)
{
    const std::size_t step = shape == OverlayPainter::Shape::Lines ? 2 : 1;
    for (std::size_t i = 1; i < points.size(); i += step) {
        if (points[i].x != points[i - 1].x && points[i].y != points[i - 1].y)
            return true;
    }
    return false;
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
    : unit_(std::max(1.0, std::round(unit))), width_(view.viewWidth), height_(view.viewHeight),
      stamps_(std::make_unique<MarkStamps>(unit_, casingColor)),
      bands_(std::make_unique<LineBands>(unit_, casingColor, width_, height_))
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
    return {OnPixel(state.origin.x) + point.x * state.scale,
            OnPixel(state.origin.y) + point.y * state.scale};
}

/// The middle of the pixel, or its edge where lines are an even number of pixels wide.
double GLOverlayPainter::OnPixel(double at) const
{
    return std::floor(at) + (int(unit_) % 2 == 1 ? 0.5 : 0.0);
}

void GLOverlayPainter::Emit(Shape shape, std::span<const OverlayPoint> points)
{
    if (AddStamp(shape, points))
        return;
    if (shape == Shape::Lines) {
        for (std::size_t i = 0; i + 1 < points.size(); i += 2)
            AddLine(Placed(points[i]), Placed(points[i + 1]));
        return;
    }
    if (shape == Shape::Fill)
        return AddFill(points);
    const State& state = Current();
    if (!state.framed)
        return bands_->Add(points, shape == Shape::Loop, {state.color, state.casing, state.dashed});
    for (std::size_t i = 1; i < points.size(); ++i)
        AddLine(Placed(points[i - 1]), Placed(points[i]));
    if (shape == Shape::Loop)
        AddLine(Placed(points.back()), Placed(points.front()));
}

/// A small shape of a mark. False: it is to be drawn as others are, which for a few lines along the
/// axes costs less.
bool GLOverlayPainter::AddStamp(Shape shape, std::span<const OverlayPoint> points)
{
    const State& state = Current();
    if (!state.framed || state.dashed || (shape <= Shape::Strip && !IsOblique(shape, points)))
        return false;
    return IsMarkInView(state.origin) &&
           stamps_->Add({shape, points, state.scale, state.color}, PixelOf(state.origin));
}

bool GLOverlayPainter::IsMarkInView(OverlayPoint at) const
{
    const double margin = markRoom * unit_;
    return at.x > -margin && at.x < width_ + margin && at.y > -margin && at.y < height_ + margin;
}

void GLOverlayPainter::EmitMarks(Shape shape, std::span<const OverlayPoint> points,
                                 std::span<const OverlayPoint> places, double scale)
{
    origins_.clear();
    for (const OverlayPoint& place : places) {
        if (IsMarkInView(place))
            origins_.push_back(PixelOf(place));
    }
    const State& state = Current();
    if (state.dashed || !stamps_->Add({shape, points, scale, state.color}, origins_))
        OverlayPainter::EmitMarks(shape, points, places, scale);
}

/// A fan of triangles. Nothing if a corner is far outside the view, or no number.
void GLOverlayPainter::AddFill(std::span<const OverlayPoint> points)
{
    const auto isFar = [this](const OverlayPoint& point) {
        const OverlayPoint at = Placed(point);
        return !(std::abs(at.x) < farthest && std::abs(at.y) < farthest);
    };
    if (std::any_of(points.begin(), points.end(), isFar))
        return;
    const OverlayPoint first = Placed(points.front());
    for (std::size_t i = 0; i < points.size(); ++i) {
        const OverlayPoint at = Placed(points[i]);
        const OverlayPoint next = Placed(points[(i + 1) % points.size()]);
        AddLine(at, next); // the outline, half of which lies outside, as around the small ones
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
    if (from.x == to.x) // on the same pixel as a mark there
        from.x = to.x = OnPixel(from.x);
    if (from.y == to.y)
        from.y = to.y = OnPixel(from.y);
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
void GLOverlayPainter::AddCasing(OverlayPoint from, OverlayPoint to, Vertices& casing)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = std::hypot(dx, dy);
    const double longer = Current().dashed || !(length > 0.0) ? 0.0 : unit_ / length;
    MxColor color = casingColor;
    const double darkness = Current().casing * Current().color.Alpha();
    if (darkness != 1.0) { // what shows through is not to be darkened either
        color.alpha = u8(color.alpha * darkness);
        hasThinCasings_ = true;
    }
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
    glPushAttrib(GL_ENABLE_BIT | GL_LINE_BIT | GL_CURRENT_BIT | GL_COLOR_BUFFER_BIT |
                 GL_TEXTURE_BIT);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT | GL_CLIENT_PIXEL_STORE_BIT);
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
    drawLines(3.0 * unit_, crispCasing_, smoothCasing_, dashedCasing_,
              std::exchange(hasThinCasings_, false));
    bands_->DrawCasings();
    stamps_->Draw();
    DrawVertices(GL_TRIANGLES, fills_, true);
    drawLines(unit_, crisp_, smooth_, dashed_, true);
    bands_->DrawLines();
    bands_->Clear();
    glPopClientAttrib();
    glPopAttrib();
    for (Vertices* each :
         {&crisp_, &crispCasing_, &smooth_, &smoothCasing_, &dashed_, &dashedCasing_, &fills_})
        each->clear();
}

} // namespace Marlox
