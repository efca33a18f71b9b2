#include "widgets/WheelPicture.h"

#include "system/color/DisplayColors.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Marlox {

namespace {

constexpr double screenGamma = 2.2;
constexpr double grey = 0.35;      // of no strength, as a share of the brightest
constexpr int hueSteps = 6 * 1024; // a quarter of a code apart

struct PureHue {
    RgbColor rgb; // light
    double lift;  // of dark hues, halfway to the brightness of the others: the wheel is even
};

/// Between the six hues the screen's codes run evenly, not the light: equal steps for the eye.
std::vector<PureHue> pureHues()
{
    std::vector<PureHue> hues;
    for (int i = 0; i < hueSteps; ++i) {
        RgbColor rgb = ColorAxes::Of(0).ToRgb({double(i) / hueSteps, 1.0, {}, 1.0});
        for (double& component : rgb)
            component = std::pow(component, screenGamma);
        const double luma = 0.2126 * rgb[0] + 0.7152 * rgb[1] + 0.0722 * rgb[2];
        hues.push_back({rgb, 1.0 / (0.5 + 0.5 * luma)});
    }
    return hues;
}

} // namespace

QImage PaintWheel(int diameter, double devicePixelRatio, double inner, double outer,
                  const WheelLight& light)
{
    const int size = std::max(1, int(std::lround(diameter * devicePixelRatio)));
    QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(devicePixelRatio);
    const double radius = 0.5 * size;
    std::vector<float> row(std::size_t(size) * 3);
    std::vector<float> cover(static_cast<std::size_t>(size));
    std::vector<QRgb> codes(static_cast<std::size_t>(size));
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double right = x + 0.5 - radius;
            const double up = radius - y - 0.5;
            const double far = std::hypot(right, up);
            // A pixel that the edge runs through is covered in part.
            const double covered =
                std::clamp(outer * radius - far + 0.5, 0.0, 1.0) *
                (inner > 0.0 ? std::clamp(far - inner * radius + 0.5, 0.0, 1.0) : 1.0);
            cover[std::size_t(x)] = float(covered);
            if (covered == 0.0)
                continue;
            const double angle = std::atan2(up, right) / (2.0 * M_PI);
            const RgbColor rgb = light(angle < 0.0 ? angle + 1.0 : angle, far / radius);
            for (std::size_t i = 0; i < 3; ++i)
                row[std::size_t(x) * 3 + i] = float(rgb[i]);
        }
        DisplayColors::Global().Show(row.data(), size, codes.data());
        auto* to = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (std::size_t x = 0; x < std::size_t(size); ++x) {
            const QRgb code = codes[x];
            to[x] = qPremultiply(
                qRgba(qRed(code), qGreen(code), qBlue(code), int(std::lround(cover[x] * 255.0f))));
        }
    }
    return picture;
}

RgbColor MutedHue(double turn, double strength, double most)
{
    static const std::vector<PureHue> hues = pureHues();
    const PureHue& hue =
        hues[std::size_t(std::clamp(turn, 0.0, 1.0) * hueSteps + 0.5) % hues.size()];
    const double gain = most * hue.lift;
    RgbColor rgb;
    for (std::size_t i = 0; i < 3; ++i)
        rgb[i] = std::min(most, (grey + (hue.rgb[i] - grey) * strength) * gain);
    return rgb;
}

} // namespace Marlox
