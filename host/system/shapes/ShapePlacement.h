#pragma once

#include "system/shapes/PolyPoint.h"

#include <cmath>
#include <numbers>

namespace Marlox {

/// Where a tool puts its shape: turned and scaled about the image's centre, which comes to lie at
/// `center`. Both directions of the mapping; normalised image coordinates on both sides. Angles and
/// circles are true in the picture as it is seen.
struct ShapePlacement {
    ShapePlace center{0.5, 0.5};
    double angle = 0.0;           // degrees, counter-clockwise
    double size = 1.0;            // 1: as it is
    double heightsPerWidth = 1.0; // the image's height over its width, as seen

    bool IsIdentity() const { return center == ShapePlace(0.5, 0.5) && angle == 0.0 && size == 1.0; }

    /// From the shape's coordinates to those of the image.
    ShapePlace Out(ShapePlace at) const
    {
        if (IsIdentity())
            return at;
        return center + OutVector(at - ShapePlace(0.5, 0.5));
    }
    /// Back. With a size of next to nothing everything lies in the shape's centre.
    ShapePlace In(ShapePlace at) const
    {
        if (IsIdentity())
            return at;
        return ShapePlace(0.5, 0.5) + InVector(at - center);
    }
    // The same for distances.
    ShapePlace OutVector(ShapePlace by) const { return Turned(by, Radians(), size); }
    ShapePlace InVector(ShapePlace by) const
    {
        return Turned(by, -Radians(), std::abs(size) >= leastSize ? 1.0 / size : 0.0);
    }

    friend bool operator==(const ShapePlacement&, const ShapePlacement&) = default;

private:
    static constexpr double leastSize = 1e-9; // a smaller shape cannot be told from a point
    double Radians() const { return angle * std::numbers::pi / 180.0; }
    ShapePlace Turned(ShapePlace by, double radians, double scale) const
    {
        const double tall = heightsPerWidth > 0.0 ? heightsPerWidth : 1.0;
        const double cosine = std::cos(radians) * scale;
        const double sine = std::sin(radians) * scale;
        const double up = by.y * tall;
        return {by.x * cosine - up * sine, (by.x * sine + up * cosine) / tall};
    }
};

} // namespace Marlox
