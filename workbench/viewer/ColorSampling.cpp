#include "workbench/viewer/ColorSampling.h"

#include "system/evaluation/Process.h"
#include "workbench/images/ImageScale.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace Marlox {

namespace {

/// A whole number of pixels, however far out.
int wholePixels(double pixels)
{
    constexpr double most = 1 << 24;
    return int(std::clamp(pixels, -most, most));
}

int dividedDown(int pixel, int divisor)
{
    return pixel / divisor - (pixel % divisor < 0 ? 1 : 0);
}

int dividedUp(int pixel, int divisor)
{
    return -dividedDown(-pixel, divisor);
}

MxRect intersected(const MxRect& a, const MxRect& b)
{
    const MxRect both(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                      std::min(a.bottom, b.bottom));
    return both.IsEmpty() ? MxRect() : both;
}

MxRect united(const MxRect& a, const MxRect& b)
{
    if (a.IsEmpty() || b.IsEmpty())
        return a.IsEmpty() ? b : a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

std::int64_t countOf(const MxRect& rect)
{
    return std::int64_t(rect.Width()) * rect.Height();
}

/// Pixels as the image stores them, larger ones in a proxy: all that are touched, within its
/// windows.
struct Stored {
    Stored(const Image& image, const MxRect& pixels)
    {
        const Image::Format& format = image.GetFormat();
        divisor = ProxyDivisor(format.scale);
        const MxRect touched(dividedDown(pixels.left, divisor), dividedDown(pixels.top, divisor),
                             dividedUp(pixels.right, divisor), dividedUp(pixels.bottom, divisor));
        inDisplay = intersected(touched, format.displayWindow);
        inData = image.IsEmpty() ? MxRect() : intersected(touched, format.dataWindow);
    }
    /// How many lie within a window.
    std::int64_t Count() const
    {
        return countOf(inDisplay) + countOf(inData) - countOf(intersected(inDisplay, inData));
    }

    int divisor = 1;
    MxRect inDisplay;
    MxRect inData;
};

struct Sum {
    std::array<double, 4> total{};
    std::int64_t count = 0;

    void Add(const Sum& other)
    {
        for (std::size_t i = 0; i < 4; ++i)
            total[i] += other.total[i];
        count += other.count;
    }
};

struct Sums {
    Sum finite;
    Sum infinite; // as the largest number
};

/// A pixel that is not finite.
void addOdd(const float* pixel, Sum& infinite)
{
    if (std::any_of(pixel, pixel + 4, [](float value) { return std::isnan(value); }))
        return;
    constexpr float largest = std::numeric_limits<float>::max();
    for (std::size_t i = 0; i < 4; ++i)
        infinite.total[i] += double(std::clamp(pixel[i], -largest, largest));
    ++infinite.count;
}

Sums sumsOf(const float* from, int pixels)
{
    Sums sums;
    const float* const end = from + std::ptrdiff_t(pixels) * 4;
    for (const float* at = from; at != end; at += 4) {
        // Zero, unless one of them is infinite or no number.
        const float odd = (at[0] - at[0]) + (at[1] - at[1]) + (at[2] - at[2]) + (at[3] - at[3]);
        if (odd != 0.0f) {
            addOdd(at, sums.infinite);
            continue;
        }
        for (std::size_t i = 0; i < 4; ++i)
            sums.finite.total[i] += double(at[i]);
        ++sums.finite.count;
    }
    return sums;
}

/// Row by row, and the rows in their order: the same pixels always have the same mean.
Sums sumsOf(const Image& image, const MxRect& pixels)
{
    const MxRect& data = image.GetFormat().dataWindow;
    std::vector<Sums> rows(std::size_t(std::max(pixels.Height(), 0)));
    const auto sumRows = [&](int first, int last) {
        for (int y = first; y < last; ++y)
            rows[std::size_t(y)] = sumsOf(image.Row(pixels.top - data.top + y) +
                                              std::ptrdiff_t(pixels.left - data.left) * 4,
                                          pixels.Width());
    };
    constexpr std::int64_t worthSharing = 64 * 1024; // pixels
    if (countOf(pixels) < worthSharing)
        sumRows(0, int(rows.size()));
    else
        RenderContext().ForRows(int(rows.size()), sumRows);
    Sums sums;
    for (const Sums& row : rows) {
        sums.finite.Add(row.finite);
        sums.infinite.Add(row.infinite);
    }
    return sums;
}

} // namespace

MxRect ColorSampling::PixelsOf(const ColorSource::Footprint& footprint, const ViewTransform& view,
                               double devicePixelRatio)
{
    // The pixel that a position lies in, one across and down.
    const auto pixelAt = [&](QPointF position) {
        const QPointF at = view.ToImage(position * devicePixelRatio);
        const int left = wholePixels(std::floor(at.x()));
        const int top = wholePixels(std::floor(at.y()));
        return MxRect(left, top, left + 1, top + 1);
    };
    if (footprint.area) {
        const QRectF area = footprint.area->normalized();
        return united(pixelAt(area.topLeft()), pixelAt(area.bottomRight()));
    }
    const MxRect middle = pixelAt(footprint.at);
    const int reach = footprint.size / 2;
    return {middle.left - reach, middle.top - reach, middle.right + reach, middle.bottom + reach};
}

MxRect ColorSampling::PixelsIn(const Image& image, const MxRect& pixels)
{
    const Stored stored(image, pixels);
    const MxRect whole = united(stored.inDisplay, stored.inData);
    return {whole.left * stored.divisor, whole.top * stored.divisor, whole.right * stored.divisor,
            whole.bottom * stored.divisor};
}

bool ColorSampling::MeanOf(const Image& image, const MxRect& pixels, ColorSource::Sample& sample)
{
    const Stored stored(image, pixels);
    Sums sums = sumsOf(image, stored.inData);
    sums.finite.count += stored.Count() - countOf(stored.inData);
    const Sum& counted = sums.finite.count > 0 ? sums.finite : sums.infinite;
    if (counted.count == 0)
        return false;
    for (std::size_t i = 0; i < 4; ++i)
        sample.rgba[i] = counted.total[i] / double(counted.count);
    const std::int64_t all = counted.count * stored.divisor * stored.divisor;
    sample.pixels = int(std::min<std::int64_t>(all, std::numeric_limits<int>::max()));
    return true;
}

} // namespace Marlox
