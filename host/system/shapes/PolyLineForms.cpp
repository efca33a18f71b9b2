// Regular forms.

#include "system/shapes/BSplinePolyLine.h"
#include "system/shapes/PolyLine.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Marlox {

namespace {

constexpr double circleHandle = 0.5522847498307936; // of a quarter circle: 4/3 (sqrt 2 - 1)
constexpr int ellipseVertices = 8;                  // of a B-spline

/// Places of a form about its centre, from pixels' proportions to image coordinates.
struct Placement {
    ShapePlace center;
    double cosine;
    double sine;
    double heightsPerWidth;

    Placement(ShapePlace center, double angle, double heightsPerWidth)
        : center(center), cosine(std::cos(angle * std::numbers::pi / 180.0)),
          sine(std::sin(angle * std::numbers::pi / 180.0)),
          heightsPerWidth(heightsPerWidth > 0.0 ? heightsPerWidth : 1.0)
    {
    }
    /// x in image widths, y in image heights, before the turn.
    ShapePlace Vector(double x, double y) const
    {
        const double up = y * heightsPerWidth;
        return {x * cosine - up * sine, (x * sine + up * cosine) / heightsPerWidth};
    }
    PolyPoint Point(double x, double y) const
    {
        PolyPoint point;
        const ShapePlace at = center + Vector(x, y);
        point.x = at.x;
        point.y = at.y;
        return point;
    }
};

} // namespace

void PolyLine::MakeEllipse(ShapePlace center, double width, double height, double angle,
                           double heightsPerWidth, bool clockwise)
{
    const Placement placement(center, angle, heightsPerWidth);
    const double turn = clockwise ? -1.0 : 1.0;
    const bool hasHandles = GetDataType() == MxID(CLSID_DataType_Polyline);
    constexpr std::array<ShapePlace, 4> quarters{{{1, 0}, {0, 1}, {-1, 0}, {0, -1}}};
    std::vector<PolyPoint> points;
    for (const ShapePlace& quarter : quarters) {
        const double x = quarter.x * width / 2.0;
        const double y = turn * quarter.y * height / 2.0;
        PolyPoint point = placement.Point(x, y);
        if (hasHandles) {
            const ShapePlace out = placement.Vector(-quarter.y * width / 2.0 * circleHandle,
                                                    turn * quarter.x * height / 2.0 * circleHandle);
            point.outX = out.x;
            point.outY = out.y;
            point.inX = -out.x;
            point.inY = -out.y;
        }
        points.push_back(point);
    }
    SetPoints(std::move(points));
    Close();
}

void PolyLine::MakeRectangle(ShapePlace center, double width, double height, double angle,
                             double heightsPerWidth, bool clockwise)
{
    const Placement placement(center, angle, heightsPerWidth);
    const double x = width / 2.0;
    const double y = height / 2.0;
    std::vector<PolyPoint> points{placement.Point(-x, -y), placement.Point(x, -y),
                                  placement.Point(x, y), placement.Point(-x, y)};
    if (clockwise)
        std::reverse(points.begin(), points.end());
    for (PolyPoint& point : points)
        point.flags = PPF_Linear;
    SetPoints(std::move(points));
    Close();
}

void PolyLine::MakeSpiral(ShapePlace center, double from, double to, double turns,
                          double startAngle, int pointsPerTurn, double heightsPerWidth,
                          bool clockwise)
{
    const Placement placement(center, startAngle, heightsPerWidth);
    const double count = std::ceil(std::abs(turns) * std::max(pointsPerTurn, 3));
    const int steps = count >= 1.0 ? int(std::min(count, double(maxPoints - 1))) : 1;
    const double angle =
        (clockwise ? -2.0 : 2.0) * std::numbers::pi * (std::isfinite(turns) ? turns : 0.0);
    const bool hasHandles = GetDataType() == MxID(CLSID_DataType_Polyline);
    const double tall = placement.heightsPerWidth;
    std::vector<PolyPoint> points;
    for (int i = 0; i <= steps; ++i) {
        const double t = double(i) / steps;
        const double radius = std::lerp(from, to, t);
        const double cosine = std::cos(angle * t);
        const double sine = std::sin(angle * t);
        PolyPoint point = placement.Point(radius * cosine, radius * sine / tall);
        if (hasHandles) { // a third of the derivative over one step
            const double grow = (to - from) / (3.0 * steps);
            const double along = radius * angle / (3.0 * steps);
            const ShapePlace out = placement.Vector(grow * cosine - along * sine,
                                                    (grow * sine + along * cosine) / tall);
            point.outX = i < steps ? out.x : 0.0;
            point.outY = i < steps ? out.y : 0.0;
            point.inX = i > 0 ? -out.x : 0.0;
            point.inY = i > 0 ? -out.y : 0.0;
        }
        points.push_back(point);
    }
    Open();
    SetPoints(std::move(points));
}

/// Vertices lie outside the curve: on a regular polygon the spline passes its corners at (4 + 2 cos
/// of the step) / 6 of their distance.
void BSplinePolyLine::MakeEllipse(ShapePlace center, double width, double height, double angle,
                                  double heightsPerWidth, bool clockwise)
{
    const Placement placement(center, angle, heightsPerWidth);
    const double step = (clockwise ? -2.0 : 2.0) * std::numbers::pi / ellipseVertices;
    const double outside = 6.0 / (4.0 + 2.0 * std::cos(step)) / 2.0;
    std::vector<PolyPoint> points;
    for (int i = 0; i < ellipseVertices; ++i)
        points.push_back(placement.Point(width * outside * std::cos(step * i),
                                         height * outside * std::sin(step * i)));
    SetPoints(std::move(points));
    Close();
}

} // namespace Marlox
