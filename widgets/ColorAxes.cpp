#include "widgets/ColorAxes.h"

#include "system/color/Luminance.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double endless = 1e30;

double usable(double component)
{
    return std::isnan(component) ? 0.0 : std::clamp(component, -endless, endless);
}

RgbColor usable(const RgbColor& rgb)
{
    return {usable(rgb[0]), usable(rgb[1]), usable(rgb[2])};
}

/// Into [0, 1): whole turns are taken off.
double wrapped(double hue)
{
    const double turn = std::isfinite(hue) ? hue - std::floor(hue) : 0.0;
    return turn < 1.0 ? turn : 0.0; // a tiny negative hue rounds to a whole turn
}

/// Into [0, 1]: unlike above, a whole turn stays.
double keptHue(double hue)
{
    return hue < 0.0 || hue > 1.0 || std::isnan(hue) ? wrapped(hue) : hue;
}

/// Of a colour whose components are not all alike.
double hueOf(const RgbColor& rgb, double most, double spread)
{
    const auto [r, g, b] = rgb;
    const double sixth = 6.0 * spread;
    double hue = 0.0;
    if (r == most)
        hue = (g - b) / sixth;
    else if (g == most)
        hue = (b - r) / sixth + 1.0 / 3.0;
    else
        hue = (r - g) / sixth + 2.0 / 3.0;
    return hue < 0.0 ? hue + 1.0 : hue;
}

/// The pure colour of a hue: components from 0 to 1.
RgbColor pureOf(double hue)
{
    const double sector = std::fmod(6.0 * wrapped(hue), 6.0);
    const double f = std::fmod(sector, 1.0);
    switch (int(sector)) {
    case 0:
        return {1.0, f, 0.0};
    case 1:
        return {1.0 - f, 1.0, 0.0};
    case 2:
        return {0.0, 1.0, f};
    case 3:
        return {0.0, 1.0 - f, 1.0};
    case 4:
        return {f, 0.0, 1.0};
    default:
        return {1.0, 0.0, 1.0 - f};
    }
}

struct Extent {
    explicit Extent(const RgbColor& rgb)
        : most(std::max({rgb[0], rgb[1], rgb[2]})), least(std::min({rgb[0], rgb[1], rgb[2]}))
    {
    }
    double Spread() const { return most - least; }
    double most;
    double least;
};

/// The hue next to the one before: a whole turn stays one rather than becoming 0, and what has no
/// hue keeps it.
double continued(double hue, bool hasHue, const ColorRecord& previous)
{
    if (!hasHue)
        return keptHue(previous.hue);
    return hue == 0.0 && previous.hue == 1.0 ? 1.0 : hue;
}

class HsvAxes final : public ColorAxes {
public:
    ColorRecord FromRgb(const RgbColor& given, const ColorRecord& previous) const override
    {
        const RgbColor rgb = usable(given);
        const Extent extent(rgb);
        ColorRecord record = previous;
        record.value = extent.most;
        const bool black = extent.most == 0.0;
        const bool grey = extent.Spread() == 0.0;
        if (!black)
            record.saturation = grey ? 0.0 : usable(extent.Spread() / extent.most);
        record.hue = continued(grey ? 0.0 : hueOf(rgb, extent.most, extent.Spread()),
                               !black && !grey, previous);
        return record;
    }

    RgbColor ToRgb(const ColorRecord& record) const override
    {
        const double v = usable(record.value);
        const double s = usable(record.saturation);
        RgbColor rgb = pureOf(record.hue);
        for (double& component : rgb)
            component = v * (1.0 - (1.0 - component) * s);
        return rgb;
    }

    Axis HueAxis() const override { return {"Hue", 0.0}; }
    Axis SaturationAxis() const override { return {"Saturation", 0.0}; }
    Axis ValueAxis() const override { return {"Value", 0.0}; }
};

class HlsAxes final : public ColorAxes {
public:
    ColorRecord FromRgb(const RgbColor& given, const ColorRecord& previous) const override
    {
        const RgbColor rgb = usable(given);
        const Extent extent(rgb);
        ColorRecord record = previous;
        record.value = 0.5 * (extent.most + extent.least);
        const bool grey = extent.Spread() == 0.0;
        if (!grey && record.value == 1.0)
            record.value = std::nextafter(1.0, 2.0); // at 1 itself there is white only
        const double widest = WidestSpread(record.value);
        if (widest != 0.0 && !(grey && IsEnd(record.value)))
            record.saturation = grey ? 0.0 : usable(extent.Spread() / widest);
        record.hue =
            continued(grey ? 0.0 : hueOf(rgb, extent.most, extent.Spread()), !grey, previous);
        return record;
    }

    RgbColor ToRgb(const ColorRecord& record) const override
    {
        const double lightness = usable(record.value);
        const double spread = WidestSpread(lightness) * usable(record.saturation);
        RgbColor rgb = pureOf(record.hue);
        for (double& component : rgb)
            component = lightness + (component - 0.5) * spread;
        return rgb;
    }

    Axis HueAxis() const override { return {"Hue", 0.0}; }
    Axis SaturationAxis() const override { return {"Saturation", 0.0}; }
    Axis ValueAxis() const override { return {"Lightness", 0.0}; }

private:
    /// Between the components of the purest colour of a lightness. Beyond white, where the double
    /// hexcone has none, it goes on as it does up to the middle.
    static double WidestSpread(double lightness)
    {
        return lightness > 0.5 && lightness <= 1.0 ? 2.0 - 2.0 * lightness : 2.0 * lightness;
    }
    /// Black and white: any saturation is theirs.
    static bool IsEnd(double lightness) { return lightness == 0.0 || lightness == 1.0; }
};

class YuvAxes final : public ColorAxes {
public:
    ColorRecord FromRgb(const RgbColor& given, const ColorRecord& previous) const override
    {
        const auto [r, g, b] = usable(given);
        ColorRecord record = previous;
        record.hue = Luminance::Of(r, g, b);
        record.saturation = middle + (b - record.hue) / blueSpan;
        record.value = middle + (r - record.hue) / redSpan;
        return record;
    }

    RgbColor ToRgb(const ColorRecord& record) const override
    {
        const double luma = usable(record.hue);
        const double blue = luma + (usable(record.saturation) - middle) * blueSpan;
        const double red = luma + (usable(record.value) - middle) * redSpan;
        const double green =
            (luma - Luminance::red * red - Luminance::blue * blue) / Luminance::green;
        return {red, green, blue};
    }

    Axis HueAxis() const override { return {"Y", 0.0}; }
    Axis SaturationAxis() const override { return {"U", middle}; }
    Axis ValueAxis() const override { return {"V", middle}; }

private:
    // Of the differences from the luma (ITU-R BT.709).
    static constexpr double blueSpan = 2.0 * (1.0 - Luminance::blue);
    static constexpr double redSpan = 2.0 * (1.0 - Luminance::red);
    static constexpr double middle = 0.5; // where a difference of 0 stands on its axis
};

} // namespace

const ColorAxes& ColorAxes::Of(int colorSpace)
{
    static const HsvAxes hsv;
    static const HlsAxes hls;
    static const YuvAxes yuv;
    static const std::array<const ColorAxes*, 3> spaces{&hsv, &hls, &yuv};
    return *spaces[colorSpace >= 0 && colorSpace < 3 ? std::size_t(colorSpace) : 0];
}

} // namespace Marlox
