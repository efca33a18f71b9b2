#pragma once

#include <array>

namespace Marlox {

/// Red, green and blue, scene-linear; 1 is white, more is brighter.
using RgbColor = std::array<double, 3>;

/// A colour as the colour field holds it: one axis along its strip and two across its square. What
/// the axes are, its ColorAxes tell; the names are those of hue, saturation and value. Each axis
/// shows 0 to 1; colours beyond it keep their own numbers.
struct ColorRecord {
    double hue = 0.0; // a fraction of a turn, 0 to 1; of the top end of the strip as well
    double saturation = 0.0;
    std::array<double, 2> further{}; // carried along
    double value = 0.0;

    friend bool operator==(const ColorRecord&, const ColorRecord&) = default;
};

/// The colour spaces of the field: between red, green and blue and the axes, both ways. Components
/// that are no numbers count as 0, endless ones as 1e30. Colours with a component above 0 and none
/// below return as they went, but for rounding.
class ColorAxes {
public:
    /// What is written beside an axis, and its number where the axis reads 0.
    struct Axis {
        const char* label;
        double zero;
    };

    virtual ~ColorAxes() = default;
    /// `previous`: what was shown before, from which colours without a hue or a saturation keep it.
    virtual ColorRecord FromRgb(const RgbColor& rgb, const ColorRecord& previous) const = 0;
    virtual RgbColor ToRgb(const ColorRecord& record) const = 0;
    virtual Axis HueAxis() const = 0;
    virtual Axis SaturationAxis() const = 0;
    virtual Axis ValueAxis() const = 0;

    /// 0: hue, saturation and value, the hexcone (A. R. Smith, 1978). 1: hue, lightness and
    /// saturation, the double hexcone. 2: luma along the strip, the two differences of colour
    /// across the square (ITU-R BT.709). Others are 0.
    static const ColorAxes& Of(int colorSpace);
};

} // namespace Marlox
