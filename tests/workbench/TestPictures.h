#pragma once

#include "system/values/Image.h"

#include <algorithm>
#include <array>

namespace Marlox::Testing {

using Rgba = std::array<float, 4>;

/// A picture whose display window is `width` x `height`, each pixel from `paint(x, y)` in image
/// coordinates.
template <class Paint>
Ref<Image> Picture(int width, int height, Paint paint, Image::Format format = {})
{
    format.displayWindow = {0, 0, width, height};
    if (format.dataWindow.IsEmpty())
        format.dataWindow = format.displayWindow;
    auto image = MakeRef<Image>(format);
    const MxRect window = format.dataWindow;
    for (int y = window.top; y < window.bottom; ++y) {
        for (int x = window.left; x < window.right; ++x) {
            const Rgba color = paint(x, y);
            std::copy(color.begin(), color.end(),
                      image->Row(y - window.top) + (x - window.left) * 4);
        }
    }
    return image;
}

inline Ref<Image> Plain(int width, int height, Rgba color)
{
    return Picture(width, height, [color](int, int) { return color; });
}

/// The pixel at image coordinates; transparent outside the data window.
inline Rgba At(const Image& image, int x, int y)
{
    const MxRect window = image.GetFormat().dataWindow;
    Rgba color{};
    if (window.Contains({x, y}))
        std::copy_n(image.Row(y - window.top) + (x - window.left) * 4, 4, color.begin());
    return color;
}

} // namespace Marlox::Testing
