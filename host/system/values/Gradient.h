#pragma once

#include "system/base/Types.h"

#include <vector>

namespace Marlox {

/// A colour of four doubles, not premultiplied; components may lie outside 0 to 1.
struct GradientColor {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;

    friend bool operator==(const GradientColor&, const GradientColor&) = default;
};

/// A run of colours: linear between its stops, component by component, and constant beyond the
/// first and the last. Positions usually run from 0 to 1. Without stops it is opaque black.
class MARLOXSYSTEM_EXPORT Gradient {
public:
    struct Stop {
        double position = 0.0;
        GradientColor color;

        friend bool operator==(const Stop&, const Stop&) = default;
    };

    Gradient() = default;
    /// Sorts by position; of two stops at one position the former ends the run below it and the
    /// latter begins the run above. Stops at no position (NaN) are left out.
    explicit Gradient(std::vector<Stop> stops);

    /// The colour at a position, fast enough to be asked for every column of a track. At a position
    /// with two stops it is the latter's.
    GradientColor QuickEvaluate(double position) const;

    const std::vector<Stop>& Stops() const { return stops_; }
    bool IsEmpty() const { return stops_.empty(); }

    friend bool operator==(const Gradient&, const Gradient&) = default;

private:
    std::vector<Stop> stops_;
};

} // namespace Marlox
