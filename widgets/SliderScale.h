#pragma once

namespace Marlox {

/// The mapping between the values of a slider and the pixels of its track, both ways. Painting, hit
/// testing, dragging and accessibility all use this one.
///
/// Pixels are device-independent, along x, and may lie between two whole ones; `pixelLow` is where
/// `minValue` stands, `pixelHigh` where `maxValue` does, the middle of the track where `centre`
/// does. Three shapes: linear; a power law (`gamma` other than 1), which goes through zero with its
/// sign; and centred, where each half of the track is linear by itself.
struct SliderScale {
    double minValue = 0.0;
    double maxValue = 1.0;
    double centre = 0.0;
    double gamma = 1.0; // positive; a pixel stands for root^gamma, so above 1 the low end is finer
    double pixelLow = 0.0;
    double pixelHigh = 100.0;
    bool centred = false; // the power law rests while this is set

    double PixelCentre() const { return 0.5 * (pixelLow + pixelHigh); }

    /// Always within [pixelLow, pixelHigh]; pixelLow for every value while the bounds are equal.
    double ValueToPixel(double value) const;
    /// The inverse. Pixels beyond the track continue the mapping: callers clamp the value.
    double PixelToValue(double pixel) const;

    /// How many decimals are worth keeping at `value`: at least one step of the last of them for
    /// each pixel. Negative for wide ranges (-2: hundreds). 0 while the bounds are equal and at the
    /// exact centre.
    double PrecisionDigits(double value) const;
    /// 10^PrecisionDigits: values are kept to the inverse of this.
    double GetPrecision(double value) const;
    /// `value` to its precision, halves away from zero; `fine` keeps one decimal more. The exact
    /// centre is kept as it is.
    double Rounded(double value, bool fine) const;

    friend bool operator==(const SliderScale&, const SliderScale&) = default;

private:
    double Root(double value) const;
    double CurvedDigits(double value, double trackDigits) const;
};

/// floor(log10(span)): 0 for 1 to 9.99..., -1 for 0.1 to 0.99...; 0 for a span that is not positive
/// or not finite.
double DecadeOf(double span);

} // namespace Marlox
