#include "workbench/tools/Resample.h"

#include "workbench/tools/ImageWindows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace Marlox {

namespace {

constexpr int mostSamples = 8;     // along one side, for each pixel, where the picture shrinks
constexpr double filterRoom = 2.0; // pixels that a filter reaches beyond the picture

/// The channels of a pixel at once: a compiler left to itself takes them one by one.
using Channels [[gnu::vector_size(4 * sizeof(float))]] = float;

Channels channelsAt(const float* pixel)
{
    Channels channels;
    std::memcpy(&channels, pixel, sizeof channels);
    return channels;
}

void addTo(float* pixel, const Channels& channels)
{
    const Channels sum = channelsAt(pixel) + channels;
    std::memcpy(pixel, &sum, sizeof sum);
}

/// The way from a pixel to a position behind it. Where the rounding of a matrix may account for
/// what is missing or over, the position is on the pixel or on the next one.
float fractionOf(double way)
{
    constexpr double least = 1e-6;
    if (way < least)
        return 0.0f;
    return way > 1.0 - least ? 1.0f : float(way);
}

/// Columns first to last, one behind.
struct Span {
    int first = 0;
    int last = 0;

    bool Has(int column) const { return column >= first && column < last; }
    Span Within(const Span& other) const
    {
        const int from = std::max(first, other.first);
        return {from, std::max(from, std::min(last, other.last))};
    }
};

/// A coordinate that grows evenly from column to column.
struct Line {
    double start;
    double step;

    double At(int column) const { return start + column * step; }

    /// The columns of [0, count) at which it lies in [low, high). The result is exact: rounding
    /// keeps At monotonous, so that its ends being inside makes all of it so.
    Span Inside(double low, double high, int count) const
    {
        const auto isIn = [&](int column) { return At(column) >= low && At(column) < high; };
        if (step == 0.0)
            return {0, isIn(0) ? count : 0};
        const auto [near, far] = std::minmax({(low - start) / step, (high - start) / step});
        Span span{WholeWithin(std::floor(near) - 1.0, 0, count),
                  WholeWithin(std::ceil(far) + 2.0, 0, count)};
        while (span.first < span.last && !isIn(span.first))
            ++span.first;
        while (span.last > span.first && !isIn(span.last - 1))
            --span.last;
        return span;
    }
};

/// How a filter weighs the `count` pixels around a position along one axis, the fraction `t` behind
/// the pixel `before` places from the first.
struct Nearest {
    static constexpr int count = 1;
    static constexpr int before = 0;
    static constexpr double origin = 0.0; // where in a pixel its value holds
    static std::array<float, 1> Weights(float) { return {1.0f}; }
};

struct Bilinear {
    static constexpr int count = 2;
    static constexpr int before = 0;
    static constexpr double origin = 0.5;
    static std::array<float, 2> Weights(float t) { return {1.0f - t, t}; }
};

/// Catmull and Rom's spline: passes through the pixels.
struct Bicubic {
    static constexpr int count = 4;
    static constexpr int before = 1;
    static constexpr double origin = 0.5;
    static std::array<float, 4> Weights(float t)
    {
        const float t2 = t * t;
        const float t3 = t2 * t;
        return {0.5f * (-t3 + 2.0f * t2 - t), 0.5f * (3.0f * t3 - 5.0f * t2 + 2.0f),
                0.5f * (-3.0f * t3 + 4.0f * t2 + t), 0.5f * (t3 - t2)};
    }
};

/// Adds weighted samples of an image along straight lines through it.
template <class Filter>
class Sampler {
public:
    Sampler(const Image& image, float weight)
        : pixels_(image.IsEmpty() ? nullptr : image.Row(0)), width_(image.Width()),
          height_(image.Height()), weight_(weight)
    {
    }

    /// Adds to `count` pixels of a row; `x` and `y` are positions in the data window's own pixels.
    void AddRow(Line x, Line y, float* to, int count) const
    {
        x.start -= Filter::origin;
        y.start -= Filter::origin;
        const Span reached = Reached(x, width_, count).Within(Reached(y, height_, count));
        const Span inside = Inside(x, width_, count).Within(Inside(y, height_, count));
        for (int column = reached.first; column < reached.last; ++column) {
            if (!inside.Has(column))
                AddNearEdge(x.At(column), y.At(column), to + std::ptrdiff_t(column) * 4);
            else
                AddInside(x.At(column), y.At(column), to + std::ptrdiff_t(column) * 4);
        }
    }

private:
    /// Where some pixel of the image takes part, and where all do.
    static Span Reached(const Line& line, int size, int count)
    {
        return line.Inside(Filter::before + 1 - Filter::count, size + Filter::before, count);
    }
    static Span Inside(const Line& line, int size, int count)
    {
        return line.Inside(Filter::before, size + Filter::before + 1 - Filter::count, count);
    }

    const float* PixelAt(int x, int y) const
    {
        return pixels_ + (std::ptrdiff_t(y) * width_ + x) * 4;
    }

    void AddInside(double x, double y, float* to) const
    {
        const int left = int(x); // not below 0 here
        const int top = int(y);
        const auto across = Filter::Weights(fractionOf(x - left));
        const auto down = Filter::Weights(fractionOf(y - top));
        // A pixel of no weight must not leak in when it is infinite or not a number.
        if (Filter::count > 1 && (HasZeroEnd(across) || HasZeroEnd(down))) {
            AddNearEdge(x, y, to);
            return;
        }
        Channels sum{};
        for (int j = 0; j < Filter::count; ++j) {
            const float* from = PixelAt(left - Filter::before, top - Filter::before + j);
            Channels line{};
            for (int i = 0; i < Filter::count; ++i)
                line += across[std::size_t(i)] * channelsAt(from + std::ptrdiff_t(i) * 4);
            sum += down[std::size_t(j)] * line;
        }
        addTo(to, weight_ * sum);
    }

    /// As it is exactly on a pixel.
    template <class Weights>
    static bool HasZeroEnd(const Weights& weights)
    {
        return weights.front() == 0.0f || weights.back() == 0.0f;
    }

    void AddNearEdge(double x, double y, float* to) const
    {
        const double left = std::floor(x);
        const double top = std::floor(y);
        const auto across = Filter::Weights(fractionOf(x - left));
        const auto down = Filter::Weights(fractionOf(y - top));
        for (int j = 0; j < Filter::count; ++j) {
            for (int i = 0; i < Filter::count; ++i) {
                const float weight = across[std::size_t(i)] * down[std::size_t(j)];
                const int pixelX = int(left) - Filter::before + i;
                const int pixelY = int(top) - Filter::before + j;
                if (weight == 0.0f || pixelX < 0 || pixelX >= width_ || pixelY < 0 ||
                    pixelY >= height_)
                    continue;
                addTo(to, weight_ * weight * channelsAt(PixelAt(pixelX, pixelY)));
            }
        }
    }

    const float* pixels_; // the rows one after the other
    int width_;
    int height_;
    float weight_;
};

/// From pixels of the result to those of the source.
struct Mapping {
    double xx, xy, x0; // x = xx * column + xy * row + x0
    double yx, yy, y0;

    bool IsFinite() const
    {
        return std::isfinite(xx) && std::isfinite(xy) && std::isfinite(x0) && std::isfinite(yx) &&
               std::isfinite(yy) && std::isfinite(y0);
    }
};

/// Both counted from the first pixel of their data windows.
Mapping mappingBetween(const QTransform& back, const MxRect& source, const MxRect& result)
{
    const auto at = [&](double x, double y) {
        return QPointF(back.m11() * x + back.m21() * y + back.dx() - source.left,
                       back.m12() * x + back.m22() * y + back.dy() - source.top);
    };
    const QPointF first = at(result.left, result.top);
    return {back.m11(), back.m21(), first.x(), back.m12(), back.m22(), first.y()};
}

int samplesFor(double sourcePixels, ResampleFilter filter)
{
    if (filter == ResampleFilter::Nearest)
        return 1;
    return WholeWithin(std::ceil(sourcePixels - 0.01), 1, mostSamples);
}

template <class Filter>
void resampleRows(const Image& source, const Mapping& map, ResampleFilter filter, Image& result,
                  RenderContext& context)
{
    // A pixel of the result covers this many of the source: more than one needs as many samples.
    const int across = samplesFor(std::hypot(map.xx, map.yx), filter);
    const int down = samplesFor(std::hypot(map.xy, map.yy), filter);
    const Sampler<Filter> sampler(source, 1.0f / float(across * down));
    context.ForRows(result.Height(), [&](int first, int last) {
        for (int row = first; row < last && !context.IsCancelled(); ++row) {
            for (int sample = 0; sample < across * down; ++sample) {
                const double x = (sample % across + 0.5) / across;
                const double y = row + (sample / across + 0.5) / down;
                sampler.AddRow({map.xx * x + map.xy * y + map.x0, map.xx},
                               {map.yx * x + map.yy * y + map.y0, map.yx}, result.Row(row),
                               result.Width());
            }
        }
    });
}

/// The result's data window: where the source's comes to, with room for the filter.
MxRect windowOf(const Image::Format& format, const QTransform& matrix)
{
    const MxRect& from = format.dataWindow;
    std::array<double, 4> reach{INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (const int x : {from.left, from.right}) {
        for (const int y : {from.top, from.bottom}) {
            const double toX = matrix.m11() * x + matrix.m21() * y + matrix.dx();
            const double toY = matrix.m12() * x + matrix.m22() * y + matrix.dy();
            reach = {std::min(reach[0], toX), std::min(reach[1], toY), std::max(reach[2], toX),
                     std::max(reach[3], toY)};
        }
    }
    const MxRect& frame = format.displayWindow;
    const MxRect most = frame.Widened(frame.Width() / 2, frame.Height() / 2);
    return {WholeWithin(std::floor(reach[0] - filterRoom), most.left, most.right),
            WholeWithin(std::floor(reach[1] - filterRoom), most.top, most.bottom),
            WholeWithin(std::ceil(reach[2] + filterRoom), most.left, most.right),
            WholeWithin(std::ceil(reach[3] + filterRoom), most.top, most.bottom)};
}

} // namespace

int WholeWithin(double value, int low, int high)
{
    if (!(value > low))
        return low;
    return value < high ? int(value) : high;
}

Ref<Image> Resampled(const Image& source, const QTransform& matrix, ResampleFilter filter,
                     RenderContext& context)
{
    bool isInvertible = false;
    const QTransform back = matrix.inverted(&isInvertible);
    Image::Format format = source.GetFormat();
    format.dataWindow = windowOf(format, matrix);
    const Mapping map = mappingBetween(back, source.GetFormat().dataWindow, format.dataWindow);
    if (!isInvertible || !map.IsFinite() || source.IsEmpty() || format.dataWindow.IsEmpty())
        MakeEmpty(format);
    auto result = MakeRef<Image>(format);
    constexpr std::array rows{resampleRows<Nearest>, resampleRows<Bilinear>, resampleRows<Bicubic>};
    rows[std::size_t(filter)](source, map, filter, *result, context);
    return context.IsCancelled() ? Ref<Image>() : result;
}

} // namespace Marlox
