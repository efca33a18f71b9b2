#include "workbench/tools/BoxBlur.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr int columnsTogether = 16; // of the vertical pass: one cache line for each of 4 rows

/// One box of fractional width: weight 1 up to `radius` pixels from the middle and `edge` for the
/// pixel beyond, so that `passes` of them have exactly the wanted variance together (Gwosdek,
/// Grewenig, Bruhn and Weickert: Theoretical Foundations of Gaussian Convolution by Extended Box
/// Filtering, 2011).
struct Box {
    int radius = 0;
    double edge = 0.0;
    int passes = 0; // 0: nothing to do

    Box() = default;
    Box(double deviation, int boxes)
    {
        if (!(deviation > 0.0))
            return;
        passes = boxes;
        const double variance = deviation * deviation / boxes;
        radius = int(std::floor(0.5 * std::sqrt(12.0 * variance + 1.0) - 0.5));
        edge = (2.0 * radius + 1.0) * (radius * (radius + 1.0) - 3.0 * variance) /
               (6.0 * (variance - (radius + 1.0) * (radius + 1.0)));
    }

    int Spread() const { return passes * (radius + 1); } // pixels to each side
};

/// One pass along a line of `count` elements of `lanes` floats each; outside the line lies 0.
void boxPass(const Box& box, const std::vector<float>& in, std::vector<float>& out, int count,
             int lanes, std::vector<double>& sums)
{
    const auto at = [lanes](int i) { return std::size_t(i) * std::size_t(lanes); };
    const double scale = 1.0 / (2.0 * box.edge + 2.0 * box.radius + 1.0);
    std::fill(sums.begin(), sums.end(), 0.0);
    const auto add = [&](int i, double sign) {
        if (i < 0 || i >= count)
            return;
        const float* from = in.data() + at(i);
        for (std::size_t lane = 0; lane < std::size_t(lanes); ++lane)
            sums[lane] += sign * double(from[lane]);
    };
    for (int i = 0; i < box.radius; ++i)
        add(i, 1.0);
    const std::vector<float> nothing(std::size_t(lanes), 0.0f);
    for (int i = 0; i < count; ++i) {
        add(i + box.radius, 1.0);
        const int low = i - box.radius - 1;
        const int high = i + box.radius + 1;
        const float* before = low >= 0 ? in.data() + at(low) : nothing.data();
        const float* behind = high < count ? in.data() + at(high) : nothing.data();
        float* to = out.data() + at(i);
        for (std::size_t lane = 0; lane < std::size_t(lanes); ++lane)
            to[lane] =
                float((sums[lane] + box.edge * (double(before[lane]) + behind[lane])) * scale);
        add(i - box.radius, -1.0);
    }
}

/// The buffers for one line (or a strip of them side by side) and all passes over it.
class LineBlur {
public:
    LineBlur(const Box& box, int length, int lanes, bool repeatEdges)
        : box_(box), length_(length), lanes_(lanes), repeatEdges_(repeatEdges),
          count_(length + 2 * box.Spread()), in_(std::size_t(count_) * std::size_t(lanes)),
          out_(in_.size()), sums_(std::size_t(lanes))
    {
    }

    /// `element(i)` gives the source's element i as a pointer to `lanes` floats.
    template <class Element>
    void Run(Element element)
    {
        for (int i = 0; i < count_; ++i)
            Load(i, element);
        for (int pass = 0; pass < box_.passes; ++pass) {
            boxPass(box_, in_, out_, count_, lanes_, sums_);
            in_.swap(out_);
        }
    }

    /// Element i of the result, counted from `Spread()` before the source's first.
    const float* Result(int i) const { return in_.data() + std::size_t(i) * std::size_t(lanes_); }

private:
    template <class Element>
    void Load(int i, Element element)
    {
        int from = i - box_.Spread();
        float* to = in_.data() + std::size_t(i) * std::size_t(lanes_);
        if (repeatEdges_)
            from = std::clamp(from, 0, length_ - 1);
        if (from < 0 || from >= length_) {
            std::fill_n(to, lanes_, 0.0f);
            return;
        }
        const float* source = element(from);
        std::transform(source, source + lanes_, to,
                       [](float value) { return std::isfinite(value) ? value : 0.0f; });
    }

    Box box_;
    int length_;
    int lanes_;
    bool repeatEdges_;
    int count_;
    std::vector<float> in_;
    std::vector<float> out_;
    std::vector<double> sums_;
};

Ref<Image> blurRows(const Image& image, const Box& box, bool repeatEdges, RenderContext& context)
{
    Image::Format format = image.GetFormat();
    const int grown = repeatEdges ? 0 : box.Spread();
    format.dataWindow = format.dataWindow.Widened(grown, 0);
    auto result = MakeRef<Image>(format);
    context.ForRows(result->Height(), [&](int first, int last) {
        LineBlur line(box, image.Width(), 4, repeatEdges);
        for (int y = first; y < last; ++y) {
            const float* row = image.Row(y);
            line.Run([row](int x) { return row + std::ptrdiff_t(x) * 4; });
            std::copy_n(line.Result(box.Spread() - grown), std::size_t(result->Width()) * 4,
                        result->Row(y));
        }
    });
    return result;
}

Ref<Image> blurColumns(const Image& image, const Box& box, bool repeatEdges, RenderContext& context)
{
    Image::Format format = image.GetFormat();
    const int grown = repeatEdges ? 0 : box.Spread();
    format.dataWindow = format.dataWindow.Widened(0, grown);
    auto result = MakeRef<Image>(format);
    const int strips = (image.Width() + columnsTogether - 1) / columnsTogether;
    context.ForRows(strips, [&](int first, int last) {
        for (int strip = first; strip < last; ++strip) {
            const int left = strip * columnsTogether;
            const int lanes = std::min(columnsTogether, image.Width() - left) * 4;
            LineBlur lines(box, image.Height(), lanes, repeatEdges);
            lines.Run([&image, left](int y) { return image.Row(y) + std::ptrdiff_t(left) * 4; });
            for (int y = 0; y < result->Height(); ++y)
                std::copy_n(lines.Result(y + box.Spread() - grown), lanes,
                            result->Row(y) + std::ptrdiff_t(left) * 4);
        }
    });
    return result;
}

constexpr int together = 4; // values in a pixel

int fours(int count)
{
    return (count + together - 1) / together;
}

/// The values of four neighbouring rows as the channels of one: a blur along the rows takes four of
/// them at once. `row(y)` gives the first value of a row, the next ones are `step` floats apart.
template <class Row>
Ref<Image> packedRows(const MxRect& window, std::ptrdiff_t step, Row row, RenderContext& context)
{
    Image::Format format;
    format.dataWindow = {0, 0, window.Width(), fours(window.Height())};
    auto rows = MakeRef<Image>(format);
    context.ForRows(window.Height(), [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            const float* value = row(y);
            float* to = rows->Row(y / together) + y % together;
            for (int x = 0; x < window.Width(); ++x, value += step, to += together)
                *to = *value > 0.0f ? std::min(*value, 1.0f) : 0.0f;
        }
    });
    return rows;
}

/// The same values, four of a row as the channels of a pixel, which is one float after the other.
Ref<Image> alphaByColumns(const Image& rows, const MxRect& window, RenderContext& context)
{
    Ref<Image> columns = PlaneRows(window);
    context.ForRows(window.Height(), [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            const float* from = rows.Row(y / together) + y % together;
            float* to = columns->Row(y);
            for (int x = 0; x < window.Width(); ++x)
                to[x] = from[std::ptrdiff_t(x) * together];
        }
    });
    return columns;
}

/// From a plane packed by rows.
AlphaPlane softened(Ref<Image> rows, const MxRect& window, const BlurSize& size,
                    RenderContext& context, double from, double to)
{
    const Box across(size.deviationX, size.passes);
    const Box down(size.deviationY, size.passes);
    if (across.passes > 0 && !rows->GetFormat().dataWindow.IsEmpty())
        rows = blurRows(*rows, across, false, context);
    context.SetPart((from + to) / 2.0, to);
    AlphaPlane plane;
    plane.window = window.Widened(across.Spread(), 0);
    plane.rows = alphaByColumns(*rows, plane.window, context);
    if (down.passes > 0 && !plane.window.IsEmpty())
        plane.rows = blurColumns(*plane.rows, down, false, context);
    plane.window = plane.window.Widened(0, down.Spread());
    if (context.IsCancelled())
        plane.rows = {};
    return plane;
}

} // namespace

Ref<Image> Blurred(const Ref<Image>& image, const BlurSize& size, RenderContext& context,
                   double from, double to)
{
    const Box across(size.deviationX, size.passes);
    const Box down(size.deviationY, size.passes);
    Ref<Image> result = image;
    if (image->GetFormat().dataWindow.IsEmpty())
        return image;
    const double middle = (from + to) / 2.0;
    context.SetPart(from, middle);
    if (across.passes > 0)
        result = blurRows(*result, across, size.repeatEdges, context);
    context.SetPart(middle, to);
    if (down.passes > 0 && !context.IsCancelled())
        result = blurColumns(*result, down, size.repeatEdges, context);
    return context.IsCancelled() ? Ref<Image>() : result;
}

Ref<Image> PlaneRows(const MxRect& window)
{
    Image::Format format;
    format.dataWindow = {0, 0, fours(window.Width()), window.Height()};
    return MakeRef<Image>(format);
}

AlphaPlane Blurred(const AlphaPlane& plane, const BlurSize& size, RenderContext& context,
                   double from, double to)
{
    context.SetPart(from, (from + to) / 2.0);
    return softened(packedRows(
                        plane.window, 1, [&](int y) { return plane.Row(y); }, context),
                    plane.window, size, context, from, to);
}

AlphaPlane BlurredAlpha(const Image& image, const BlurSize& size, RenderContext& context,
                        double from, double to)
{
    const MxRect& window = image.GetFormat().dataWindow;
    context.SetPart(from, (from + to) / 2.0);
    return softened(packedRows(
                        window, together, [&](int y) { return image.Row(y) + 3; }, context),
                    window, size, context, from, to);
}

} // namespace Marlox
