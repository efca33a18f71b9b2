#pragma once

#include "system/shapes/PointGrid.h"
#include "system/shapes/PolyLine.h"
#include "system/shapes/RunTree.h"

#include <span>
#include <vector>

namespace Marlox {

/// Where a segment comes nearest to a place.
struct SegmentFoot {
    /// The distance's square, in units of the scale; infinite: the segment has places that are no
    /// numbers, or further away than any picture reaches.
    double square;
    double t; // how far along the segment; the first of equally near ones
};

/// The nearest place of one cubic to `at`, with distances measured in units of `scale` for each
/// axis. The least of all, not only a near one, to about 1e-12 of the segment's size: the squared
/// distance is a polynomial of sixth degree, and parts of the segment whose Bernstein coefficients
/// all lie above what was found are left out.
MARLOXSYSTEM_EXPORT SegmentFoot NearestOnSegment(const CurveSegment& segment, ShapePlace at,
                                                 ShapePlace scale);

/// Finds points and places of the curve of one shape without going over all of them, with the
/// answers that going over all gives. Holds what it needs of the shape; normalised image
/// coordinates. Takes a time to build that grows with the number of points.
class MARLOXSYSTEM_EXPORT ShapeIndex {
public:
    ShapeIndex() = default;
    explicit ShapeIndex(const PolyLine& shape) { Build(shape); }
    void Build(const PolyLine& shape);
    /// The shape after the points of the mask, or what belongs to them, changed.
    void Update(const PolyLine& shape, const SelMask& changed);

    /// The first point, from `from` on, that is nearer than the tolerance in both x and y; -1:
    /// none.
    int PointAt(ShapePlace at, ShapePlace tolerance, int from = 0) const
    {
        return grid_.PointAt(at, tolerance, from);
    }
    /// All points in these bounds, their edges included; ascending.
    std::vector<int> PointsIn(const ShapeBounds& bounds) const { return grid_.PointsIn(bounds); }
    /// All points within a polygon (even-odd); ascending.
    std::vector<int> PointsIn(std::span<const ShapePlace> lasso) const;
    /// What DistancePointToPolygon answers.
    CurveFoot NearestOnCurve(ShapePlace at, ShapePlace scale) const;

private:
    std::vector<ShapePlace> points_;
    std::vector<CurveSegment> segments_;
    std::vector<u8> gaps_; // for each segment
    bool closed_ = false;
    PointGrid grid_;
    RunTree pointTree_;
    RunTree segmentTree_;
};

/// A point under the pointer, of the active one of two shapes or of the other one.
struct PairHit {
    int point = -1;
    bool isOther = false;
};
/// Point 0 of the active shape is tried first, then its match in the other one, point 1, and so on.
MARLOXSYSTEM_EXPORT PairHit PointAt(const ShapeIndex& active, const ShapeIndex* other,
                                    ShapePlace at, ShapePlace tolerance);

} // namespace Marlox
