#include "controls/polyline/PolyDigits.h"

#include <string>

namespace Marlox {

namespace {

constexpr double advance = 6.0; // from digit to digit, pixels

/// The seven strokes of a digit.
constexpr OverlayPoint strokes[7][2] = {
    {{0, 6}, {4, 6}}, // top
    {{4, 6}, {4, 3}}, // right, upper
    {{4, 3}, {4, 0}}, // right, lower
    {{0, 0}, {4, 0}}, // bottom
    {{0, 3}, {0, 0}}, // left, lower
    {{0, 6}, {0, 3}}, // left, upper
    {{0, 3}, {4, 3}}, // middle
};

/// Which strokes a digit has, the top one in the lowest bit.
constexpr u32 strokesOf[10] = {0x3f, 0x06, 0x5b, 0x4f, 0x66, 0x6d, 0x7d, 0x07, 0x7f, 0x6f};

} // namespace

void PolyDigits::Add(OverlayPoint at, u32 number, double scale)
{
    for (const char digit : std::to_string(number)) {
        places_[std::size_t(digit - '0')].push_back(at);
        at.x += advance * scale;
    }
}

void PolyDigits::Draw(OverlayPainter& painter, double scale) const
{
    for (std::size_t digit = 0; digit < places_.size(); ++digit) {
        if (places_[digit].empty())
            continue;
        std::vector<OverlayPoint> lines;
        for (u32 stroke = 0; stroke < 7; ++stroke) {
            if (strokesOf[digit] >> stroke & 1u)
                lines.insert(lines.end(), std::begin(strokes[stroke]), std::end(strokes[stroke]));
        }
        painter.Marks(OverlayPainter::Shape::Lines, lines, places_[digit], scale);
    }
}

} // namespace Marlox
