#pragma once

#include "system/viewer/OverlayPainter.h"

#include <cmath>
#include <optional>

/// The arithmetic of dragging an angle; degrees, anticlockwise from the positive X axis. No view,
/// no host object.
namespace Marlox {

inline constexpr double degreesOfRadian = 180.0 / 3.141592653589793;

/// The unit vector of an angle.
inline OverlayPoint DirectionOf(double degrees)
{
    const double radians = degrees / degreesOfRadian;
    return {std::cos(radians), std::sin(radians)};
}

/// By how much the direction `from the centre` is ahead of the angle; along Y always as if upwards.
inline double AngleAhead(OverlayPoint fromCentre, double angle)
{
    if (fromCentre.x == 0.0)
        return 90.0 - angle;
    return std::atan(fromCentre.y / fromCentre.x) * degreesOfRadian +
           (fromCentre.x < 0.0 ? 180.0 : 0.0) - angle;
}

/// The direction of a vector (image widths), 0 to 360; straight up or down where x is all but 0.
inline double DirectionAngle(OverlayPoint vector)
{
    if (std::abs(vector.x) > 0.0005)
        return std::fmod((vector.x < 0.0 ? 180.0 : 360.0) +
                             std::atan(vector.y / vector.x) * degreesOfRadian,
                         360.0);
    return vector.y < 0.0 ? 270.0 : 90.0;
}

/// What `angle` becomes when the pointer is at `fromCentre`: the shorter way round from the present
/// angle, never wrapped, so that two turns make 720 degrees. `ahead`: how far ahead of the angle
/// the pointer is held. None: a change of 0.01 degrees or less, or no direction at all. Angles down
/// to -360000 are stepped from.
inline std::optional<double> TurnedAngle(OverlayPoint fromCentre, double angle, double ahead)
{
    if (!std::isfinite(fromCentre.x) || !std::isfinite(fromCentre.y))
        return {};
    const double reference = angle + ahead;
    double change = DirectionAngle(fromCentre) - std::fmod(reference + 360000.0, 360.0);
    if (change > 180.0)
        change -= 360.0;
    if (change < -180.0)
        change += 360.0;
    change = std::fmod(change, 360.0);
    if (!(std::abs(change) > 0.01))
        return {};
    return angle + change;
}

} // namespace Marlox
