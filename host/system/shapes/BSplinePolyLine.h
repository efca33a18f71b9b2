#pragma once

#include "system/shapes/PolyLine.h"

namespace Marlox {

/// A shape whose points are the control vertices of a uniform cubic B-spline. The tension of a
/// point draws the curve to the polygon: 0 is the plain spline, 1 a corner in the vertex, as
/// PPF_Linear makes it whatever the tension. An open curve begins and ends in its first and last
/// point.
class MARLOXSYSTEM_EXPORT BSplinePolyLine final : public PolyLine {
public:
    BSplinePolyLine() = default;
    BSplinePolyLine(const BSplinePolyLine&) = default;

    Ref<PolyLine> CopyShape() const override;
    CurveSegment Segment(int index) const override;
    void MakeEllipse(ShapePlace center, double width, double height, double angle,
                     double heightsPerWidth = 1.0, bool clockwise = false) override;

    /// Takes over vertices made from more of them: the `count` places of `places`. `mask`, one byte
    /// for each, tells which of them are corners. Ids, links and pens of points at the same places
    /// stay.
    void SetReducedPoints(const ShapePlace* places, int count, std::span<const u8> mask);
    /// Which segments are gaps, one item for each point; the others are not.
    void SetDiscontinualSegementMask(const SelMask& mask);
    /// The shape `amount` (0: this, 1: `other`) of the way to another one with as many points; null
    /// if it has not.
    Ref<BSplinePolyLine> InterpolateWith(const BSplinePolyLine& other, double amount) const;

    MxID GetDataType() const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

/// A shape whose curve runs through its points as a cardinal spline; a point's tension shortens the
/// curve's tangent there: 0 is the Catmull-Rom spline, 1 a corner, as is a point with PPF_Linear.
class MARLOXSYSTEM_EXPORT CardinalPolyLine final : public PolyLine {
public:
    CardinalPolyLine() = default;
    CardinalPolyLine(const CardinalPolyLine&) = default;

    Ref<PolyLine> CopyShape() const override;
    CurveSegment Segment(int index) const override;

    MxID GetDataType() const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
