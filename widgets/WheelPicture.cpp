#include "widgets/WheelPicture.h"

#include "system/color/DisplayColors.h"
#include "system/color/Luminance.h"

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
        const double luma = Luminance::Of(rgb[0], rgb[1], rgb[2]);
        hues.push_back({rgb, 1.0 / (0.5 + 0.5 * luma)});
    }
    return hues;
}

} // namespace

double RingCover(double distance, double inner, double outer)
{
    return std::clamp(outer - distance + 0.5, 0.0, 1.0) *
           (inner > 0.0 ? std::clamp(distance - inner + 0.5, 0.0, 1.0) : 1.0);
}

QImage PaintDisc(int diameter, double devicePixelRatio, double outer, const WheelLight& light)
{
    const int size = std::max(1, int(std::lround(diameter * devicePixelRatio)));
    QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(devicePixelRatio);
    picture.fill(Qt::transparent);
    const double radius = 0.5 * size;
    const double reach = outer * radius + 0.5;
    std::vector<float> row;
    std::vector<double> covers;
    std::vector<QRgb> codes(static_cast<std::size_t>(size));
    for (int y = 0; y < size; ++y) {
        const double up = radius - y - 0.5;
        const double half = std::sqrt(std::max(reach * reach - up * up, 0.0));
        const int first = std::max(int(std::ceil(radius - half - 0.5)), 0);
        const int last = std::min(int(std::floor(radius + half - 0.5)), size - 1);
        row.clear();
        covers.clear();
        for (int x = first; x <= last; ++x) {
            const double right = x + 0.5 - radius;
            const double far = std::sqrt(right * right + up * up);
            const double angle = std::atan2(up, right) / (2.0 * M_PI);
            for (const double component : light(angle < 0.0 ? angle + 1.0 : angle, far / radius))
                row.push_back(float(component));
            covers.push_back(RingCover(far, 0.0, outer * radius));
        }
        DisplayColors::Global().Show(row.data(), int(covers.size()), codes.data());
        auto* to = reinterpret_cast<QRgb*>(picture.scanLine(y)) + first;
        for (std::size_t i = 0; i < covers.size(); ++i)
            to[i] = Covering(codes[i], int(std::lround(covers[i] * 255.0)));
    }
    return picture;
}

QRgb Covering(QRgb code, int cover)
{
    return qPremultiply((code & 0xffffffu) | QRgb(cover) << 24);
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
