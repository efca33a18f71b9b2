#include "widgets/ColorSquare.h"

#include "system/color/DisplayColors.h"
#include "widgets/ColorSquareRows.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

using Curves = DisplayColors::Curves;

/// Kept to 0 to 1, in a form that the compiler makes no branches of; for numbers up to some
/// millions.
float unit(float light)
{
    return 0.5f * (std::abs(light) - std::abs(light - 1.0f)) + 0.5f;
}

/// A row in light as whole numbers from 0 to `steps`: red, then green, then blue.
void findLevels(int* levels, const float* across, int count, const ColorSquareRow& row, int steps)
{
    const auto scale = float(steps);
    for (std::size_t channel = 0; channel < 3; ++channel, levels += count) {
        const float first = row.first[channel];
        const float way = row.way[channel];
        for (int i = 0; i < count; ++i)
            levels[i] = int(unit(first + way * across[i]) * scale + 0.5f);
    }
}

/// The codes of levels; without curves the levels are.
void findCodes(QRgb* pixels, const int* levels, int count, const Curves* curves)
{
    const int* red = levels;
    const int* green = red + count;
    const int* blue = green + count;
    if (!curves) {
        for (int i = 0; i < count; ++i)
            pixels[i] = 0xff000000u | QRgb(red[i] << 16 | green[i] << 8 | blue[i]);
        return;
    }
    const std::uint8_t* reds = curves->code[0].data();
    const std::uint8_t* greens = curves->code[1].data();
    const std::uint8_t* blues = curves->code[2].data();
    for (int i = 0; i < count; ++i)
        pixels[i] = qRgb(reds[red[i]], greens[green[i]], blues[blue[i]]);
}

/// What colours that no light has look like: hardly lit, and hardly coloured.
struct Muted {
    static constexpr float ground = 36.0f; // codes
    static constexpr float shareOfGrey = 0.14f;
    static constexpr float shareOfColor = 0.05f;
};

/// How far each pixel of a row is to be muted, 0 to 1: within a pixel's width across the border of
/// what light has. `next` is the row below, or for the last one the row above.
void findMuted(float* amounts, const float* across, int count, const ColorSquareRow& row,
               const ColorSquareRow& next)
{
    std::fill_n(amounts, count, 0.0f);
    const float column = (across[count - 1] - across[0]) / float(std::max(count - 1, 1));
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const float first = row.first[channel] - 0.5f;
        const float way = row.way[channel];
        const float perPixel =
            std::max(std::hypot(way * column, next.first[channel] - row.first[channel]), 1e-3f);
        const float pixels = 1.0f / perPixel;
        for (int i = 0; i < count; ++i) {
            const float beyond = (std::abs(first + way * across[i]) - 0.5f) * pixels + 0.5f;
            amounts[i] = std::max(amounts[i], unit(beyond));
        }
    }
}

void muteRow(QRgb* pixels, const float* amounts, int count)
{
    for (int i = 0; i < count; ++i) {
        const auto pixel = int(pixels[i]);
        const auto red = float((pixel >> 16) & 0xff);
        const auto green = float((pixel >> 8) & 0xff);
        const auto blue = float(pixel & 0xff);
        const float amount = amounts[i];
        const float ground = Muted::ground + (red + green + blue) * (Muted::shareOfGrey / 3.0f);
        const float seen = 1.0f - amount * (1.0f - Muted::shareOfColor);
        const float under = amount * ground + 0.5f;
        const int codes = int(red * seen + under) << 16 | int(green * seen + under) << 8 |
                          int(blue * seen + under);
        pixels[i] = 0xff000000u | QRgb(codes);
    }
}

} // namespace

ColorSquareRow::ColorSquareRow(const ColorAxes& axes, double hue, double value)
{
    const RgbColor ends[] = {axes.ToRgb({hue, 0.0, {}, value}), axes.ToRgb({hue, 1.0, {}, value})};
    for (std::size_t i = 0; i < 3; ++i) {
        first[i] = float(std::clamp(ends[0][i], -most, most));
        way[i] = float(std::clamp(ends[1][i], -most, most)) - first[i];
    }
}

bool ColorSquareRow::LeavesLight() const
{
    static constexpr float rounding = 1e-5f;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto [least, most] = std::minmax({first[i], first[i] + way[i]});
        if (least < -rounding || most > 1.0f + rounding)
            return true;
    }
    return false;
}

ColorSquare::ColorSquare(std::vector<double> saturations, std::vector<double> values)
    : saturations_(std::move(saturations)), values_(std::move(values)),
      across_(saturations_.begin(), saturations_.end())
{
}

void ColorSquare::Paint(QImage& image, int colorSpace, double hue,
                        const DisplayColors& display) const
{
    const QSize size(Columns(), Rows());
    if (image.size() != size || image.format() != QImage::Format_RGB32)
        image = QImage(size, QImage::Format_RGB32);
    if (size.isEmpty() || image.isNull())
        return;
    image.detach();
    if (colorSpace == 0 && display.IsPlain())
        return PaintHsv(image, hue);
    const ColorAxes& axes = ColorAxes::Of(colorSpace);
    if (display.IsPlain())
        PaintRows(image, axes, hue, nullptr);
    else if (const Curves* curves = display.PerChannel())
        PaintRows(image, axes, hue, curves);
    else
        PaintBetween(image, axes, hue, display);
    Mute(image, axes, hue);
}

void ColorSquare::PaintRows(QImage& image, const ColorAxes& axes, double hue,
                            const DisplayColors::Curves* curves) const
{
    std::vector<int> levels(3 * saturations_.size());
    for (int y = 0; y < Rows(); ++y) {
        const ColorSquareRow row(axes, hue, values_[std::size_t(y)]);
        findLevels(levels.data(), across_.data(), Columns(), row, curves ? Curves::size - 1 : 255);
        findCodes(reinterpret_cast<QRgb*>(image.scanLine(y)), levels.data(), Columns(), curves);
    }
}

void ColorSquare::Mute(QImage& image, const ColorAxes& axes, double hue) const
{
    std::vector<float> amounts(saturations_.size());
    for (int y = 0; y < Rows(); ++y) {
        const ColorSquareRow row(axes, hue, values_[std::size_t(y)]);
        if (!row.LeavesLight())
            continue;
        const int other = y + 1 < Rows() ? y + 1 : std::max(y - 1, 0);
        const ColorSquareRow next(axes, hue, values_[std::size_t(other)]);
        findMuted(amounts.data(), across_.data(), Columns(), row, next);
        muteRow(reinterpret_cast<QRgb*>(image.scanLine(y)), amounts.data(), Columns());
    }
}

} // namespace Marlox
