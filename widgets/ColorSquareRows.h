#pragma once

#include "widgets/ColorAxes.h"

namespace Marlox {

/// One row of the square in light. Every colour space is straight along its saturation axis, so
/// that the colours at both ends tell the row.
struct ColorSquareRow {
    static constexpr double most = 1e3; // light is kept to this

    ColorSquareRow(const ColorAxes& axes, double hue, double value);
    /// Whether it has colours with a component below 0 or above 1.
    bool LeavesLight() const;

    std::array<float, 3> first; // at saturation 0
    std::array<float, 3> way;   // from there to saturation 1
};

} // namespace Marlox
