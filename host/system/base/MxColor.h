#pragma once

#include "system/base/Types.h"

#include <algorithm>
#include <cmath>

#include <QColor>

namespace Marlox {

/// The host's colour of four 8-bit components, not premultiplied.
struct MxColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 0;

    constexpr MxColor() = default;
    /// Components from 0 to 255; others are clamped.
    constexpr MxColor(int red, int green, int blue, int alpha = 255)
        : red(Clamped(red)), green(Clamped(green)), blue(Clamped(blue)), alpha(Clamped(alpha))
    {
    }

    /// Components from 0 to 1, clamped and multiplied by 255, to the nearest.
    static MxColor FromDoubles(double r, double g, double b, double a = 1.0)
    {
        const auto byte = [](double v) {
            return int(std::lround(std::clamp(std::isnan(v) ? 0.0 : v, 0.0, 1.0) * 255.0));
        };
        return {byte(r), byte(g), byte(b), byte(a)};
    }

    constexpr double Red() const { return red / 255.0; }
    constexpr double Green() const { return green / 255.0; }
    constexpr double Blue() const { return blue / 255.0; }
    constexpr double Alpha() const { return alpha / 255.0; }

    QColor ToQColor() const { return {red, green, blue, alpha}; }

    friend constexpr bool operator==(const MxColor&, const MxColor&) = default;

private:
    static constexpr std::uint8_t Clamped(int component)
    {
        return std::uint8_t(std::clamp(component, 0, 255));
    }
};

} // namespace Marlox
