#include "widgets/SliderScale.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Marlox {

namespace {

double digitsAbove(double pixels)
{
    return std::ceil(std::log10(std::max(pixels, 1.0)));
}

double power(double base, double exponent)
{
    return std::copysign(std::pow(std::abs(base), exponent), base);
}

/// Powers of ten that doubles hold exactly come from a table: it is asked for each step of a drag.
double powerOfTen(double exponent)
{
    static constexpr double table[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
    return exponent >= 0.0 && exponent < double(std::size(table)) ? table[int(exponent)]
                                                                  : std::pow(10.0, exponent);
}

} // namespace

double SliderScale::Root(double value) const
{
    return gamma == 1.0 ? value : power(value, 1.0 / gamma);
}

double SliderScale::ValueToPixel(double value) const
{
    if (maxValue == minValue)
        return pixelLow;
    double pixel = 0.0;
    if (!centred) {
        const double low = Root(minValue);
        pixel = pixelLow + (pixelHigh - pixelLow) * (Root(value) - low) / (Root(maxValue) - low);
    } else if (value < centre) {
        pixel = centre == minValue ? pixelLow
                                   : pixelLow + (PixelCentre() - pixelLow) * (value - minValue) /
                                                    (centre - minValue);
    } else if (value == centre) {
        pixel = PixelCentre();
    } else {
        pixel = centre == maxValue ? pixelHigh + 1.0
                                   : PixelCentre() + (pixelHigh - PixelCentre()) *
                                                         (value - centre) / (maxValue - centre);
    }
    return std::clamp(pixel, pixelLow, std::max(pixelLow, pixelHigh));
}

double SliderScale::PixelToValue(double pixel) const
{
    const double width = pixelHigh - pixelLow;
    if (width <= 0.0 || maxValue == minValue)
        return minValue;
    if (!centred) {
        const double low = Root(minValue);
        const double root = low + (pixel - pixelLow) * (Root(maxValue) - low) / width;
        return gamma == 1.0 ? root : power(root, gamma);
    }
    const double middle = PixelCentre();
    if (pixel == middle)
        return centre;
    return pixel < middle
               ? minValue + (centre - minValue) * (pixel - pixelLow) / (middle - pixelLow)
               : centre + (maxValue - centre) * (pixel - middle) / (pixelHigh - middle);
}

double SliderScale::PrecisionDigits(double value) const
{
    if (maxValue == minValue)
        return 0.0;
    if (!centred) {
        const double trackDigits = digitsAbove(pixelHigh - pixelLow);
        const double digits = gamma == 1.0 ? trackDigits : CurvedDigits(value, trackDigits);
        return digits - DecadeOf(maxValue - minValue);
    }
    if (value < centre && centre != minValue)
        return digitsAbove(ValueToPixel(centre) - pixelLow) - DecadeOf(centre - minValue);
    if (value > centre && centre != maxValue)
        return digitsAbove(pixelHigh - ValueToPixel(centre)) - DecadeOf(maxValue - centre);
    return 0.0;
}

/// On a power law the pixels near its flat part stand for less than the average: up to two further
/// digits, as the neighbouring pixel asks for.
double SliderScale::CurvedDigits(double value, double trackDigits) const
{
    const double here = std::round(ValueToPixel(value));
    const double neighbour = here >= pixelLow + 1.0 ? here - 1.0 : here + 1.0;
    const double apart = std::abs(PixelToValue(here) - PixelToValue(neighbour));
    const double wanted = std::ceil(std::log10((maxValue - minValue) / apart));
    return std::max(trackDigits, std::min(trackDigits + 2.0, wanted));
}

double SliderScale::GetPrecision(double value) const
{
    return std::pow(10.0, PrecisionDigits(value));
}

double SliderScale::Rounded(double value, bool fine) const
{
    if (centred && value == centre)
        return value;
    const double digits = PrecisionDigits(value) + (fine ? 1.0 : 0.0);
    // Whole powers of ten only, which doubles hold exactly: 12300 stays 12300, not 12300.000000002.
    const double unit = powerOfTen(std::abs(digits));
    return digits >= 0.0 ? std::round(value * unit) / unit : std::round(value / unit) * unit;
}

double DecadeOf(double span)
{
    return span > 0.0 && std::isfinite(span) ? std::floor(std::log10(span)) : 0.0;
}

} // namespace Marlox
