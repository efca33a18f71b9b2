#pragma once

#include "system/viewer/OverlayPainter.h"

#include <array>
#include <vector>

namespace Marlox {

/// Whole numbers on dark plates, many at once: the digits of all are gathered and drawn digit by
/// digit.
class PolyDigits {
public:
    /// `at` is the bottom left corner of the first digit, view pixels; `scale` view pixels for each
    /// pixel of a digit, which is 4 wide and 7 high.
    void Add(OverlayPoint at, u32 number, double scale);
    void Draw(OverlayPainter& painter, const MxColor& color, double scale) const;

private:
    std::array<std::vector<OverlayPoint>, 10> places_; // of each digit
    std::array<std::vector<OverlayPoint>, 11> plates_; // by how many digits are on them
};

} // namespace Marlox
