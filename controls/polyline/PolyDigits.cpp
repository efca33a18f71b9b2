#include "controls/polyline/PolyDigits.h"

#include <span>
#include <string>

namespace Marlox {

namespace {

constexpr double width = 4.0; // of a digit, pixels
constexpr double height = 7.0;
constexpr double advance = 6.0; // from digit to digit
constexpr double rim = 1.5;     // of a plate around the digits
constexpr double plateOpacity = 0.65;

using Points = std::span<const OverlayPoint>;

// The strokes of the digits: each a line through its points.
constexpr OverlayPoint zero[] = {{0, 1}, {0, 6}, {1, 7}, {3, 7}, {4, 6},
                                 {4, 1}, {3, 0}, {1, 0}, {0, 1}};
constexpr OverlayPoint one[] = {{1, 6}, {2, 7}, {2, 0}, {1, 0}, {3, 0}};
constexpr OverlayPoint two[] = {{0, 6}, {1, 7}, {3, 7}, {4, 6}, {4, 4}, {0, 0}, {4, 0}};
constexpr OverlayPoint three[] = {{0, 6}, {1, 7}, {3, 7}, {4, 6}, {4, 5}, {3, 4}, {2, 4},
                                  {3, 4}, {4, 3}, {4, 1}, {3, 0}, {1, 0}, {0, 1}};
constexpr OverlayPoint four[] = {{3, 0}, {3, 7}, {0, 3}, {0, 2}, {4, 2}};
constexpr OverlayPoint five[] = {{4, 7}, {0, 7}, {0, 4}, {3, 4}, {4, 3},
                                 {4, 1}, {3, 0}, {1, 0}, {0, 1}};
constexpr OverlayPoint six[] = {{4, 6}, {3, 7}, {1, 7}, {0, 6}, {0, 1}, {1, 0},
                                {3, 0}, {4, 1}, {4, 3}, {3, 4}, {0, 4}};
constexpr OverlayPoint seven[] = {{0, 7}, {4, 7}, {4, 6}, {2, 2}, {2, 0}};
constexpr OverlayPoint eight[] = {{1, 4}, {0, 5}, {0, 6}, {1, 7}, {3, 7}, {4, 6}, {4, 5}, {3, 4},
                                  {1, 4}, {0, 3}, {0, 1}, {1, 0}, {3, 0}, {4, 1}, {4, 3}, {3, 4}};
constexpr OverlayPoint nine[] = {{0, 1}, {1, 0}, {3, 0}, {4, 1}, {4, 6}, {3, 7},
                                 {1, 7}, {0, 6}, {0, 4}, {1, 3}, {4, 3}};
constexpr Points strokes[10] = {zero, one, two, three, four, five, six, seven, eight, nine};

} // namespace

void PolyDigits::Add(OverlayPoint at, u32 number, double scale)
{
    const std::string digits = std::to_string(number);
    plates_[digits.size()].push_back(at);
    for (const char digit : digits) {
        places_[std::size_t(digit - '0')].push_back(at);
        at.x += advance * scale;
    }
}

void PolyDigits::Draw(OverlayPainter& painter, const MxColor& color, double scale) const
{
    using Shape = OverlayPainter::Shape;
    painter.SetColor(MxColor::FromDoubles(0.0, 0.0, 0.0, plateOpacity));
    for (std::size_t count = 1; count < plates_.size(); ++count) {
        const double right = advance * double(count - 1) + width + rim;
        const OverlayPoint plate[] = {
            {-rim, -rim}, {right, -rim}, {right, height + rim}, {-rim, height + rim}};
        painter.Marks(Shape::Fill, plate, plates_[count], scale);
    }
    painter.SetColor(color);
    for (std::size_t digit = 0; digit < places_.size(); ++digit)
        painter.Marks(Shape::Strip, strokes[digit], places_[digit], scale);
}

} // namespace Marlox
