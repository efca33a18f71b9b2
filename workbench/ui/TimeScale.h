#pragma once

#include <algorithm>
#include <cmath>

namespace Marlox {

/// The mapping of the time line between frames and pixels, both ways. Frames lie at the middle of
/// their cells, so that the first and the last one are as wide as the others.
struct TimeScale {
    double first = 0.0; // frames
    double last = 100.0;
    double left = 0.0; // pixels
    double right = 100.0;

    double CellWidth() const { return (right - left) / std::max(last - first + 1.0, 1.0); }
    double ToPixel(double frame) const { return left + (frame - first + 0.5) * CellWidth(); }
    double ToFrame(double pixel) const { return first + (pixel - left) / CellWidth() - 0.5; }
    /// The whole frame whose cell holds the pixel, within the range.
    double FrameAt(double pixel) const
    {
        return std::clamp(std::floor(ToFrame(pixel) + 0.5), std::ceil(first), std::floor(last));
    }
    /// Frames between numbered marks: the smallest of 1, 2, 5, 10, 20 ... whose marks lie at least
    /// `pixels` apart.
    double MarkStep(double pixels) const
    {
        static constexpr double steps[] = {1.0, 2.0, 5.0};
        for (double decade = 1.0; decade < 1e9; decade *= 10.0) {
            for (const double step : steps) {
                if (step * decade * CellWidth() >= pixels)
                    return step * decade;
            }
        }
        return 1e9;
    }
};

} // namespace Marlox
