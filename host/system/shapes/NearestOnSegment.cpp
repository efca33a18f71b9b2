#include "system/shapes/ShapeIndex.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace Marlox {

namespace {

constexpr double farthest = 1e100; // squares of what is nearer are numbers
constexpr int deepest = 48;        // divisions
constexpr double noise = 16.0 * std::numeric_limits<double>::epsilon();

using Cubic = std::array<ShapePlace, 4>; // from the place that is asked for, scaled
using Sextic = std::array<double, 7>;    // Bernstein coefficients

double Dot(ShapePlace a, ShapePlace b)
{
    return a.x * b.x + a.y * b.y;
}

ShapePlace Middle(ShapePlace a, ShapePlace b)
{
    return {0.5 * (a.x + b.x), 0.5 * (a.y + b.y)};
}

ShapePlace PlaceAt(const Cubic& q, double t)
{
    if (t <= 0.0)
        return q[0];
    if (t >= 1.0)
        return q[3];
    const double u = 1.0 - t;
    const double a = u * u * u;
    const double b = 3.0 * u * u * t;
    const double c = 3.0 * u * t * t;
    const double d = t * t * t;
    return {a * q[0].x + b * q[1].x + c * q[2].x + d * q[3].x,
            a * q[0].y + b * q[1].y + c * q[2].y + d * q[3].y};
}

/// Of the squared distance along the cubic.
Sextic SquareOf(const Cubic& q)
{
    return {Dot(q[0], q[0]),
            Dot(q[0], q[1]),
            0.2 * (2.0 * Dot(q[0], q[2]) + 3.0 * Dot(q[1], q[1])),
            0.1 * (Dot(q[0], q[3]) + 9.0 * Dot(q[1], q[2])),
            0.2 * (2.0 * Dot(q[1], q[3]) + 3.0 * Dot(q[2], q[2])),
            Dot(q[2], q[3]),
            Dot(q[3], q[3])};
}

/// How the squared distance goes over a part of the segment, as far as its coefficients tell.
enum class Course { Unknown, ToOneEnd, Convex };

Course CourseOf(const Sextic& d, double unsure)
{
    bool rises = true;
    bool falls = true;
    bool convex = true;
    for (std::size_t i = 0; i < 6; ++i) {
        rises = rises && d[i] <= d[i + 1];
        falls = falls && d[i] >= d[i + 1];
        convex = convex && (i == 5 || d[i] + d[i + 2] >= 2.0 * d[i + 1] - unsure);
    }
    return rises || falls ? Course::ToOneEnd : convex ? Course::Convex : Course::Unknown;
}

/// The search over one segment.
class Search {
public:
    explicit Search(const Cubic& cubic) : whole_(cubic)
    {
        for (const ShapePlace& place : cubic)
            size_ = std::max({size_, std::abs(place.x), std::abs(place.y)});
        Try(0.0);
        Try(1.0);
        Divide(cubic, 0.0, 1.0, 0);
    }
    SegmentFoot Best() const { return best_; }

private:
    void Try(double t)
    {
        const ShapePlace at = PlaceAt(whole_, t);
        const double square = Dot(at, at);
        if (square < best_.square || (square == best_.square && t < best_.t))
            best_ = {square, t};
    }
    void Divide(const Cubic& q, double from, double to, int depth);
    void Descend(double from, double to);
    double Slope(double t, double* curvature) const;

    Cubic whole_;
    double size_ = 0.0;
    SegmentFoot best_{std::numeric_limits<double>::infinity(), 2.0};
};

/// `q` is the part of the segment between `from` and `to`, whose ends were tried.
void Search::Divide(const Cubic& q, double from, double to, int depth)
{
    const Sextic d = SquareOf(q);
    const auto [least, most] = std::minmax_element(d.begin(), d.end());
    double local = 0.0;
    for (const ShapePlace& place : q)
        local = std::max({local, std::abs(place.x), std::abs(place.y)});
    const double unsure = noise * size_ * local;
    if (*least - unsure > best_.square)
        return;
    const Course course = CourseOf(d, unsure);
    if (course == Course::ToOneEnd)
        return;
    if (course == Course::Convex || *most - *least <= unsure || depth == deepest)
        return Descend(from, to);
    const ShapePlace a = Middle(q[0], q[1]);
    const ShapePlace b = Middle(q[1], q[2]);
    const ShapePlace c = Middle(q[2], q[3]);
    const ShapePlace ab = Middle(a, b);
    const ShapePlace bc = Middle(b, c);
    const ShapePlace at = Middle(ab, bc);
    const double middle = 0.5 * (from + to);
    Try(middle);
    Divide({q[0], a, ab, at}, from, middle, depth + 1);
    Divide({at, bc, c, q[3]}, middle, to, depth + 1);
}

/// Half the derivative of the squared distance by t, and that of this.
double Search::Slope(double t, double* curvature) const
{
    const Cubic& q = whole_;
    const double u = 1.0 - t;
    const ShapePlace a = q[1] - q[0];
    const ShapePlace b = q[2] - q[1];
    const ShapePlace c = q[3] - q[2];
    const auto first = [&](double x, double y, double z) {
        return 3.0 * (u * u * x + 2.0 * u * t * y + t * t * z);
    };
    const auto second = [&](double x, double y, double z) {
        return 6.0 * (u * (y - x) + t * (z - y));
    };
    const ShapePlace at = PlaceAt(q, t);
    const ShapePlace along(first(a.x, b.x, c.x), first(a.y, b.y, c.y));
    const ShapePlace bend(second(a.x, b.x, c.x), second(a.y, b.y, c.y));
    *curvature = Dot(along, along) + Dot(at, bend);
    return Dot(at, along);
}

/// Newton's steps to where the slope is 0, halving where they would leave the part.
void Search::Descend(double from, double to)
{
    double curvature = 0.0;
    if (Slope(from, &curvature) >= 0.0 || Slope(to, &curvature) <= 0.0)
        return; // the least is at an end
    double t = 0.5 * (from + to);
    for (int i = 0; i < 60; ++i) {
        const double slope = Slope(t, &curvature);
        (slope < 0.0 ? from : to) = t;
        const double step = curvature > 0.0 ? slope / curvature : 2.0;
        double next = t - step;
        if (!(next > from && next < to))
            next = 0.5 * (from + to);
        const bool isDone = std::abs(next - t) <= 1e-16 + 1e-15 * t;
        t = next;
        if (isDone)
            break;
    }
    Try(t);
}

} // namespace

SegmentFoot NearestOnSegment(const CurveSegment& segment, ShapePlace at, ShapePlace scale)
{
    const auto from = [&](ShapePlace place) {
        return ShapePlace((place.x - at.x) * scale.x, (place.y - at.y) * scale.y);
    };
    const Cubic cubic{from(segment.from), from(segment.control1), from(segment.control2),
                      from(segment.to)};
    for (const ShapePlace& place : cubic) {
        if (!(std::abs(place.x) < farthest && std::abs(place.y) < farthest))
            return {std::numeric_limits<double>::infinity(), 0.0};
    }
    return Search(cubic).Best();
}

CurveFoot DistancePointToPolygon(ShapePlace at, const PolyLine& shape, bool closed,
                                 ShapePlace scale)
{
    if (closed && !shape.IsClosed()) { // a curve may take another course at its ends
        const Ref<PolyLine> other = shape.CopyShape();
        if (other->Close())
            return DistancePointToPolygon(at, *other, true, scale);
    }
    CurveFoot foot;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < shape.GetCount(); ++i) {
        const PolyPoint& point = shape.Points()[std::size_t(i)];
        const double x = (point.x - at.x) * scale.x;
        const double y = (point.y - at.y) * scale.y;
        if (const double square = x * x + y * y; square < least) {
            least = square;
            foot.nearest = i;
        }
    }
    SegmentFoot best{std::numeric_limits<double>::infinity(), 0.0};
    const int segments = shape.GetSegmentsCount() - int(shape.IsClosed() && !closed);
    for (int i = 0; i < segments; ++i) {
        if (shape.Points()[std::size_t(i)].Has(PPF_Gap))
            continue;
        const SegmentFoot found = NearestOnSegment(shape.Segment(i), at, scale);
        if (found.square < best.square) {
            best = found;
            foot.segment = i;
        }
    }
    if (foot.segment < 0)
        return foot;
    foot.distance = std::sqrt(best.square);
    foot.t = best.t;
    foot.foot = shape.Segment(foot.segment).At(best.t);
    return foot;
}

} // namespace Marlox
