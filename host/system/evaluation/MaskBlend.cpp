#include "system/evaluation/MaskBlend.h"

#include "system/evaluation/FramedMask.h"

#include <algorithm>
#include <vector>

namespace Marlox {

namespace {

MxRect united(const MxRect& a, const MxRect& b)
{
    if (a.IsEmpty())
        return b;
    if (b.IsEmpty())
        return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

/// The pixel of `image` at a position of the display window, or transparent black.
const float* pixelAt(const Image* image, int x, int y)
{
    static constexpr float nothing[4] = {};
    if (!image || image->IsEmpty() || !image->GetFormat().dataWindow.Contains({x, y}))
        return nothing;
    const MxRect& window = image->GetFormat().dataWindow;
    return image->Row(y - window.top) + std::size_t(x - window.left) * 4;
}

void blendRow(const Image* before, const Image* effect, const float* amounts, Image& out, int row)
{
    const MxRect& window = out.GetFormat().dataWindow;
    float* pixel = out.Row(row);
    for (int x = window.left; x < window.right; ++x, pixel += 4) {
        const float amount = *amounts++;
        const float* from = pixelAt(before, x, window.top + row);
        const float* to = pixelAt(effect, x, window.top + row);
        // At the ends copied, not computed: an infinite value elsewhere must not leak in.
        if (amount == 0.0f || amount == 1.0f)
            std::copy_n(amount == 0.0f ? from : to, 4, pixel);
        else
            for (int channel = 0; channel < 4; ++channel)
                pixel[channel] = from[channel] + (to[channel] - from[channel]) * amount;
    }
}

} // namespace

Ref<Image> BlendByMask(const Ref<Image>& before, const Ref<Image>& effect, const Ref<Image>& mask,
                       RenderContext& context)
{
    Image::Format format = effect->GetFormat();
    if (before)
        format.dataWindow = united(format.dataWindow, before->GetFormat().dataWindow);
    auto out = MakeRef<Image>(format);
    const FramedMask amounts(mask);
    context.ForRows(out->Height(), [&](int first, int last) {
        std::vector<float> line(std::size_t(out->Width()));
        for (int row = first; row < last; ++row) {
            amounts.Alphas(format.displayWindow, format.dataWindow.left,
                           format.dataWindow.top + row, line.data(), out->Width());
            blendRow(before.Get(), effect.Get(), line.data(), *out, row);
        }
    });
    return out;
}

} // namespace Marlox
