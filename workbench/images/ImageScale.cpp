#include "workbench/images/ImageScale.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

int floorDivide(int value, int divisor)
{
    return int(std::floor(double(value) / divisor));
}

MxRect reducedWindow(const MxRect& window, int divisor)
{
    if (window.IsEmpty())
        return {};
    return {floorDivide(window.left, divisor), floorDivide(window.top, divisor),
            -floorDivide(-window.right, divisor), -floorDivide(-window.bottom, divisor)};
}

/// Adds up the pixels of one row of `image` that fall into each reduced pixel, and counts them.
void addRow(const Image& image, int y, int reducedLeft, int divisor, std::vector<float>& sums,
            std::vector<int>& counts)
{
    const float* source = image.Row(y - image.GetFormat().dataWindow.top);
    const int left = image.GetFormat().dataWindow.left;
    for (int column = 0; column < image.Width(); ++column, source += 4) {
        const auto target = std::size_t(floorDivide(left + column, divisor) - reducedLeft);
        for (std::size_t channel = 0; channel < 4; ++channel)
            sums[target * 4 + channel] += source[channel];
        ++counts[target];
    }
}

} // namespace

int ProxyDivisor(double scale)
{
    return scale >= 1.0 || !(scale > 0.0) ? 1 : int(std::lround(std::min(1.0 / scale, 64.0)));
}

Image::Format ReducedFormat(const Image::Format& format, int divisor)
{
    Image::Format reduced = format;
    reduced.dataWindow = reducedWindow(format.dataWindow, divisor);
    reduced.displayWindow = reducedWindow(format.displayWindow, divisor);
    reduced.scale = format.scale / divisor;
    return reduced;
}

Ref<Image> ReducedImage(const Ref<Image>& image, int divisor, RenderContext& context)
{
    if (divisor <= 1)
        return image;
    auto reduced = MakeRef<Image>(ReducedFormat(image->GetFormat(), divisor));
    const MxRect from = image->GetFormat().dataWindow;
    const MxRect to = reduced->GetFormat().dataWindow;
    context.ForRows(to.Height(), [&](int first, int last) {
        std::vector<float> sums(std::size_t(to.Width()) * 4);
        std::vector<int> counts(std::size_t(to.Width()));
        for (int row = first; row < last; ++row) {
            std::fill(sums.begin(), sums.end(), 0.0f);
            std::fill(counts.begin(), counts.end(), 0);
            const int top = (to.top + row) * divisor;
            for (int y = std::max(top, from.top); y < std::min(top + divisor, from.bottom); ++y)
                addRow(*image, y, to.left, divisor, sums, counts);
            float* target = reduced->Row(row);
            for (std::size_t i = 0; i < sums.size(); ++i)
                target[i] = sums[i] / float(std::max(counts[i / 4], 1));
        }
    });
    return context.IsCancelled() ? Ref<Image>() : reduced;
}

} // namespace Marlox
