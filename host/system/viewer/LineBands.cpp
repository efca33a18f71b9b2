#include "system/viewer/LineBands.h"

#include <algorithm>
#include <cmath>

#include <GL/gl.h>

namespace Marlox {

namespace {

constexpr double casingWidth = 3.0; // lines
constexpr double dashPeriod = 8.0;  // units, half of which is the dash
constexpr double sharpest = -0.85;  // cosine of the turn from which on corners are not mitred
constexpr double farthest = 1e7;    // view pixels
constexpr double nearness = 2048.0; // around the view; OpenGL cuts off what is nearer
constexpr int profileAcross = 128;  // samples of the picture that a band is drawn with
constexpr int profileAlong = 64;

double Dot(OverlayPoint a, OverlayPoint b)
{
    return a.x * b.x + a.y * b.y;
}

/// How much of a pixel in this distance a line of this width covers. What is within `step` of all
/// or nothing is that: where pixels lie between samples so far apart, either will do.
double CoverageAt(double distance, double width, double step)
{
    return std::clamp((width / 2.0 + 0.5 - distance - step) / (1.0 - 2.0 * step), 0.0, 1.0);
}

/// The part of a segment from 0 to 1 within [low, high] of one axis; false: nothing.
bool CutAxis(double from, double to, double low, double high, double& begin, double& end)
{
    if (from == to)
        return from >= low && from <= high;
    const double enter = (low - from) / (to - from);
    const double leave = (high - from) / (to - from);
    begin = std::max(begin, std::min(enter, leave));
    end = std::min(end, std::max(enter, leave));
    return begin < end;
}

} // namespace

/// What the vertices of one line share.
struct LineBands::Run {
    std::vector<Vertex>& vertices;
    MxColor color;
    MxColor casing;
    bool isNew = true; // it begins with the next pair
};

LineBands::LineBands(double unit, const MxColor& casing, double width, double height)
    : unit_(unit), casing_(casing), width_(width), height_(height)
{
}

/// The middle of the pixel, or its edge where lines are an even number of pixels wide.
double LineBands::OnPixel(double at) const
{
    return std::floor(at) + (int(unit_) % 2 == 1 ? 0.5 : 0.0);
}

bool LineBands::IsNear(OverlayPoint at) const
{
    return at.x > -nearness && at.x < width_ + nearness && at.y > -nearness &&
           at.y < height_ + nearness;
}

void LineBands::Add(std::span<const OverlayPoint> points, bool closed, const Style& style)
{
    points_.clear();
    bool isNear = true;
    for (const OverlayPoint& point : points) {
        const OverlayPoint at{std::clamp(point.x, -farthest, farthest),
                              std::clamp(point.y, -farthest, farthest)};
        isNear = isNear && IsNear(at);
        if (points_.empty() || at.x != points_.back().x || at.y != points_.back().y)
            points_.push_back(at);
    }
    const auto meet = [](const OverlayPoint& a, const OverlayPoint& b) {
        return a.x == b.x && a.y == b.y;
    };
    if (points_.size() > 2 && meet(points_.front(), points_.back())) {
        points_.pop_back();
        closed = true;
    }
    if (points_.size() < 2)
        return;
    const std::size_t segments = points_.size() - (closed && points_.size() > 2 ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) { // along an axis: on whole pixels
        OverlayPoint& from = points_[i];
        OverlayPoint& to = points_[(i + 1) % points_.size()];
        if (from.x == to.x)
            from.x = to.x = OnPixel(from.x);
        if (from.y == to.y)
            from.y = to.y = OnPixel(from.y);
    }
    const auto same = std::unique(points_.begin(), points_.end(), meet); // on one pixel now
    points_.erase(same, points_.end());
    while (closed && points_.size() > 1 && meet(points_.front(), points_.back()))
        points_.pop_back();
    if (points_.size() < 2)
        return;
    closed = closed && points_.size() > 2;
    if (isNear)
        return AddNear(points_, closed, 0.0, style);
    if (closed)
        points_.push_back(points_.front());
    AddCut(points_, style);
}

/// The parts of a line in the view and not far around it. Dashes stay where they are along the line
/// while the view moves over it.
void LineBands::AddCut(std::span<const OverlayPoint> points, const Style& style)
{
    double along = 0.0;
    double start = 0.0; // of the part
    part_.clear();
    const auto end = [&] {
        if (part_.size() > 1)
            AddNear(part_, false, std::fmod(start, dashPeriod * unit_), style);
        part_.clear();
    };
    for (std::size_t i = 1; i < points.size(); ++i) {
        const OverlayPoint from = points[i - 1];
        const OverlayPoint by{points[i].x - from.x, points[i].y - from.y};
        const double length = std::hypot(by.x, by.y);
        double enter = 0.0;
        double leave = 1.0;
        const bool isIn =
            CutAxis(from.x, points[i].x, -nearness, width_ + nearness, enter, leave) &&
            CutAxis(from.y, points[i].y, -nearness, height_ + nearness, enter, leave) &&
            length < 4.0 * farthest;
        const auto at = [&](double t) {
            return OverlayPoint{from.x + by.x * t, from.y + by.y * t};
        };
        if (!isIn || enter > 0.0)
            end();
        if (isIn && part_.empty()) {
            part_.push_back(at(enter));
            start = along + length * enter;
        }
        if (isIn)
            part_.push_back(at(leave));
        if (leave < 1.0)
            end();
        along = std::isfinite(length) ? along + length : along;
    }
    end();
}

void LineBands::AddNear(std::span<const OverlayPoint> points, bool closed, double along,
                        const Style& style)
{
    MxColor casing = casing_;
    casing.alpha = u8(std::lround(casing.alpha * style.casing * style.color.alpha / 255.0));
    Run run{bands_[style.dashed ? 1 : 0], style.color, casing};
    const std::size_t count = points.size();
    const std::size_t segments = count - (closed ? 0 : 1);
    const auto direction = [&](std::size_t i, double& length) {
        const OverlayPoint from = points[i % count];
        const OverlayPoint to = points[(i + 1) % count];
        length = std::hypot(to.x - from.x, to.y - from.y);
        return OverlayPoint{(to.x - from.x) / length, (to.y - from.y) / length};
    };
    double before = 0.0; // length of the segment to the corner
    double after = 0.0;
    OverlayPoint in = closed ? direction(count - 1, before) : OverlayPoint{};
    for (std::size_t i = 0; i <= segments; ++i) {
        const OverlayPoint at = points[i % count];
        const bool hasNext = closed || i < segments;
        const OverlayPoint out = hasNext ? direction(i, after) : in;
        const bool isCorner = closed || (i > 0 && i < segments);
        if (isCorner && Dot(in, out) >= sharpest) {
            const OverlayPoint mitre = Mitre(in, out, std::min(before, after));
            AddPair(run, at, mitre, along, Dot(mitre, in));
            if (style.dashed) // dashes stand across their own segment
                AddPair(run, at, mitre, along, Dot(mitre, out));
        } else {
            if (i > 0)
                AddEnd(run, at, in, 0.5 * unit_, along);
            run.isNew = true;
            if (i < segments)
                AddEnd(run, at, out, -0.5 * unit_, along);
        }
        along += after;
        before = after;
        in = out;
    }
}

/// From a corner to the band's left edge, where the edges of both segments meet: not further in
/// than the shorter one reaches.
OverlayPoint LineBands::Mitre(OverlayPoint in, OverlayPoint out, double shorter) const
{
    const double by = HalfWidth() / (1.0 + Dot(in, out));
    const OverlayPoint mitre{-(in.y + out.y) * by, (in.x + out.x) * by};
    const double length = std::hypot(mitre.x, mitre.y);
    const double longest = std::hypot(HalfWidth(), shorter);
    const double less = length > longest ? longest / length : 1.0;
    return {mitre.x * less, mitre.y * less};
}

void LineBands::AddEnd(Run& run, OverlayPoint at, OverlayPoint direction, double further,
                       double along)
{
    AddPair(run, {at.x + direction.x * further, at.y + direction.y * further},
            {-direction.y * HalfWidth(), direction.x * HalfWidth()}, along + further, 0.0);
}

/// Both edges of the band at a place; `skew` is how much further along the left one is.
void LineBands::AddPair(Run& run, OverlayPoint at, OverlayPoint toLeft, double along, double skew)
{
    const auto vertex = [&](double side) {
        const double t = (along + skew * side) / (dashPeriod * unit_);
        return Vertex{float(at.x + toLeft.x * side),
                      float(at.y + toLeft.y * side),
                      float((1.0 - side) / 2.0),
                      float(t),
                      run.color,
                      run.casing};
    };
    const Vertex left = vertex(1.0);
    std::vector<Vertex>& to = run.vertices;
    if (run.isNew && !to.empty()) { // over triangles that have no area
        to.push_back(to.back());
        to.push_back(left);
    }
    run.isNew = false;
    to.push_back(left);
    to.push_back(vertex(-1.0));
}

// Drawing -----------------------------------------------------------------------------------------

double LineBands::HalfWidth() const
{
    return (casingWidth * unit_ + 1.0) / 2.0;
}

/// Makes the texture that is bound: how much of a pixel the line or its casing covers, across the
/// band and along the dashes. The casing goes round these.
void LineBands::LoadProfile(bool dashed, bool isCasing) const
{
    const int rows = dashed ? profileAlong : 1;
    const double width = isCasing ? casingWidth * unit_ : unit_;
    const double dash = (isCasing ? 6.0 : 4.0) * unit_;
    const double period = dashPeriod * unit_;
    const double middle = (4.0 * unit_ - int(unit_) % 2) / 2.0; // of the dash: on whole pixels
    const double stepAcross = 2.0 * HalfWidth() / profileAcross;
    const double stepAlong = period / profileAlong;
    std::vector<u8> samples;
    for (int row = 0; row < rows; ++row) {
        double away = std::abs((row + 0.5) / rows * period - middle);
        away = std::min(away, period - away);
        const double along = dashed ? CoverageAt(away, dash, stepAlong) : 1.0;
        for (int i = 0; i < profileAcross; ++i) {
            const double distance = std::abs(2.0 * (i + 0.5) / profileAcross - 1.0) * HalfWidth();
            samples.push_back(
                u8(std::lround(255.0 * along * CoverageAt(distance, width, stepAcross))));
        }
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, profileAcross, rows, 0, GL_ALPHA, GL_UNSIGNED_BYTE,
                 samples.data());
}

void LineBands::Draw(bool isCasing) const
{
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnableClientState(GL_COLOR_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    for (const bool dashed : {false, true}) {
        const std::vector<Vertex>& band = bands_[dashed ? 1 : 0];
        if (band.empty())
            continue;
        unsigned texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        LoadProfile(dashed, isCasing);
        glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &band[0].x);
        glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), &band[0].across);
        glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex),
                       isCasing ? &band[0].casing : &band[0].color);
        glDrawArrays(GL_TRIANGLE_STRIP, 0, int(band.size()));
        glDeleteTextures(1, &texture);
    }
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisable(GL_TEXTURE_2D);
}

void LineBands::DrawCasings() const
{
    if (!IsEmpty())
        Draw(true);
}

void LineBands::DrawLines() const
{
    if (!IsEmpty())
        Draw(false);
}

void LineBands::Clear()
{
    for (std::vector<Vertex>& band : bands_)
        band.clear();
}

} // namespace Marlox
