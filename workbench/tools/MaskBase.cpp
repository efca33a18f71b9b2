#include "workbench/tools/MaskBase.h"

#include "workbench/tools/ImageWindows.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

float joined(MaskCombine combine, float own, float base)
{
    switch (combine) {
    case MaskCombine::Subtract:
        return std::max(base - own, 0.0f);
    case MaskCombine::Intersect:
        return std::min(base, own);
    case MaskCombine::Difference:
        return std::abs(base - own);
    default:
        return std::max(base, own);
    }
}

/// From the pixels of one frame to those of another, along one axis.
struct Axis {
    double from;
    double scale;
    double to;

    double At(double place) const { return (place - from) * scale + to; }
};

Axis horizontal(const MxRect& from, const MxRect& to)
{
    return {double(from.left), double(to.Width()) / from.Width(), double(to.left)};
}

Axis vertical(const MxRect& from, const MxRect& to)
{
    return {double(from.top), double(to.Height()) / from.Height(), double(to.top)};
}

} // namespace

MaskBase::MaskBase(const Ref<Image>& image, MaskCombine combine, bool hasOwn)
    : image_(image && !image->GetFormat().displayWindow.IsEmpty() ? image : Ref<Image>()),
      combine_(hasOwn ? combine : MaskCombine::Add)
{
}

MxRect MaskBase::Covered(const Image::Format& format, const MxRect& own) const
{
    if (!IsThere())
        return own;
    const MxRect& window = image_->GetFormat().dataWindow;
    if (window.IsEmpty())
        return combine_ == MaskCombine::Add || combine_ == MaskCombine::Difference ? own : window;
    const Axis x = horizontal(image_->GetFormat().displayWindow, format.displayWindow);
    const Axis y = vertical(image_->GetFormat().displayWindow, format.displayWindow);
    // Samples between pixels reach a pixel of the base further.
    const MxRect base(int(std::floor(x.At(window.left - 1))), int(std::floor(y.At(window.top - 1))),
                      int(std::ceil(x.At(window.right + 1))),
                      int(std::ceil(y.At(window.bottom + 1))));
    switch (combine_) {
    case MaskCombine::Subtract:
        return base;
    case MaskCombine::Intersect:
        return Shared(base, own);
    default:
        return United(base, own);
    }
}

/// Between the middles of four pixels; beyond the data window nothing covers.
float MaskBase::AlphaAt(double x, double y) const
{
    const MxRect& window = image_->GetFormat().dataWindow;
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const auto alpha = [&](double column, double row) {
        if (column < window.left || column >= window.right || row < window.top ||
            row >= window.bottom)
            return 0.0f;
        const float value =
            image_->Row(int(row) - window.top)[(std::ptrdiff_t(column) - window.left) * 4 + 3];
        return value > 0.0f ? std::min(value, 1.0f) : 0.0f; // what is not a number covers nothing
    };
    const auto right = float(x - 0.5 - left);
    const auto down = float(y - 0.5 - top);
    const float upper = alpha(left, top) + (alpha(left + 1, top) - alpha(left, top)) * right;
    if (down == 0.0f)
        return upper;
    const float lower =
        alpha(left, top + 1) + (alpha(left + 1, top + 1) - alpha(left, top + 1)) * right;
    return upper + (lower - upper) * down;
}

void MaskBase::Join(const Image::Format& format, int left, int y, float* strengths, int count) const
{
    if (!IsThere())
        return;
    const MxRect& frame = image_->GetFormat().displayWindow;
    const Axis across = horizontal(format.displayWindow, frame);
    const double row = vertical(format.displayWindow, frame).At(y + 0.5);
    for (int i = 0; i < count; ++i)
        strengths[i] = joined(combine_, strengths[i], AlphaAt(across.At(left + i + 0.5), row));
}

} // namespace Marlox
